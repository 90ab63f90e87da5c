// SPDX-License-Identifier: MIT
// Drawing takes nothing from the heap once it is warm, and survives every allocation of a page being refused.
#include <gtest/gtest.h>

#include <functional>
#include <new>
#include <vector>

#include "Bitmaps/Bitmap.h"
#include "Exception.h"
#include "Geometry/Geometry.h"
#include "Geometry/StrokeStyle.h"
#include "Paint/Brush.h"
#include "Paint/Gradient.h"
#include "ProcessHeap.h"
#include "RefusingNew.h"
#include "Target/RenderTarget.h"
#include "WaitingMemory.h"

namespace Graphics {
namespace {

/// Both kinds of allocations so far.
int64_t Allocations() { return RefusingNew::Count() + ProcessHeap::FailAfter(-1); }

class Page {
public:
    Page() {
        m_image = Bitmap::Create({40, 30, GXPixelFormatBGRA32, 96, 96});
        m_image->ColorFill(nullptr, {0.5F, 0.25F, 1.0F, 0.75F});
        m_mask = Bitmap::Create({33, 20, GXPixelFormatAlpha8, 96, 96});
        m_mask->ColorFill(nullptr, {1.0F, 1.0F, 1.0F, 0.5F});
        m_canvas = Bitmap::Create({200, 150, GXPixelFormatPBGRA32, 96, 96});
        m_canvas->ColorFill(nullptr, {0.0F, 0.0F, 0.0F, 0.0F});
        m_target = RenderTarget::ForBitmap(m_canvas);
        m_geometry = std::make_shared<Geometry>();
        m_geometry->BeginFigure({10, 10});
        m_geometry->LineTo({150, 40});
        m_geometry->CubicTo({180, 90}, {40, 200}, {30, 70});
        m_geometry->EndFigureClose();
        m_glyph = m_geometry->Transform({0.2F, 0.0F, 0.0F, 0.2F, 50.0F, 60.0F});
        auto linear = std::make_shared<LinearGradient>();
        const GXGradientStop stops[2] = {{0.0F, 0xFFFF0000}, {1.0F, 0x4000FF00}};
        linear->stops.Add(stops, 2);
        linear->end = {200, 100};
        m_gradient = std::make_shared<GradientBrush>(linear);
        m_bitmapBrush = std::make_shared<BitmapBrush>(m_image);
    }

    [[nodiscard]] RenderTarget& Target() { return *m_target; }
    [[nodiscard]] const std::shared_ptr<Bitmap>& Canvas() { return m_canvas; }

    /// One of everything.
    void Draw() {
        RenderTarget& t = *m_target;
        const SolidBrush solid({1.0F, 0.0F, 0.0F, 0.5F});
        const Path shape(*m_geometry);
        const BasicFigure ellipse(BasicFigure::Kind::Ellipse, {20, 20, 120, 90});
        const Path figure(ellipse);
        StrokeStyle round;
        round.join = GXLineJoinRound;
        round.cap = GXLineCapRound;
        for (const uint32_t mode : {0U, 1U, 12U}) {
            t.SetBlendMode(mode);
            t.Fill(shape, solid);
            t.Fill(Path::Outline(*m_geometry), *m_gradient);
            t.Fill(Path::Outline(*m_glyph), solid);
            t.Fill(Path::Outline(*m_glyph), *m_gradient);
            t.Fill(figure, *m_bitmapBrush);
            t.Stroke(shape, solid, 5.0F, round);
            t.Stroke(figure, solid, 0.0F, StrokeStyle());
            t.DrawBitmap(*m_image, {0, 0, 40, 30}, {3.5F, 7, 190, 140}, 0.5F, GXInterpolationLinear);
            t.FillMask(*m_mask, solid, {50, 50, 90, 80}, GXInterpolationNearest);
            t.DrawGradient(m_gradient->gradient, 0.5F, kIdentity);
            t.InvertRect({5, 5, 60, 60});
        }
        t.SetBlendMode(0);
        t.PushState();
        t.Clip(shape);
        t.Fill(figure, solid);
        t.BeginLayer({{0, 0, 0, 0}, 0.5F, 0, 0});
        t.Fill(shape, solid);
        t.EndLayer();
        t.PopState();
        DrawGroups(t, 0);
    }

private:
    /// Groups of every kind inside each other, composited under masks and clips, with drawing under masks in each.
    void DrawGroups(RenderTarget& t, uint32_t depth) {
        const Path shape(*m_geometry);
        t.PushState();
        t.Clip(shape);
        t.SetShapeMask(GXMaskTypeLuminosity, m_bitmapBrush);
        t.SetOpacityMask(GXMaskTypeInverseAlpha, m_gradient);
        t.SetBlendMode(depth * 3);
        t.BeginLayer({{0, 0, 0, 0}, 0.75F, static_cast<uint8_t>(depth & 1), static_cast<uint8_t>(depth >> 1)});
        t.Fill(shape, *m_bitmapBrush);
        t.SetOpacityMask(GXMaskTypeAlpha, m_gradient);
        t.Fill(Path::Outline(*m_glyph), *m_gradient);
        t.Clear(0x40302010);
        if (depth < 3) {
            DrawGroups(t, depth + 1);
        }
        t.EndLayer();
        t.PopState();
    }

    std::shared_ptr<Bitmap> m_image, m_mask, m_canvas;
    std::shared_ptr<RenderTarget> m_target;
    std::shared_ptr<Geometry> m_geometry, m_glyph;
    std::shared_ptr<GradientBrush> m_gradient;
    std::shared_ptr<BitmapBrush> m_bitmapBrush;
};

TEST(Allocation, DrawingTakesNothingFromTheHeapOnceWarm) {
    Page page;
    page.Target().BeginPaint();
    page.Draw();
    page.Draw();
    const int64_t before = Allocations();
    for (int i = 0; i < 5; ++i) {
        page.Draw();
    }
    EXPECT_EQ(Allocations() - before, 0);
    page.Target().EndPaint();
}

/// Refuses one allocation after the other of a page's, by `refuse(n)`, until none is left; `refuse(-1)` tells how many
/// there have been.
template <class Refuse> void RefuseEach(const Refuse& refuse) {
    const auto pixels = [](Page& page) {
        std::vector<uint8_t> copy(200 * 150 * 4);
        page.Canvas()->CopyToMemory(nullptr, {copy.data(), 800, 800});
        return copy;
    };
    const auto whole = [](Page& page) {
        page.Target().BeginPaint();
        page.Target().Clear(0xFFFFFFFF);
        page.Draw();
        page.Target().EndPaint();
    };
    Page reference;
    whole(reference);
    const std::vector<uint8_t> expected = pixels(reference);
    bool allGiven = false;
    for (int64_t n = 0; !allGiven && n < 10000; ++n) {
        DropWaitingMemory();
        const int64_t live = RefusingNew::Live();
        {
            Page page;
            const int64_t before = refuse(n);
            bool passed = false;
            try {
                whole(page);
                passed = true;
            } catch (const Exception& e) { // EXPECT_STREQ takes memory only when it fails
                EXPECT_STREQ(e.what(), "Not enough memory") << "allocation " << n;
            } catch (const std::bad_alloc&) {
            }
            allGiven = refuse(-1) - before <= n;
            if (!passed) {
                try {
                    page.Target().EndPaint();
                } catch (const Exception&) { // it had not begun
                }
                whole(page);
            }
            // A refusal that passed was one for the glyph cache, which can do without.
            ASSERT_EQ(pixels(page), expected) << "allocation " << n;
        }
        DropWaitingMemory();
        ASSERT_EQ(RefusingNew::Live(), live) << "allocation " << n;
    }
    EXPECT_TRUE(allGiven);
}

int64_t RefuseBuffer(int64_t n) { return ProcessHeap::FailAfter(n); }

int64_t RefuseObject(int64_t n) {
    const int64_t now = RefusingNew::Count();
    RefusingNew::Refuse(n < 0 ? -1 : now + n);
    return now;
}

TEST(Allocation, EveryRefusedBufferLeavesAWorkingTarget) { RefuseEach(RefuseBuffer); }

TEST(Allocation, EveryRefusedObjectLeavesAWorkingTarget) { RefuseEach(RefuseObject); }

TEST(Allocation, ARefusedStepLeavesAGeometryAsItWas) {
    const std::function<void(Geometry&)> steps[] = {
        [](Geometry& s) {
            s.BeginFigure({50, 60});
        },
        [](Geometry& s) { s.EndFigure(); },
        [](Geometry& s) { s.EndFigureClose(); },
        [](Geometry& s) { s.AddClosed([](auto& sink) {
                              AddRectangle(sink, {-5, -5, 70, 80});
                          }); },
        [](Geometry& s) { s.AddClosed([](auto& sink) {
                              AddRoundRectangle(sink, {-5, -5, 70, 80}, 3, 3);
                          }); },
    };
    // Points of the figure under construction: none, a lone start, one that fills its block to a few bytes.
    for (const int points : {0, 1, 13}) {
        for (const int finished : {0, 1, 4}) {
            const auto build = [&](Geometry& s) {
                for (int i = 0; i < finished; ++i) {
                    AddRectangle(s, {0, 0, 10, 10});
                }
                for (int i = 0; i < points; ++i) {
                    const Point p{static_cast<float>(i), 9};
                    i == 0 ? s.BeginFigure(p) : s.LineTo(p);
                }
            };
            for (const auto& step : steps) {
                Geometry done;
                build(done);
                step(done);
                for (int64_t (*refuse)(int64_t) : {RefuseBuffer, RefuseObject}) {
                    for (int64_t n = 0, refused = 1; refused != 0; ++n) {
                        Geometry shape, before;
                        build(shape);
                        build(before);
                        refuse(n);
                        refused = 0;
                        try {
                            step(shape);
                        } catch (...) {
                            refused = 1;
                        }
                        refuse(-1);
                        if (refused != 0) {
                            const auto same = [&](const Geometry& o) {
                                Point a{}, b{};
                                return shape.CurrentPoint(a) == o.CurrentPoint(b) && a.x == b.x && a.y == b.y &&
                                       shape.ControlBox().right == o.ControlBox().right &&
                                       shape.Figures().size() == o.Figures().size() && (o.Empty() || shape.Equals(o));
                            };
                            EXPECT_TRUE(same(before)) << points << " " << finished << " step " << &step - steps;
                            before.EndFigure(); // what is under construction is the same too
                            shape.EndFigure();
                            EXPECT_TRUE(same(before)) << points << " " << finished << " step " << &step - steps;
                        } else {
                            EXPECT_TRUE(done.Empty() || shape.Equals(done));
                        }
                    }
                }
            }
        }
    }
}

} // namespace
} // namespace Graphics
