// SPDX-License-Identifier: MIT
// Small scenes on both back ends.
#include <cmath>
#include <random>

#include "Geometry/Geometry.h"
#include "Geometry/StrokeStyle.h"
#include "HardwareTest.h"
#include "Paint/Gradient.h"

using namespace Graphics;

namespace {

constexpr int32_t kSide = 128;

void FillRect(RenderTarget& t, const Rect& r, const Brush& brush) {
    const BasicFigure figure(BasicFigure::Kind::Rectangle, r);
    t.Fill(figure, brush);
}

[[nodiscard]] SolidBrush Solid(float r, float g, float b, float a = 1.0F) { return SolidBrush({r, g, b, a}); }

void FillEllipse(RenderTarget& t, const Rect& r, const Brush& brush) {
    const BasicFigure figure(BasicFigure::Kind::Ellipse, r);
    t.Fill(figure, brush);
}

/// The agreed bound for whole scenes.
void ExpectClose(const Difference& d, const std::string& what) {
    EXPECT_LE(d.mean, 2.0) << what;
    EXPECT_LE(d.above16, 0.01) << what << " largest " << d.largest << " at " << d.x << " " << d.y;
}

[[nodiscard]] Shape Star(float scale, uint32_t rule) {
    Geometry shape;
    shape.SetFillRule(rule);
    for (int i = 0; i < 5; ++i) {
        const float angle = static_cast<float>(i) * 2.0F * 6.2831853F / 5.0F;
        const Point p{(0.5F + 0.48F * std::sin(angle)) * scale, (0.5F - 0.48F * std::cos(angle)) * scale};
        if (i == 0) {
            shape.BeginFigure(p);
        } else {
            shape.LineTo(p);
        }
    }
    shape.EndFigureClose();
    return shape;
}

[[nodiscard]] std::shared_ptr<Bitmap> Picture(int32_t width, int32_t height, GXPixelFormat format) {
    auto image = std::make_shared<SysMemBitmap>(width, height, format);
    image->Zero();
    std::mt19937 random(17);
    for (int32_t y = 0; y < height; ++y) {
        uint8_t* row = image->Data() + static_cast<size_t>(y) * image->StrideBytes();
        for (size_t x = 0; x < image->StrideBytes(); ++x) {
            // Soft enough that a hundredth of a pixel does not show.
            row[x] = static_cast<uint8_t>(128 + 60 * std::sin(static_cast<double>(x) * 0.11 + y * 0.2) + random() % 32);
        }
    }
    return std::make_shared<Bitmap>(image);
}

template <class G> [[nodiscard]] std::shared_ptr<G> WithStops(bool extend) {
    auto gradient = std::make_shared<G>();
    const GradientStop stops[] = {
        {0.0F, 0xFFFF0000U}, {0.3F, 0xFF00FF00U}, {0.3F, 0xFFFFFF00U}, {0.8F, 0x800000FFU}, {1.0F, 0xFFFFFFFFU}};
    gradient->stops.Add(stops, std::size(stops));
    gradient->extendStart = extend;
    gradient->extendEnd = extend;
    return gradient;
}

} // namespace

TEST_F(HardwareTest, RectanglesAndEllipses) {
    const Difference d = Both(kSide, kSide, [](RenderTarget& t) {
        t.Clear(0xFFFFFFFFU);
        FillRect(t, {10, 10, 60, 60}, Solid(1, 0, 0));
        FillRect(t, {30.3F, 30.6F, 90.2F, 80.9F}, Solid(0, 0.5F, 1, 0.5F));
        t.SetStrokeAdjustment(false);
        FillRect(t, {40.3F, 5.6F, 100.2F, 20.9F}, Solid(0, 0.5F, 0));
        FillEllipse(t, {20, 50, 120, 126}, Solid(0.2F, 0.7F, 0.3F, 0.7F));
        FillEllipse(t, {60, 60, 66, 64}, Solid(0, 0, 0));
    });
    ExpectClose(d, "plain");
    const auto pixels = OnHardware(8, 8, [](RenderTarget& t) {
        t.Clear(0x00112233U);
        FillRect(t, {0, 0, 4, 8}, SolidBrush({1, 0, 0, 1}));
    });
    EXPECT_EQ(pixels[0], 0xFFFF0000U);
    EXPECT_EQ(pixels[7], 0xFF112233U) << "on the opaque surface alpha counts as 255";
}

TEST_F(HardwareTest, PathsStrokesAndClips) {
    for (const float scale : {20.0F, 300.0F}) {
        for (const uint32_t rule : {0U, 1U}) {
            ExpectClose(Both(320, 320,
                             [&](RenderTarget& t) {
                                 t.Clear(0xFFFFFFFFU);
                                 const Shape star = Star(scale, rule);
                                 t.SetTransform({0.98F, 0.1F, -0.1F, 0.98F, 30.0F, 5.0F});
                                 t.Fill(star, Solid(0.1F, 0.2F, 0.6F, 0.8F));
                                 StrokeStyle style;
                                 t.Stroke(star, Solid(0.9F, 0.1F, 0.1F), 2.5F, style);
                                 t.PushState();
                                 t.Clip(star);
                                 FillEllipse(t, {0, 0, scale, scale * 0.7F}, Solid(0, 0.7F, 0));
                                 FillRect(t, {0, 0, scale, scale * 0.2F}, Solid(0.7F, 0.7F, 0));
                                 t.PopState();
                             }),
                        "star " + std::to_string(scale) + " rule " + std::to_string(rule));
        }
    }
}

TEST_F(HardwareTest, SlopesOfBandsHaveTheSoftwaresCoverage) {
    for (int i = 0; i <= 12; ++i) {
        const float slope = std::tan(static_cast<float>(i) * 0.12F);
        Geometry shape;
        shape.BeginFigure({40.0F, 10.3F});
        shape.LineTo({140.0F, 10.3F});
        shape.LineTo({140.0F + slope * 100.0F, 110.7F});
        shape.LineTo({40.0F + slope * 100.0F, 110.7F});
        shape.EndFigureClose();
        const Difference d = Both(400, 128, [&](RenderTarget& t) {
            t.SetStrokeAdjustment(false);
            t.Fill(shape, Solid(1, 1, 1));
        });
        // The software's edges lie on eighths of a pixel, which is half of this.
        EXPECT_LE(d.largest, 20) << "slope " << slope << " at " << d.x << " " << d.y;
    }
}

TEST_F(HardwareTest, GradientsOfEveryKind) {
    for (const bool extend : {false, true}) {
        for (int kind = 0; kind < 3; ++kind) {
            ExpectClose(
                Both(kSide, kSide,
                     [&](RenderTarget& t) {
                         t.Clear(0xFFFFFFFFU);
                         std::shared_ptr<const Gradient> gradient;
                         if (kind == 0) {
                             auto linear = WithStops<LinearGradient>(extend);
                             linear->start = {20, 30};
                             linear->end = {100, 70};
                             gradient = linear;
                         } else if (kind == 1) {
                             auto radial = WithStops<RadialGradient>(extend);
                             radial->start = {50, 60};
                             radial->end = {64, 64};
                             radial->startRadius = 5;
                             radial->endRadius = 50;
                             gradient = radial;
                         } else {
                             auto mesh = std::make_shared<TriMeshGradient>();
                             mesh->vertices = {{10, 10, 0xFFFF0000U}, {110, 30, 0xFF00FF00U}, {40, 110, 0xFF0000FFU}};
                             gradient = mesh;
                         }
                         t.DrawGradient(gradient, 0.9F, {1, 0.1F, -0.1F, 1, 3, 2});
                         GradientBrush brush(gradient);
                         FillEllipse(t, {60, 60, 120, 120}, brush);
                     }),
                "gradient " + std::to_string(kind) + (extend ? " extended" : ""));
        }
    }
}

TEST_F(HardwareTest, BitmapsOfEveryInterpolationAndTiling) {
    const auto large = Picture(90, 70, GXPixelFormatBGRX32);
    for (uint32_t interpolation = 0; interpolation < 3; ++interpolation) {
        for (const float scale : {0.23F, 1.0F, 3.7F}) {
            ExpectClose(Both(kSide, kSide,
                             [&](RenderTarget& t) {
                                 t.DrawBitmap(*large, {0, 0, 90, 70},
                                              {5.0F, 9.0F, 5.0F + 90 * scale, 9.0F + 70 * scale}, 0.75F, interpolation);
                                 t.DrawBitmap(*large, {30, 20, 60, 50}, {120, 120, 80, 90}, 1.0F, interpolation);
                             }),
                        "interpolation " + std::to_string(interpolation) + " scale " + std::to_string(scale));
        }
        for (uint32_t x = 0; x < 3; ++x) {
            for (uint32_t y = 0; y < 3; ++y) {
                ExpectClose(Both(kSide, kSide,
                                 [&](RenderTarget& t) {
                                     BitmapBrush brush(Picture(23, 17, GXPixelFormatBGRX32));
                                     brush.interpolation = interpolation;
                                     brush.extendX = x;
                                     brush.extendY = y;
                                     brush.transform = {1.9F, 0.2F, -0.3F, 1.7F, 40.3F, 30.7F};
                                     FillRect(t, {0, 0, kSide, kSide}, brush);
                                     brush.transform = {1, 0, 0, 1, 0, 0}; // never left of the first column
                                     FillRect(t, {60, 60, kSide, kSide}, brush);
                                 }),
                            "tiling " + std::to_string(x) + std::to_string(y));
            }
        }
    }
}

TEST_F(HardwareTest, EveryFormatAndMasksOfBitmaps) {
    for (uint32_t format = GXPixelFormatUnknown + 1; format <= 10; ++format) {
        ExpectClose(Both(kSide, kSide,
                         [&](RenderTarget& t) {
                             t.Clear(0xFF8090A0U);
                             const auto bitmap = Picture(30, 30, static_cast<GXPixelFormat>(format));
                             t.DrawBitmap(*bitmap, {0, 0, 30, 30}, {0, 0, 60, 60}, 1.0F, GXInterpolationNearest);
                             t.FillMask(*bitmap, Solid(1, 0, 0), {60, 60, 120, 120}, GXInterpolationNearest);
                             t.FillMask(*bitmap, Solid(0, 1, 0, 0.5F), {70, 0, 80, 10}, GXInterpolationAverage);
                         }),
                    "format " + std::to_string(format));
    }
}

TEST_F(HardwareTest, InversionRestores) {
    const Drawing draw = [](RenderTarget& t) {
        t.Clear(0xFF336699U);
        FillEllipse(t, {10, 10, 100, 100}, Solid(1, 0.5F, 0));
    };
    const Drawing inverted = [&](RenderTarget& t) {
        draw(t);
        t.InvertRect({20.4F, 20, 80, 70.6F});
        t.InvertLine({0, 5}, {120, 100});
    };
    EXPECT_LE(Both(kSide, kSide, inverted).above16, 0.01);
    const auto twice = OnHardware(kSide, kSide, [&](RenderTarget& t) {
        inverted(t);
        t.InvertLine({0, 5}, {120, 100});
        t.InvertRect({20.4F, 20, 80, 70.6F});
    });
    EXPECT_EQ(Compare(twice, OnHardware(kSide, kSide, draw), kSide).largest, 0);
}
