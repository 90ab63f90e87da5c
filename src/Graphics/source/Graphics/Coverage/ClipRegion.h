// SPDX-License-Identifier: MIT
// Clips. A clip is a box in device pixels and, where it is more than a rectangle, 8-bit coverage, of which each row
// stores only the pixels that are partly covered:
//
//     box.left   begin        fullBegin          fullEnd      end      box.right
//        |    all 0    | stored  |   all 255       | stored  |    all 0    |
//
// Clips are immutable once built, shared by the states that use them and recycled by their pool. A rectangle inside a
// clip shares the clip's coverage.
#pragma once

#include <algorithm>
#include <vector>

#include "../Matrix.h"
#include "../Types.h"
#include "BlockPool.h"

namespace Graphics {

class ClipPool;

struct ClipRow {
    int32_t begin, end;         ///< columns outside are 0
    int32_t fullBegin, fullEnd; ///< columns inside are 255; may be empty
    size_t offset;              ///< of the bytes of [begin, fullBegin), behind which are those of [fullEnd, end)
};

/// The rows of a clip and behind them the bytes of all, in one block.
class ClipCoverage {
private:
    friend class ClipRegion;
    friend class ClipPool;
    friend class ClipBuilder;
    friend class ClipMaker;

    [[nodiscard]] const ClipRow* Rows() const noexcept { return reinterpret_cast<const ClipRow*>(m_block.data()); }

    BlockPool::Block m_block;
    const uint8_t* m_bytes = nullptr;
    int32_t m_top = 0;         // of the first row
    uint32_t m_references = 0; // by clips
};

class ClipRegion {
public:
    [[nodiscard]] const IntRect& Box() const noexcept { return m_box; }
    [[nodiscard]] bool HasMask() const noexcept { return m_coverage != nullptr; }
    /// Of a masked clip. The extents may go beyond the columns of the box.
    [[nodiscard]] const ClipRow& Row(int32_t y) const noexcept {
        return m_coverage->Rows()[static_cast<size_t>(y - m_coverage->m_top)];
    }
    /// The coverage of column x of a row, from begin to fullBegin or from fullEnd to end, and of those behind it there.
    [[nodiscard]] const uint8_t* Partial(const ClipRow& row, int32_t x) const noexcept {
        const int32_t skipped = x < row.fullBegin ? row.begin : row.fullEnd - row.fullBegin + row.begin;
        return m_coverage->m_bytes + row.offset + static_cast<size_t>(x - skipped);
    }
    /// Calls use(from, to, coverage) for each part of the columns [x0, x1), which lie in the box, that is covered at
    /// all; null stands for 255.
    template <class Use> void ForParts(int32_t y, int32_t x0, int32_t x1, Use&& use) const {
        const ClipRow& row = Row(y);
        const int32_t begin = std::max(x0, row.begin);
        const int32_t end = std::min(x1, row.end);
        const int32_t fullBegin = std::clamp(row.fullBegin, begin, std::max(begin, end));
        const int32_t fullEnd = std::clamp(row.fullEnd, fullBegin, std::max(fullBegin, end));
        if (begin < fullBegin) {
            use(begin, fullBegin, Partial(row, begin));
        }
        if (fullBegin < fullEnd) {
            use(fullBegin, fullEnd, static_cast<const uint8_t*>(nullptr));
        }
        if (fullEnd < end) {
            use(fullEnd, end, Partial(row, fullEnd));
        }
    }
    /// The coverage of the columns [x0, x1), which lie in the box.
    void CopyRow(int32_t y, int32_t x0, int32_t x1, uint8_t* out) const noexcept;

private:
    friend class ClipPool;
    friend class ClipRef;
    friend class ClipBuilder;
    friend class ClipMaker;

    IntRect m_box{};
    ClipCoverage* m_coverage = nullptr;
    uint32_t m_references = 0;
    ClipPool* m_pool = nullptr;
};

/// Whether there is a clip that is more than a rectangle.
[[nodiscard]] inline bool IsMasked(const ClipRegion* clip) noexcept { return clip != nullptr && clip->HasMask(); }

/// A counted reference; one thread only. Null stands for "no clip".
class ClipRef {
public:
    ClipRef() noexcept = default;
    explicit ClipRef(ClipRegion* clip) noexcept : m_clip(clip) { Add(); }
    ClipRef(const ClipRef& o) noexcept : m_clip(o.m_clip) { Add(); }
    ClipRef(ClipRef&& o) noexcept : m_clip(o.m_clip) { o.m_clip = nullptr; }
    ClipRef& operator=(ClipRef o) noexcept {
        std::swap(m_clip, o.m_clip);
        return *this;
    }
    ~ClipRef() { Drop(); }

    [[nodiscard]] const ClipRegion* get() const noexcept { return m_clip; }
    const ClipRegion* operator->() const noexcept { return m_clip; }
    explicit operator bool() const noexcept { return m_clip != nullptr; }

private:
    void Add() noexcept {
        if (m_clip != nullptr) {
            ++m_clip->m_references;
        }
    }
    void Drop() noexcept;

    ClipRegion* m_clip = nullptr;
};

/// Makes clips and takes them back, with their memory. Outlives every reference to its clips.
class ClipPool {
public:
    ClipPool() noexcept = default;
    ClipPool(const ClipPool&) = delete;
    ClipPool& operator=(const ClipPool&) = delete;
    ~ClipPool();

    [[nodiscard]] ClipRegion* Take();
    void Give(ClipRegion* clip) noexcept;
    /// Gives a clip without coverage one of so many rows and bytes, undefined but for `top`.
    void MakeCoverage(ClipRegion& clip, int32_t top, size_t rows, size_t bytes);
    /// Drops what is as large as a page: painting has ended.
    void Trim() noexcept;

private:
    friend class ClipBuilder;

    static constexpr size_t kKeepBytes = size_t{1} << 19;
    static constexpr size_t kSpare = 32;

    BlockPool m_blocks{kKeepBytes};
    std::vector<ClipRegion*> m_spareClips;       // without coverage
    std::vector<ClipCoverage*> m_spareCoverages; // without a block

    // What a builder works with: the row at hand, and the rows and bytes of the clip up to it.
    HeapArray<uint8_t> m_row;
    HeapArray<ClipRow> m_rows;
    HeapArray<uint8_t> m_bytes;
};

} // namespace Graphics
