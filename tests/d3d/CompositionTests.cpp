// SPDX-License-Identifier: MIT
// Every composition, blend mode and mask, on random colours, twice: the card alone against the formulas of the shaders
// in the processor's floats, and the back end, which leaves to the software what the shaders compute differently,
// against the software.
#include <random>

#include "Direct3D11/Shaders/D3D11CardModes.h"
#include "HardwareTest.h"
#include "Paint/Gradient.h"

using namespace Graphics;

namespace {

constexpr int32_t kCells = 24;
constexpr int32_t kCell = 4; // pixels
constexpr int32_t kSide = kCells * kCell;

void FillRect(RenderTarget& t, const Rect& r, const Brush& brush) {
    const BasicFigure figure(BasicFigure::Kind::Rectangle, r);
    t.Fill(figure, brush);
}

/// Cells of random colours, each one draw; alpha from `leastAlpha` up.
void FillCells(RenderTarget& t, uint32_t seed, float leastAlpha) {
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

// Levels of 255. The card rounds to levels once, or in groups not at all before their end; the software truncates up to
// four products of bytes in a draw. Drivers may differ by one level more.
constexpr int kOneDraw = 3;
constexpr int kDrawIntoGroup = 5;

void ExpectFormulas(const std::vector<uint32_t>& card, const std::vector<uint32_t>& formulas, const std::string& what) {
    const Difference d = Compare(card, formulas, kSide);
    EXPECT_LE(d.largest, 2) << what << " at " << d.x << " " << d.y;
    EXPECT_LE(d.mean, 0.25) << what;
}

void ExpectSoftware(const std::vector<uint32_t>& window, const std::vector<uint32_t>& software, int most,
                    const std::string& what) {
    const Difference d = Compare(window, software, kSide);
    EXPECT_LE(d.largest, most) << what << " at " << d.x << " " << d.y;
    EXPECT_LE(d.mean, most == 0 ? 0.0 : 1.0) << what;
}

} // namespace

TEST_F(HardwareTest, EveryModeOnASurface) {
    for (uint32_t mode = 0; mode < 17; ++mode) {
        for (const bool bitmap : {false, true}) {
            const Drawing draw = [&](RenderTarget& t) {
                FillCells(t, 1, 1.0F);
                t.SetBlendMode(mode);
                if (bitmap) {
                    FillRect(t, kAll, *CellBrush(2, false));
                } else {
                    FillCells(t, 2, 0.0F);
                }
            };
            const std::string what = "mode " + std::to_string(mode) + (bitmap ? " bitmap" : " colours");
            ExpectFormulas(OnCardAlone(kSide, kSide, draw), ByFormulas(kSide, kSide, draw), what);
            ExpectSoftware(OnHardware(kSide, kSide, draw), InSoftware(kSide, kSide, draw),
                           CardBlendsAsSoftware(mode) ? kOneDraw : 0, what);
        }
    }
}

TEST_F(HardwareTest, EveryMaskOfEveryKind) {
    for (uint32_t type = 0; type < 4; ++type) {
        for (const bool ofShape : {false, true}) {
            for (const int kind : {0, 1, 2, 3}) { // colour, bitmap, bitmap with opacity, gradient
                const Difference d = Both(kSide, kSide, [&](RenderTarget& t) {
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
                EXPECT_LE(d.largest, kOneDraw)
                    << "type " << type << " shape " << ofShape << " kind " << kind << " at " << d.x << " " << d.y;
            }
        }
    }
}

TEST_F(HardwareTest, EveryGroupAndMode) {
    for (uint32_t kind = 0; kind < 4; ++kind) {
        for (uint32_t mode = 0; mode < 16; ++mode) {
            for (const bool opaqueBelow : {true, false}) {
                const uint32_t groupMode = opaqueBelow ? uint32_t{GXBlendModeNormal} : (mode + 5) % 16;
                uint32_t mask = (mode + kind) % 4;
                const Drawing draw = [&](RenderTarget& t) {
                    FillCells(t, 6, 1.0F);
                    t.SetBlendMode(groupMode);
                    GXLayerDesc layer{};
                    layer.opacity = 0.8F;
                    layer.isolated = kind & 1U;
                    layer.knockout = kind >> 1U;
                    t.BeginLayer(layer);
                    FillRect(t, {8, 8, kSide - 8, kSide - 8}, *CellBrush(7, opaqueBelow));
                    t.SetBlendMode(mode);
                    const BasicFigure clip(BasicFigure::Kind::Ellipse, {2, 4, kSide - 2, kSide - 4});
                    if (mask == 1) {
                        t.SetShapeMask(GXMaskTypeAlpha, CellBrush(9, false));
                    } else if (mask == 2) {
                        t.SetOpacityMask(GXMaskTypeInverseLuminosity, CellBrush(9, false));
                    } else if (mask == 3) {
                        t.Clip(clip);
                    }
                    FillRect(t, {12, 12, kSide - 20, kSide - 12}, *CellBrush(8, false));
                    t.EndLayer();
                };
                const std::string what = "group " + std::to_string(kind) + " mode " + std::to_string(mode) + " as " +
                                         std::to_string(groupMode) + " mask " + std::to_string(mask);
                ExpectSoftware(OnHardware(kSide, kSide, draw), InSoftware(kSide, kSide, draw), kDrawIntoGroup, what);
                if (opaqueBelow) {
                    mask = mode == 0 ? 1 : 0;
                    ExpectFormulas(OnCardAlone(kSide, kSide, draw), ByFormulas(kSide, kSide, draw), what);
                }
            }
        }
    }
}

TEST_F(HardwareTest, GroupsInGroupsAndClears) {
    for (int outer = 0; outer < 4; ++outer) {
        for (int inner = 0; inner < 4; ++inner) {
            const Difference d = Both(kSide, kSide, [&](RenderTarget& t) {
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
                t.Fill(first, red);
                layer.opacity = 1.0F;
                layer.isolated = (inner & 1) != 0;
                layer.knockout = (inner & 2) != 0;
                t.BeginLayer(layer);
                t.Fill(second, green);
                FillRect(t, {40, 30, 70, 60}, blue);
                FillRect(t, {50, 10, 60, 90}, red);
                t.EndLayer();
                t.PushState();
                const BasicFigure hole(BasicFigure::Kind::Ellipse, {70, 70, 90, 90});
                t.Clip(hole);
                t.Clear(0x80204060U);
                t.PopState();
                t.EndLayer();
            });
            // Edges of ellipses lie on eighths of a pixel in the software.
            EXPECT_LE(d.mean, 1.0) << outer << " " << inner << " largest " << d.largest << " at " << d.x << " " << d.y;
            EXPECT_LE(d.above16, 0.002) << outer << " " << inner << " largest " << d.largest << " at " << d.x << " "
                                        << d.y;
        }
    }
}
