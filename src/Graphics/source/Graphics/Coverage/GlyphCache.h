// SPDX-License-Identifier: MIT
// A cache of glyph coverage that persists from draw to draw.
//
// Key. A glyph is an outline under the linear part of a matrix. Its position is rounded to 1/8 pixel, the rasterizer's
// sample grid, so no edge is off by more than 1/16 pixel, and every position is one of 64 phases plus whole pixels. The
// first phases requested are rasterized. An outline used in more phases is rasterized once into samples, from which the
// coverage of all further phases is counted. Both routes give the same bytes, because moving by whole samples changes
// none.
//
//     key:   shape identity, m00, m01, m10, m11, phase
//     value: box relative to the whole-pixel position, rows of coverage; phase 64: the samples; phase 65: how many
//            phases were rasterized
//
// Invariant: output never depends on the cache's content; a miss computes the bytes that a hit would have found.
//
// Memory is bounded. Entries are appended to the younger of two halves. When it is full, the older half is emptied and
// becomes the younger; a hit in the older half moves the entry to the younger. If memory for an entry is refused, only
// time is lost.
//
// Threads. A cache belongs to one target while it paints, so it needs no lock. Between paints it waits in a few slots
// shared by all targets, so that the next page starts with a warm cache.
#pragma once

#include <array>
#include <cstring>
#include <memory>

#include "../Arena.h"
#include "../Geometry/Shape.h"
#include "../Matrix.h"
#include "../Scan/Rasterizer.h"
#include "../Scan/SampleGrid.h"

namespace Graphics {

/// Coverage of one glyph, valid until the next lookup in its cache.
struct GlyphCoverage {
    IntPoint corner{}; ///< relative to the whole-pixel position, or the position itself
    int32_t width = 0; ///< 0: nothing is covered
    int32_t height = 0;
    const uint8_t* coverage = nullptr; ///< 8-bit coverage
    size_t strideBytes = 0;

    [[nodiscard]] IntRect Box() const noexcept { return {corner.x, corner.y, corner.x + width, corner.y + height}; }
    [[nodiscard]] const uint8_t* At(int32_t x, int32_t y) const noexcept {
        return coverage + static_cast<size_t>(y - corner.y) * strideBytes + (x - corner.x);
    }
    /// Sends the rows in `visible`, which lies in the box. Rows are copied to the arena first, because a sink may
    /// change what it receives.
    template <class Sink> void Send(const IntRect& visible, Arena& arena, Sink& sink) const {
        const auto columns = static_cast<size_t>(visible.right - visible.left);
        auto* row = arena.AllocArray<uint8_t>(columns);
        for (int32_t y = visible.top; y < visible.bottom; ++y) {
            std::memcpy(row, At(visible.left, y), columns);
            CoverageRun run{visible.left, visible.right, row, 0};
            sink.Row(y, {&run, 1});
        }
    }
};

class GlyphCache {
public:
    /// Limit of a glyph's box in device pixels; a larger glyph is painted like any other path.
    static constexpr int32_t kMaxSize = 64;
    /// Bytes of all entries, equally divided between the halves; the lookup tables add at most an eighth.
    static constexpr size_t kMaxBytes = size_t{4} << 20;
    static constexpr int32_t kPhases = 8;

    GlyphCache() noexcept = default;
    GlyphCache(const GlyphCache&) = delete;
    GlyphCache& operator=(const GlyphCache&) = delete;

    /// The coverage of `shape` under the linear part of `m`, moved by the phase. False for a glyph that is not
    /// cacheable: too large, or with a non-finite coordinate. Raises "Not enough memory" if the glyph could not be
    /// rasterized.
    [[nodiscard]] bool Find(const Shape& shape, const Matrix& m, IntPoint phase, Rasterizer& rasterizer,
                            GlyphCoverage& out);

    /// The coverage of `shape` under `m` with its corner at the nearest grid position on the device. False if Find is
    /// false, for an empty shape, and where floats are too coarse to distinguish positions.
    [[nodiscard]] bool Place(const Shape& shape, const Matrix& m, Rasterizer& rasterizer, GlyphCoverage& out);

    /// Bytes of all entries.
    [[nodiscard]] size_t BytesInUse() const noexcept { return m_halves[0].used + m_halves[1].used; }
    /// Empties the cache and frees its memory.
    void Clear() noexcept;

    /// Returns a cache to the slots; deletes it if they are full.
    struct Return {
        void operator()(GlyphCache* cache) const noexcept;
    };
    using Ref = std::unique_ptr<GlyphCache, Return>;
    /// The most recently returned cache of the slots, or a new one.
    [[nodiscard]] static Ref Take();
    /// Deletes every cache in the slots.
    static void DropWaiting() noexcept;

private:
    struct Key {
        uint64_t shape;
        std::array<uint32_t, 4> linear; // the bits of m00, m01, m10, m11
        uint32_t phase;
        uint32_t hash;
    };
    struct Entry {
        Key key;
        int32_t left, top;
        int32_t width, height;
        uint32_t strideBytes;
        uint32_t dataBytes;
    };
    struct Half {
        HeapArray<uint8_t> bytes;
        size_t used = 0;
        HeapArray<uint32_t> table; // offset of an entry / 16 + 1; 0: free; the size is a power of two
        size_t count = 0;
    };
    static constexpr uint32_t kSamples = kPhases * kPhases;
    static constexpr uint32_t kCounter = kSamples + 1;
    /// Rasterizing samples costs about as much as this many phases.
    static constexpr uint32_t kDirectPhases = 2;
    static constexpr size_t kEntryBytes = 64;
    static_assert(sizeof(Entry) <= kEntryBytes);

    [[nodiscard]] Key MakeKey(const Shape& shape, const Matrix& m, uint32_t phase) noexcept;
    [[nodiscard]] Entry* Lookup(const Key& key) noexcept;
    [[nodiscard]] static Entry* LookupIn(Half& half, const Key& key) noexcept;
    /// Null if memory is refused. `data` must not lie in the younger half.
    Entry* Insert(const Entry& entry, const uint8_t* data) noexcept;
    static void Empty(Half& half) noexcept;
    static void Reserve(Half& half, size_t bytes);
    [[nodiscard]] static const uint8_t* Data(const Entry& entry) noexcept {
        return reinterpret_cast<const uint8_t*>(&entry) + kEntryBytes;
    }
    [[nodiscard]] static bool Report(const Entry& entry, const uint8_t* data, GlyphCoverage& out) noexcept;

    /// The box of the outline at phase 0. False if the glyph is not cacheable.
    [[nodiscard]] static bool Measure(const Shape& shape, const Matrix& m, Entry& entry) noexcept;
    /// Sends the outline to the rasterizer with the corner of `box` at (0, 0) and `width` x `height` pixels visible.
    static void Feed(const Shape& shape, const Matrix& m, const Entry& box, int32_t width, int32_t height,
                     Rasterizer& rasterizer);
    [[nodiscard]] SampleView MakeSamples(const Shape& shape, const Matrix& m, const Entry& box, Rasterizer& rasterizer);

    std::array<Half, 2> m_halves;
    size_t m_young = 0;
    std::array<uint32_t, 4> m_lastLinear{};
    uint32_t m_lastLinearHash = 0;
    SampleGrid m_grid;
    HeapArray<uint8_t> m_coverage;
};

} // namespace Graphics
