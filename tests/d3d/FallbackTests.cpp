// SPDX-License-Identifier: MIT
// What the software draws for the card: how often pixels have to be fetched for it, and that they are right afterwards.
#include <cstring>
#include <random>

#include "HardwareTest.h"

using namespace Graphics;

namespace {

constexpr int32_t kSide = 256;

void Fill(RenderTarget& t, BasicFigure::Kind kind, const Rect& r, const Color& color, uint32_t mode) {
    const BasicFigure figure(kind, r);
    t.SetBlendMode(mode);
    t.Fill(figure, SolidBrush(color));
}

constexpr auto kRectangle = BasicFigure::Kind::Rectangle;
constexpr auto kEllipse = BasicFigure::Kind::Ellipse;
constexpr Color kOrange{0.9F, 0.5F, 0.1F, 0.8F};
constexpr Color kTeal{0.1F, 0.6F, 0.5F, 0.6F};

class FallbackTest : public HardwareTest {
protected:
    /// Draws over a backdrop that the card has drawn, compares with the software and returns what it cost.
    [[nodiscard]] static D3D11Counters Cost(const Drawing& draw) {
        D3D11Counters cost{};
        const Drawing whole = [&](RenderTarget& t) {
            t.Clear(0xFF6080A0U);
            Fill(t, kRectangle, {10, 10, 200, 200}, {0.3F, 0.7F, 0.4F, 1.0F}, GXBlendModeNormal);
            draw(t);
        };
        D3D11Counters& counters = Context()->Device().Counters();
        const D3D11Counters before = counters;
        const std::vector<uint32_t> pixels = OnHardware(kSide, kSide, whole);
        cost.readbacks = counters.readbacks - before.readbacks;
        cost.readbackPixels = counters.readbackPixels - before.readbackPixels;
        cost.fallbackDraws = counters.fallbackDraws - before.fallbackDraws;
        cost.sends = counters.sends - before.sends;
        cost.batches = counters.batches - before.batches;
        const Difference d = Compare(pixels, InSoftware(kSide, kSide, whole), kSide);
        EXPECT_LE(d.mean, 1.0) << d.largest << " at " << d.x << " " << d.y;
        EXPECT_LE(d.above16, 0.002) << d.largest << " at " << d.x << " " << d.y;
        return cost;
    }
};

} // namespace

TEST_F(FallbackTest, DrawsShareWhatWasRead) {
    const D3D11Counters one = Cost([](RenderTarget& t) {
        Fill(t, kRectangle, {20, 30, 84, 62}, kOrange, GXBlendModeHue);
    });
    EXPECT_EQ(one.readbacks, 1U);
    EXPECT_EQ(one.readbackPixels, 64U * 32U) << "just the touched rectangle";
    EXPECT_EQ(one.sends, 1U);

    const D3D11Counters outside = Cost([](RenderTarget& t) {
        const BasicFigure clip(kRectangle, {100, 100, 120, 120});
        t.Clip(clip);
        Fill(t, kEllipse, {20, 30, 84, 62}, kOrange, GXBlendModeHue);
    });
    EXPECT_EQ(outside.readbacks + outside.fallbackDraws + outside.sends, 0U);

    const D3D11Counters many = Cost([](RenderTarget& t) {
        Fill(t, kEllipse, {20, 20, 120, 120}, kOrange, GXBlendModeSaturation);
        for (int i = 0; i < 40; ++i) { // what lies wholly there stays there; the card draws elsewhere meanwhile
            const auto x = static_cast<float>(20 + i);
            Fill(t, kEllipse, {x, 30, x + 30, 70}, kTeal, i % 2 == 0 ? GXBlendModeLuminosity : GXBlendModeNormal);
            Fill(t, kRectangle, {x, 150, x + 30, 170}, kTeal, GXBlendModeMultiply);
        }
    });
    EXPECT_EQ(many.readbacks, 1U);
    EXPECT_LE(many.readbackPixels, 102U * 102U) << "boxes of ellipses are rounded outwards";
    EXPECT_EQ(many.fallbackDraws, 41U);
    EXPECT_EQ(many.sends, 1U);

    const D3D11Counters grown = Cost([](RenderTarget& t) {
        Fill(t, kRectangle, {20, 20, 60, 60}, kOrange, GXBlendModeHue);
        Fill(t, kRectangle, {40, 40, 80, 80}, kOrange, GXBlendModeHue);
    });
    EXPECT_EQ(grown.readbacks, 2U);
    EXPECT_EQ(grown.readbackPixels, 2U * 40U * 40U - 20U * 20U) << "only what is not there yet";
}

TEST_F(FallbackTest, CardAndSoftwareInTurnsOverTheSamePixels) {
    const auto turns = [](int count) {
        return [count](RenderTarget& t) {
            for (int i = 0; i < count; ++i) {
                const auto x = static_cast<float>(5 * i);
                Fill(t, kEllipse, {x, 20, x + 60, 90}, kOrange, GXBlendModeColorDodge);
                Fill(t, kRectangle, {0, 40, 250, 80}, kTeal, GXBlendModeNormal); // reaches beyond what was read
            }
        };
    };
    EXPECT_EQ(Cost(turns(3)).readbacks, 3U);
    const D3D11Counters cost = Cost(turns(30));
    EXPECT_LE(cost.readbacks, 10U) << "after some waits the software draws the rest";
    EXPECT_LE(cost.sends, 10U);
}

TEST_F(FallbackTest, GroupsOfTheSoftwareNeverMeetTheCard) {
    const auto group = [](uint32_t isolated, uint32_t knockout, uint32_t mode) {
        return [=](RenderTarget& t) {
            GXLayerDesc layer{};
            layer.opacity = 0.9F;
            layer.isolated = isolated;
            layer.knockout = knockout;
            t.SetBlendMode(mode);
            t.BeginLayer(layer);
            Fill(t, kEllipse, {20, 20, 120, 120}, kOrange, GXBlendModeNormal);
            Fill(t, kEllipse, {60, 40, 160, 140}, kTeal, GXBlendModeMultiply);
            t.EndLayer();
        };
    };
    for (uint32_t kind = 0; kind < 4; ++kind) {
        const D3D11Counters cost = Cost(group(kind & 1U, kind >> 1U, GXBlendModeHue));
        // What a group that is not isolated began with is read for its draws, and is there at its end but for the
        // corners.
        EXPECT_LE(cost.readbacks, (kind & 1U) != 0 ? 1U : 3U) << kind;
        EXPECT_EQ(cost.fallbackDraws, 3U) << kind;
        EXPECT_LE(cost.batches, 2U) << kind << ": the backdrop alone";
    }
    // A colour over nothing weighs twice in the software, which the card's formula does not know.
    const D3D11Counters isolated = Cost(group(1, 0, GXBlendModeNormal));
    EXPECT_EQ(isolated.fallbackDraws, 1U);
    // Opaque below: the card draws all of it.
    const D3D11Counters opaque = Cost([&](RenderTarget& t) {
        GXLayerDesc layer{};
        layer.opacity = 1.0F;
        layer.isolated = 1;
        t.BeginLayer(layer);
        Fill(t, kRectangle, {20, 20, 180, 180}, {1, 1, 1, 1}, GXBlendModeNormal);
        Fill(t, kEllipse, {60, 40, 160, 140}, kTeal, GXBlendModeMultiply);
        t.EndLayer();
    });
    EXPECT_EQ(opaque.fallbackDraws, 0U);
}

/// What has less alpha than a level is nothing in bytes, and knocks nothing out.
TEST_F(FallbackTest, WhatIsLessThanALevelKnocksNothingOut) {
    auto image = std::make_shared<SysMemBitmap>(4, 4, GXPixelFormatPBGRA32);
    for (size_t y = 0; y < 4; ++y) {
        for (size_t x = 0; x < 4; ++x) { // alphas from 0 to 3
            const auto alpha = static_cast<uint32_t>(x);
            const uint32_t word = alpha << 24;
            std::memcpy(image->Data() + y * image->StrideBytes() + x * 4, &word, 4);
        }
    }
    const auto faint = std::make_shared<Bitmap>(image);
    for (uint32_t kind = 0; kind < 8; ++kind) {
        const auto scene = [&](RenderTarget& t) {
            GXLayerDesc group{};
            group.opacity = 1.0F;
            group.isolated = kind & 1U;
            group.knockout = 1;
            t.BeginLayer(group);
            Fill(t, kRectangle, {20, 20, 190, 190}, {0.9F, 0.2F, 0.1F, 1.0F}, GXBlendModeNormal);
            switch (kind >> 1U) {
            case 0: // by the brush's opacity
                t.DrawBitmap(*faint, {0, 0, 4, 4}, {30, 30, 170, 170}, 0.3F, GXInterpolationNearest);
                break;
            case 1: // by interpolation between nothing and next to nothing
                t.DrawBitmap(*faint, {0, 0, 4, 4}, {30, 30, 170, 170}, 1.0F, GXInterpolationLinear);
                break;
            case 2: // by a mask
                t.SetOpacityMask(GXMaskTypeAlpha, std::make_shared<SolidBrush>(Color{1, 1, 1, 0.1F}));
                Fill(t, kEllipse, {40, 40, 160, 160}, {0.1F, 0.6F, 0.5F, 0.02F}, GXBlendModeNormal);
                break;
            default: { // by a group in the group
                GXLayerDesc inner{};
                inner.opacity = 0.1F;
                t.BeginLayer(inner);
                Fill(t, kEllipse, {40, 40, 160, 160}, {0.1F, 0.6F, 0.5F, 0.02F}, GXBlendModeNormal);
                t.EndLayer();
            }
            }
            t.EndLayer();
        };
        SCOPED_TRACE(kind);
        static_cast<void>(Cost(scene));
    }
    // Colours alone are the same for both, and stay on the card.
    const D3D11Counters solid = Cost([](RenderTarget& t) {
        GXLayerDesc group{};
        group.opacity = 1.0F;
        group.knockout = 1;
        group.isolated = 1;
        t.BeginLayer(group);
        Fill(t, kRectangle, {20, 20, 190, 190}, {0.9F, 0.2F, 0.1F, 1.0F}, GXBlendModeNormal);
        Fill(t, kEllipse, {40, 40, 160, 160}, kTeal, GXBlendModeNormal);
        t.EndLayer();
    });
    EXPECT_EQ(solid.fallbackDraws, 0U);
}

/// Everything at once, in any order, with clears and inversions between.
TEST_F(FallbackTest, RandomPagesAreTheSoftwares) {
    for (uint32_t seed = 0; seed < 12; ++seed) {
        static_cast<void>(Cost([seed](RenderTarget& t) {
            std::mt19937 random(seed);
            const auto unit = [&] { return static_cast<float>(random() % 256) / 255.0F; };
            const auto box = [&] {
                const auto x = static_cast<float>(random() % 200);
                const auto y = static_cast<float>(random() % 200);
                return Rect{x, y, x + 8 + static_cast<float>(random() % 90), y + 8 + static_cast<float>(random() % 90)};
            };
            int open = 0;
            for (int i = 0; i < 60; ++i) {
                switch (random() % 12) {
                case 0: {
                    GXLayerDesc layer{};
                    layer.opacity = 0.5F + unit() / 2;
                    layer.isolated = random() % 2;
                    layer.knockout = random() % 2;
                    t.SetBlendMode(random() % 3 == 0 ? random() % 16 : 0);
                    t.BeginLayer(layer);
                    ++open;
                    break;
                }
                case 1:
                    if (open > 0) {
                        t.EndLayer();
                        --open;
                    }
                    break;
                case 2: {
                    t.PushState();
                    const BasicFigure clip(random() % 2 == 0 ? kRectangle : kEllipse, box());
                    t.Clip(clip);
                    t.Clear(random() | 0x40000000U);
                    t.PopState();
                    break;
                }
                case 3: // in a group, what is not opaque gets colours beyond its alpha
                    if (open == 0) {
                        t.InvertRect(box());
                    }
                    break;
                default:
                    Fill(t, random() % 4 != 0 ? kRectangle : kEllipse, box(), {unit(), unit(), unit(), unit()},
                         random() % 2 == 0 ? 0 : random() % 16);
                }
            }
        }));
    }
}

TEST_F(FallbackTest, ALossOfTheDeviceOnTheWay) {
    auto context = std::make_shared<D3D11Context>();
    auto surface = std::make_unique<TextureSurface>(kSide, kSide);
    const TextureSurface* reader = surface.get();
    RenderTarget target(std::make_unique<D3D11RenderTarget>(context, std::move(surface)));
    const auto drawPage = [&](int loseAt) {
        target.BeginPaint();
        target.Clear(0xFFFFFFFFU);
        for (int i = 0; i < 4; ++i) {
            if (i == loseAt) {
                context->Device().LoseForTest();
            }
            const auto x = static_cast<float>(i * 30);
            Fill(target, kRectangle, {x, 10, x + 25, 50}, {0.2F, 0.4F, 0.8F, 1}, GXBlendModeNormal);
            Fill(target, kRectangle, {x, 20, x + 20, 40}, kOrange, GXBlendModeLuminosity);
        }
        target.EndPaint();
    };
    for (int loseAt = 0; loseAt < 4; ++loseAt) {
        EXPECT_NO_THROW(drawPage(loseAt)) << loseAt;
    }
    drawPage(-1);
    const std::vector<uint32_t> pixels = reader->Read(*context);
    EXPECT_EQ(pixels[0], 0xFFFFFFFFU);
    EXPECT_EQ(pixels[15 * kSide + 5], 0xFF3366CCU);
    EXPECT_NE(pixels[30 * kSide + 5], 0xFF3366CCU);
}
