// SPDX-License-Identifier: MIT
// The drawing thread: what it draws has the library's own bytes, however the view came there; what is no longer wanted is
// stopped; what fails is told. For the preset tsan, too.
#include "Drawn.h"
#include "PageList.h"
#include "RecordedPages.h"

#include "../ScratchFolder.h"

#include <fstream>

namespace Viewer {
namespace {

const std::filesystem::path kPages = GX_RECORDINGS;

Drawer::Open Recordings(std::vector<std::string> names, unsigned threads = 2) {
    return [names, threads] {
        std::vector<std::filesystem::path> files;
        for (const std::string& name : names)
            files.push_back(kPages / name);
        return std::make_unique<RecordedPages>(files, threads);
    };
}

std::vector<uint32_t> Reference(const std::string& name, float zoom, const Box& extent, const Box& box) {
    const Gxr::Recording recording = Gxr::Recording::FromFile((kPages / name).string());
    return InCells(extent, box, [&](const Box& cell) {
        const GXMatrix place{1, 0, 0, 1, static_cast<float>(-cell.left), static_cast<float>(-cell.top)};
        return PlayCell(recording, zoom, place, extent, cell);
    });
}

TEST(ViewerDrawerThread, DrawsTheLibrarysOwnBytesHoweverTheViewMoves) {
    const std::string name = "vector_tiger-1.gxr";
    Drawer drawer(Recordings({name}), [] {});
    const PageSize size = Document(kPages / name).Size();
    constexpr float kZoom = 1.75f;
    Box visible{800, 700, 420, 380};
    uint64_t before = 0;
    Box last{-10000, -10000, 0, 0};
    for (const auto& [dx, dy] : {std::pair(0, 0), std::pair(37, 0), std::pair(-20, 55), std::pair(3, -90)}) {
        visible = visible.MovedBy(dx, dy);
        const Drawer::Wanted wanted = WantedOf(0, size, kZoom, visible);
        drawer.Want(wanted);
        EXPECT_EQ(Settle(drawer).failure, "");
        EXPECT_EQ(Different(DrawnIn(drawer, visible), Reference(name, kZoom, wanted.extent, visible)), 0U) << dx;
        const uint64_t drawn = drawer.GetCounts().pixels - std::exchange(before, drawer.GetCounts().pixels);
        EXPECT_LE(drawn, Fresh(std::exchange(last, visible), visible)) << "more than what came in sight";
    }
}

TEST(ViewerDrawerThread, EveryKindOfRecordedPageAtSeveralZooms) {
    for (const char* name : {"softmask_luminosity-1.gxr", "group_knockout-2.gxr", "images_masked-1.gxr",
                             "shading_radial-2.gxr", "text_pattern-1.gxr", "page_tiny-1.gxr"}) {
        Drawer drawer(Recordings({name}, 3), [] {});
        const PageSize size = Document(kPages / name).Size();
        for (const float zoom : {0.3f, 1.0f, 2.6f}) {
            const Drawer::Wanted wanted = WantedOf(0, size, zoom, {10, 200, 300, 250});
            drawer.Want(wanted);
            EXPECT_EQ(Settle(drawer).failure, "");
            EXPECT_EQ(Different(DrawnIn(drawer, wanted.visible), Reference(name, zoom, wanted.extent, wanted.visible)),
                      0U)
                << name << " " << zoom;
        }
    }
}

TEST(ViewerDrawerThread, ThumbnailsComeAfterThePageAndArePagesOnTheirOwn) {
    const std::vector<std::string> names{"blend_modes-1.gxr", "page_tiny-1.gxr", "charts_dashed-1.gxr"};
    Drawer drawer(Recordings(names), [] {});
    Drawer::Wanted wanted = WantedOf(0, Document(kPages / names[0]).Size(), 0.25f, {0, 0, 200, 200});
    wanted.thumbsTo = 10; // more than there are
    drawer.Want(wanted);
    EXPECT_EQ(Settle(drawer, true).pages, 3);
    for (int page = 0; page < 3; ++page) {
        const std::string& name = names[static_cast<size_t>(page)];
        const PageSize size = Document(kPages / name).Size();
        const float zoom = FittingZoom(size, PageList::kThumb, PageList::kThumb);
        const Box extent{0, 0, Extent(size.width, zoom), Extent(size.height, zoom)};
        const auto thumb = drawer.GetThumb(page);
        ASSERT_TRUE(thumb && thumb->pixels) << name;
        std::vector<uint32_t> pixels(static_cast<size_t>(thumb->width) * static_cast<size_t>(thumb->height));
        std::memcpy(pixels.data(), thumb->pixels.get(), pixels.size() * 4);
        EXPECT_EQ(Different(pixels, Reference(name, zoom, extent, extent)), 0U) << name;
    }
    EXPECT_FALSE(drawer.GetThumb(3));
}

TEST(ViewerDrawerThread, WrongGuessesOfASizeDrawNothing) {
    const std::string name = "form_tax-1.gxr";
    Drawer drawer(Recordings({name}), [] {});
    drawer.Want(WantedOf(0, {100, 100}, 1.0f, {0, 0, 100, 100}));
    Drawer::Status status;
    while (!status.size) {
        drawer.WaitForNews();
        status = drawer.GetStatus();
    }
    EXPECT_EQ(*status.size, Document(kPages / name).Size());
    EXPECT_FALSE(status.complete);
    drawer.Want(WantedOf(0, *status.size, 1.0f, {0, 0, 100, 100}));
    Settle(drawer);
    EXPECT_EQ(drawer.GetCounts().pixels, 100U * 256U);
}

// Pages under the test's control.
class Obedient : public Pages {
public:
    struct Hands {
        std::atomic<int> began{0};
        std::atomic<bool> wait{true};
    };
    explicit Obedient(Hands& hands) : m_hands(hands) {}
    int Count() const override { return 40; }
    std::string Name() const override { return "obedient"; }
    PageSize SizeOf(int page, const Gxr::StopFlag&) override {
        if (page == 7)
            throw std::runtime_error("page 8 is torn");
        return {1000, 1000};
    }
    void Draw(const Piece& piece, const Gxr::StopFlag& stop) override {
        if (piece.page == 8)
            throw std::bad_alloc();
        ++m_hands.began;
        while (m_hands.wait && !stop)
            std::this_thread::yield();
        if (stop)
            throw Gxr::Stopped();
    }

private:
    Hands& m_hands;
};

TEST(ViewerDrawerThread, ANewerViewStopsAStaleOneAndAPanDoesNot) {
    Obedient::Hands hands;
    Drawer drawer([&] { return std::make_unique<Obedient>(hands); }, [] {});
    const auto begins = [&](int count) {
        while (hands.began < count)
            std::this_thread::yield();
    };
    drawer.Want(WantedOf(0, {1000, 1000}, 1.0f, {0, 0, 300, 300}));
    begins(1);
    drawer.Want(WantedOf(0, {1000, 1000}, 1.0f, {10, 10, 300, 300})); // goes on with what is still in sight
    drawer.Want(WantedOf(0, {1000, 1000}, 1.5f, {10, 10, 300, 300}));
    begins(2);
    EXPECT_EQ(drawer.GetCounts().stopped, 1U);
    drawer.Want(WantedOf(0, {1000, 1000}, 1.5f, {700, 700, 300, 300}));
    begins(3);
    drawer.Want(WantedOf(3, {1000, 1000}, 1.5f, {700, 700, 300, 300}));
    begins(4);
    EXPECT_EQ(drawer.GetCounts().stopped, 3U);
    EXPECT_EQ(drawer.GetCounts().pieces, 0U);
    hands.wait = false;
    EXPECT_TRUE(Settle(drawer).complete);
    const uint64_t pixels = drawer.GetCounts().pixels;
    EXPECT_EQ(pixels, Fresh({}, {700, 700, 300, 300}));

    // A thumbnail makes way for the page.
    hands.wait = true;
    Drawer::Wanted wanted = WantedOf(3, {1000, 1000}, 1.5f, {700, 700, 300, 300});
    wanted.thumbsTo = 5;
    int began = hands.began;
    drawer.Want(wanted);
    begins(began + 1);
    wanted.visible = {600, 600, 300, 300};
    drawer.Want(wanted);
    begins(began + 2);
    hands.wait = false;
    EXPECT_TRUE(Settle(drawer, true).thumbsComplete);
    EXPECT_EQ(drawer.GetCounts().pixels - pixels, Fresh({700, 700, 300, 300}, {600, 600, 300, 300}));
    // The end waits for nobody.
    hands.wait = true;
    began = hands.began;
    drawer.Want(WantedOf(5, {1000, 1000}, 1.0f, {0, 0, 10, 10}));
    begins(began + 1);
}

// Fronts tell their wish after every event, and news are events.
TEST(ViewerDrawerThread, TheSameWishAgainIsNoNews) {
    Obedient::Hands hands;
    hands.wait = false;
    std::atomic<int> news{0};
    Drawer drawer([&] { return std::make_unique<Obedient>(hands); }, [&] { ++news; });
    Drawer::Wanted wanted = WantedOf(0, {1000, 1000}, 1.0f, {0, 0, 300, 300});
    drawer.Want(wanted);
    Settle(drawer, true);
    // The document, the page's size, a piece, the page, the thumbnails: the last one is told after its status is there.
    while (news < 5)
        std::this_thread::yield();
    for (int i = 0; i < 20; ++i) {
        drawer.Want(wanted);
        EXPECT_TRUE(drawer.GetStatus().complete && drawer.GetStatus().thumbsComplete);
    }
    EXPECT_EQ(news, 5);
    wanted.thumbsTo = 1;
    drawer.Want(wanted);
    EXPECT_FALSE(drawer.GetStatus().thumbsComplete && !drawer.GetThumb(0));
    Settle(drawer, true);
    while (news < 8) // the page, the thumbnail, the end
        std::this_thread::yield();
    EXPECT_EQ(news, 8);
}

TEST(ViewerDrawerThread, FailuresAreThoseOfTheirPageAlone) {
    Obedient::Hands hands;
    hands.wait = false;
    Drawer drawer([&] { return std::make_unique<Obedient>(hands); }, [] {});
    const auto failure = [&](int page) {
        drawer.Want(WantedOf(page, {1000, 1000}, 1.0f, {0, 0, 10, 10}));
        return Settle(drawer).failure;
    };
    EXPECT_EQ(failure(6), "");
    EXPECT_EQ(failure(7), "page 8 is torn");
    EXPECT_EQ(failure(8), "out of memory");
    EXPECT_EQ(failure(9), "");
    Drawer::Wanted wanted = WantedOf(9, {1000, 1000}, 1.0f, {0, 0, 10, 10});
    wanted.thumbsFrom = 6;
    wanted.thumbsTo = 9;
    drawer.Want(wanted);
    EXPECT_EQ(Settle(drawer, true).failure, "");
    EXPECT_TRUE(drawer.GetThumb(6)->pixels);
    EXPECT_FALSE(drawer.GetThumb(7)->pixels);
    EXPECT_FALSE(drawer.GetThumb(8)->pixels);
}

TEST(ViewerDrawerThread, DocumentsThatCannotBeOpenedAreTold) {
    const std::filesystem::path cut = ScratchFolder() / "cut.gxr";
    std::ifstream good(kPages / "text_clip-2.gxr", std::ios::binary);
    std::string bytes(std::istreambuf_iterator<char>(good), {});
    bytes.resize(bytes.size() / 2);
    std::ofstream(cut, std::ios::binary) << bytes;
    for (const auto& [path, text] :
         {std::pair(cut, ": the recording is cut off"),
          std::pair(std::filesystem::path("nowhere.gxr"), "cannot open 'nowhere.gxr': No such file or directory")}) {
        Drawer drawer(
            [path = path] { return std::make_unique<RecordedPages>(std::vector<std::filesystem::path>{path}, 1U); },
            [] {});
        drawer.WaitForNews();
        drawer.Want(WantedOf(0, {10, 10}, 1.0f, {0, 0, 10, 10}));
        EXPECT_FALSE(drawer.GetStatus().opened);
        EXPECT_NE(drawer.GetStatus().failure.find(text), std::string::npos) << drawer.GetStatus().failure;
    }
}

} // namespace
} // namespace Viewer
