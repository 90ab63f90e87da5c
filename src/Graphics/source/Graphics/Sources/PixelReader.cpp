// SPDX-License-Identifier: MIT
// Formats differ in where a pixel lies (three bytes, a word, a byte, a bit) and what its value means. Byte and bit
// values are mapped by a table of words, so palettes, grey levels and coverage are one case.
#include "PixelReader.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <type_traits>

#include "../Kernels/PaintKernels.h"
#include "../Kernels/RowKernels.h"
#include "../Pixels/PixelMath.h"

namespace Graphics {

namespace {

constexpr std::array<uint32_t, 256> Ramp(uint32_t scale, uint32_t base) noexcept {
    std::array<uint32_t, 256> table{};
    for (uint32_t v = 0; v < 256; ++v) {
        table[v] = base | v * scale;
    }
    return table;
}

constexpr std::array<uint32_t, 256> kGrey = Ramp(0x00010101U, 0xFF000000U);
constexpr uint32_t kBitCoverage[2] = {0, 0xFFFFFFFFU};
constexpr uint32_t kBlackWhite[2] = {0xFF000000U, 0xFFFFFFFFU};
constexpr uint32_t kFull[2] = {0xFFFFFFFFU, 0xFFFFFFFFU};

uint32_t LoadWord(const uint8_t* row, int32_t x) noexcept {
    uint32_t word;
    std::memcpy(&word, row + static_cast<ptrdiff_t>(x) * 4, 4);
    return word;
}

struct AlphaOf32 {
    static uint32_t At(const uint8_t* row, int32_t x, uint32_t, const uint32_t*) noexcept {
        return (LoadWord(row, x) >> 24) * 0x01010101U;
    }
};
struct Byte {
    static uint32_t At(const uint8_t* row, int32_t x, uint32_t, const uint32_t* table) noexcept {
        return table[row[x]];
    }
};
/// Copies the byte to all four, without the table, so that the compiler can vectorise.
struct ByteCoverage {
    static uint32_t At(const uint8_t* row, int32_t x, uint32_t, const uint32_t*) noexcept {
        return row[x] * 0x01010101U;
    }
};
struct Bit {
    static uint32_t At(const uint8_t* row, int32_t x, uint32_t offset, const uint32_t* table) noexcept {
        const uint32_t bit = static_cast<uint32_t>(x) + offset;
        return table[(row[bit >> 3] >> (7 - (bit & 7))) & 1];
    }
};
struct Always {
    static uint32_t At(const uint8_t*, int32_t, uint32_t, const uint32_t* table) noexcept { return table[0]; }
};

} // namespace

/// Layouts whose pixels need no table; the paint kernels read them.
template <PixelLayout kLayout> struct PixelReader::Direct {
    static constexpr auto kIndex = static_cast<size_t>(kLayout);

    static void Run(const PixelReader&, const uint8_t* row, int32_t x, size_t count, uint32_t* out) {
        if constexpr (kLayout == PixelLayout::Triples) {
            const uint8_t* __restrict from = row + static_cast<ptrdiff_t>(x) * 3;
            for (size_t k = 0; k < count; ++k, from += 3) {
                out[k] =
                    0xFF000000U | static_cast<uint32_t>(from[2]) << 16 | static_cast<uint32_t>(from[1]) << 8 | from[0];
            }
            return;
        }
        const uint8_t* from = row + static_cast<ptrdiff_t>(x) * 4;
        if constexpr (kLayout == PixelLayout::Opaque) {
            ActiveKernels().copyOpaque(out, from, count);
            return;
        }
        std::memcpy(out, from, count * 4);
        if constexpr (kLayout == PixelLayout::Straight) {
            ActiveKernels().premultiply(out, count);
        }
    }
    static void Columns(const PixelReader& r, const uint8_t* row, const int32_t* columns, size_t count, uint32_t* out) {
        ActivePaintKernels().columns[kIndex](row, r.m_grid.width, columns, count, out);
    }
    static void Points(const PixelReader& r, const int32_t* rows, const int32_t* columns, size_t count, uint32_t* out) {
        ActivePaintKernels().points[kIndex](r.m_grid, rows, columns, count, out);
    }
};

/// Formats whose values are mapped by the table.
template <class Format> struct PixelReader::Mapped {
    static void Run(const PixelReader& r, const uint8_t* row, int32_t x, size_t count, uint32_t* out) {
        // Copied to locals: `out` might alias the members, and each pixel would then wait for the previous store.
        const uint32_t bitOffset = r.m_bitOffset;
        const uint32_t* __restrict table = r.m_table;
        const uint8_t* __restrict from = row;
        uint32_t* __restrict to = out;
        if constexpr (std::is_same_v<Format, ByteCoverage>) { // moved to x, or the compiler does not vectorise
            from += x;
            for (size_t k = 0; k < count; ++k) {
                to[k] = from[k] * 0x01010101U;
            }
            return;
        }
        for (size_t k = 0; k < count; ++k) {
            to[k] = Format::At(from, x + static_cast<int32_t>(k), bitOffset, table);
        }
    }
    static void Columns(const PixelReader& r, const uint8_t* row, const int32_t* columns, size_t count, uint32_t* out) {
        for (size_t k = 0; k < count; ++k) {
            out[k] = Format::At(row, columns[k], r.m_bitOffset, r.m_table);
        }
    }
    static void Points(const PixelReader& r, const int32_t* rows, const int32_t* columns, size_t count, uint32_t* out) {
        for (size_t k = 0; k < count; ++k) {
            out[k] = Format::At(r.Row(rows[k]), columns[k], r.m_bitOffset, r.m_table);
        }
    }
};

template <class Loops> void PixelReader::Use() noexcept {
    m_run = Loops::Run;
    m_columns = Loops::Columns;
    m_points = Loops::Points;
}

template <PixelLayout kLayout> void PixelReader::UseDirect() noexcept {
    Use<Direct<kLayout>>();
    for (size_t i = 0; i < 2; ++i) {
        m_sample[i] = ActivePaintKernels().sample[i][static_cast<size_t>(kLayout)];
    }
}

PixelReader::PixelReader(Arena& arena, const PixelView& view, bool asMask)
    : m_grid{view.data, view.strideBytes, view.width, view.height}, m_bitOffset(view.bitOffset) {
    // The words of a palette, opaque black beyond its end; without a palette the index is the level.
    const auto useIndexed = [&](size_t count, const uint32_t* levels) {
        m_table = levels;
        m_opaque = true;
        if (view.palette != nullptr) {
            auto* words = arena.AllocArray<uint32_t>(count);
            const size_t known = std::min(count, view.paletteCount);
            std::transform(view.palette, view.palette + known, words, PremultiplyPixel);
            std::fill(words + known, words + count, 0xFF000000U);
            m_opaque = std::all_of(words, words + count, [](uint32_t c) { return c >> 24 == 255; });
            m_table = words;
        }
    };
    const auto useTable = [&](const uint32_t* table, bool opaque) {
        m_table = table;
        m_opaque = opaque;
    };
    switch (view.format) {
    case GXPixelFormatAlpha8:
        Use<Mapped<ByteCoverage>>();
        m_coverage = true;
        return;
    case GXPixelFormatGray8:
        m_coverage = asMask;
        asMask ? Use<Mapped<ByteCoverage>>() : Use<Mapped<Byte>>();
        useTable(kGrey.data(), !asMask);
        return;
    case GXPixelFormatAlpha1:
        Use<Mapped<Bit>>();
        useTable(kBitCoverage, false);
        return;
    case GXPixelFormatBlackWhite1:
        Use<Mapped<Bit>>();
        useTable(asMask ? kBitCoverage : kBlackWhite, !asMask);
        return;
    case GXPixelFormatPBGRA32:
        asMask ? Use<Mapped<AlphaOf32>>() : UseDirect<PixelLayout::Premultiplied>();
        m_direct = m_words = !asMask;
        return;
    case GXPixelFormatBGRA32:
        asMask ? Use<Mapped<AlphaOf32>>() : UseDirect<PixelLayout::Straight>();
        return;
    default:
        break;
    }
    if (asMask) { // no alpha and no level: full coverage
        Use<Mapped<Always>>();
        useTable(kFull, true);
        return;
    }
    m_opaque = true;
    switch (view.format) {
    case GXPixelFormatBGR24:
        UseDirect<PixelLayout::Triples>();
        return;
    case GXPixelFormatIndexed8:
        Use<Mapped<Byte>>();
        useIndexed(256, kGrey.data());
        return;
    case GXPixelFormatIndexed1:
        Use<Mapped<Bit>>();
        useIndexed(2, kBlackWhite);
        return;
    default:
        UseDirect<PixelLayout::Opaque>();
        m_words = true;
        return;
    }
}

} // namespace Graphics
