// SPDX-License-Identifier: MIT
// Every composition, blend mode and mask, on random colours, twice: against the formulas in the processor's floats,
// which are the shaders', and against the software, which has rules of its own. The software computes in bytes and
// truncates each product; a step of one level grows to the distances that the table below gives, measured, with their
// reasons.
#include <random>

#include "HardwareTest.h"
#include "Paint/Gradient.h"

using namespace Graphics;

namespace {

constexpr int32_t kCells = 24;
constexpr int32_t kCell = 4; // pixels
constexpr int32_t kSide = kCells * kCell;

void FillRect(RenderTargetBase& t, const Rect& r, const Brush& brush) {
    const BasicFigure figure(BasicFigure::Kind::Rectangle, r);
    t.Fill({nullptr, &figure}, brush, false);
}

/// Cells of random colours, each one draw; alpha from `leastAlpha` up.
void FillCells(RenderTargetBase& t, uint32_t seed, float leastAlpha) {
    std::mt19937 random(seed);
    const auto next = [&] { return static_cast<float>(random() % 256) / 255.0F; };
    for (int32_t y = 0; y < kCells; ++y) {
        for (int32_t x = 0; x < kCells; ++x) {
            const Color c{next(), next(), next(), leastAlpha + (1.0F - leastAlpha) * next()};
            const auto left = static_cast<float>(x * kCell);
            const auto top = static_cast<float>(y * kCell);
            FillRect(t, {left, top, left + kCell, top + kCell}, SolidBrush(c));
        }
    }
}

/// A bitmap with a random word for each cell, premultiplied.
[[nodiscard]] std::shared_ptr<Bitmap> RandomBitmap(uint32_t seed, bool opaque) {
    auto image = std::make_shared<SysMemBitmap>(kCells, kCells, GXPixelFormatPBGRA32);
    std::mt19937 random(seed);
    for (int32_t y = 0; y < kCells; ++y) {
        auto* row = reinterpret_cast<uint32_t*>(image->Data() + static_cast<size_t>(y) * image->StrideBytes());
        for (int32_t x = 0; x < kCells; ++x) {
            const uint32_t alpha = opaque ? 255 : random() % 256;
            const auto channel = [&] { return random() % (alpha + 1); };
            row[x] = alpha << 24 | channel() << 16 | channel() << 8 | channel();
        }
    }
    return std::make_shared<Bitmap>(image);
}

/// The bitmap over the whole picture, a cell for each pixel.
[[nodiscard]] std::shared_ptr<BitmapBrush> CellBrush(uint32_t seed, bool opaque) {
    auto brush = std::make_shared<BitmapBrush>(RandomBitmap(seed, opaque));
    brush->interpolation = GXInterpolationNearest;
    brush->transform = {kCell, 0, 0, kCell, 0, 0};
    return brush;
}

constexpr Rect kAll{0, 0, kSide, kSide};

/// Largest distance from the software in levels of 255, as measured, and its mean.
struct Distance {
    int onSurface;
    int inGroup;
    double mean;
    const char* reason;
};

constexpr const char* kTruncation = "products of bytes are truncated, here one after the other";
constexpr Distance kFromSoftware[] = {
    {1, 3, 0.8, kTruncation},                                                                      // Normal
    {2, 4, 0.9, kTruncation},                                                                      // Multiply
    {3, 3, 0.8, kTruncation},                                                                      // Screen
    {3, 4, 0.8, kTruncation},                                                                      // Overlay
    {2, 3, 0.7, kTruncation},                                                                      // Darken
    {2, 3, 0.7, kTruncation},                                                                      // Lighten
    {63, 6, 0.6, "(1 - cb) / cs divides the truncation by a small cs; 2 pixels in 1000 above 16"}, // ColorBurn
    {5, 15, 0.7, "cb / (1 - cs) divides the truncation by a small 1 - cs"},                        // ColorDodge
    {3, 4, 0.9, kTruncation},                                                                      // HardLight
    {3, 4, 0.8, kTruncation},                                                                      // SoftLight
    {3, 3, 0.7, kTruncation},                                                                      // Difference
    {2, 3, 0.6, kTruncation},                                                                      // Exclusion
    {191, 133, 13.3, "the software keeps the smallest channel, the shader sets it to 0"},          // Hue
    {130, 116, 12.9, "the software keeps the smallest channel, the shader sets it to 0"},          // Saturation
    {3, 3, 0.8, kTruncation},                                                                      // Color
    {5, 3, 1.0, "truncated luminosities, moved into range by a division"},                         // Luminosity
};
/// Against a transparent backdrop no mode blends; a source that is half transparent the software weighs twice there.
constexpr Distance kIsolatedKnockout = {0, 52, 8.5, "the software multiplies by the source's alpha twice"};

/// Draws once on the card and compares with both.
void Check(const std::vector<uint32_t>& card, const std::vector<uint32_t>& software,
           const std::vector<uint32_t>& formulas, const Distance& distance, bool inGroup, const std::string& what) {
    const Difference f = Compare(card, formulas, kSide);
    EXPECT_LE(f.largest, 2) << what << " at " << f.x << " " << f.y;
    EXPECT_LE(f.mean, 0.25) << what;
    const Difference d = Compare(card, software, kSide);
    std::printf("  %-24s formulas: largest %d mean %.3f  software: largest %3d mean %5.2f\n", what.c_str(), f.largest,
                f.mean, d.largest, d.mean);
    // Drivers may differ by one level.
    EXPECT_LE(d.largest, 1 + (inGroup ? distance.inGroup : distance.onSurface))
        << what << " at " << d.x << " " << d.y << ": " << distance.reason;
    EXPECT_LE(d.mean, 0.2 + distance.mean) << what << ": " << distance.reason;
    if (distance.mean < 2.0) {
        EXPECT_LE(d.above16, 0.003) << what << ": " << distance.reason;
    }
}

} // namespace

TEST_F(HardwareTest, EveryModeOnASurface) {
    for (uint32_t mode = 0; mode < 17; ++mode) {
        for (const bool bitmap : {false, true}) {
            const Drawing draw = [&](RenderTargetBase& t) {
                FillCells(t, 1, 1.0F);
                t.SetBlendMode(mode);
                if (bitmap) {
                    FillRect(t, kAll, *CellBrush(2, false));
                } else {
                    FillCells(t, 2, 0.0F);
                }
            };
            Check(OnHardware(kSide, kSide, draw), InSoftware(kSide, kSide, draw), ByFormulas(kSide, kSide, draw),
                  kFromSoftware[mode % 16], false, "mode " + std::to_string(mode) + (bitmap ? " bitmap" : " colours"));
        }
    }
}

TEST_F(HardwareTest, EveryMaskOfEveryKind) {
    for (uint32_t type = 0; type < 4; ++type) {
        for (const bool ofShape : {false, true}) {
            for (const int kind : {0, 1, 2, 3}) { // colour, bitmap, bitmap with opacity, gradient
                const Difference d = Both(kSide, kSide, [&](RenderTargetBase& t) {
                    FillCells(t, 3, 1.0F);
                    std::shared_ptr<Brush> mask;
                    if (kind == 0) {
                        mask = std::make_shared<SolidBrush>(Color{0.8F, 0.3F, 0.1F, 0.6F});
                    } else if (kind < 3) {
                        mask = CellBrush(4, false);
                        mask->opacity = kind == 2 ? 0.5F : 1.0F;
                    } else {
                        auto gradient = std::make_shared<LinearGradient>();
                        gradient->end = {kSide, kSide / 2.0F};
                        const GradientStop stops[] = {{0.0F, 0x20FF8000U}, {1.0F, 0xFF0080FFU}};
                        gradient->stops.Add(stops, std::size(stops));
                        mask = std::make_shared<GradientBrush>(gradient);
                    }
                    if (ofShape) {
                        t.SetShapeMask(type, mask);
                    } else {
                        t.SetOpacityMask(type, mask);
                    }
                    FillRect(t, kAll, *CellBrush(5, false));
                });
                EXPECT_LE(d.largest, 4) << "type " << type << " shape " << ofShape << " kind " << kind << " at " << d.x
                                        << " " << d.y;
            }
        }
    }
}

TEST_F(HardwareTest, EveryGroupAndMode) {
    for (int kind = 0; kind < 4; ++kind) {
        for (uint32_t mode = 0; mode < 16; ++mode) {
            for (const uint32_t groupMode : {uint32_t{GXBlendModeNormal}, uint32_t{GXBlendModeMultiply}}) {
                if (groupMode != GXBlendModeNormal && mode > GXBlendModeScreen) {
                    continue;
                }
                const Drawing draw = [&](RenderTargetBase& t) {
                    FillCells(t, 6, 1.0F);
                    t.SetBlendMode(groupMode);
                    GXLayerDesc layer{};
                    layer.opacity = 0.8F;
                    layer.isolated = (kind & 1) != 0;
                    layer.knockout = (kind & 2) != 0;
                    t.BeginLayer(layer);
                    // Opaque below: where a group is half transparent the software weighs its colour twice.
                    FillRect(t, {8, 8, kSide - 8, kSide - 8}, *CellBrush(7, true));
                    t.SetBlendMode(mode);
                    if (mode == 0) {
                        t.SetShapeMask(GXMaskTypeAlpha, CellBrush(9, false));
                    }
                    FillRect(t, {12, 12, kSide - 20, kSide - 12}, *CellBrush(8, mode >= GXBlendModeHue));
                    t.EndLayer();
                };
                const bool weighedTwice = kind == 3 && mode != 0 && mode < GXBlendModeHue;
                const bool isolatedKnockout = kind == 3; // no mode blends
                Check(OnHardware(kSide, kSide, draw), InSoftware(kSide, kSide, draw), ByFormulas(kSide, kSide, draw),
                      weighedTwice ? kIsolatedKnockout : kFromSoftware[isolatedKnockout ? 0 : mode], true,
                      "group " + std::to_string(kind) + " mode " + std::to_string(mode) + " as " +
                          std::to_string(groupMode));
            }
        }
    }
}

TEST_F(HardwareTest, GroupsInGroupsAndClears) {
    for (int outer = 0; outer < 4; ++outer) {
        for (int inner = 0; inner < 4; ++inner) {
            const Difference d = Both(kSide, kSide, [&](RenderTargetBase& t) {
                FillCells(t, 10, 1.0F);
                GXLayerDesc layer{};
                layer.opacity = 0.7F;
                layer.isolated = (outer & 1) != 0;
                layer.knockout = (outer & 2) != 0;
                t.BeginLayer(layer);
                const SolidBrush red({1, 0, 0, 0.5F});
                const SolidBrush green({0, 0.8F, 0.2F, 0.75F});
                const SolidBrush blue({0, 0.2F, 1, 1});
                const BasicFigure first(BasicFigure::Kind::Ellipse, {4, 4, 60, 70});
                const BasicFigure second(BasicFigure::Kind::Ellipse, {30, 20, 92, 80});
                t.Fill({nullptr, &first}, red, false);
                layer.opacity = 1.0F;
                layer.isolated = (inner & 1) != 0;
                layer.knockout = (inner & 2) != 0;
                t.BeginLayer(layer);
                t.Fill({nullptr, &second}, green, false);
                FillRect(t, {40, 30, 70, 60}, blue);
                FillRect(t, {50, 10, 60, 90}, red);
                t.EndLayer();
                t.PushState();
                const BasicFigure hole(BasicFigure::Kind::Ellipse, {70, 70, 90, 90});
                t.Clip({nullptr, &hole});
                t.Clear(0x80204060U);
                t.PopState();
                t.EndLayer();
            });
            // Inside a half transparent group a knockout group's backdrop is taken for opaque by the fixed formula.
            const bool knockoutOverHalf = (inner & 2) != 0 && (inner & 1) == 0 && (outer & 1) != 0;
            if (!knockoutOverHalf) {
                EXPECT_LE(d.mean, 2.0) << outer << " " << inner << " largest " << d.largest << " at " << d.x << " "
                                       << d.y;
                EXPECT_LE(d.above16, 0.01)
                    << outer << " " << inner << " largest " << d.largest << " at " << d.x << " " << d.y;
            }
        }
    }
}
