// SPDX-License-Identifier: MIT
// The command line of both viewers, and views told in its words.
#include "Session.h"

#include "Format.h"

#include <gtest/gtest.h>

#include <sstream>

namespace Viewer {
namespace {

Options Parsed(Front front, const std::string& line) {
    std::istringstream words(line);
    const std::vector<std::string> arguments{std::istream_iterator<std::string>(words), {}};
    Options options;
    Parse(front, arguments, options);
    return options;
}

std::string Fault(Front front, const std::string& line) {
    try {
        Parsed(front, line);
        return "none";
    } catch (const Gxr::Error& error) {
        const std::string text = error.what();
        return text.substr(0, text.find('\n'));
    }
}

TEST(ViewerOptions, EachFrontHasItsOwnAndBothThoseOfTheView) {
    const Options sdl = Parsed(
        Front::Sdl, "a.gxr --page 3 --zoom 1.5 --at 20,-30 --list --size 700x500 --threads 2 --shot o.png b.gxr");
    EXPECT_EQ(sdl.files, (std::vector<std::string>{"a.gxr", "b.gxr"}));
    EXPECT_EQ(sdl.page, 3);
    EXPECT_EQ(sdl.zoom, 1.5f);
    EXPECT_TRUE(sdl.placed && sdl.list && sdl.Unattended());
    EXPECT_EQ(std::pair(sdl.left, sdl.top), std::pair(20, -30));
    EXPECT_EQ(std::pair(sdl.width, sdl.height), std::pair(700, 500));
    const Options windows = Parsed(Front::Windows, "p.gxr --hw --zoom 2 --print Laser out.ps");
    EXPECT_TRUE(windows.hardware && windows.Unattended());
    EXPECT_EQ(windows.output, "out.ps");

    EXPECT_EQ(Fault(Front::Sdl, "a.gxr --hw"), "unknown option --hw");
    EXPECT_EQ(Fault(Front::Windows, "a.gxr --shot o.png"), "unknown option --shot");
    EXPECT_EQ(Fault(Front::Sdl, "a.gxr --zoom 65"), "'65' is no number that fits");
    EXPECT_EQ(Fault(Front::Sdl, "a.gxr --zoom nan"), "'nan' is no number that fits");
    EXPECT_EQ(Fault(Front::Sdl, "a.gxr --page 2x"), "'2x' is no number that fits");
    EXPECT_EQ(Fault(Front::Sdl, "a.gxr --size 10x0"), "'0' is no number that fits");
    EXPECT_EQ(Fault(Front::Sdl, "a.gxr --at 7"), "'7' is no pair of numbers with ',' between them");
    EXPECT_EQ(Fault(Front::Sdl, "a.gxr --page"), "--page needs a value");
    EXPECT_EQ(Fault(Front::Sdl, "--shot o.png"), "no file given");
}

// What --trace prints of a view makes the same view again.
TEST(ViewerOptions, ADescribedViewIsTheSameViewAgain) {
    Drawer::Status status;
    status.opened = true;
    status.pages = 5;
    status.size = PageSize{595.276 * 4 / 3, 841.89 * 4 / 3};
    Reader first;
    bool placed = false;
    Begin(first, Parsed(Front::Sdl, "f --page 2 --size 640x480"), status);
    TakeSize(first, {}, status, placed);
    for (int step = 0; step < 6; ++step) {
        const std::string told = Describe(first);
        Reader second;
        placed = false;
        const Options options = Parsed(Front::Sdl, "f " + told);
        Begin(second, options, status);
        TakeSize(second, options, status, placed);
        EXPECT_EQ(Describe(second), told);
        EXPECT_EQ(second.GetView().Page(), first.GetView().Page()) << told;
        EXPECT_EQ(second.GetView().Zoom(), first.GetView().Zoom()) << told;
        if (step == 3)
            first.Do(Action::ToggleList);
        first.Wheel(1, 300, 77 * step);
    }
    EXPECT_THROW(Begin(first, Parsed(Front::Sdl, "f --page 6"), status), Gxr::Error);
}

} // namespace
} // namespace Viewer
