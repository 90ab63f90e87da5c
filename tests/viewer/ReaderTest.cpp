// SPDX-License-Identifier: MIT
// What keys, wheel and pointer do to the page that is shown.
#include "Reader.h"

#include <gtest/gtest.h>

namespace Viewer {
namespace {

Reader Of(int pages, int width = 600, int height = 400) {
    Reader reader;
    reader.SetClient(width, height);
    reader.Open(pages, {300, 400});
    return reader;
}

TEST(Reader, PagesAreTurnedAndEndAtTheDocumentsEnds) {
    Reader reader = Of(3);
    const auto after = [&](Action action) {
        reader.Do(action);
        return reader.Page();
    };
    EXPECT_EQ(after(Action::PreviousPage), 0);
    EXPECT_EQ(after(Action::ScreenUp), 0);
    EXPECT_EQ(after(Action::NextPage), 1);
    EXPECT_EQ(after(Action::ScreenDown), 2); // a page that fits is left at once
    EXPECT_EQ(after(Action::ScreenDown), 2);
    EXPECT_EQ(after(Action::NextPage), 2);
    EXPECT_EQ(after(Action::FirstPage), 0);
    EXPECT_EQ(after(Action::LastPage), 2);
    EXPECT_EQ(after(Action::ScreenUp), 1);
    reader.GoTo(-5);
    EXPECT_EQ(reader.Page(), 0);
    reader.GoTo(1000);
    EXPECT_EQ(reader.Page(), 2);
    EXPECT_TRUE(reader.GetView().IsFitted());
}

TEST(Reader, ZoomedPagesAreReadWindowfulByWindowfulOverTheirEdges) {
    Reader reader = Of(2);
    reader.GetView().ZoomTo(2.0f, 0, 0); // 600 x 800 in 600 x 400
    reader.GetView().PanTo(0, 0);
    reader.Do(Action::ScreenDown);
    EXPECT_EQ(reader.GetView().Page().top, -360);
    reader.Do(Action::ScreenDown);
    EXPECT_EQ(reader.GetView().Page().top, -400);
    EXPECT_EQ(reader.Page(), 0);
    reader.Do(Action::ScreenDown);
    EXPECT_EQ(reader.Page(), 1);
    EXPECT_EQ(reader.GetView().Page().top, 0);
    EXPECT_EQ(reader.GetView().Zoom(), 2.0f);
    reader.Do(Action::ScreenUp);
    EXPECT_EQ(reader.Page(), 0);
    EXPECT_EQ(reader.GetView().Page().top, -400);
    reader.Do(Action::LastPage);
    EXPECT_EQ(reader.GetView().Page().top, -400);
    reader.Do(Action::FirstPage);
    EXPECT_EQ(reader.GetView().Page().top, 0);
}

// A page whose size comes later is fitted anew, or keeps its zoom and the end at which it was entered.
TEST(Reader, PagesOfOtherSizesFollow) {
    Reader reader = Of(4);
    reader.Do(Action::NextPage);
    reader.Correct({1200, 200});
    EXPECT_TRUE(reader.GetView().IsFitted());
    EXPECT_EQ(reader.GetView().Page(), (Box{0, 150, 600, 100}));
    reader.GetView().ZoomTo(2.0f, 0, 0);
    reader.Do(Action::NextPage);
    reader.Correct({300, 900});
    EXPECT_EQ(reader.GetView().Page(), (Box{0, 0, 600, 1800}));
    reader.Do(Action::FirstPage);
    reader.Correct({300, 500});
    reader.Do(Action::LastPage);
    reader.Correct({300, 700});
    EXPECT_EQ(reader.GetView().Page().Bottom(), 400);
    const Box before = reader.GetView().Page();
    reader.Correct({300, 700});
    EXPECT_EQ(reader.GetView().Page(), before);
}

TEST(Reader, TheWheelZoomsAboutThePointerAndScrollsTheListOverIt) {
    Reader reader = Of(50, 752, 400);
    reader.ShowList(true);
    EXPECT_EQ(reader.ViewLeft(), PageList::kWidth);
    EXPECT_EQ(reader.GetView().ClientWidth(), 600);
    reader.GetView().ZoomTo(4.0f, 300, 200);
    const auto pointAt = [&](int x, int y) {
        const View& view = reader.GetView();
        return std::pair((x - reader.ViewLeft() - view.Page().left) / static_cast<double>(view.Zoom()),
                         (y - view.Page().top) / static_cast<double>(view.Zoom()));
    };
    const auto before = pointAt(500, 100);
    reader.Wheel(3, 500, 100);
    EXPECT_FLOAT_EQ(reader.GetView().Zoom(), 4.0f * 1.953125f);
    EXPECT_NEAR(pointAt(500, 100).first, before.first, 0.26);
    EXPECT_NEAR(pointAt(500, 100).second, before.second, 0.26);
    const Box page = reader.GetView().Page();
    reader.Wheel(-2, 500, 100, true);
    EXPECT_EQ(reader.GetView().Page(), page.MovedBy(-100, 0));
    reader.Wheel(-4, 20, 100);
    EXPECT_EQ(reader.GetView().Page(), page.MovedBy(-100, 0));
    EXPECT_EQ(reader.List().First(), 2);
    reader.Press(20, 10);
    EXPECT_EQ(reader.Page(), 2);
    reader.Move(300, 300); // a pick is no drag
    EXPECT_EQ(reader.GetView().Page().top, 0);
    reader.Do(Action::ToggleList);
    EXPECT_EQ(reader.ViewLeft(), 0);
    EXPECT_EQ(reader.GetView().ClientWidth(), 752);
}

TEST(Reader, DraggingTakesThePageAlongUntilTheButtonIsReleased) {
    Reader reader = Of(1);
    reader.GetView().ZoomTo(5.0f, 300, 200);
    const Box page = reader.GetView().Page();
    reader.Move(10, 10);
    EXPECT_EQ(reader.GetView().Page(), page);
    reader.Press(200, 200);
    reader.Move(170, 215);
    reader.Move(160, 190);
    EXPECT_EQ(reader.GetView().Page(), page.MovedBy(-40, -10));
    reader.Release();
    reader.Move(0, 0);
    EXPECT_EQ(reader.GetView().Page(), page.MovedBy(-40, -10));
}

} // namespace
} // namespace Viewer
