// SPDX-License-Identifier: MIT
// Bilinear: i = index(u), w = (truncate((u - i) * 255) & 255) + 1. The two neighbours across are mixed as (c0 * (257 -
// w) >> 8) + (c1 * w >> 8) for the rows j and j + 1, then these two results in the same way down. A weight of 1 gives
// the first pixel itself, so fractions of 0 are no special case.
#include "SwBitmapSampler.h"

#include <algorithm>
#include <cstring>

#include "../Kernels/RowKernels.h"
#include "RunParts.h"

namespace Graphics {

namespace {

/// Up to here placements and columns with half pixels are exact in floats.
constexpr int32_t kExact = 1 << 21;

/// Points sampled one by one beyond the image's end before the fast path is tried again.
constexpr size_t kEdgeChunk = 16;

bool WholePixels(float offset, int32_t& shift) noexcept {
    shift = SaturatingTruncate(std::floor(offset));
    return std::fabs(offset) <= static_cast<float>(kExact) && static_cast<float>(shift) == offset;
}

} // namespace

SwBitmapSampler::SwBitmapSampler(Arena& arena, const PixelReader& reader, const SwSamplerSetup& setup,
                                 std::shared_ptr<const void> keep)
    : m_arena(arena), m_kernels(ActivePaintKernels()), m_reader(reader), m_setup(setup), m_keep(std::move(keep)) {
    m_upright = setup.m1 == 0.0F && setup.m2 == 0.0F;
    const float half = setup.linear ? 0.0F : 0.5F;
    m_copies = m_upright && setup.m0 == 1.0F && setup.m3 == 1.0F && WholePixels(setup.m4 - half, m_shiftX) &&
               WholePixels(setup.m5 - half, m_shiftY);
}

bool SwBitmapSampler::IsSolid(uint32_t& color) const noexcept {
    if (m_setup.linear || m_setup.width != 1 || m_setup.height != 1) {
        return false;
    }
    m_reader.Run(0, 0, 1, &color);
    ActiveKernels().scaleColorBy(&color, m_setup.opacityFactor, 1);
    return true;
}

bool SwBitmapSampler::IsCopied(int32_t x0, int32_t x1, int32_t y) const noexcept {
    return m_copies && x0 >= -kExact && x1 <= kExact && y >= -kExact && y <= kExact;
}

int32_t SwBitmapSampler::TiledRow(int32_t y) const noexcept {
    if (y + m_shiftY >= 0 && y + m_shiftY < m_setup.height) {
        return y + m_shiftY;
    }
    const float at = static_cast<float>(y + m_shiftY) + 0.5F;
    int32_t row;
    m_kernels.indices[m_setup.tilingY](&at, 1, m_setup.height, &row);
    return row;
}

const uint8_t* SwBitmapSampler::CopiedRow(int32_t x0, int32_t x1, int32_t y, ptrdiff_t pixelBytes) const noexcept {
    if (x0 >= x1 || m_setup.opacityFactor != 256 || !IsCopied(x0, x1, y) || x0 + m_shiftX < 0 ||
        x1 + m_shiftX > m_setup.width) {
        return nullptr;
    }
    return m_reader.Row(TiledRow(y)) + (x0 + m_shiftX) * pixelBytes;
}

const uint32_t* SwBitmapSampler::DirectRow(int32_t x0, int32_t x1, int32_t y) const noexcept {
    const uint8_t* pixels = m_reader.IsDirect() ? CopiedRow(x0, x1, y, 4) : nullptr;
    return reinterpret_cast<uintptr_t>(pixels) % alignof(uint32_t) == 0 ? reinterpret_cast<const uint32_t*>(pixels)
                                                                        : nullptr;
}

const uint8_t* SwBitmapSampler::DirectAlpha(int32_t x0, int32_t x1, int32_t y) const noexcept {
    return m_reader.IsCoverage() ? CopiedRow(x0, x1, y, 1) : nullptr;
}

const uint8_t* SwBitmapSampler::CopiedBlock(const IntRect& r, ptrdiff_t pixelBytes) const noexcept {
    if (m_setup.opacityFactor != 256 || !IsCopied(r.left, r.right, r.top) || !IsCopied(r.left, r.right, r.bottom)) {
        return nullptr;
    }
    const IntRect from = {r.left + m_shiftX, r.top + m_shiftY, r.right + m_shiftX, r.bottom + m_shiftY};
    if (from.left < 0 || from.top < 0 || from.right > m_setup.width || from.bottom > m_setup.height) {
        return nullptr;
    }
    return m_reader.Row(from.top) + from.left * pixelBytes;
}

const uint8_t* SwBitmapSampler::DirectAlphaBlock(const IntRect& r, ptrdiff_t& strideBytes) const noexcept {
    strideBytes = m_reader.StrideBytes();
    return m_reader.IsCoverage() ? CopiedBlock(r, 1) : nullptr;
}

SwDirectBlock SwBitmapSampler::DirectBlock(const IntRect& r) const noexcept {
    const uint8_t* pixels = m_reader.HasWords() ? CopiedBlock(r, 4) : nullptr;
    if (pixels == nullptr) {
        return {};
    }
    const bool aligned =
        (reinterpret_cast<uintptr_t>(pixels) | static_cast<uintptr_t>(m_reader.StrideBytes())) % alignof(uint32_t) == 0;
    return aligned || !m_reader.IsDirect() ? SwDirectBlock{pixels, m_reader.StrideBytes(), m_reader.IsDirect()}
                                           : SwDirectBlock{};
}

void SwBitmapSampler::Fill(int32_t x0, int32_t x1, int32_t y, uint32_t* out) {
    if (x0 >= x1) {
        return;
    }
    const auto count = static_cast<size_t>(static_cast<int64_t>(x1) - x0);
    if (IsCopied(x0, x1, y)) {
        FillCopied(x0, count, y, out);
    } else {
        const CoverageRun run{x0, x1, nullptr, 255};
        m_upright ? FillUpright({&run, 1}, y, out) : FillPoints({&run, 1}, y, out);
    }
    if (m_setup.opacityFactor != 256) {
        ActiveKernels().scaleColorBy(out, m_setup.opacityFactor, count);
    }
}

void SwBitmapSampler::FillCopied(int32_t x0, size_t count, int32_t y, uint32_t* out) const noexcept {
    const int32_t row = TiledRow(y);
    const int64_t column = static_cast<int64_t>(x0) + m_shiftX;
    if (column >= 0 && column + static_cast<int64_t>(count) <= m_setup.width) {
        m_reader.Run(row, static_cast<int32_t>(column), count, out);
        return;
    }
    const int64_t width = m_setup.width;
    const auto length = static_cast<int64_t>(count);
    if (m_setup.tilingX == GXExtendRepeat) { // from tile to tile
        int64_t from = (column % width + width) % width;
        for (int64_t done = 0; done < length; from = 0) {
            const int64_t n = std::min(width - from, length - done);
            m_reader.Run(row, static_cast<int32_t>(from), static_cast<size_t>(n), out + done);
            done += n;
        }
        return;
    }
    if (m_setup.tilingX == GXExtendClamp) { // the edge pixels are repeated on both sides
        const int64_t left = std::clamp<int64_t>(-column, 0, length);
        const int64_t right = std::clamp<int64_t>(width - column, left, length);
        uint32_t edges[2];
        m_reader.Run(row, 0, 1, &edges[0]);
        m_reader.Run(row, m_setup.width - 1, 1, &edges[1]);
        std::fill_n(out, left, edges[0]);
        if (right > left) {
            m_reader.Run(row, static_cast<int32_t>(column + left), static_cast<size_t>(right - left), out + left);
        }
        std::fill_n(out + right, length - right, edges[1]);
        return;
    }
    float at[kPaintChunk];
    int32_t columns[kPaintChunk];
    float next = static_cast<float>(column) + 0.5F;
    for (size_t done = 0; done < count;) {
        const size_t n = std::min(kPaintChunk, count - done);
        next = m_kernels.accumulate(next, 1.0F, at, n);
        m_kernels.indices[m_setup.tilingX](at, n, m_setup.width, columns);
        m_reader.Columns(row, columns, n, out + done);
        done += n;
    }
}

/// The table is that of these runs, or begins with it.
bool SwBitmapSampler::HasColumns(std::span<const CoverageRun> runs) const noexcept {
    if (runs.size() != m_tableRuns) {
        return false;
    }
    for (size_t i = 0; i < m_tableRuns; ++i) {
        if (runs[i].x0 != m_tableStarts[i]) {
            return false;
        }
    }
    return static_cast<size_t>(static_cast<int64_t>(runs.back().x1) - runs.front().x0) <= m_tableCount;
}

/// Coordinates restart at every run.
void SwBitmapSampler::BuildColumns(std::span<const CoverageRun> runs) {
    m_kept[0].row = m_kept[1].row = -1;
    m_tableCount = 0;
    const auto count = static_cast<size_t>(static_cast<int64_t>(runs.back().x1) - runs.front().x0);
    if (count > m_tableCapacity) {
        const size_t capacity = std::max(count, m_tableCapacity * 2);
        m_first = m_arena.AllocArray<int32_t>(capacity);
        m_kept[0].pixels = m_arena.AllocArray<uint32_t>(capacity);
        if (m_setup.linear) {
            m_second = m_arena.AllocArray<int32_t>(capacity);
            m_weights = m_arena.AllocArray<uint32_t>(capacity);
            m_other = m_arena.AllocArray<uint32_t>(capacity);
            m_kept[1].pixels = m_arena.AllocArray<uint32_t>(capacity);
        }
        m_tableCapacity = capacity;
    }
    alignas(64) float at[kMostPainted];
    size_t done = 0;
    ForRunParts(
        runs, [&](int32_t x0) { return m_setup.m0 * static_cast<float>(x0) + m_setup.m4; },
        [&](float& next, size_t k, size_t n) { next = m_kernels.accumulate(next, m_setup.m0, at + k, n); },
        [&](size_t n) {
            if (m_setup.linear) {
                m_kernels.taps[m_setup.tilingX](at, n, m_setup.width, m_first + done, m_second + done,
                                                m_weights + done);
            } else {
                m_kernels.indices[m_setup.tilingX](at, n, m_setup.width, m_first + done);
            }
            done += n;
        });
    m_tableRuns = runs.size() <= std::size(m_tableStarts) ? runs.size() : 0;
    for (size_t i = 0; i < m_tableRuns; ++i) {
        m_tableStarts[i] = runs[i].x0;
    }
    m_tableCount = count;
}

/// The row mixed across: a kept one, or made in the slot that does not hold `keepRow`.
const uint32_t* SwBitmapSampler::BlendedRow(int32_t row, int32_t keepRow) {
    for (const KeptRow& kept : m_kept) {
        if (kept.row == row) {
            return kept.pixels;
        }
    }
    KeptRow& place = m_kept[0].row == keepRow ? m_kept[1] : m_kept[0];
    m_reader.Columns(row, m_first, m_tableCount, place.pixels);
    m_reader.Columns(row, m_second, m_tableCount, m_other);
    m_kernels.mix(place.pixels, m_other, m_weights, m_tableCount, place.pixels);
    place.row = row;
    return place.pixels;
}

void SwBitmapSampler::FillUpright(std::span<const CoverageRun> runs, int32_t y, uint32_t* out) {
    if (!HasColumns(runs)) {
        BuildColumns(runs);
    }
    const auto count = static_cast<size_t>(static_cast<int64_t>(runs.back().x1) - runs.front().x0);
    const float v = m_setup.m3 * static_cast<float>(y) + m_setup.m5;
    if (!m_setup.linear) {
        int32_t row;
        m_kernels.indices[m_setup.tilingY](&v, 1, m_setup.height, &row);
        if (!(std::fabs(m_setup.m3) < 1.0F)) { // rows are rarely reused
            m_reader.Columns(row, m_first, count, out);
            return;
        }
        if (m_kept[0].row != row) {
            m_reader.Columns(row, m_first, m_tableCount, m_kept[0].pixels);
            m_kept[0].row = row;
        }
        std::memcpy(out, m_kept[0].pixels, count * 4);
        return;
    }
    int32_t upper;
    int32_t lower;
    uint32_t weight;
    m_kernels.taps[m_setup.tilingY](&v, 1, m_setup.height, &upper, &lower, &weight);
    weight &= 0xFFFFU;
    if (weight == 1 || weight == 256) { // one row alone
        const int32_t row = weight == 1 ? upper : lower;
        std::memcpy(out, BlendedRow(row, -1), count * 4);
        return;
    }
    const uint32_t* top = BlendedRow(upper, lower);
    const uint32_t* bottom = BlendedRow(lower, upper);
    m_kernels.mixBy(top, bottom, weight, count, out);
}

bool SwBitmapSampler::JoinsRuns() const noexcept { return !m_copies; }

void SwBitmapSampler::FillRuns(std::span<const CoverageRun> runs, int32_t y, uint32_t* out) {
    m_upright ? FillUpright(runs, y, out) : FillPoints(runs, y, out);
    if (m_setup.opacityFactor != 256) {
        ActiveKernels().scaleColorBy(out, m_setup.opacityFactor, static_cast<size_t>(runs.back().x1 - runs.front().x0));
    }
}

/// Coordinates restart at every run, but the runs are sampled together.
void SwBitmapSampler::FillPoints(std::span<const CoverageRun> runs, int32_t y, uint32_t* out) const noexcept {
    const SwSamplerSetup& s = m_setup;
    alignas(64) float u[kMostPainted];
    alignas(64) float v[kMostPainted];
    ForRunParts(
        runs,
        [&](int32_t x0) {
            const auto x = static_cast<float>(x0);
            return SamplePoint{s.m0 * x + s.m2 * static_cast<float>(y) + s.m4,
                               s.m1 * x + s.m3 * static_cast<float>(y) + s.m5};
        },
        [&](SamplePoint& next, size_t at, size_t n) {
            next = m_kernels.accumulatePoints(next, {s.m0, s.m1}, u + at, v + at, n);
        },
        [&](size_t n) {
            ReadPoints(u, v, n, out);
            out += n;
        });
}

/// Samples up to kMostPainted points, by the fused fast path where possible.
void SwBitmapSampler::ReadPoints(const float* u, const float* v, size_t count, uint32_t* out) const noexcept {
    const bool clamp = m_setup.tilingX == GXExtendClamp && m_setup.tilingY == GXExtendClamp;
    const size_t edge = m_reader.Samples() ? kEdgeChunk : kMostPainted;
    for (size_t k = 0; k < count;) {
        k += m_reader.Sample(m_setup.linear, clamp, u + k, v + k, count - k, out + k);
        const size_t rest = std::min(edge, count - k);
        if (rest == 0) {
            return;
        }
        if (m_setup.linear) {
            BlendPoints(u + k, v + k, rest, out + k);
        } else {
            PickPoints(u + k, v + k, rest, out + k);
        }
        k += rest;
    }
}

/// Nearest: samples up to kMostPainted points anywhere.
void SwBitmapSampler::PickPoints(const float* u, const float* v, size_t count, uint32_t* out) const noexcept {
    alignas(64) int32_t columns[kMostPainted];
    alignas(64) int32_t rows[kMostPainted];
    m_kernels.indices[m_setup.tilingX](u, count, m_setup.width, columns);
    m_kernels.indices[m_setup.tilingY](v, count, m_setup.height, rows);
    m_reader.Points(rows, columns, count, out);
}

/// Bilinear: samples up to kMostPainted points anywhere.
void SwBitmapSampler::BlendPoints(const float* u, const float* v, size_t count, uint32_t* out) const noexcept {
    alignas(64) int32_t columns[2][kMostPainted];
    alignas(64) int32_t rows[2][kMostPainted];
    alignas(64) uint32_t across[kMostPainted];
    alignas(64) uint32_t down[kMostPainted];
    alignas(64) uint32_t top[kMostPainted];
    alignas(64) uint32_t bottom[kMostPainted];
    alignas(64) uint32_t other[kMostPainted];
    m_kernels.taps[m_setup.tilingX](u, count, m_setup.width, columns[0], columns[1], across);
    m_kernels.taps[m_setup.tilingY](v, count, m_setup.height, rows[0], rows[1], down);
    m_reader.Points(rows[0], columns[0], count, top);
    m_reader.Points(rows[0], columns[1], count, other);
    m_kernels.mix(top, other, across, count, top);
    m_reader.Points(rows[1], columns[0], count, bottom);
    m_reader.Points(rows[1], columns[1], count, other);
    m_kernels.mix(bottom, other, across, count, bottom);
    m_kernels.mix(top, bottom, down, count, out);
}

} // namespace Graphics
