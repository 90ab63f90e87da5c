// SPDX-License-Identifier: MIT
// Row loops of the Normal mode, the most frequent ones: one colour, or one colour per pixel, over a row.
#pragma once

#include "../Pixels/PixelMath.h"
#include "RowFills.h"
#include "RowSolid.h"

namespace Graphics::GX_SIMD_NAMESPACE {
namespace {

template <bool kOpaque>
GX_INLINE inline void SolidShape(uint32_t* dst, uint32_t color, const uint8_t* shape, size_t count) noexcept {
    const U32 c = Splat(color);
    const auto step = [=](size_t i, size_t n) GX_INLINE {
        // A single test, which is predictable both along constant coverage and along changing coverage.
        if (n == kLanes && BytesAre(shape + i, shape[i])) {
            if (shape[i] == 0) {
                return;
            }
            if (kOpaque && shape[i] == 255) {
                Store(dst + i, c);
                return;
            }
        }
        ShapedSolid<kOpaque>(dst + i, c, shape + i, n);
    };
    ForWholeBlocks(count, step, [=](size_t i, size_t n) { Narrower(n).normalSolid(dst + i, color, shape + i, n); });
}

void NormalSolid(uint32_t* dst, uint32_t color, const uint8_t* shape, size_t count) {
    const uint32_t alpha = color >> 24;
    if (alpha == 0) {
        return;
    }
    if (shape == nullptr) {
        if (alpha == 255) {
            Fill32(dst, color, count);
            return;
        }
        ForWholeBlocks(
            count,
            [=](size_t i, size_t n) GX_INLINE {
                StoreSome(dst + i, n, Over(LoadSome(dst + i, n), Splat(color), ComplementOf(Splat(alpha))));
            },
            [=](size_t i, size_t n) { Narrower(n).normalSolid(dst + i, color, nullptr, n); });
        return;
    }
    alpha == 255 ? SolidShape<true>(dst, color, shape, count) : SolidShape<false>(dst, color, shape, count);
}

template <bool kOpaque>
GX_INLINE inline void SolidRunsOf(const RowKernels& all, uint32_t* first, uint32_t color, const CoverageRun* runs,
                                  size_t count) noexcept {
    const U32 c = Splat(color);
    const int32_t left = runs->x0;
    for (const CoverageRun* const end = runs + count; runs != end; ++runs) {
        uint32_t* const dst = first + (runs->x0 - left);
        const auto n = static_cast<size_t>(runs->x1 - runs->x0);
        const uint8_t* const shape = runs->shape;
        if (shape != nullptr) {
            ShapedRow<kOpaque>(dst, c, shape, n);
        } else if (runs->value != 0) {
            ConstantRun(all, dst, ScalePixel(color, runs->value + 1U), n);
        }
    }
}

/// Runs with shape mostly have one or two blocks of eight pixels. A set of eight lanes loads and stores exactly that
/// size, so the next run can load the stored bytes without waiting.
void SolidRuns(const RowKernels& all, uint32_t* first, uint32_t color, const CoverageRun* runs, size_t count) {
    if constexpr (kLanes > 8) {
        KernelTable<RowKernels>::Made(kNarrowerSet).solidRuns(all, first, color, runs, count);
    } else {
        if (color >> 24 == 0) {
            return;
        }
        color >> 24 == 255 ? SolidRunsOf<true>(all, first, color, runs, count)
                           : SolidRunsOf<false>(all, first, color, runs, count);
    }
}

/// A vector of constant colours, composited row after row.
struct SolidColumn {
    U32 color;
    U32 complement;

    explicit SolidColumn(U32 c) noexcept : color(c), complement(ComplementOfAlpha(c)) {}
    GX_INLINE void Paint(uint32_t* dst, size_t n) const noexcept {
        StoreSome(dst, n, Over(LoadSome(dst, n), color, complement));
    }
};

/// A vector of pixels of one colour with the same coverage in every row.
class ShapedColumn {
public:
    GX_INLINE ShapedColumn(U32 color, U32 shape) noexcept
        : m_scaled(Scale(color, FactorOf(shape))), m_covered(~IsZero(shape)) {}

    /// Without coverage the sum is what lies below.
    GX_INLINE void Paint(uint32_t* dst, size_t n) const noexcept {
        const U32 d = LoadSome(dst, n);
        const I32 replaced = IsZero(d & kAlpha) & m_covered;
        StoreSome(dst, n, Select(replaced, m_scaled.color, Scale(d, m_scaled.complement) + m_scaled.color));
    }

private:
    SolidColumn m_scaled;
    I32 m_covered;
};

void NormalSolidBlock(uint32_t* dst, ptrdiff_t strideBytes, uint32_t color, const uint8_t* shape, ptrdiff_t shapeStride,
                      size_t count, size_t rows) {
    if (color >> 24 == 0) {
        return;
    }
    if constexpr (kLanes == 4) { // upright edges: one pixel takes as many steps in a vector as four
        if (count < kLanes) {
            KernelTable<RowKernels>::Made(InstructionSet::Plain)
                .normalSolidBlock(dst, strideBytes, color, shape, shapeStride, count, rows);
            return;
        }
    }
    const U32 c = Splat(color);
    auto* bytes = reinterpret_cast<uint8_t*>(dst);
    if (shapeStride == 0 && count <= kLanes) {
        const ShapedColumn all(c, WidenSome(shape, count));
        for (; rows != 0; --rows, bytes += strideBytes) {
            all.Paint(reinterpret_cast<uint32_t*>(bytes), count);
        }
        return;
    }
    for (; rows != 0; --rows, bytes += strideBytes, shape += shapeStride) {
        auto* row = reinterpret_cast<uint32_t*>(bytes);
        // The next block over these pixels is many rows away, so short masked stores stall nothing here.
        ShapedRow(row, c, shape, count);
    }
}

/// `inner` in all lanes but the first, which takes `first`, and lane `at`, which takes `last`.
GX_INLINE inline SolidColumn EdgeColumn(uint32_t first, uint32_t inner, uint32_t last, size_t at) noexcept {
    const U32 lanes = Ascending();
    const U32 c = Select(lanes == static_cast<uint32_t>(at), Splat(last), Splat(inner));
    return SolidColumn(Select(IsZero(lanes), Splat(first), c));
}

/// For rows of more than one vector.
[[gnu::noinline]] void SolidWideRectangle(uint32_t* dst, ptrdiff_t strideBytes, uint32_t left, uint32_t inner,
                                          uint32_t right, size_t count, size_t rows) {
    constexpr size_t kAheadFrom = 64;             // pixels: in shorter rows there is no time to prefetch
    constexpr size_t kAlignedFrom = 4 * kLanes;   // pixels: for shorter rows alignment does not pay
    const size_t tail = (count - 1) % kLanes + 1; // pixels of the last vector
    const size_t end = count - tail;
    const SolidColumn first = EdgeColumn(left, inner, inner, 0);
    const SolidColumn last = EdgeColumn(tail > 1 ? inner : right, inner, right, tail - 1);
    const SolidColumn middle(Splat(inner));
    const bool opaque = inner >> 24 == 255;
    for (; rows != 0; --rows) {
        auto* const next = reinterpret_cast<uint32_t*>(reinterpret_cast<uint8_t*>(dst) + strideBytes);
        if (count >= kAheadFrom && rows > 1) {
            Prefetch(next, count);
        }
        first.Paint(dst, kLanes);
        if (!opaque) {
            size_t i = kLanes;
#ifdef GX_SIMD_QUADS
            if (inner > kColors && end > i) {
                i += OverQuads(dst + i, OverColor(middle.color), end - i);
            }
#endif
            for (; i < end; i += kLanes) {
                middle.Paint(dst + i, kLanes);
            }
        } else if (end > kAlignedFrom) {
            Fill32(dst + kLanes, inner, end - kLanes);
        } else {
            for (size_t i = kLanes; i < end; i += kLanes) {
                Store(dst + i, middle.color);
            }
        }
        last.Paint(dst + end, tail);
        dst = next;
    }
}

void SolidRectangle(uint32_t* dst, ptrdiff_t strideBytes, uint32_t left, uint32_t inner, uint32_t right, size_t count,
                    size_t rows) {
    if (count > kLanes) {
        SolidWideRectangle(dst, strideBytes, left, inner, right, count, rows);
        return;
    }
    const SolidColumn all = EdgeColumn(left, inner, right, count - 1);
    auto* row = reinterpret_cast<uint8_t*>(dst);
    for (; rows != 0; --rows, row += strideBytes) {
        all.Paint(reinterpret_cast<uint32_t*>(row), count);
    }
}

/// For rows of at most one vector.
void SolidNarrowSamples(uint8_t* row, ptrdiff_t strideBytes, uint32_t color, const SampleFrame& frame,
                        size_t count) noexcept {
    const U32 lanes = Ascending();
    const U32 inner = Select((I32)(lanes == static_cast<uint32_t>(count - 1)), Splat(4 * frame.right), Splat(32U));
    const U32 columns = Select(IsZero(lanes), Splat(4 * frame.left), inner);
    for (const SampleFrame::Rows& rows : frame.rows) {
        if (rows.count == 0) {
            continue;
        }
        const SolidColumn all(Scale(Splat(color), Spread(Product(columns, Splat(rows.samples)))));
        for (size_t left = rows.count; left != 0; --left, row += strideBytes) {
            all.Paint(reinterpret_cast<uint32_t*>(row), count);
        }
    }
}

void SolidSamples(uint32_t* dst, ptrdiff_t strideBytes, uint32_t color, const SampleFrame& frame, size_t count) {
    auto* row = reinterpret_cast<uint8_t*>(dst);
    if (count <= kLanes) {
        SolidNarrowSamples(row, strideBytes, color, frame, count);
        return;
    }
    for (const SampleFrame::Rows& rows : frame.rows) {
        const auto scaled = [&](uint32_t columns) { return ScalePixel(color, 4 * columns * rows.samples); };
        SolidWideRectangle(reinterpret_cast<uint32_t*>(row), strideBytes, scaled(frame.left), scaled(8),
                           scaled(frame.right), count, rows.count);
        row += static_cast<ptrdiff_t>(rows.count) * strideBytes;
    }
}

void NormalVarying(uint32_t* dst, const uint32_t* src, const uint8_t* shape, size_t count) {
    const auto rest = [=](size_t i, size_t n) { Narrower(n).normalVarying(dst + i, src + i, At(shape, i), n); };
    const auto replaces = [](U32 c, size_t n) GX_INLINE { return n == kLanes && AllOpaque(c); };
    const auto over = [](U32 d, U32 c) GX_INLINE { return Over(d, c, ComplementOfAlpha(c)); };
    if (shape == nullptr) {
        const auto step = [=](size_t i, size_t n) GX_INLINE {
            const U32 c = LoadSome(src + i, n);
            if (replaces(c, n)) {
                Store(dst + i, c);
                return;
            }
            const U32 d = LoadSome(dst + i, n);
            StoreSome(dst + i, n, Select(IsZero(c & kAlpha), d, over(d, c)));
        };
        ForWholeBlocks(count, step, rest);
        return;
    }
    const auto step = [=](size_t i, size_t n) GX_INLINE {
        if (n == kLanes && BytesAre(shape + i, 0)) {
            return;
        }
        U32 c = LoadSome(src + i, n);
        const bool whole = n == kLanes && BytesAre(shape + i, 255);
        if (whole && replaces(c, n)) {
            Store(dst + i, c);
            return;
        }
        I32 keep = IsZero(c & kAlpha);
        if (!whole) {
            const U32 s = WidenSome(shape + i, n);
            keep |= IsZero(s);
            c = Scale(c, FactorOf(s));
        }
        const U32 d = LoadSome(dst + i, n);
        StoreSome(dst + i, n, Select(keep, d, over(d, c)));
    };
    ForWholeBlocks(count, step, rest);
}

} // namespace
} // namespace Graphics::GX_SIMD_NAMESPACE
