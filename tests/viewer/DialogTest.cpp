// SPDX-License-Identifier: MIT
// The viewer's dialogs, from its menu to the file that is opened or written: cancelled, given what is wrong, and used.
#include "DialogOperator.h"
#include "MainWindow.h"

#include "../ScratchFolder.h"
#include "../printing/TestPrinter.h"

#include <dlgs.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

namespace Viewer {
namespace {

// Of the menu.
constexpr WPARAM kOpen = 100, kPrint = 101;
const std::string kPages = GX_RECORDINGS;

std::string TitleOf(const MainWindow& window) {
    wchar_t title[300] = L"";
    GetWindowTextW(window.Window(), title, 300);
    return Narrow(title);
}

class ViewerDialogs : public ::testing::Test {
protected:
    ViewerDialogs() {
        window.Open(Wide(kPages + "/page_tiny-1.gxr"));
        ShowWindow(window.Window(), SW_SHOWNOACTIVATE);
        UpdateWindow(window.Window());
    }
    void Choose(WPARAM command) { SendMessageW(window.Window(), WM_COMMAND, command, 0); }

    static void EnterFile(HWND dialog, const std::wstring& name) {
        // A box with a list of earlier names on Windows, a plain one in Wine.
        const HWND list = GetDlgItem(dialog, cmb13), field = list != nullptr ? list : GetDlgItem(dialog, edt1);
        ASSERT_NE(field, nullptr);
        SendMessageW(field, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(name.c_str()));
        DialogOperator::Press(dialog, IDOK);
    }
    static void Cancel(HWND dialog) { DialogOperator::Press(dialog, IDCANCEL); }
    static auto Entering(std::wstring name) {
        return [name = std::move(name)](HWND dialog) { EnterFile(dialog, name); };
    }
    static auto Reading(std::string& text) {
        return [&text](HWND box) {
            text = DialogOperator::TextOf(box);
            DialogOperator::Press(box, IDOK);
        };
    }

    MainWindow window{Options()};
};

TEST_F(ViewerDialogs, OpeningIsCancelledRefusedAndDone) {
    const std::string before = TitleOf(window);
    DialogOperator user;
    user.Expect(Cancel);
    Choose(kOpen);
    EXPECT_EQ(TitleOf(window), before);

    // The dialog says itself that there is no such file, and goes on.
    const std::filesystem::path folder = ScratchFolder();
    std::string said;
    user.Expect(Entering((folder / L"nowhere.gxr").wstring()));
    user.Expect(Reading(said));
    user.Expect(Cancel);
    Choose(kOpen);
    EXPECT_NE(said, "");
    EXPECT_EQ(TitleOf(window), before);

    const std::wstring junk = (folder / L"\u00FCbel.gxr").wstring();
    std::ofstream(std::filesystem::path(junk), std::ios::binary) << "this is no page";
    user.Expect(Entering(junk));
    user.Expect(Reading(said));
    Choose(kOpen);
    EXPECT_EQ(said, Quoted(junk) + ": this is no recording");
    EXPECT_EQ(TitleOf(window), before);

    const std::wstring good = L"d\u00E9g\u00E2ts \u03A9 \u6587.gxr";
    std::filesystem::copy_file(kPages + "/text_clip-2.gxr", folder / good);
    user.Expect(Entering((folder / good).wstring()));
    Choose(kOpen);
    EXPECT_EQ(TitleOf(window).rfind(Narrow(good) + " - ", 0), 0U) << TitleOf(window);
}

TEST_F(ViewerDialogs, PrintingIsCancelledAndDone) {
    ASSERT_TRUE(TestPrinter::Install(TestPrinter::PathOf(GX_PPD))) << GetLastError();
    std::wstring name = TestPrinter::kName;
    ASSERT_TRUE(SetDefaultPrinterW(name.data()));
    const std::filesystem::path paper = ScratchFolder() / L"p\u00E9p \u6587.ps";
    DialogOperator user;
    user.Expect(Cancel);
    Choose(kPrint);

    const auto confirm = [](HWND dialog) { DialogOperator::Press(dialog, IDOK); };
    // The printer's port is a file.
    user.Expect(confirm);
    user.Expect(Cancel);
    Choose(kPrint);
    EXPECT_FALSE(std::filesystem::exists(paper));
    user.Expect(confirm);
    user.Expect(Entering(paper.wstring()));
    Choose(kPrint);
    std::ifstream file(paper, std::ios::binary);
    const std::string printed(std::istreambuf_iterator<char>(file), {});
    EXPECT_EQ(printed.rfind("%!PS-Adobe", 0), 0U) << printed.size();
    EXPECT_NE(printed.find("showpage"), std::string::npos);
    EXPECT_NE(printed.find("%%EOF"), std::string::npos);
}

} // namespace
} // namespace Viewer
