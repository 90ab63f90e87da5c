// SPDX-License-Identifier: MIT
// Every composition, blend mode and mask, on random colours, twice: the card alone against the formulas of the shaders
// in the processor's floats, and the back end, which leaves to the software what the shaders compute differently,
// against the software.
#include <algorithm>
#include <random>

#include "../ShaderModel.h"
#include "Direct3D11/D3D11Half.h"
#include "Direct3D11/Shaders/D3D11CardModes.h"
#include "HardwareTest.h"
#include "Paint/Gradient.h"
#include "Pixels/Opacity.h"
#include "Pixels/PixelMath.h"

using namespace Graphics;

namespace {

constexpr int32_t kCells = 24;
constexpr int32_t kCell = 4; // pixels
constexpr int32_t kSide = kCells * kCell;

void FillRect(RenderTarget& t, const Rect& r, const Brush& brush) {
    const BasicFigure figure(BasicFigure::Kind::Rectangle, r);
    t.Fill(figure, brush);
}

/// Random colours, one for each cell; alpha from `leastAlpha` up.
[[nodiscard]] std::vector<Color> CellColors(uint32_t seed, float leastAlpha) {
    std::mt19937 random(seed);
    const auto next = [&] { return static_cast<float>(random() % 256) / 255.0F; };
    std::vector<Color> colors;
    for (int32_t i = 0; i < kCells * kCells; ++i) {
        const float red = next(), green = next(), blue = next();
        colors.push_back({red, green, blue, leastAlpha + (1.0F - leastAlpha) * next()});
    }
    return colors;
}

/// Each one draw.
void FillCells(RenderTarget& t, uint32_t seed, float leastAlpha) {
    const std::vector<Color> colors = CellColors(seed, leastAlpha);
    for (int32_t i = 0; i < kCells * kCells; ++i) {
        const auto left = static_cast<float>(i % kCells * kCell);
        const auto top = static_cast<float>(i / kCells * kCell);
        FillRect(t, {left, top, left + kCell, top + kCell}, SolidBrush(colors[static_cast<size_t>(i)]));
    }
}

/// A random word for each cell, premultiplied.
[[nodiscard]] std::vector<uint32_t> CellWords(uint32_t seed, bool opaque) {
    std::mt19937 random(seed);
    std::vector<uint32_t> words;
    for (int32_t i = 0; i < kCells * kCells; ++i) {
        const uint32_t alpha = opaque ? 255 : random() % 256;
        const auto channel = [&] { return random() % (alpha + 1); };
        const uint32_t red = channel(), green = channel(), blue = channel();
        words.push_back(alpha << 24 | red << 16 | green << 8 | blue);
    }
    return words;
}

[[nodiscard]] std::shared_ptr<Bitmap> RandomBitmap(uint32_t seed, bool opaque) {
    auto image = std::make_shared<SysMemBitmap>(kCells, kCells, GXPixelFormatPBGRA32);
    const std::vector<uint32_t> words = CellWords(seed, opaque);
    for (size_t y = 0; y < kCells; ++y) {
        std::memcpy(image->Data() + y * image->StrideBytes(), words.data() + y * kCells, kCells * sizeof(uint32_t));
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

/// One pixel that shaders draw into, by their formulas: of a surface, or of a group over it.
class FormulaPixel {
public:
    using Float4 = ShaderModel::Float4;

    explicit FormulaPixel(const Float4& surface) : m_surface(surface) {}

    void BeginGroup(bool isolated, bool knockout) {
        m_isGroup = true;
        m_isolated = isolated;
        m_plain = isolated && !knockout;
        m_knockout = knockout;
        m_initial = isolated ? Float4{0, 0, 0, D3D11Half::ToFloat(D3D11Half::kAlmostNothing)} : Stored(m_surface, true);
        m_color = m_initial;
        m_group = {0, 0, 0, 0};
    }
    /// `shape`: the shape mask's value.
    void Draw(uint32_t mode, const Float4& source, float shape) {
        Float4& color = m_isGroup ? m_color : m_surface;
        const ShaderModel::Inputs in{source, shape, color, m_initial, m_group};
        if (!m_isGroup || m_plain) {
            color = mode == GXBlendModeNormal
                        ? Over(ShaderModel::Compose(D3D11Fragment::BasicFastComposition, mode, in).color, color)
                        : ShaderModel::Compose(D3D11Fragment::BasicComposition, mode, in).color;
        } else {
            const auto composition = m_knockout ? m_isolated ? D3D11Fragment::IsolatedKnockoutLayerComposition
                                                             : D3D11Fragment::KnockoutLayerComposition
                                                : D3D11Fragment::LayerComposition;
            const ShaderModel::Outputs out = ShaderModel::Compose(composition, mode, in);
            m_color = out.color;
            m_group = Stored(out.shape, true);
        }
        color = Stored(color, m_isGroup);
    }
    void EndGroup(float opacity) {
        Float4 result = m_color;
        if (!m_plain) {
            const auto composition =
                m_isolated ? D3D11Fragment::IsolatedLayerResultComposition : D3D11Fragment::LayerResultComposition;
            result = Stored(ShaderModel::Compose(composition, 0, {{}, 1, m_color, m_initial, m_group}).color, true);
        }
        const float factor = static_cast<float>(OpacityFactor(opacity)) / 256.0F;
        m_isGroup = false;
        Draw(GXBlendModeNormal, ShaderModel::Scaled(result, factor), m_plain ? 1.0F : m_group.r);
    }
    [[nodiscard]] uint32_t Word() const {
        const auto level = [](float v) { return uint32_t{D3D11Half::FloatToLevel(v)}; };
        return 0xFF000000U | level(m_surface.r) << 16 | level(m_surface.g) << 8 | level(m_surface.b);
    }

private:
    [[nodiscard]] static Float4 Over(const Float4& s, const Float4& d) {
        const float rest = 1.0F - s.a;
        return {s.r + d.r * rest, s.g + d.g * rest, s.b + d.b * rest, s.a + d.a * rest};
    }
    /// As the texture keeps it: half floats for groups, levels for surfaces.
    [[nodiscard]] static Float4 Stored(const Float4& c, bool half) {
        const auto kept = [half](float v) {
            return half ? D3D11Half::ToFloat(D3D11Half::FromFloat(v))
                        : static_cast<float>(D3D11Half::FloatToLevel(v)) / 255.0F;
        };
        return {kept(c.r), kept(c.g), kept(c.b), kept(c.a)};
    }

    Float4 m_surface, m_color{}, m_initial{}, m_group{};
    bool m_isGroup = false, m_isolated = true, m_knockout = false, m_plain = false;
};

/// A picture of cells, each of which `draw(pixel, cell)` draws over the opaque colours of `seed`.
template <class Draw> [[nodiscard]] std::vector<uint32_t> ByFormulas(uint32_t seed, Draw&& draw) {
    std::vector<uint32_t> picture(static_cast<size_t>(kSide) * kSide);
    const std::vector<Color> below = CellColors(seed, 1.0F);
    for (size_t cell = 0; cell < below.size(); ++cell) {
        FormulaPixel pixel(ShaderModel::Unit(PackColor(below[cell])));
        draw(pixel, cell);
        for (size_t y = 0; y < kCell; ++y) {
            std::fill_n(picture.begin() + static_cast<ptrdiff_t>((cell / kCells * kCell + y) * kSide) +
                            static_cast<ptrdiff_t>(cell % kCells * kCell),
                        kCell, pixel.Word());
        }
    }
    return picture;
}

/// The cell lies in the rectangle, whose sides are multiples of a cell's.
[[nodiscard]] bool IsIn(size_t cell, const Rect& r) {
    const auto x = static_cast<float>(cell % kCells * kCell);
    const auto y = static_cast<float>(cell / kCells * kCell);
    return x >= r.left && x < r.right && y >= r.top && y < r.bottom;
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
            const std::vector<Color> colors = CellColors(2, 0.0F);
            const std::vector<uint32_t> words = CellWords(2, false);
            const auto formulas = ByFormulas(1, [&](FormulaPixel& pixel, size_t cell) {
                const uint32_t word = bitmap ? words[cell] : PremultiplyPixel(PackColor(colors[cell]));
                pixel.Draw(mode, ShaderModel::Unit(word), 1.0F);
            });
            ExpectFormulas(OnCardAlone(kSide, kSide, draw), formulas, what);
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
    constexpr Rect kBelow{8, 8, kSide - 8, kSide - 8};
    constexpr Rect kAbove{12, 12, kSide - 20, kSide - 12};
    const std::vector<uint32_t> below = CellWords(7, true), above = CellWords(8, false), values = CellWords(9, false);
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
                    FillRect(t, kBelow, *CellBrush(7, opaqueBelow));
                    t.SetBlendMode(mode);
                    const BasicFigure clip(BasicFigure::Kind::Ellipse, {2, 4, kSide - 2, kSide - 4});
                    if (mask == 1) {
                        t.SetShapeMask(GXMaskTypeAlpha, CellBrush(9, false));
                    } else if (mask == 2) {
                        t.SetOpacityMask(GXMaskTypeInverseLuminosity, CellBrush(9, false));
                    } else if (mask == 3) {
                        t.Clip(clip);
                    }
                    FillRect(t, kAbove, *CellBrush(8, false));
                    t.EndLayer();
                };
                const std::string what = "group " + std::to_string(kind) + " mode " + std::to_string(mode) + " as " +
                                         std::to_string(groupMode) + " mask " + std::to_string(mask);
                ExpectSoftware(OnHardware(kSide, kSide, draw), InSoftware(kSide, kSide, draw), kDrawIntoGroup, what);
                if (opaqueBelow) {
                    mask = mode == 0 ? 1 : 0;
                    const auto formulas = ByFormulas(6, [&](FormulaPixel& pixel, size_t cell) {
                        pixel.BeginGroup((kind & 1U) != 0, kind >> 1U != 0);
                        if (IsIn(cell, kBelow)) {
                            pixel.Draw(GXBlendModeNormal, ShaderModel::Unit(below[cell]), 1.0F);
                        }
                        if (IsIn(cell, kAbove)) {
                            const float shape = mask == 1 ? ShaderModel::Unit(values[cell]).a : 1.0F;
                            pixel.Draw(mode, ShaderModel::Unit(above[cell]), shape);
                        }
                        pixel.EndGroup(0.8F);
                    });
                    ExpectFormulas(OnCardAlone(kSide, kSide, draw), formulas, what);
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
