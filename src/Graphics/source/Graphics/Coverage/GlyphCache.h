// SPDX-License-Identifier: MIT
// Coverage of glyphs, kept from draw to draw.
//
// A glyph is an outline under the linear part of a matrix; its place is rounded to 1/8 pixel, the grid of the
// rasterizer's samples. So no edge lies more than 1/16 pixel off, and every place is one of 64 phases plus whole
// pixels. The first phases asked for are rasterized; when an outline turns out to come in more, it is rasterized once
// into samples, and the coverage of all further phases is counted from those. Both ways give the same bytes: moving by
// whole samples changes none of them. All are entries of the cache:
//
//     key: shape identity, m00, m01, m10, m11, phase
//     value: box relative to the whole-pixel place, rows of coverage; phase 64: the samples; 65: how many phases were
//     rasterized
//
// What is drawn never depends on what the cache holds: a miss makes the bytes that a hit would have found. Memory is
// bounded: entries lie one behind the other in the younger of two halves. When that is full the older half is emptied
// and becomes the younger; a hit in the older half moves its entry over. Memory that cannot be had for an entry costs
// time only.
//
// A cache belongs to one target while that paints, so nothing here locks; between paints it waits in a few slots that
// all targets share, and the next page finds it warm.
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

/// Coverage of one glyph, void after the next question to its cache.
struct GlyphCoverage {
    IntPoint corner{}; ///< relative to the whole-pixel place, or the place itself
    int32_t width = 0; ///< 0: nothing is covered
    int32_t height = 0;
    const uint8_t* coverage = nullptr; ///< 8-bit shape
    size_t strideBytes = 0;

    [[nodiscard]] IntRect Box() const noexcept { return {corner.x, corner.y, corner.x + width, corner.y + height}; }
    [[nodiscard]] const uint8_t* At(int32_t x, int32_t y) const noexcept {
        return coverage + static_cast<size_t>(y - corner.y) * strideBytes + (x - corner.x);
    }
    /// Sends the rows in `visible`, which lies in the box. A sink may change what it is given, so that they go by way
    /// of memory of the arena.
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
    /// Of the box of a glyph in device pixels; a larger one is drawn as any other path.
    static constexpr int32_t kMaxSize = 64;
    /// Of the entries, half of it each half's; the tables that find them come to an eighth more at most.
    static constexpr size_t kMaxBytes = size_t{4} << 20;
    static constexpr int32_t kPhases = 8;

    GlyphCache() noexcept = default;
    GlyphCache(const GlyphCache&) = delete;
    GlyphCache& operator=(const GlyphCache&) = delete;

    /// The coverage of `shape` under the linear part of `m`, moved by the phase. False for a glyph that is no matter
    /// for the cache: too large, or with a coordinate that is not finite. Raises "Not enough memory" when the glyph
    /// itself could not be rasterized.
    [[nodiscard]] bool Find(const Shape& shape, const Matrix& m, IntPoint phase, Rasterizer& rasterizer,
                            GlyphCoverage& out);

    /// The coverage of `shape` under `m`, its corner where the nearest place of the grid puts it in the device. False
    /// where Find is false, for an empty shape, and so far away that floats do not tell places apart.
    [[nodiscard]] bool Place(const Shape& shape, const Matrix& m, Rasterizer& rasterizer, GlyphCoverage& out);

    /// The bytes of all entries.
    [[nodiscard]] size_t BytesInUse() const noexcept { return m_halves[0].used + m_halves[1].used; }
    /// Empties the cache and gives its memory back.
    void Clear() noexcept;

    /// Gives a cache back to the slots, or ends it when they are full.
    struct Return {
        void operator()(GlyphCache* cache) const noexcept;
    };
    using Ref = std::unique_ptr<GlyphCache, Return>;
    /// A cache that waits, the warmest first, or a new one.
    [[nodiscard]] static Ref Take();
    /// Ends every cache that waits.
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
        HeapArray<uint32_t> table; // offset of an entry / 16 + 1, 0 free; a power of two
        size_t count = 0;
    };
    static constexpr uint32_t kSamples = kPhases * kPhases;
    static constexpr uint32_t kCounter = kSamples + 1;
    /// Samples cost about as much as this many phases.
    static constexpr uint32_t kDirectPhases = 2;
    static constexpr size_t kEntryBytes = 64;
    static_assert(sizeof(Entry) <= kEntryBytes);

    [[nodiscard]] Key MakeKey(const Shape& shape, const Matrix& m, uint32_t phase) noexcept;
    [[nodiscard]] Entry* Lookup(const Key& key) noexcept;
    [[nodiscard]] static Entry* LookupIn(Half& half, const Key& key) noexcept;
    /// Null when there is no memory for it. `data` lies outside of the younger half.
    Entry* Insert(const Entry& entry, const uint8_t* data) noexcept;
    static void Empty(Half& half) noexcept;
    static void Reserve(Half& half, size_t bytes);
    [[nodiscard]] static const uint8_t* Data(const Entry& entry) noexcept {
        return reinterpret_cast<const uint8_t*>(&entry) + kEntryBytes;
    }
    [[nodiscard]] static bool Report(const Entry& entry, const uint8_t* data, GlyphCoverage& out) noexcept;

    /// The box of the outline at phase 0. False when it is no matter for the cache.
    [[nodiscard]] static bool Measure(const Shape& shape, const Matrix& m, Entry& entry) noexcept;
    /// Hands the outline to the rasterizer, the corner of `box` at (0, 0), `width` x `height` pixels visible.
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
