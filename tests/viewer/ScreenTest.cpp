// SPDX-License-Identifier: MIT
// What the window shows while the page is being drawn: at once what was seen before, in its new place and size; then the
// page itself, which takes its place.
#include "Screen.h"
#include "Drawn.h"

#include <stdexcept>

namespace Viewer {
namespace {

constexpr uint32_t kRed = 0xD02020, kBlue = 0x2040C0, kWhite = 0xFFFFFF;
constexpr uint32_t kAround = Screen::kGround & 0xFFFFFF;

bool IsNear(uint32_t a, uint32_t b) {
    int most = 0;
    for (int c = 0; c < 24; c += 8)
        most = std::max(most, std::abs(static_cast<int>(a >> c & 255) - static_cast<int>(b >> c & 255)));
    return most <= 3;
}

// A page of two halves, which is drawn when the test lets it; another one that cannot be drawn.
class Halves : public Pages {
public:
    explicit Halves(const std::atomic<bool>& held) : m_held(held) {}
    int Count() const override { return 2; }
    std::string Name() const override { return "halves"; }
    PageSize SizeOf(int, const Gxr::StopFlag&) override { return {100, 100}; }
    void Draw(const Piece& piece, const Gxr::StopFlag& stop) override {
        while (m_held && !stop)
            std::this_thread::yield();
        if (stop)
            throw Gxr::Stopped();
        if (piece.page == 1)
            throw std::runtime_error("torn");
        for (int y = piece.part.top; y < piece.part.Bottom(); ++y)
            for (int x = piece.part.left; x < piece.part.Right(); ++x) {
                const uint32_t color = 0xFF000000 | (2 * x < piece.extent.width ? kRed : kBlue);
                std::memcpy(piece.pixels.get() + static_cast<size_t>(y - piece.cell.top) * piece.strideBytes +
                                4 * static_cast<size_t>(x - piece.cell.left),
                            &color, 4);
            }
    }

private:
    const std::atomic<bool>& m_held;
};

class ViewerScreenThread : public ::testing::Test {
protected:
    ViewerScreenThread() {
        m_reader.SetClient(300, 200);
        m_reader.Open(2, {100, 100});
    }
    ~ViewerScreenThread() override { m_held = false; }

    uint32_t At(int x, int y) {
        return m_screen
                   .Pixels()[static_cast<size_t>(y) * static_cast<size_t>(m_screen.Width()) + static_cast<size_t>(x)] &
               0xFFFFFF;
    }
    void Want() { m_drawer.Want(WantedBy(m_reader)); }
    void Compose() { m_screen.Compose(m_reader, m_drawer); }

    std::atomic<bool> m_held{false};
    Drawer m_drawer{[this] { return std::make_unique<Halves>(m_held); }, [] {}};
    Reader m_reader;
    Screen m_screen;
};

TEST_F(ViewerScreenThread, TheOldPictureStandsInUntilThePageIsDrawn) {
    m_held = true;
    Want();
    Compose();
    EXPECT_EQ(At(150, 100), kWhite); // nothing was seen of it yet
    EXPECT_EQ(At(20, 100), kAround);
    m_held = false;
    EXPECT_EQ(Settle(m_drawer).failure, "");
    Compose();
    for (const auto& [x, color] : {std::pair(49, kAround), std::pair(50, kRed), std::pair(149, kRed),
                                   std::pair(150, kBlue), std::pair(249, kBlue), std::pair(250, kAround)})
        EXPECT_EQ(At(x, 199), color) << x;

    // Zoomed about a point of the border between the halves, which stays there.
    m_held = true;
    m_reader.Wheel(4, 150, 60);
    Want();
    Compose();
    EXPECT_FALSE(m_drawer.GetStatus().complete);
    EXPECT_TRUE(IsNear(At(120, 100), kRed)); // sampled
    EXPECT_TRUE(IsNear(At(180, 100), kBlue));
    // And moved: what was seen moves along, what was not is paper.
    m_held = false;
    Settle(m_drawer);
    m_reader.GetView().ZoomTo(4.0f, 0, 0); // 400 pixels wide
    m_reader.SetClient(150, 100);
    m_reader.GetView().PanTo(-100, 0);
    Want();
    Settle(m_drawer);
    Compose();
    EXPECT_EQ(At(99, 50), kRed);
    EXPECT_EQ(At(100, 50), kBlue);
    m_held = true;
    m_reader.Press(140, 50);
    m_reader.Move(90, 50);
    Want();
    Compose();
    EXPECT_EQ(At(40, 50), kRed);
    EXPECT_EQ(At(60, 50), kBlue);
    m_held = false;
    Settle(m_drawer);
    Compose();
    EXPECT_EQ(At(49, 50), kRed);
    EXPECT_EQ(At(50, 50), kBlue);
    EXPECT_EQ(At(149, 50), kBlue);
}

TEST_F(ViewerScreenThread, PagesThatCannotBeDrawnAreCrossedOutAlone) {
    m_reader.ShowList(true);
    m_reader.Do(Action::NextPage);
    Want();
    EXPECT_EQ(Settle(m_drawer, true).failure, "torn");
    Compose();
    const Box page = m_reader.GetView().Visible().MovedBy(m_reader.ViewLeft(), 0);
    EXPECT_NE(At(page.left + page.width / 2, page.top + page.height / 2), kWhite);
    EXPECT_EQ(At(page.left + page.width / 2, page.top + 5), kWhite);
    m_reader.Do(Action::PreviousPage);
    Want();
    EXPECT_EQ(Settle(m_drawer, true).failure, "");
    while (!m_drawer.GetStatus().thumbsComplete)
        m_drawer.WaitForNews();
    Compose();
    EXPECT_EQ(At(page.left + 1, page.top + 5), kRed);
    const Box thumb = m_reader.List().Thumb(0, PageList::kThumb, PageList::kThumb);
    EXPECT_EQ(At(thumb.left, thumb.top), kRed);
    EXPECT_EQ(At(thumb.Right() - 1, thumb.top), kBlue);
}

} // namespace
} // namespace Viewer
