// SPDX-License-Identifier: MIT
// The row kernels in plain C++: always built, and the reference for every other set.
#include <cstring>

#include "../Pixels/PixelMath.h"
#include "Blend.h"
#include "RowTable.h"

namespace Graphics {
namespace {

using namespace Blend;

uint32_t ShapeAt(const uint8_t* shape, size_t i) noexcept { return shape != nullptr ? shape[i] : 255U; }

void Fill32(uint32_t* dst, uint32_t value, size_t count) noexcept {
    for (size_t i = 0; i < count; ++i) {
        dst[i] = value;
    }
}

void FillBlock(uint32_t* dst, ptrdiff_t strideBytes, uint32_t value, size_t count, size_t rows) noexcept {
    for (size_t y = 0; y < rows; ++y) {
        auto* row = reinterpret_cast<unsigned char*>(dst) + static_cast<ptrdiff_t>(y) * strideBytes;
        Fill32(reinterpret_cast<uint32_t*>(row), value, count);
    }
}

void Prefetch(const uint32_t*, size_t) noexcept {}

void SetOpaque(uint32_t* dst, const uint8_t* shape, size_t count) noexcept {
    for (size_t i = 0; i < count; ++i) {
        dst[i] |= shape == nullptr || shape[i] != 0 ? 0xFF000000U : 0U;
    }
}

void CopyOpaque(uint32_t* dst, const uint8_t* src, size_t count) noexcept {
    std::memcpy(dst, src, count * 4);
    SetOpaque(dst, nullptr, count);
}

/// c is already scaled by the shape. Sums are 32-bit words, so overflow of a channel carries into the next.
uint32_t Over(uint32_t d, uint32_t c) noexcept { return Alpha(d) == 0 ? c : ScalePixel(d, 256U - Alpha(c)) + c; }

void NormalSolid(uint32_t* dst, uint32_t color, const uint8_t* shape, size_t count) {
    if (Alpha(color) == 0) {
        return;
    }
    for (size_t i = 0; i < count; ++i) {
        const uint32_t s = ShapeAt(shape, i);
        if (s != 0) {
            dst[i] = Over(dst[i], ScalePixel(color, s + 1U));
        }
    }
}

void SolidRuns(const RowKernels&, uint32_t* first, uint32_t color, const CoverageRun* runs, size_t count) {
    for (size_t i = 0; i < count && Alpha(color) != 0; ++i) {
        const CoverageRun& run = runs[i];
        for (int32_t x = run.x0; x < run.x1; ++x) {
            const uint32_t s = run.shape == nullptr ? run.value : run.shape[x - run.x0];
            if (s != 0) {
                uint32_t& d = first[x - runs[0].x0];
                d = Over(d, ScalePixel(color, s + 1U));
            }
        }
    }
}

void NormalSolidBlock(uint32_t* dst, ptrdiff_t strideBytes, uint32_t color, const uint8_t* shape, ptrdiff_t shapeStride,
                      size_t count, size_t rows) {
    for (auto* row = reinterpret_cast<uint8_t*>(dst); rows != 0; --rows, row += strideBytes, shape += shapeStride) {
        NormalSolid(reinterpret_cast<uint32_t*>(row), color, shape, count);
    }
}

void SolidRectangle(uint32_t* dst, ptrdiff_t strideBytes, uint32_t left, uint32_t inner, uint32_t right, size_t count,
                    size_t rows) {
    auto* row = reinterpret_cast<uint8_t*>(dst);
    for (; rows != 0; --rows, row += strideBytes) {
        auto* pixels = reinterpret_cast<uint32_t*>(row);
        pixels[0] = Over(pixels[0], left);
        for (size_t i = 1; i + 1 < count; ++i) {
            pixels[i] = Over(pixels[i], inner);
        }
        if (count > 1) {
            pixels[count - 1] = Over(pixels[count - 1], right);
        }
    }
}

void SolidSamples(uint32_t* dst, ptrdiff_t strideBytes, uint32_t color, const SampleFrame& frame, size_t count) {
    for (const SampleFrame::Rows& rows : frame.rows) {
        const auto scaled = [&](uint32_t columns) { return ScalePixel(color, 4 * columns * rows.samples); };
        SolidRectangle(dst, strideBytes, scaled(frame.left), scaled(8), scaled(frame.right), count, rows.count);
        dst = reinterpret_cast<uint32_t*>(reinterpret_cast<uint8_t*>(dst) +
                                          static_cast<ptrdiff_t>(rows.count) * strideBytes);
    }
}

void NormalVarying(uint32_t* dst, const uint32_t* src, const uint8_t* shape, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        const uint32_t s = ShapeAt(shape, i);
        if (s != 0 && Alpha(src[i]) != 0) {
            dst[i] = Over(dst[i], ScalePixel(src[i], s + 1U));
        }
    }
}

/// (1 - ab) cs as + (1 - as) cb ab + as ab B(cb, cs) with alpha as + ab - as ab, each term truncated. One form serves
/// every alpha: at 255 a complement scales a byte to 0, and t is exactly the other alpha.
template <class Mode> uint32_t BlendPixel(uint32_t d, uint32_t c) noexcept {
    const uint32_t as = Alpha(c);
    const uint32_t ab = Alpha(d);
    if (ab == 0) {
        return c;
    }
    const uint32_t mixed = Mode::Pixel(UnpremultiplyPixel(d), UnpremultiplyPixel(c));
    const uint32_t t = (as * (ab + 1U)) >> 8;
    const uint32_t sum = ScalePixel(d, 256U - as) + ScalePixel(c, 256U - ab) + ScalePixel(mixed, t + 1U);
    return (sum & 0x00FFFFFFU) | (as + ab - t) << 24;
}

template <class Mode> void BlendRow(uint32_t* dst, const uint32_t* src, const uint8_t* shape, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        const uint32_t s = ShapeAt(shape, i);
        if (s != 0 && Alpha(src[i]) != 0) {
            dst[i] = BlendPixel<Mode>(dst[i], ScalePixel(src[i], s + 1U));
        }
    }
}

template <class Mode> void BlendSolidRow(uint32_t* dst, uint32_t color, const uint8_t* shape, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        BlendRow<Mode>(dst + i, &color, shape == nullptr ? nullptr : shape + i, 1);
    }
}

/// Normal inside a group: source over the pixel below.
struct LayerOver {
    static uint32_t Pixel(uint32_t under, uint32_t c) noexcept { return ScalePixel(under, 256U - Alpha(c)) + c; }
};

/// The other modes inside a group: M = c (1 - au) + B au, then under (1 - as) + M as.
template <class Mode> struct LayerBlended {
    static uint32_t Pixel(uint32_t under, uint32_t c) noexcept {
        const uint32_t mixed = Mode::Pixel(UnpremultiplyPixel(under), UnpremultiplyPixel(c));
        const uint32_t m = ScalePixel(c, 256U - Alpha(under)) + ScalePixel(mixed, Alpha(under) + 1U);
        return ScalePixel(under, 256U - Alpha(c)) + ScalePixel(m, Alpha(c) + 1U);
    }
};

template <class Compose>
void LayerRow(const LayerRowPlanes& row, const uint32_t* src, const uint8_t* shape, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        const uint32_t c = src[i];
        const uint32_t as = Alpha(c);
        const uint32_t fs = ShapeAt(shape, i);
        if (as == 0 || fs == 0) {
            continue;
        }
        const uint32_t backdrop = row.backdrop != nullptr ? row.backdrop[i] : 0U;
        const uint32_t old = row.color[i];
        const uint32_t oldAlpha = row.alpha[i];
        const uint32_t alpha =
            ((Union(row.knockout ? 0U : oldAlpha, as) * (fs + 1U)) >> 8) + ((oldAlpha * (256U - fs)) >> 8);
        const uint32_t composed = Compose::Pixel(row.knockout ? backdrop : old, c);
        const uint32_t color = ScalePixel(old, 256U - fs) + ScalePixel(composed, fs + 1U);
        row.color[i] = (color & 0x00FFFFFFU) | Union(alpha, Alpha(backdrop)) << 24;
        row.alpha[i] = static_cast<uint8_t>(alpha);
        row.shape[i] = static_cast<uint8_t>(Union(row.shape[i], fs));
    }
}

uint32_t SubtractClamped(uint32_t x, uint32_t y) noexcept {
    uint32_t result = 0;
    for (unsigned shift = 0; shift < 32; shift += 8) {
        const uint32_t a = Channel(x, shift);
        const uint32_t b = Channel(y, shift);
        result |= (a > b ? a - b : 0U) << shift;
    }
    return result;
}

/// min(b, v) * 255 / v for every byte b.
uint32_t DivideBy(uint32_t x, uint32_t v) noexcept {
    uint32_t result = 0;
    for (unsigned shift = 0; shift < 32; shift += 8) {
        result |= Lower(Channel(x, shift), v) * 255U / v << shift;
    }
    return result;
}

void GroupResult(uint32_t* color, const uint8_t* alpha, const uint8_t* shape, const uint32_t* backdrop, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        const uint32_t fg = shape[i];
        const uint32_t ag = alpha[i];
        if (fg == 0 || (backdrop != nullptr && ag == 0)) {
            continue;
        }
        uint32_t x = color[i];
        if (backdrop != nullptr) {
            if (ag == 255U) {
                color[i] = x | 0xFF000000U;
                continue;
            }
            x = SubtractClamped(x, ScalePixel(backdrop[i], 256U - ag));
        }
        x = (x & 0x00FFFFFFU) | ag << 24;
        color[i] = fg < 255U ? DivideBy(x, fg) : x;
    }
}

uint32_t Luminosity8(uint32_t x) noexcept {
    return (77U * Channel(x, 16) + 151U * Channel(x, 8) + 28U * Channel(x, 0)) >> 8;
}

template <int kType> void MaskValues(uint8_t* values, const uint32_t* pixels, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        const uint32_t v = kType < 2 ? Alpha(pixels[i]) : Luminosity8(pixels[i]);
        values[i] = static_cast<uint8_t>((kType & 1) != 0 ? 255U - v : v);
    }
}

void ScaleShape(uint8_t* shape, const uint8_t* mask, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        shape[i] = static_cast<uint8_t>((shape[i] * (mask[i] + 1U)) >> 8);
    }
}

void ScaleColor(uint32_t* color, const uint8_t* mask, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        color[i] = ScalePixel(color[i], mask[i] + 1U);
    }
}

void ScaleColorBy(uint32_t* color, uint32_t factor, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        color[i] = ScalePixel(color[i], factor);
    }
}

void PremultiplyRow(uint32_t* color, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        color[i] = PremultiplyPixel(color[i]);
    }
}

void ReplaceSolid(uint32_t* dst, uint32_t color, const uint8_t* shape, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        const uint32_t s = ShapeAt(shape, i);
        dst[i] = ScalePixel(dst[i], 256U - s) + ScalePixel(color, s + 1U);
    }
}

void Invert(uint32_t* dst, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        const uint32_t a = Alpha(dst[i]);
        dst[i] = SubtractClamped(a << 24 | a << 16 | a << 8 | a, dst[i] & 0x00FFFFFFU);
    }
}

#define GX_MODES(row)                                                                                                  \
    {                                                                                                                  \
        row(Separable<Normal>), row(Separable<Multiply>), row(Separable<Screen>), row(Separable<Overlay>),             \
            row(Separable<Darken>), row(Separable<Lighten>), row(Separable<ColorBurn>), row(Separable<ColorDodge>),    \
            row(Separable<HardLight>), row(Separable<SoftLight>), row(Separable<Difference>),                          \
            row(Separable<Exclusion>), row(Hue), row(Saturation), row(HueAndSaturation), row(Luminosity),              \
            row(Separable<Normal>)                                                                                     \
    }
#define GX_BLEND_ROW(...) BlendRow<__VA_ARGS__>
#define GX_BLEND_SOLID_ROW(...) BlendSolidRow<__VA_ARGS__>
#define GX_LAYER_ROW(...) LayerRow<LayerBlended<__VA_ARGS__>>

constexpr RowKernels kTable = GX_KERNEL_TABLE;

} // namespace

constinit const RowKernels SimdPlain::kRowKernels = kTable;

} // namespace Graphics
