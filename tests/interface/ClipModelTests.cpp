// SPDX-License-Identifier: MIT
// Clips as a target keeps them against clips made afresh. Random calls push and pop states, clip to rectangles,
// ellipses and paths that grow between two uses, switch adjustment, change the matrix, and open and close groups. Every
// fill that reaches the target is drawn a second time: on a new target, with copies of the paths and only the calls
// that matter. Nothing kept from earlier calls can help there, so what differs is a clip that was taken for another
// one.
#include <algorithm>
#include <optional>
#include <random>

#include "TargetSupport.h"

using namespace TargetSupport;

namespace {

constexpr uint32_t kWidth = 61, kHeight = 47;

struct Clip {
    enum class Kind { Rectangle, Ellipse, Path } kind;
    GXRect rect;
    std::shared_ptr<Owned<GXGeometry>> path; // a copy of its own
    GXMatrix matrix;
    bool adjusted;
};

/// A fill of everything that is visible, or a group, with the clips in force.
struct Object {
    std::vector<Clip> clips;
    uint32_t argb = 0;
    std::optional<GXLayerDesc> group;
    GXMatrix matrix{};
    std::vector<Object> inside;
};

Owned<GXGeometry> CopyOf(GXGeometry geometry) {
    Owned<GXGeometry> copy;
    EXPECT_EQ(GXGeometryCopy(geometry, copy.Out()), GXResultSuccess);
    return copy;
}

void ApplyClip(GXRenderTarget target, const Clip& clip, GXGeometry path) {
    EXPECT_EQ(GXRenderTargetSetCTM(target, &clip.matrix), GXResultSuccess);
    EXPECT_EQ(GXRenderTargetSetStrokeAdjustment(target, clip.adjusted), GXResultSuccess);
    switch (clip.kind) {
    case Clip::Kind::Rectangle:
        EXPECT_EQ(GXRenderTargetClipRect(target, &clip.rect), GXResultSuccess);
        break;
    case Clip::Kind::Ellipse:
        EXPECT_EQ(GXRenderTargetClipEllipse(target, &clip.rect), GXResultSuccess);
        break;
    case Clip::Kind::Path:
        EXPECT_EQ(GXRenderTargetClipGeometry(target, path), GXResultSuccess);
        break;
    }
}

void FillAll(GXRenderTarget target, uint32_t argb) {
    const GXRect all{0, 0, kWidth, kHeight};
    EXPECT_EQ(GXRenderTargetSetCTM(target, nullptr), GXResultSuccess);
    EXPECT_EQ(GXRenderTargetFillRect(target, &all, Solid(argb)), GXResultSuccess);
}

void Draw(GXRenderTarget target, const Object& object) {
    EXPECT_EQ(GXRenderTargetPushState(target), GXResultSuccess);
    for (const Clip& clip : object.clips) {
        const Owned<GXGeometry> path = clip.path != nullptr ? CopyOf(*clip.path) : Owned<GXGeometry>();
        ApplyClip(target, clip, path);
    }
    if (object.group) {
        EXPECT_EQ(GXRenderTargetSetCTM(target, &object.matrix), GXResultSuccess);
        EXPECT_EQ(GXRenderTargetBeginLayer(target, &*object.group), GXResultSuccess);
        for (const Object& inner : object.inside) {
            Draw(target, inner);
        }
        EXPECT_EQ(GXRenderTargetEndLayer(target), GXResultSuccess);
    } else {
        FillAll(target, object.argb);
    }
    EXPECT_EQ(GXRenderTargetPopState(target), GXResultSuccess);
}

class ClipModel {
public:
    explicit ClipModel(uint32_t seed) : m_random(seed) {
        for (Owned<GXGeometry>& path : m_paths) {
            EXPECT_EQ(GXCreateGeometry(path.Out()), GXResultSuccess);
            Grow(path);
        }
        m_levels.emplace_back();
        FillAll(m_live.target, 0xFFFFFFFF);
    }

    void Step() {
        Level& level = m_levels.back();
        switch (Below(12)) {
        case 0:
            EXPECT_EQ(GXRenderTargetPushState(m_live.target), GXResultSuccess);
            level.stack.push_back(level.stack.back());
            break;
        case 1:
        case 2:
            if (level.stack.size() > 1) {
                EXPECT_EQ(GXRenderTargetPopState(m_live.target), GXResultSuccess);
                level.stack.pop_back();
            }
            break;
        case 3:
            Grow(m_paths[Below(kPaths)]);
            break;
        case 4:
            if (m_levels.size() < 4) {
                BeginGroup();
            }
            break;
        case 5:
            if (m_levels.size() > 1) {
                EndGroup();
            }
            break;
        case 6:
        case 7:
        case 8: { // what is asked for most: save, clip, draw, restore
            EXPECT_EQ(GXRenderTargetPushState(m_live.target), GXResultSuccess);
            level.stack.push_back(level.stack.back());
            AddClip();
            Fill();
            EXPECT_EQ(GXRenderTargetPopState(m_live.target), GXResultSuccess);
            level.stack.pop_back();
            break;
        }
        case 9:
            AddClip();
            break;
        default:
            Fill();
            break;
        }
    }

    void Finish() {
        while (m_levels.size() > 1) {
            EndGroup();
        }
    }

private:
    static constexpr uint32_t kPaths = 3;

    struct Level {
        std::vector<std::vector<Clip>> stack{{}}; // the clips of each pushed state
        Object group;
    };

    uint32_t Below(uint32_t n) { return static_cast<uint32_t>(m_random() % n); }
    float Real(float low, float high) { return low + (high - low) * static_cast<float>(Below(4096)) / 4096; }
    GXRect Rectangle() { // nearly the whole target, so that several leave something
        return {Real(-4, 20), Real(-4, 16), Real(36, 66), Real(28, 52)};
    }
    GXMatrix Transform() {
        constexpr GXMatrix kMatrices[] = {{1, 0, 0, 1, 0, 0},
                                          {1, 0, 0, 1, 0.4F, 0.7F},
                                          {0.9F, 0, 0, 1.1F, 2, -3},
                                          {0.98F, 0.17F, -0.17F, 0.98F, 4, -4}};
        return kMatrices[Below(4) == 0 ? Below(4) : 0];
    }

    void Grow(GXGeometry path) {
        if (Below(4) == 0) {
            EXPECT_EQ(GXGeometrySetFillRule(path, Below(2)), GXResultSuccess);
        }
        const GXRect rect = Rectangle();
        if (Below(2) == 0) {
            EXPECT_EQ(GXGeometryRectangle(path, &rect), GXResultSuccess);
            return;
        }
        const GXPoint corners[3] = {{rect.left, rect.bottom}, {rect.right, Real(0, 40)}, {Real(0, 50), rect.top}};
        EXPECT_EQ(GXGeometryBeginFigure(path, &corners[0]), GXResultSuccess);
        EXPECT_EQ(GXGeometryLineTo(path, &corners[1]), GXResultSuccess);
        EXPECT_EQ(GXGeometryLineTo(path, &corners[2]), GXResultSuccess);
        EXPECT_EQ(GXGeometryEndFigureClose(path), GXResultSuccess);
    }

    void AddClip() {
        Clip clip{};
        clip.kind = static_cast<Clip::Kind>(Below(5) < 3 ? 2 : Below(2));
        clip.rect = Rectangle();
        if (Below(3) == 0) { // on whole pixels: no mask
            for (float* side : {&clip.rect.left, &clip.rect.top, &clip.rect.right, &clip.rect.bottom}) {
                *side = static_cast<float>(static_cast<int>(*side));
            }
        }
        clip.matrix = Transform();
        clip.adjusted = Below(2) == 0;
        GXGeometry path = nullptr;
        if (clip.kind == Clip::Kind::Path) {
            path = m_paths[Below(kPaths)];
            clip.path = std::make_shared<Owned<GXGeometry>>(CopyOf(path));
        }
        ApplyClip(m_live.target, clip, path);
        m_levels.back().stack.back().push_back(std::move(clip));
    }

    void Fill() {
        Object object;
        object.clips = m_levels.back().stack.back();
        object.argb = 0xFF000000U | static_cast<uint32_t>(m_random());
        const std::vector<uint32_t> before = m_live.Pixels();
        FillAll(m_live.target, object.argb);
        Done(std::move(object), before);
    }

    void BeginGroup() {
        Level level;
        level.group.clips = m_levels.back().stack.back();
        level.group.matrix = Transform();
        level.group.group = GXLayerDesc{Below(3) == 0 ? GXRect{} : Rectangle(), 0.75F, static_cast<uint8_t>(Below(2)),
                                        static_cast<uint8_t>(Below(2))};
        EXPECT_EQ(GXRenderTargetSetCTM(m_live.target, &level.group.matrix), GXResultSuccess);
        EXPECT_EQ(GXRenderTargetBeginLayer(m_live.target, &*level.group.group), GXResultSuccess);
        m_levels.push_back(std::move(level));
    }

    void EndGroup() {
        Object object = std::move(m_levels.back().group);
        m_levels.pop_back();
        const std::vector<uint32_t> before = m_live.Pixels();
        EXPECT_EQ(GXRenderTargetEndLayer(m_live.target), GXResultSuccess);
        Done(std::move(object), before);
    }

    /// What was drawn into a group waits for the group; the rest is compared.
    void Done(Object object, const std::vector<uint32_t>& before) {
        if (m_levels.size() > 1) {
            m_levels.back().group.inside.push_back(std::move(object));
            return;
        }
        const Canvas fresh(kWidth, kHeight);
        std::vector<uint32_t> copy = before;
        const GXBitmapData data{copy.data(), kWidth * 4, kWidth * 4};
        EXPECT_EQ(GXBitmapCopyFromMemory(fresh.bitmap, nullptr, &data), GXResultSuccess);
        Draw(fresh.target, object);
        const std::vector<uint32_t> expected = fresh.Pixels(), actual = m_live.Pixels();
        for (uint32_t i = 0; i < expected.size(); ++i) {
            ASSERT_EQ(actual[i], expected[i])
                << "the clip in force is not the one asked for: pixel " << i % kWidth << ", " << i / kWidth << " under "
                << object.clips.size() << " clips, " << (object.group ? "a group" : "a fill");
        }
    }

    std::mt19937 m_random;
    Canvas m_live{kWidth, kHeight};
    Owned<GXGeometry> m_paths[kPaths];
    std::vector<Level> m_levels;
};

TEST(ClipModel, EveryClipIsTheOneAskedForWhateverWasClippedBefore) {
    for (uint32_t seed = 0; seed < 60; ++seed) {
        ClipModel model(seed);
        for (int step = 0; step < 120; ++step) {
            SCOPED_TRACE(testing::Message() << "seed " << seed << " step " << step);
            model.Step();
            if (testing::Test::HasFailure()) {
                return;
            }
        }
        model.Finish();
    }
}

// The four things besides path and matrix that make two clips of one path different, each by itself.
TEST(ClipModel, TheSamePathIsAnotherClipAfterGrowingUnderOtherBoundsRulesAndAdjustment) {
    const auto clipped = [](const Canvas& c, GXGeometry path) {
        EXPECT_EQ(GXRenderTargetPushState(c.target), GXResultSuccess);
        EXPECT_EQ(GXRenderTargetClipGeometry(c.target, path), GXResultSuccess);
        FillAll(c.target, 0xFF0000FF);
        EXPECT_EQ(GXRenderTargetPopState(c.target), GXResultSuccess);
    };
    { // a second figure
        const Canvas c(8, 1);
        const Owned<GXGeometry> path = RectangleGeometry(0, 0, 2, 1);
        clipped(c, path);
        EXPECT_EQ(c.At(5, 0), 0U);
        const GXRect more{4, 0, 6, 1};
        ASSERT_EQ(GXGeometryRectangle(path, &more), GXResultSuccess);
        clipped(c, path);
        EXPECT_EQ(c.At(5, 0), 0xFF0000FFU) << "the figure added to the path does not count";
    }
    { // half a pixel, with adjustment a whole one
        const Canvas c(8, 1);
        const Owned<GXGeometry> path = RectangleGeometry(0, 0, 2.25F, 1);
        ASSERT_EQ(GXRenderTargetSetStrokeAdjustment(c.target, 0), GXResultSuccess);
        clipped(c, path);
        const uint32_t edge = c.At(2, 0);
        EXPECT_NEAR(static_cast<int>(edge >> 24), 0x40, 1);
        ASSERT_EQ(GXRenderTargetClear(c.target, 0), GXResultSuccess);
        ASSERT_EQ(GXRenderTargetSetStrokeAdjustment(c.target, 1), GXResultSuccess);
        clipped(c, path);
        EXPECT_NE(c.At(2, 0), edge) << "the clip of the same path without adjustment was taken";
        EXPECT_TRUE(c.At(2, 0) == 0 || c.At(2, 0) == 0xFF0000FFU) << "an adjusted rectangle ends between pixels";
    }
    { // the bounds of a group hide a part of it
        const Canvas c(8, 1);
        const Owned<GXGeometry> path = RectangleGeometry(0, 0, 6, 1);
        const GXLayerDesc narrow{{0, 0, 2, 1}, 1.0F, 1, 0};
        ASSERT_EQ(GXRenderTargetBeginLayer(c.target, &narrow), GXResultSuccess);
        clipped(c, path);
        ASSERT_EQ(GXRenderTargetEndLayer(c.target), GXResultSuccess);
        EXPECT_EQ(c.At(1, 0), 0xFF0000FFU);
        EXPECT_EQ(c.At(4, 0), 0U);
        clipped(c, path);
        EXPECT_EQ(c.At(4, 0), 0xFF0000FFU) << "the clip made for the smaller group was taken";
    }
    { // the rule
        const Canvas c(8, 1);
        const Owned<GXGeometry> path = RectangleGeometry(0, 0, 6, 1);
        const GXRect hole{2, 0, 4, 1};
        ASSERT_EQ(GXGeometryRectangle(path, &hole), GXResultSuccess);
        clipped(c, path);
        ASSERT_EQ(GXRenderTargetClear(c.target, 0), GXResultSuccess);
        ASSERT_EQ(GXGeometrySetFillRule(path, GXFillRuleEvenOdd), GXResultSuccess);
        clipped(c, path);
        EXPECT_EQ(c.At(3, 0), 0U) << "the clip of the other fill rule was taken";
    }
    { // a rectangle in the place of a mask
        const Canvas c(16, 16);
        const GXRect round{0.5F, 0.5F, 15.5F, 15.5F};
        const GXRect whole{2, 2, 14, 14};
        for (int k = 0; k < 20; ++k) {
            ASSERT_EQ(GXRenderTargetPushState(c.target), GXResultSuccess);
            ASSERT_EQ(GXRenderTargetClipEllipse(c.target, &round), GXResultSuccess);
            FillAll(c.target, 0xFFFF0000);
            ASSERT_EQ(GXRenderTargetPopState(c.target), GXResultSuccess);
            ASSERT_EQ(GXRenderTargetPushState(c.target), GXResultSuccess);
            ASSERT_EQ(GXRenderTargetClipRect(c.target, &whole), GXResultSuccess);
            FillAll(c.target, 0xFF00FF00);
            ASSERT_EQ(GXRenderTargetPopState(c.target), GXResultSuccess);
            for (const uint32_t at : {2U, 13U}) {
                ASSERT_EQ(c.At(at, at), 0xFF00FF00U) << "a rectangular clip has the mask of the one before";
            }
        }
    }
}

} // namespace
