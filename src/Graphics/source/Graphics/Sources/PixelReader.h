// SPDX-License-Identifier: MIT
// Reads pixels of any format as premultiplied ARGB words, or as mask words (the mask value in all four bytes). The
// format is examined once, on construction; reading then goes through function pointers without branching on it.
#pragma once

#include "../Arena.h"
#include "../Kernels/PaintKernels.h"
#include "../Pixels/PixelView.h"

namespace Graphics {

class PixelReader {
public:
    /// `view` must have a valid format. The reader is valid as long as the view's pixels and the arena's draw; a
    /// palette is copied and premultiplied.
    PixelReader(Arena& arena, const PixelView& view, bool asMask);

    /// Reads `count` pixels of row y from column x on.
    void Run(int32_t y, int32_t x, size_t count, uint32_t* out) const noexcept { m_run(*this, Row(y), x, count, out); }
    /// Reads the pixels of row y at the given columns.
    void Columns(int32_t y, const int32_t* columns, size_t count, uint32_t* out) const noexcept {
        m_columns(*this, Row(y), columns, count, out);
    }
    /// Reads the pixels at (columns[k], rows[k]).
    void Points(const int32_t* rows, const int32_t* columns, size_t count, uint32_t* out) const noexcept {
        m_points(*this, rows, columns, count, out);
    }

    /// True if Sample is supported.
    [[nodiscard]] bool Samples() const noexcept { return m_sample[0] != nullptr; }
    /// Samples leading points, as long as they and their neighbours lie inside the image; returns how many. See
    /// PaintKernels.
    size_t Sample(bool linear, bool clamp, const float* u, const float* v, size_t count, uint32_t* out) const noexcept {
        return Samples() ? m_sample[linear ? 1 : 0](m_grid, clamp, u, v, count, out) : 0;
    }

    /// True if every word has alpha 255.
    [[nodiscard]] bool IsOpaque() const noexcept { return m_opaque; }
    /// True if the pixels lie in memory exactly as the words that Run gives.
    [[nodiscard]] bool IsDirect() const noexcept { return m_direct; }
    /// True if they do except for the alpha byte, which is stored undefined and reads as 255.
    [[nodiscard]] bool HasWords() const noexcept { return m_words; }
    /// True if each pixel is a byte in memory that is repeated in all four bytes of its word.
    [[nodiscard]] bool IsCoverage() const noexcept { return m_coverage; }
    [[nodiscard]] ptrdiff_t StrideBytes() const noexcept { return m_grid.strideBytes; }
    [[nodiscard]] const uint8_t* Row(int32_t y) const noexcept { return m_grid.pixels + y * m_grid.strideBytes; }

private:
    template <PixelLayout kLayout> struct Direct;
    template <class Format> struct Mapped;

    template <class Loops> void Use() noexcept;
    template <PixelLayout kLayout> void UseDirect() noexcept;

    using RunFunction = void (*)(const PixelReader&, const uint8_t*, int32_t, size_t, uint32_t*);
    using ColumnsFunction = void (*)(const PixelReader&, const uint8_t*, const int32_t*, size_t, uint32_t*);
    using PointsFunction = void (*)(const PixelReader&, const int32_t*, const int32_t*, size_t, uint32_t*);

    PixelGrid m_grid;
    uint32_t m_bitOffset;
    bool m_opaque = false;
    bool m_direct = false;
    bool m_words = false;
    bool m_coverage = false;
    const uint32_t* m_table = nullptr; ///< words of the 256 byte values, or of the two bit values
    RunFunction m_run = nullptr;
    ColumnsFunction m_columns = nullptr;
    PointsFunction m_points = nullptr;
    SampleFunction m_sample[2] = {};
};

} // namespace Graphics
