// SPDX-License-Identifier: MIT
#include "SwPipeLine.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "../Pixels/PixelMath.h"

namespace Graphics {
namespace {

constexpr int32_t kMaskChunk = 1024;

/// Shorter rows follow each other so closely that prefetching the next one only costs time.
constexpr size_t kPrefetchFrom = 64;
/// On targets from this size on, pixels at a shape's edges are prefetched some rows ahead, near where the edges will
/// be. On cached targets this would cost small shapes a few hundredths of their time.
constexpr ptrdiff_t kFarBytes = 8 << 20;
constexpr int32_t kAhead = 2;

/// The mask's values over columns [x0, x1) of row y if they lie in memory; otherwise null.
[[nodiscard]] const uint8_t* MaskRow(const SwMaskInput& mask, int32_t y, int32_t x0, int32_t x1) noexcept {
    if (mask.plane != nullptr) {
        return mask.plane + (y - mask.planeOrigin.y) * mask.planeStride + (x0 - mask.planeOrigin.x);
    }
    return mask.type == GXMaskTypeAlpha ? mask.source->DirectAlpha(x0, x1, y) : nullptr;
}

/// MaskRow for a non-empty rectangle: the values of its first row, and the distance from row to row.
[[nodiscard]] const uint8_t* MaskBlock(const SwMaskInput& mask, const IntRect& r, ptrdiff_t& strideBytes) noexcept {
    if (mask.plane != nullptr) {
        strideBytes = mask.planeStride;
        return MaskRow(mask, r.top, r.left, r.right);
    }
    return mask.type == GXMaskTypeAlpha ? mask.source->DirectAlphaBlock(r, strideBytes) : nullptr;
}

/// For a mask with a colour source: calls use(x, values, count) for each chunk of its values over columns [x0, x1) of
/// row y. The values may be changed.
template <class Use>
void ForMaskChunks(const RowKernels& kernels, const SwMaskInput& mask, int32_t y, int32_t x0, int32_t x1, Use&& use) {
    alignas(64) uint32_t pixels[kMaskChunk];
    alignas(64) uint8_t values[kMaskChunk];
    for (int32_t x = x0; x < x1; x += kMaskChunk) {
        const int32_t stop = std::min(x1, x + kMaskChunk);
        const auto count = static_cast<size_t>(stop - x);
        const uint32_t* row = mask.source->DirectRow(x, stop, y);
        if (row == nullptr) {
            mask.source->Fill(x, stop, y, pixels);
            row = pixels;
        }
        kernels.maskValues[mask.type](values, row, count);
        use(x, static_cast<uint8_t*>(values), count);
    }
}

} // namespace

void SetRowsOpaque(const RowKernels& kernels, const SwTargetPlanes& planes, const IntRect& r, const uint8_t* shape,
                   ptrdiff_t shapeStride) noexcept {
    const auto width = static_cast<size_t>(r.right - r.left);
    for (int32_t y = r.top; y < r.bottom; ++y) {
        uint32_t* dst = PixelAt(planes, r.left, y);
        if (width >= kPrefetchFrom && y + 1 < r.bottom) {
            kernels.prefetch(PixelAt(planes, r.left, y + 1), width);
        }
        kernels.setOpaque(dst, shape, width);
        shape += shape == nullptr ? 0 : shapeStride;
    }
}

SwPipeLine::SwPipeLine(const RowKernels& kernels, SwRowBuffers& buffers, const SwTargetPlanes& target,
                       const IntRect& bounds)
    : m_kernels(kernels), m_buffers(buffers), m_target(target), m_bounds(bounds) {
    const auto width = static_cast<size_t>(bounds.right - bounds.left);
    m_isFar = std::abs(target.colorStride) * (bounds.bottom - bounds.top) > kFarBytes;
    m_buffers.shape.resize(width);
    m_buffers.color.resize(width);
}

void SwPipeLine::SetColorSource(SwColorSource& source) noexcept {
    m_source = &source;
    m_joins = source.JoinsRuns();
    m_isSolid = source.IsSolid(m_solid);
    m_isOpaque = m_isSolid ? (m_solid >> 24) == 255 : source.IsOpaque();
}

void SwPipeLine::Row(int32_t y, std::span<CoverageRun> runs) {
    if (y < m_bounds.top || y >= m_bounds.bottom) {
        return;
    }
    if (m_isSolid && !m_target.makesOpaque && IsPlain() && runs.front().x0 >= m_bounds.left &&
        runs.back().x1 <= m_bounds.right) {
        SolidRow(y, runs);
        return;
    }
    for (CoverageRun& run : runs) {
        const int32_t x0 = std::max(run.x0, m_bounds.left);
        run.shape += run.shape == nullptr ? 0 : x0 - run.x0;
        run.x0 = x0;
        run.x1 = std::min(run.x1, m_bounds.right);
    }
    for (size_t i = 0; i < runs.size();) {
        const size_t first = i++;
        if (runs[first].x0 >= runs[first].x1) {
            continue;
        }
        if (m_joins && m_clip == nullptr) {
            while (i < runs.size() && runs[i].x0 == runs[i - 1].x1 && runs[i].x0 < runs[i].x1) {
                ++i;
            }
            if (i - first > 1) {
                const auto n = static_cast<size_t>(runs[i - 1].x1 - runs[first].x0);
                if (n < kPrefetchFrom) {
                    m_kernels.prefetch(Pixels(runs[first].x0, y), n);
                } else if (y + 1 < m_bounds.bottom) { // where the next row probably lies
                    m_kernels.prefetch(Pixels(runs[first].x0, y + 1), n);
                }
                if (Replaces() && ReplaceRuns(y, runs.subspan(first, i - first))) {
                    continue;
                }
                m_joined = m_buffers.color.data();
                m_source->FillRuns(runs.subspan(first, i - first), y, m_joined);
            }
        }
        for (size_t k = first; k < i; ++k) {
            if (m_isFar && runs[k].shape != nullptr && y + kAhead < m_bounds.bottom) {
                m_kernels.prefetch(Pixels(runs[k].x0, y + kAhead), static_cast<size_t>(runs[k].x1 - runs[k].x0));
            }
            PaintSpan(y, runs[k].x0, runs[k].x1, runs[k].shape, runs[k].value);
            m_joined += m_joined == nullptr ? 0 : runs[k].x1 - runs[k].x0;
        }
        m_joined = nullptr;
    }
}

bool SwPipeLine::CoverSide(const CoverageRun& run, const uint32_t* below, uint32_t* colors) const noexcept {
    constexpr size_t kBlock = 8; // pixels of a block with a side of a rectangle in it
    const auto width = static_cast<size_t>(run.x1 - run.x0);
    if (run.shape == nullptr || width > kBlock) {
        return false;
    }
    size_t places[kBlock];
    size_t count = 0;
    for (size_t i = 0; i < width; ++i) {
        places[count] = i;
        count += run.shape[i] == 255 ? 0 : 1;
    }
    if (count > 2) { // quicker by the kernel
        return false;
    }
    for (size_t k = 0; k < count; ++k) {
        const size_t i = places[k];
        const uint32_t shape = run.shape[i];
        const uint32_t d = below[i] | (m_target.makesOpaque ? 0xFF000000U : 0U);
        colors[i] = shape == 0 ? below[i] : OverPixel(d, ScalePixel(colors[i], shape + 1));
    }
    return true;
}

bool SwPipeLine::ReplaceRuns(int32_t y, std::span<const CoverageRun> runs) {
    const auto widthOf = [](const CoverageRun& run) { return static_cast<size_t>(run.x1 - run.x0); };
    const auto isWhole = [](const CoverageRun& run) { return run.shape == nullptr && run.value == 255; };
    size_t partly = 0;
    for (const CoverageRun& run : runs) {
        partly += isWhole(run) ? 0 : widthOf(run);
    }
    const int32_t left = runs.front().x0;
    if (partly > static_cast<size_t>(runs.back().x1 - left) / 4) {
        return false;
    }
    uint32_t* const dst = Pixels(left, y);
    uint32_t* const kept = m_buffers.color.data();
    uint32_t* next = kept;
    for (const CoverageRun& run : runs) {
        if (!isWhole(run)) {
            next = std::copy_n(dst + (run.x0 - left), widthOf(run), next);
        }
    }
    m_source->FillRuns(runs, y, dst);
    next = kept;
    for (const CoverageRun& run : runs) {
        if (isWhole(run)) {
            continue;
        }
        uint32_t* const first = dst + (run.x0 - left);
        if (!CoverSide(run, next, first)) {
            std::swap_ranges(next, next + widthOf(run), first);
            m_joined = next;
            PaintSpan(y, run.x0, run.x1, run.shape, run.value);
        }
        next += widthOf(run);
    }
    m_joined = nullptr;
    return true;
}

void SwPipeLine::SolidRow(int32_t y, std::span<const CoverageRun> runs) const {
    for (const CoverageRun& run : runs) {
        const auto n = static_cast<size_t>(run.x1 - run.x0);
        if (run.shape != nullptr) {
            if (m_isFar && y + kAhead < m_bounds.bottom) {
                m_kernels.prefetch(Pixels(run.x0, y + kAhead), n);
            }
        } else if (n >= SolidRows::kPrefetchRun && y + 1 < m_bounds.bottom) {
            m_kernels.prefetch(Pixels(run.x0, y + 1), n);
        }
    }
    m_kernels.solidRuns(m_kernels, Pixels(runs.front().x0, y), m_solid, runs.data(), runs.size());
}

template <class Paint> void SwPipeLine::ForRows(const IntRect& r, Paint&& paint) const {
    const auto width = static_cast<size_t>(r.right - r.left);
    const ptrdiff_t stride = m_target.colorStride;
    const bool prefetches = width >= kPrefetchFrom;
    uint32_t* dst = Pixels(r.left, r.top);
    for (int32_t y = r.top; y < r.bottom; ++y) {
        auto* next = reinterpret_cast<uint32_t*>(reinterpret_cast<uint8_t*>(dst) + stride);
        if (prefetches && y + 1 < r.bottom) {
            m_kernels.prefetch(next, width);
        }
        paint(y, dst, width);
        dst = next;
    }
}

bool SwPipeLine::PlainBlock(const IntRect& r) {
    if (m_isSolid) {
        if (m_isOpaque) {
            m_kernels.fillBlock(Pixels(r.left, r.top), m_target.colorStride, m_solid,
                                static_cast<size_t>(r.right - r.left), static_cast<size_t>(r.bottom - r.top));
        } else {
            const CoverageRun run{r.left, r.right, nullptr, 255};
            EqualRows(r.top, r.bottom, {&run, 1});
        }
        return true;
    }
    const SwDirectBlock block = m_source->DirectBlock(r);
    if (block.pixels == nullptr) {
        return false;
    }
    DirectRun(r, block, nullptr);
    return true;
}

bool SwPipeLine::MaskedBlock(const IntRect& r) {
    if (!m_isSolid || m_shapeMaskCount != 1 || m_clip != nullptr || m_opacityMask != nullptr || m_blendMode != 0 ||
        m_target.alpha != nullptr) {
        return false;
    }
    ptrdiff_t stride = 0;
    const uint8_t* shape = MaskBlock(*m_shapeMasks[0], r, stride);
    if (shape == nullptr) {
        return false;
    }
    ForRows(r, [&](int32_t, uint32_t* dst, size_t n) {
        MakeOpaque(dst, shape, n);
        m_kernels.normalSolid(dst, m_solid, shape, n);
        shape += stride;
    });
    return true;
}

void SwPipeLine::Rectangle(int32_t left, int32_t top, int32_t right, int32_t bottom) {
    const IntRect r = Intersect({left, top, right, bottom}, m_bounds);
    if (IsEmpty(r)) {
        return;
    }
    if (IsPlain() ? !PlainBlock(r) : !MaskedBlock(r)) {
        ForRows(r, [&](int32_t y, uint32_t*, size_t) { PaintSpan(y, r.left, r.right, nullptr, 255); });
    }
}

/// Constant coverage scales the colour once for all rows.
void SwPipeLine::EqualRows(int32_t y0, int32_t y1, std::span<const CoverageRun> runs) {
    const IntRect r = Intersect({runs.front().x0, y0, runs.back().x1, y1}, m_bounds);
    if (IsEmpty(r) || m_solid >> 24 == 0) {
        return;
    }
    const auto rows = static_cast<size_t>(r.bottom - r.top);
    for (size_t i = 0; i < runs.size();) {
        const CoverageRun& run = runs[i++];
        const int32_t x0 = std::max(run.x0, r.left);
        int32_t x1 = std::min(run.x1, r.right);
        if (x0 >= x1) {
            continue;
        }
        uint32_t* const dst = Pixels(x0, r.top);
        if (run.shape != nullptr) {
            MakeRowsOpaque(m_kernels, m_target, {x0, r.top, x1, r.bottom}, run.shape + (x0 - run.x0));
            m_kernels.normalSolidBlock(dst, m_target.colorStride, m_solid, run.shape + (x0 - run.x0), 0,
                                       static_cast<size_t>(x1 - x0), rows);
            continue;
        }
        // A run of one pixel, a longer run and another of one pixel are painted by one call.
        const auto follows = [&](int32_t x) {
            return i < runs.size() && runs[i].x0 == x && runs[i].shape == nullptr && x < r.right;
        };
        const auto colorOf = [&](const CoverageRun& of) {
            return of.value == 255 ? m_solid : ScalePixel(m_solid, of.value + 1U);
        };
        const uint32_t left = colorOf(run);
        uint32_t inner = left;
        if (x1 - x0 == 1 && follows(x1)) {
            inner = colorOf(runs[i]);
            x1 = std::min(runs[i++].x1, r.right);
        }
        uint32_t right = inner;
        if (follows(x1) && runs[i].x1 - runs[i].x0 == 1) {
            right = colorOf(runs[i]);
            x1 = runs[i++].x1;
        }
        MakeRowsOpaque(m_kernels, m_target, {x0, r.top, x1, r.bottom});
        const auto count = static_cast<size_t>(x1 - x0);
        if ((left & inner & right) >> 24 == 255) {
            m_kernels.fillBlock(dst, m_target.colorStride, m_solid, count, rows);
        } else {
            m_kernels.solidRectangle(dst, m_target.colorStride, left, inner, right, count, rows);
        }
    }
}

void SwPipeLine::DirectRun(const IntRect& r, const SwDirectBlock& block, const uint8_t* shape) {
    const uint8_t* src = block.pixels;
    const ptrdiff_t stride = block.strideBytes;
    if (!block.hasAlpha && shape == nullptr) {
        ForRows(r, [&, copy = m_kernels.copyOpaque](int32_t, uint32_t* dst, size_t n) {
            copy(dst, src, n);
            src += stride;
        });
        return;
    }
    if (block.hasAlpha && !m_target.makesOpaque) {
        ForRows(r, [&, composite = m_kernels.normalVarying](int32_t, uint32_t* dst, size_t n) {
            composite(dst, reinterpret_cast<const uint32_t*>(src), shape, n);
            src += stride;
        });
        return;
    }
    ForRows(r, [&](int32_t, uint32_t* dst, size_t n) {
        const auto* colors = reinterpret_cast<const uint32_t*>(src);
        if (!block.hasAlpha) {
            m_kernels.copyOpaque(m_buffers.color.data(), src, n);
            colors = m_buffers.color.data();
        }
        MakeOpaque(dst, shape, n);
        m_kernels.normalVarying(dst, colors, shape, n);
        src += stride;
    });
}

bool SwPipeLine::IsOneColor(const IntRect& r, SolidRows& rows) const {
    if (!m_isSolid || m_solid >> 24 == 0 || m_target.makesOpaque || !IsPlain() || Intersect(r, m_bounds) != r) {
        return false;
    }
    rows = {Pixels(r.left, r.top), m_target.colorStride, m_isFar ? kAhead * m_target.colorStride : 0, m_solid};
    return true;
}

bool SwPipeLine::TakesAnyCuts(const IntRect& r) const {
    const IntRect seen = Intersect(r, m_bounds);
    if (IsEmpty(seen)) {
        return true;
    }
    ptrdiff_t stride = 0;
    for (size_t i = 0; i < m_shapeMaskCount; ++i) {
        if (MaskBlock(*m_shapeMasks[i], seen, stride) == nullptr) {
            return false;
        }
    }
    return m_opacityMask == nullptr && (m_isSolid || m_source->DirectBlock(seen).pixels != nullptr);
}

bool SwPipeLine::Rows(int32_t y0, int32_t y1, std::span<const CoverageRun> runs) {
    if (!IsPlain() || m_joins) {
        return false;
    }
    if (m_isSolid) {
        EqualRows(y0, y1, runs);
        return true;
    }
    for (const CoverageRun& run : runs) {
        const IntRect r = Intersect({run.x0, y0, run.x1, y1}, m_bounds);
        if (IsEmpty(r)) {
            continue;
        }
        const uint8_t* shape = run.shape == nullptr ? nullptr : run.shape + (r.left - run.x0);
        if (shape == nullptr && run.value != 255) {
            std::memset(m_buffers.shape.data(), run.value, static_cast<size_t>(r.right - r.left));
            shape = m_buffers.shape.data();
        }
        if (const SwDirectBlock block = m_source->DirectBlock(r); block.pixels != nullptr) {
            DirectRun(r, block, shape);
        } else {
            ForRows(r, [&](int32_t y, uint32_t*, size_t) { Composite(y, r.left, r.right, shape); });
        }
    }
    return true;
}

void SwPipeLine::PaintSpan(int32_t y, int32_t x0, int32_t x1, uint8_t* shape, uint8_t value) {
    if (m_clip == nullptr) {
        Masked(y, x0, x1, shape, value, nullptr);
        return;
    }
    m_clip->ForParts(y, x0, x1, [&](int32_t from, int32_t to, const uint8_t* clip) {
        Masked(y, from, to, shape == nullptr ? nullptr : shape + (from - x0), value, clip);
    });
}

void SwPipeLine::ApplyShapeMask(const SwMaskInput& mask, int32_t y, int32_t x0, int32_t x1, uint8_t* shape) const {
    if (const uint8_t* row = MaskRow(mask, y, x0, x1)) {
        m_kernels.scaleShape(shape, row, static_cast<size_t>(x1 - x0));
        return;
    }
    ForMaskChunks(m_kernels, mask, y, x0, x1, [&](int32_t x, const uint8_t* values, size_t count) {
        m_kernels.scaleShape(shape + (x - x0), values, count);
    });
}

void SwPipeLine::Masked(int32_t y, int32_t x0, int32_t x1, uint8_t* shape, uint8_t value, const uint8_t* clip) {
    const auto count = static_cast<size_t>(x1 - x0);
    const bool masked = m_shapeMaskCount != 0 || clip != nullptr;
    if (shape == nullptr && (masked || value != 255)) {
        shape = m_buffers.shape.data();
        // 255 scaled by m is m, so a single mask is the coverage.
        const uint8_t* alone = nullptr;
        if (value == 255 && m_shapeMaskCount == 0) {
            alone = clip;
        } else if (value == 255 && m_shapeMaskCount == 1 && clip == nullptr) {
            alone = MaskRow(*m_shapeMasks[0], y, x0, x1);
        }
        if (alone != nullptr) {
            Composite(y, x0, x1, alone);
            return;
        }
        std::memset(shape, value, count);
    }
    for (size_t i = 0; i < m_shapeMaskCount; ++i) {
        ApplyShapeMask(*m_shapeMasks[i], y, x0, x1, shape);
    }
    if (clip != nullptr) {
        m_kernels.scaleShape(shape, clip, count);
    }
    Composite(y, x0, x1, shape);
}

const uint32_t* SwPipeLine::Color(int32_t y, int32_t x0, int32_t x1) {
    const auto count = static_cast<size_t>(x1 - x0);
    uint32_t* buffer = m_joined != nullptr ? m_joined : m_buffers.color.data();
    if (m_joined != nullptr) {
        // Already computed together with the neighbouring spans.
    } else if (m_isSolid) {
        if (m_opacityMask != nullptr) {
            m_kernels.fill32(buffer, m_solid, count);
        } else if (!m_solidRowReady) {
            m_kernels.fill32(buffer, m_solid, m_buffers.color.size());
            m_solidRowReady = true;
        }
    } else {
        // A mask scales in place, so the source's own row can be used only without one.
        const uint32_t* direct = m_opacityMask != nullptr ? nullptr : m_source->DirectRow(x0, x1, y);
        if (direct != nullptr) {
            return direct;
        }
        m_kernels.prefetch(Pixels(x0, y), count); // the pixels arrive while the colours are computed
        m_source->Fill(x0, x1, y, buffer);
    }
    if (m_opacityMask != nullptr) {
        ForMaskChunks(m_kernels, *m_opacityMask, y, x0, x1, [&](int32_t x, const uint8_t* values, size_t n) {
            m_kernels.scaleColor(buffer + (x - x0), values, n);
        });
    }
    return buffer;
}

void SwPipeLine::MaskedSolid(uint32_t* dst, int32_t y, int32_t x0, int32_t x1) {
    // Without coverage the mask takes its place, since both scale the source alike. If the mask leaves nothing of the
    // source's alpha, alpha * (m + 1) < 256, the pixel does not change, as under a coverage of 0.
    const uint32_t alpha = m_solid >> 24;
    const auto least = static_cast<uint8_t>(alpha == 0 ? 255 : 255 / alpha);
    ForMaskChunks(m_kernels, *m_opacityMask, y, x0, x1, [&](int32_t x, uint8_t* values, size_t n) {
        if (least > 1) {
            for (size_t i = 0; i < n; ++i) {
                values[i] = values[i] < least ? 0 : values[i];
            }
        }
        m_kernels.normalSolid(dst + (x - x0), m_solid, values, n);
    });
}

void SwPipeLine::Composite(int32_t y, int32_t x0, int32_t x1, const uint8_t* shape) {
    const auto count = static_cast<size_t>(x1 - x0);
    const ptrdiff_t dy = y - m_target.origin.y;
    const ptrdiff_t dx = x0 - m_target.origin.x;
    uint32_t* dst = Pixels(x0, y);
    const size_t blend = std::min<size_t>(m_blendMode, kBlendCount - 1);
    if (m_target.alpha != nullptr) {
        const uint8_t* backdrop = m_target.backdrop;
        const LayerRowPlanes row{
            dst, m_target.alpha + dy * m_target.planeStride + dx, m_target.shape + dy * m_target.planeStride + dx,
            backdrop == nullptr ? nullptr
                                : reinterpret_cast<const uint32_t*>(backdrop + dy * m_target.backdropStride) + dx,
            m_target.knockout};
        const uint32_t* color = Color(y, x0, x1);
        (m_blendMode == 0 ? m_kernels.layerNormal : m_kernels.layerBlend[blend])(row, color, shape, count);
        return;
    }
    if (shape != nullptr || !m_isOpaque || m_opacityMask != nullptr || m_blendMode != 0) {
        MakeOpaque(dst, shape, count);
    }
    if (m_blendMode != 0) {
        if (m_isSolid && m_opacityMask == nullptr) {
            m_kernels.blendSolid[blend](dst, m_solid, shape, count);
        } else {
            m_kernels.blend[blend](dst, Color(y, x0, x1), shape, count);
        }
        return;
    }
    if (m_isSolid && m_opacityMask == nullptr) {
        if (shape == nullptr && m_isOpaque) {
            m_kernels.fill32(dst, m_solid, count);
        } else {
            m_kernels.normalSolid(dst, m_solid, shape, count);
        }
        return;
    }
    if (m_isSolid && shape == nullptr) {
        MaskedSolid(dst, y, x0, x1);
        return;
    }
    if (shape == nullptr && m_isOpaque && m_opacityMask == nullptr) {
        if (m_joined != nullptr) {
            std::memcpy(dst, m_joined, count * sizeof(uint32_t));
        } else if (const uint32_t* direct = m_source->DirectRow(x0, x1, y)) {
            std::memmove(dst, direct, count * sizeof(uint32_t));
        } else {
            m_source->Fill(x0, x1, y, dst);
        }
        return;
    }
    m_kernels.normalVarying(dst, Color(y, x0, x1), shape, count);
}

} // namespace Graphics
