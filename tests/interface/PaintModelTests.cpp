// SPDX-License-Identifier: MIT
// One object at a time on a plain target: every kind of paint under masks, clips and separable modes, with whole,
// partial and no coverage, against the formulas pixel by pixel. What a paint, a mask, a clip and a shape are by
// themselves is known from pixels given or drawn alone; only how they come together is judged here, where many short
// cuts meet.
#include <algorithm>
#include <random>

#include "../BlendOracle.h"
#include "TargetSupport.h"

using namespace BlendOracle;
using namespace TargetSupport;

namespace {

using Plane = std::vector<uint32_t>;

class PaintModel {
public:
    PaintModel(uint32_t width, uint32_t height, uint32_t seed) : m_width(width), m_height(height), m_random(seed) {}

    void Round() {
        const Canvas c(m_width, m_height);
        const GXRect all{0, 0, static_cast<float>(m_width), static_cast<float>(m_height)};
        const Plane before = RandomPixels(Below(3) == 0);
        Put(c.bitmap, before);
        Plane colors;
        const Owned<GXBrush> paint = Paint(colors);
        const uint32_t shapeKind = Below(4), clipKind = Below(4);
        // Rectangles on whole pixels are the same either way, but not to the code.
        const uint8_t adjusted = shapeKind <= 1 && clipKind <= 1 && Below(2) == 0 ? 1 : 0;
        EXPECT_EQ(GXRenderTargetSetStrokeAdjustment(c.target, adjusted), GXResultSuccess);

        Plane coverage(Count(), 255);
        const bool plain = Below(4) == 0;
        if (!plain && Below(2) == 0) {
            Plane values;
            const uint32_t type = Below(4);
            const Owned<GXBrush> mask = Mask(type, values);
            EXPECT_EQ(GXRenderTargetSetShapeMask(c.target, type, mask), GXResultSuccess);
            Multiply(coverage, values);
        }
        Plane opacity(Count(), 255);
        if (!plain && Below(2) == 0) {
            const uint32_t type = Below(4);
            const Owned<GXBrush> mask = Mask(type, opacity);
            EXPECT_EQ(GXRenderTargetSetOpacityMask(c.target, type, mask), GXResultSuccess);
        }
        const uint32_t mode = plain || Below(2) == 0 ? 0 : Below(12);
        EXPECT_EQ(GXRenderTargetSetBlendMode(c.target, mode), GXResultSuccess);
        const GXRect clip = Box(clipKind == 1);
        // Coverage of the object first, then masks, then the clip: each product is truncated.
        const GXRect shape = shapeKind == 0 ? all : Box(shapeKind == 1);
        Plane own = Coverage(shapeKind == 3, shape);
        Multiply(own, coverage);
        if (clipKind != 0) {
            EXPECT_EQ(clipKind == 3 ? GXRenderTargetClipEllipse(c.target, &clip)
                                    : GXRenderTargetClipRect(c.target, &clip),
                      GXResultSuccess);
            Multiply(own, Coverage(clipKind == 3, clip));
        }
        EXPECT_EQ(shapeKind == 3 ? GXRenderTargetFillEllipse(c.target, &shape, paint)
                                 : GXRenderTargetFillRect(c.target, &shape, paint),
                  GXResultSuccess);
        const Plane after = c.Pixels();
        for (size_t i = 0; i < Count(); ++i) {
            const uint32_t color = Times(colors[i], static_cast<int>(opacity[i]) + 1);
            const auto s = static_cast<int>(own[i]);
            const uint32_t expected =
                mode == 0 ? NormalOracle(before[i], color, s) : ModeOracle(static_cast<int>(mode), before[i], color, s);
            ASSERT_EQ(after[i], expected) << std::hex << "pixel " << std::dec << i % m_width << ", " << i / m_width
                                          << " paint " << m_paintKind << " shape " << shapeKind << " clip " << clipKind
                                          << " mode " << mode << " coverage " << s << " opacity mask " << opacity[i];
        }
    }

private:
    [[nodiscard]] size_t Count() const { return static_cast<size_t>(m_width) * m_height; }
    uint32_t Below(uint32_t n) { return static_cast<uint32_t>(m_random() % n); }
    float Real(float low, float high) { return low + (high - low) * static_cast<float>(Below(1025)) / 1024; }

    GXRect Box(bool whole) {
        const auto w = static_cast<float>(m_width), h = static_cast<float>(m_height);
        GXRect r{Real(-3, w * 0.4F), Real(-2, h * 0.4F), Real(w * 0.5F, w + 3), Real(h * 0.5F, h + 2)};
        for (float* side : {&r.left, &r.top, &r.right, &r.bottom}) {
            *side = whole ? static_cast<float>(static_cast<int>(*side)) : *side;
        }
        return r;
    }
    static void Multiply(Plane& coverage, const Plane& values) {
        for (size_t i = 0; i < coverage.size(); ++i) {
            coverage[i] = coverage[i] * (values[i] + 1) >> 8;
        }
    }
    uint32_t Byte() { return Below(3) == 0 ? Below(2) * 255 : Below(256); }
    Plane RandomPixels(bool opaque) {
        Plane pixels(Count());
        for (uint32_t& p : pixels) {
            const uint32_t a = opaque ? 255 : Byte();
            p = WithAlpha(Times(Byte() << 16 | Byte() << 8 | Byte(), static_cast<int>(a) + 1), static_cast<int>(a));
        }
        return pixels;
    }
    void Put(GXBitmap bitmap, const Plane& pixels) const {
        Plane copy = pixels;
        const GXBitmapData data{copy.data(), m_width * 4, m_width * 4};
        EXPECT_EQ(GXBitmapCopyFromMemory(bitmap, nullptr, &data), GXResultSuccess);
    }

    /// Coverage as white shows it.
    [[nodiscard]] Plane Coverage(bool ellipse, const GXRect& rect) const {
        const Canvas c(m_width, m_height);
        EXPECT_EQ(GXRenderTargetSetStrokeAdjustment(c.target, 0), GXResultSuccess);
        const Owned<GXBrush> white = Solid(0xFFFFFFFF);
        EXPECT_EQ(ellipse ? GXRenderTargetFillEllipse(c.target, &rect, white)
                          : GXRenderTargetFillRect(c.target, &rect, white),
                  GXResultSuccess);
        Plane plane = c.Pixels();
        for (uint32_t& p : plane) {
            p >>= 24;
        }
        return plane;
    }

    Owned<GXBrush> Mask(uint32_t type, Plane& values) {
        Plane pixels;
        Owned<GXBrush> brush = BitmapBrush(GXPixelFormatPBGRA32, false, 1.0F, pixels);
        values.resize(Count());
        std::transform(pixels.begin(), pixels.end(), values.begin(),
                       [&](uint32_t p) { return static_cast<uint32_t>(MaskOracle(static_cast<int>(type), p)); });
        return brush;
    }

    Owned<GXBrush> BitmapBrush(GXPixelFormat format, bool repeated, float opacity, Plane& colors) {
        const Plane pixels = RandomPixels(format != GXPixelFormatPBGRA32);
        const Owned<GXBitmap> source = MakeBitmap(m_width, m_height, GXPixelFormatPBGRA32);
        Put(source, pixels);
        const Owned<GXBitmap> bitmap = MakeBitmap(m_width, m_height, format);
        EXPECT_EQ(GXBitmapCopyFromBitmap(bitmap, nullptr, source, nullptr), GXResultSuccess);
        const auto shift = repeated ? static_cast<int32_t>(Below(2 * m_width)) : 0;
        const GXMatrix place{1, 0, 0, 1, static_cast<float>(shift), 0};
        const uint32_t extend = repeated ? GXExtendRepeat : GXExtendClamp;
        const GXBitmapBrushOptions options{Below(2), extend, extend};
        Owned<GXBrush> brush;
        EXPECT_EQ(GXCreateBrushBitmap(bitmap, opacity, &options, &place, brush.Out()), GXResultSuccess);
        colors.resize(Count());
        for (size_t i = 0; i < Count(); ++i) {
            const size_t x = (i % m_width + 2 * static_cast<size_t>(m_width) - static_cast<size_t>(shift)) % m_width;
            colors[i] = Times(pixels[i / m_width * m_width + x], static_cast<int>(opacity * 256));
        }
        return brush;
    }

    Owned<GXBrush> Paint(Plane& colors) {
        m_paintKind = Below(8);
        const uint32_t solid = Below(2) == 0 ? 0xFF000000U | Below(1U << 24) : Byte() << 24 | Below(1U << 24);
        switch (m_paintKind) {
        case 0:
        case 1:
            colors.assign(Count(),
                          WithAlpha(Times(solid, static_cast<int>(solid >> 24) + 1), static_cast<int>(solid >> 24)));
            return Solid(solid);
        case 2:
            return BitmapBrush(GXPixelFormatPBGRA32, false, 1.0F, colors);
        case 3:
            return BitmapBrush(GXPixelFormatBGRX32, false, Below(2) == 0 ? 1.0F : 0.5F, colors);
        case 4:
            return BitmapBrush(GXPixelFormatBGR24, false, Below(2) == 0 ? 1.0F : 0.25F, colors);
        case 5:
            return BitmapBrush(Below(2) == 0 ? GXPixelFormatBGRX32 : GXPixelFormatPBGRA32, true, 1.0F, colors);
        default:
            break;
        }
        // A gradient, drawn alone on nothing; its colour lines are level, so that no row depends on where spans begin.
        const bool radial = m_paintKind == 7;
        const GXGradientStop stops[] = {{0, solid}, {0.5F, 0xFF20E040U}, {1, 0xFFFF0080U}};
        Owned<GXGradient> gradient;
        if (radial) { // circles that leave most of the target without a colour
            const auto h = static_cast<float>(m_height);
            const GXRadialGradientDesc desc{stops, 3, {10, h}, 1, {12, h / 2}, h, 0, 0, Below(2) * 0x80402010U};
            EXPECT_EQ(GXCreateGradientRadial(&desc, gradient.Out()), GXResultSuccess);
        } else {
            const GXLinearGradientDesc desc{
                stops, 3,          {0, 1}, {0, static_cast<float>(m_height) - 1}, static_cast<uint8_t>(Below(2)),
                1,     0x40FFFF00U};
            EXPECT_EQ(GXCreateGradientLinear(&desc, gradient.Out()), GXResultSuccess);
        }
        Owned<GXBrush> brush;
        EXPECT_EQ(GXCreateBrushGradient(gradient, Below(2) == 0 ? 1.0F : 0.5F, nullptr, brush.Out()), GXResultSuccess);
        if (radial) { // no steps along spans where a mask cuts none: a bitmap of it stands for the gradient
            const Owned<GXBitmap> drawn = Drawn(brush, colors);
            const GXBitmapBrushOptions nearest{GXInterpolationNearest, GXExtendClamp, GXExtendClamp};
            Owned<GXBrush> copy;
            EXPECT_EQ(GXCreateBrushBitmap(drawn, 1.0F, &nearest, nullptr, copy.Out()), GXResultSuccess);
            return copy;
        }
        Drawn(brush, colors);
        return brush;
    }

    Owned<GXBitmap> Drawn(GXBrush brush, Plane& colors) const {
        Canvas c(m_width, m_height);
        const GXRect all{0, 0, static_cast<float>(m_width), static_cast<float>(m_height)};
        EXPECT_EQ(GXRenderTargetFillRect(c.target, &all, brush), GXResultSuccess);
        colors = c.Pixels();
        return std::move(c.bitmap);
    }

    uint32_t m_width, m_height;
    std::mt19937 m_random;
    uint32_t m_paintKind = 0;
};

TEST(PaintModel, PaintsMasksClipsAndModesComeTogetherByTheFormulas) {
    PaintModel model(53, 11, 1);
    for (int round = 0; round < 2500; ++round) {
        SCOPED_TRACE(round);
        model.Round();
        if (testing::Test::HasFatalFailure()) {
            return;
        }
    }
}

TEST(PaintModel, RowsLongerThanAnyBufferDoToo) {
    PaintModel model(2311, 3, 2);
    for (int round = 0; round < 150; ++round) {
        SCOPED_TRACE(round);
        model.Round();
        if (testing::Test::HasFatalFailure()) {
            return;
        }
    }
}

} // namespace
