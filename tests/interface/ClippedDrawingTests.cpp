// SPDX-License-Identifier: MIT
// A clip on whole pixels, and a group, hide pixels and change none: scenes are drawn tile by tile, band by band and in
// groups, and have the bytes of the scene that is drawn at once. Hosts that repaint what is dirty rely on it.
#include "TargetSupport.h"

#include <cmath>
#include <random>

namespace {

using namespace TargetSupport;

constexpr uint32_t kWidth = 64;
constexpr uint32_t kHeight = 48;

struct Scene {
    Owned<GXGeometry> geometry;
    GXMatrix matrix{1, 0, 0, 1, 0, 0};
    GXStrokeStyle style{};
    float width = 1;
    bool fill = false;
    bool adjust = false;
};

class Maker {
public:
    explicit Maker(uint32_t seed) : m_random(seed) {}

    float Between(float low, float high) { return std::uniform_real_distribution<float>(low, high)(m_random); }
    uint32_t Pick(uint32_t n) { return m_random() % n; }

    enum class Kind { Fill, Stroke, Dashes, FineDashes, Dots, Glyphs };

    Scene Make(Kind kind) {
        Scene scene;
        scene.fill = kind == Kind::Fill;
        scene.adjust = Pick(2) == 0;
        scene.width = Pick(6) == 0 ? 0.0F : Pick(5) == 0 ? Between(10, 60) : Between(0.2F, 8);
        scene.style.join = Pick(3);
        scene.style.cap = Pick(3);
        const float limits[] = {10, 10, 1.2F, 40, 3e38F, INFINITY};
        scene.style.miterLimit = limits[Pick(6)];
        scene.matrix = RandomMatrix();
        if (kind == Kind::Dashes || kind == Kind::FineDashes) {
            scene.style.dashCount = 1 + Pick(5);
            const float most = kind == Kind::FineDashes ? 0.6F : 12;
            for (uint64_t i = 0; i < scene.style.dashCount; ++i) {
                scene.style.dashes[i] = Pick(6) == 0 && i > 0 ? 0.0F : Between(0.01F, most);
            }
            scene.style.dashPhase = Pick(2) == 0 ? 0 : Between(-10, 10);
        }
        if (kind == Kind::Dots) { // whose caps overlap
            scene.width = Between(4, Pick(3) == 0 ? 200.0F : 30.0F);
            scene.style.cap = 1 + Pick(2);
            scene.style.dashCount = 2 + 2 * Pick(2);
            for (uint64_t i = 0; i < scene.style.dashCount; i += 2) {
                scene.style.dashes[i] = Pick(3) == 0 ? Between(0.01F, scene.width) : 0.0F;
                scene.style.dashes[i + 1] = Between(0.1F, 0.7F * scene.width);
            }
        }
        EXPECT_EQ(GXCreateGeometry(scene.geometry.Out()), GXResultSuccess);
        if (kind == Kind::Glyphs) {
            scene.width = Between(0.1F, 2);
            Glyphs(scene.geometry);
        } else {
            const float reach = Pick(3) == 0 ? 40000.0F : Pick(2) == 0 ? 900.0F : 30.0F;
            for (uint32_t figures = 1 + Pick(3); figures > 0; --figures) {
                Figure(scene.geometry, reach);
            }
        }
        return scene;
    }

private:
    GXMatrix RandomMatrix() {
        switch (Pick(6)) {
        case 0:
            return {1, 0, 0, 1, Between(-1, 1), Between(-1, 1)};
        case 1:
            return {Between(0.3F, 3), 0, 0, Between(-3, -0.3F), 0, 48};
        case 2: {
            const float s = Between(0.3F, 3), a = Between(0, 6);
            return {s * std::cos(a), s * std::sin(a), -s * std::sin(a), s * std::cos(a), 30, 20};
        }
        case 3:
            return {Between(-2, 2), Between(-2, 2), Between(-2, 2), Between(-2, 2), 30, 20};
        default:
            return {1, 0, 0, 1, 0, 0};
        }
    }
    GXPoint Near(float reach) {
        GXPoint p{Between(-reach, kWidth + reach), Between(-reach, kHeight + reach)};
        if (Pick(3) != 0) { // most corners near the target
            p = {Between(-30, kWidth + 30), Between(-30, kHeight + 30)};
        }
        return Pick(3) == 0 ? GXPoint{std::floor(p.x), std::floor(p.y)} : p;
    }
    void Figure(GXGeometry geometry, float reach) {
        GXPoint at = Near(reach);
        EXPECT_EQ(GXGeometryBeginFigure(geometry, &at), GXResultSuccess);
        const bool curves = Pick(2) == 0;
        for (uint32_t i = 1 + Pick(8); i > 0; --i) {
            GXPoint p = Near(reach);
            if (Pick(4) == 0) {
                (Pick(2) == 0 ? p.x : p.y) = Pick(2) == 0 ? at.x : at.y;
            }
            if (curves && Pick(2) == 0) {
                const GXPoint c1 = Near(reach), c2 = Near(reach);
                EXPECT_EQ(GXGeometryCubicCurveTo(geometry, &c1, &c2, &p), GXResultSuccess);
            } else {
                EXPECT_EQ(GXGeometryLineTo(geometry, &p), GXResultSuccess);
            }
            at = p;
        }
        EXPECT_EQ(Pick(2) == 0 ? GXGeometryEndFigure(geometry) : GXGeometryEndFigureClose(geometry), GXResultSuccess);
    }
    /// Small closed outlines of lines and conics in a row, as those of letters.
    void Glyphs(GXGeometry geometry) {
        for (float x = -5; x < kWidth; x += Between(4, 9)) {
            const float y = Between(-5, kHeight);
            const auto point = [&] { return GXPoint{x + Between(0, 8), y + Between(0, 11)}; };
            const GXPoint start = point();
            EXPECT_EQ(GXGeometryBeginFigure(geometry, &start), GXResultSuccess);
            for (int i = 0; i < 9; ++i) {
                const GXPoint a = point(), b = point();
                EXPECT_EQ(i % 3 == 0 ? GXGeometryLineTo(geometry, &a) : GXGeometryConicCurveTo(geometry, &a, &b),
                          GXResultSuccess);
            }
            EXPECT_EQ(GXGeometryEndFigureClose(geometry), GXResultSuccess);
        }
    }

    std::mt19937 m_random;
};

void Draw(GXRenderTarget target, const Scene& scene, GXBrush brush) {
    ASSERT_EQ(GXRenderTargetSetStrokeAdjustment(target, scene.adjust ? 1 : 0), GXResultSuccess);
    ASSERT_EQ(GXRenderTargetSetCTM(target, &scene.matrix), GXResultSuccess);
    ASSERT_EQ(scene.fill ? GXRenderTargetFillGeometry(target, scene.geometry, brush)
                         : GXRenderTargetStrokeGeometry(target, scene.geometry, brush, scene.width, &scene.style),
              GXResultSuccess);
    ASSERT_EQ(GXRenderTargetSetCTM(target, nullptr), GXResultSuccess);
}

std::vector<uint32_t> InTiles(const Scene& scene, GXBrush brush, int wide, int high, bool groups) {
    Canvas canvas(kWidth, kHeight);
    for (int y = 0; y < static_cast<int>(kHeight); y += high) {
        for (int x = 0; x < static_cast<int>(kWidth); x += wide) {
            const GXRect tile{static_cast<float>(x), static_cast<float>(y), static_cast<float>(x + wide),
                              static_cast<float>(y + high)};
            if (groups) {
                const GXLayerDesc layer{tile, 1.0F, 1, 0};
                EXPECT_EQ(GXRenderTargetBeginLayer(canvas.target, &layer), GXResultSuccess);
                Draw(canvas.target, scene, brush);
                EXPECT_EQ(GXRenderTargetEndLayer(canvas.target), GXResultSuccess);
            } else {
                EXPECT_EQ(GXRenderTargetPushState(canvas.target), GXResultSuccess);
                EXPECT_EQ(GXRenderTargetClipRect(canvas.target, &tile), GXResultSuccess);
                Draw(canvas.target, scene, brush);
                EXPECT_EQ(GXRenderTargetPopState(canvas.target), GXResultSuccess);
            }
        }
    }
    return canvas.Pixels();
}

void ExpectNoSeams(Maker::Kind kind, int rounds) {
    const Owned<GXBrush> brush = Solid(0xFF000000);
    for (int round = 0; round < rounds; ++round) {
        Maker maker(static_cast<uint32_t>(round * 7 + static_cast<int>(kind)));
        const Scene scene = maker.Make(kind);
        Canvas whole(kWidth, kHeight);
        Draw(whole.target, scene, brush);
        const std::vector<uint32_t> expected = whole.Pixels();
        const int wide = 3 + static_cast<int>(maker.Pick(30)), high = 3 + static_cast<int>(maker.Pick(20));
        ASSERT_EQ(InTiles(scene, brush, wide, high, false), expected) << "tiles, round " << round;
        ASSERT_EQ(InTiles(scene, brush, kWidth, high, false), expected) << "bands, round " << round;
        ASSERT_EQ(InTiles(scene, brush, wide, high, true), expected) << "groups, round " << round;
    }
}

} // namespace

TEST(ClippedDrawing, FillsHaveNoSeams) { ExpectNoSeams(Maker::Kind::Fill, 400); }
TEST(ClippedDrawing, StrokesHaveNoSeams) { ExpectNoSeams(Maker::Kind::Stroke, 1000); }
TEST(ClippedDrawing, DashesHaveNoSeams) { ExpectNoSeams(Maker::Kind::Dashes, 200); }
TEST(ClippedDrawing, FineDashesHaveNoSeams) { ExpectNoSeams(Maker::Kind::FineDashes, 100); }
TEST(ClippedDrawing, OverlappingDotsHaveNoSeams) { ExpectNoSeams(Maker::Kind::Dots, 200); }
TEST(ClippedDrawing, StrokedLettersHaveNoSeams) { ExpectNoSeams(Maker::Kind::Glyphs, 300); }

TEST(ClippedDrawing, ADashThatIsAloneInAClipIsNotSnapped) {
    // One of several dashes: without the clip none of them becomes whole pixels.
    const Owned<GXBrush> brush = Solid(0xFF000000);
    Scene scene;
    EXPECT_EQ(GXCreateGeometry(scene.geometry.Out()), GXResultSuccess);
    const GXPoint a{3.3F, 20.4F}, b{60, 20.4F};
    EXPECT_EQ(GXGeometryBeginFigure(scene.geometry, &a), GXResultSuccess);
    EXPECT_EQ(GXGeometryLineTo(scene.geometry, &b), GXResultSuccess);
    EXPECT_EQ(GXGeometryEndFigure(scene.geometry), GXResultSuccess);
    scene.adjust = true;
    scene.width = 3;
    scene.style.miterLimit = 10;
    scene.style.dashCount = 2;
    scene.style.dashes[0] = 6.4F;
    scene.style.dashes[1] = 11.3F;
    Canvas whole(kWidth, kHeight);
    Draw(whole.target, scene, brush);
    EXPECT_EQ(InTiles(scene, brush, 14, 48, false), whole.Pixels());
}
