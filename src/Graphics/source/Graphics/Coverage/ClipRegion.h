// SPDX-License-Identifier: MIT
// Clips. A clip is a box in device pixels and, unless it is a rectangle, 8-bit coverage of which each row stores only
// the partly covered pixels:
//
//     box.left   begin        fullBegin          fullEnd      end      box.right
//        |    all 0    | stored  |   all 255       | stored  |    all 0    |
//
// Clips are immutable, shared by the states that use them and recycled by their pool. A rectangle inside a clip shares
// the clip's coverage.
#pragma once

#include <algorithm>
#include <vector>

#include "../Matrix.h"
#include "../Types.h"
#include "BlockPool.h"

namespace Graphics {

class ClipPool;

struct ClipRow {
    int32_t begin, end;         ///< columns outside have coverage 0
    int32_t fullBegin, fullEnd; ///< columns inside have coverage 255; may be empty
    size_t offset;              ///< of the bytes of [begin, fullBegin), followed by those of [fullEnd, end)
};

/// The rows of a clip, followed by their bytes, in one block.
class ClipCoverage {
private:
    friend class ClipRegion;
    friend class ClipPool;
    friend class ClipBuilder;
    friend class ClipMaker;

    [[nodiscard]] const ClipRow* Rows() const noexcept { return reinterpret_cast<const ClipRow*>(m_block.data()); }

    BlockPool::Block m_block;
    const uint8_t* m_bytes = nullptr;
    int32_t m_top = 0;         // y of the first row
    uint32_t m_references = 0; // number of clips that share this
};

class ClipRegion {
public:
    [[nodiscard]] const IntRect& Box() const noexcept { return m_box; }
    [[nodiscard]] bool HasMask() const noexcept { return m_coverage != nullptr; }
    /// Requires HasMask. The extents may exceed the columns of the box.
    [[nodiscard]] const ClipRow& Row(int32_t y) const noexcept {
        return m_coverage->Rows()[static_cast<size_t>(y - m_coverage->m_top)];
    }
    /// The stored coverage from column x on; x lies in [begin, fullBegin) or [fullEnd, end).
    [[nodiscard]] const uint8_t* Partial(const ClipRow& row, int32_t x) const noexcept {
        const int32_t skipped = x < row.fullBegin ? row.begin : row.fullEnd - row.fullBegin + row.begin;
        return m_coverage->m_bytes + row.offset + static_cast<size_t>(x - skipped);
    }
    /// Calls use(from, to, coverage) for each covered part of the columns [x0, x1), which lie in the box; a null
    /// coverage means 255.
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
    /// Copies the coverage of the columns [x0, x1), which lie in the box.
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

/// Whether there is a clip, and it is not a rectangle.
[[nodiscard]] inline bool IsMasked(const ClipRegion* clip) noexcept { return clip != nullptr && clip->HasMask(); }

/// A counted reference for use on one thread. Null means "no clip".
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

/// Creates clips and recycles their memory. Must outlive every reference to its clips.
class ClipPool {
public:
    ClipPool() noexcept = default;
    ClipPool(const ClipPool&) = delete;
    ClipPool& operator=(const ClipPool&) = delete;
    ~ClipPool();

    [[nodiscard]] ClipRegion* Take();
    void Give(ClipRegion* clip) noexcept;
    /// Gives a clip without coverage a new one of this size, undefined except for `top`.
    void MakeCoverage(ClipRegion& clip, int32_t top, size_t rows, size_t bytes);
    /// Call after painting: frees page-sized memory.
    void Trim() noexcept;

private:
    friend class ClipBuilder;

    static constexpr size_t kKeepBytes = size_t{1} << 19;
    static constexpr size_t kSpare = 32;

    BlockPool m_blocks{kKeepBytes};
    std::vector<ClipRegion*> m_spareClips;       // without coverage
    std::vector<ClipCoverage*> m_spareCoverages; // without a block

    // Working memory of a builder: the current row, and the clip's rows and bytes so far.
    HeapArray<uint8_t> m_row;
    HeapArray<ClipRow> m_rows;
    HeapArray<uint8_t> m_bytes;
};

} // namespace Graphics
