// SPDX-License-Identifier: MIT
#include "ClipBuilder.h"

#include <algorithm>
#include <cstring>

#include "../Kernels/RowKernels.h"

namespace Graphics {
namespace {

/// The extents of a row, with its longest sequence of 255, the first of equal length. Spans are split at its ends, and
/// incremental sources restart there, so the choice affects output; keep the first-longest rule.
struct LongestFull {
    LongestFull(int32_t rowBegin, int32_t rowEnd) noexcept
        : extents{rowBegin, rowEnd, rowBegin, rowBegin, 0}, begin(rowBegin), end(rowBegin) {}

    void Add(int32_t x0, int32_t x1) noexcept {
        begin = x0 == end ? begin : x0;
        end = x1;
        if (end - begin > extents.fullEnd - extents.fullBegin) {
            extents.fullBegin = begin;
            extents.fullEnd = end;
        }
    }

    void AddBytes(int32_t x0, int32_t x1, const uint8_t* values) noexcept {
        const uint8_t* const last = values + (x1 - x0);
        const uint8_t* at = values;
        while (at != last &&
               (at = static_cast<const uint8_t*>(std::memchr(at, 255, static_cast<size_t>(last - at)))) != nullptr) {
            const uint8_t* stop = EndOfFull(at + 1, last);
            Add(x0 + static_cast<int32_t>(at - values), x0 + static_cast<int32_t>(stop - values));
            at = stop;
        }
    }

    /// The first byte from `at` on that is not 255.
    [[nodiscard]] static const uint8_t* EndOfFull(const uint8_t* at, const uint8_t* end) noexcept {
        for (uint64_t word; end - at >= 8; at += 8) {
            std::memcpy(&word, at, 8);
            if (word != ~uint64_t{0}) {
                break;
            }
        }
        while (at != end && *at == 255) {
            ++at;
        }
        return at;
    }

    ClipRow extents;
    int32_t begin; ///< start of the present sequence, which may continue
    int32_t end;
};

} // namespace

ClipBuilder::ClipBuilder(ClipPool& pool, const ClipRegion* parent, const IntRect& visible)
    : m_pool(pool), m_clip(pool.Take()), m_owner(m_clip), m_parent(parent), m_visible(visible) {
    m_clip->m_box = {visible.left, visible.top, visible.left, visible.top};
}

void ClipBuilder::StartMask() {
    m_pool.m_row.resize(static_cast<size_t>(m_visible.right - m_visible.left));
    m_pool.m_rows.resize(static_cast<size_t>(m_visible.bottom - m_visible.top));
    std::fill_n(m_pool.m_rows.data(), m_pool.m_rows.size(), ClipRow{0, 0, 0, 0, 0});
    m_pool.m_bytes.clear();
    m_hasRows = true;
}

void ClipBuilder::Row(int32_t y, std::span<CoverageRun> runs) {
    if (runs.empty() || y < m_visible.top || y >= m_visible.bottom) {
        return;
    }
    if (!m_hasRows) {
        StartMask();
    }
    const int32_t begin = runs.front().x0;
    uint8_t* const row = m_pool.m_row.data();
    int32_t end = begin;
    LongestFull full(begin, runs.back().x1);
    const bool combined = IsMasked(m_parent); // the longest sequence is then found after combining
    for (const CoverageRun& run : runs) {
        std::memset(row + (end - begin), 0, static_cast<size_t>(run.x0 - end));
        uint8_t* out = row + (run.x0 - begin);
        const auto count = static_cast<size_t>(run.x1 - run.x0);
        if (run.shape != nullptr) {
            std::memcpy(out, run.shape, count);
            if (!combined) {
                full.AddBytes(run.x0, run.x1, run.shape);
            }
        } else {
            std::memset(out, run.value, count);
            if (run.value == 255) {
                full.Add(run.x0, run.x1);
            }
        }
        end = run.x1;
    }
    ClipRow extents = combined ? Combine(y, full.extents, row) : full.extents;
    if (extents.begin >= extents.end) {
        return;
    }
    HeapArray<uint8_t>& bytes = m_pool.m_bytes;
    extents.offset = bytes.size();
    const auto left = static_cast<size_t>(extents.fullBegin - extents.begin);
    const auto right = static_cast<size_t>(extents.end - extents.fullEnd);
    bytes.resize(bytes.size() + left + right);
    uint8_t* out = bytes.data() + extents.offset;
    if (left != 0) {
        std::memcpy(out, row + (extents.begin - begin), left);
    }
    if (right != 0) {
        std::memcpy(out + left, row + (extents.fullEnd - begin), right);
    }
    m_pool.m_rows[static_cast<size_t>(y - m_visible.top)] = extents;
}

ClipRow ClipBuilder::Combine(int32_t y, const ClipRow& extents, uint8_t* row) const noexcept {
    const ClipRow& parent = m_parent->Row(y);
    const int32_t begin = std::max(extents.begin, parent.begin);
    const int32_t end = std::min(extents.end, parent.end);
    if (begin >= end) {
        return {0, 0, 0, 0, 0};
    }
    m_parent->ForParts(y, begin, end, [&](int32_t from, int32_t to, const uint8_t* coverage) {
        if (coverage != nullptr) {
            ActiveKernels().scaleShape(row + (from - extents.begin), coverage, static_cast<size_t>(to - from));
        }
    });
    LongestFull full(begin, end);
    full.AddBytes(begin, end, row + (begin - extents.begin));
    return full.extents;
}

void ClipBuilder::Rectangle(int32_t left, int32_t top, int32_t right, int32_t bottom) {
    const IntRect box = Intersect({left, top, right, bottom}, m_visible);
    if (IsEmpty(box)) {
        return;
    }
    m_clip->m_box = box;
    if (IsMasked(m_parent)) {
        m_clip->m_coverage = m_parent->m_coverage;
        ++m_clip->m_coverage->m_references;
    }
}

ClipRef ClipBuilder::Finish() {
    if (m_hasRows) {
        const HeapArray<ClipRow>& rows = m_pool.m_rows;
        const HeapArray<uint8_t>& bytes = m_pool.m_bytes;
        m_pool.MakeCoverage(*m_clip, m_visible.top, rows.size(), bytes.size());
        uint8_t* const block = m_clip->m_coverage->m_block.data();
        std::memcpy(block, rows.data(), rows.size() * sizeof(ClipRow));
        if (!bytes.empty()) {
            std::memcpy(block + rows.size() * sizeof(ClipRow), bytes.data(), bytes.size());
        }
        m_clip->m_box = m_visible;
    }
    return std::move(m_owner);
}

} // namespace Graphics
