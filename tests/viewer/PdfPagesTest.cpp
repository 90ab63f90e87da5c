// SPDX-License-Identifier: MIT
// PDF files in the viewer: cells have the bytes that the page host draws there by one thread, also where a view moves
// over them; what cannot be read is told.
#include "PdfPages.h"
#include "Drawn.h"

#include "../ScratchFolder.h"

#include <fstream>

namespace Viewer {
namespace {

const std::filesystem::path kCorpus = GX_PAGES_CORPUS;

Drawer::Open Pdf(const std::filesystem::path& path, unsigned threads = 2) {
    return [path, threads] { return std::make_unique<PdfPages>(path, threads); };
}

PageSize SizeOf(const std::string& file, int page) {
    const Gxr::StopFlag stop{false};
    return PdfPages(kCorpus / file, 1).SizeOf(page, stop);
}

// A box of the page, recorded and played cell by cell by one thread.
std::vector<uint32_t> Reference(const std::string& file, int page, float zoom, const Box& extent, const Box& box) {
    PdfPage::Report report(false);
    PdfPage::Document document((kCorpus / file).string(), report);
    PdfPage::Page drawn(document, page + 1);
    return InCells(extent, box, [&](const Box& cell) {
        Gxr::Recorder recorder;
        document.RecordInto(&recorder);
        drawn.Show(PdfPages::kDpi * zoom, {cell.left, cell.top, cell.Right(), cell.Bottom()}, nullptr);
        return PlayCell(drawn.Record(recorder), 1.0f, {1, 0, 0, 1, 0, 0}, extent, cell);
    });
}

// The same drawn at once, without a recording, as far as a whole page can be.
std::vector<uint32_t> HostsOwn(const std::string& file, int page, float zoom, const Box& box) {
    PdfPage::Report report(false);
    PdfPage::Document document((kCorpus / file).string(), report);
    PdfPage::Picture picture;
    PdfPage::Page(document, page + 1, PdfPages::kDpi * zoom).Draw(&picture, nullptr);
    std::vector<uint32_t> pixels(static_cast<size_t>(box.width) * static_cast<size_t>(box.height));
    for (int y = 0; y < box.height; ++y)
        std::memcpy(&pixels[static_cast<size_t>(y) * static_cast<size_t>(box.width)],
                    picture.pixels.data() + static_cast<size_t>(box.top + y) * picture.StrideBytes() +
                        4 * static_cast<size_t>(box.left),
                    4 * static_cast<size_t>(box.width));
    return pixels;
}

// Pixels with a channel that differs by more than what rounding and sampling from another start account for.
size_t FarOff(const std::vector<uint32_t>& a, const std::vector<uint32_t>& b) {
    size_t far = 0;
    for (size_t i = 0; i < a.size(); ++i) {
        int most = 0;
        for (int c = 0; c < 24; c += 8)
            most = std::max(most, std::abs(static_cast<int>(a[i] >> c & 255) - static_cast<int>(b[i] >> c & 255)));
        far += most > 12;
    }
    return far;
}

// A page that is one cell is the page as the host writes it.
TEST(ViewerPdf, SmallPagesAreThePagesOfTheHost) {
    for (const auto& [file, page] :
         {std::pair("vector_tiger.pdf", 0), std::pair("blend_modes.pdf", 1), std::pair("page_rotated.pdf", 1),
          std::pair("shading_radial.pdf", 1), std::pair("softmask_alpha.pdf", 0), std::pair("tiling.pdf", 0)}) {
        const PageSize size = SizeOf(file, page);
        const float zoom = std::min(1.0f, FittingZoom(size, Cells::kSide, Cells::kSide));
        Drawer drawer(Pdf(kCorpus / file), [] {});
        const Drawer::Wanted wanted = WantedOf(page, size, zoom, {0, 0, Cells::kSide, Cells::kSide});
        drawer.Want(wanted);
        EXPECT_EQ(Settle(drawer).failure, "");
        EXPECT_EQ(Different(DrawnIn(drawer, wanted.extent), HostsOwn(file, page, zoom, wanted.extent)), 0U) << file;
    }
}

TEST(ViewerPdf, CellsHaveTheHostsBytesHoweverTheViewMoves) {
    for (const auto& [file, page] :
         {std::pair("group_artwork.pdf", 0), std::pair("charts_dashed.pdf", 0), std::pair("images_1bit.pdf", 0),
          std::pair("text_type3_bitmap.pdf", 0), std::pair("softmask_luminosity.pdf", 0)}) {
        const PageSize size = SizeOf(file, page);
        Drawer drawer(Pdf(kCorpus / file, 3), [] {});
        constexpr float kZoom = 2.25f;
        Box visible{820, 830, 350, 330};
        uint64_t before = 0;
        Box last{-10000, -10000, 0, 0};
        for (const auto& [dx, dy] : {std::pair(0, 0), std::pair(43, 0), std::pair(-21, 64)}) {
            visible = visible.MovedBy(dx, dy);
            const Drawer::Wanted wanted = WantedOf(page, size, kZoom, visible);
            drawer.Want(wanted);
            EXPECT_EQ(Settle(drawer).failure, "");
            EXPECT_EQ(
                Different(DrawnIn(drawer, wanted.visible), Reference(file, page, kZoom, wanted.extent, wanted.visible)),
                0U)
                << file << " " << dx;
            EXPECT_LE(FarOff(DrawnIn(drawer, wanted.visible), HostsOwn(file, page, kZoom, wanted.visible)),
                      static_cast<size_t>(wanted.visible.width * wanted.visible.height / 500))
                << file << " " << dx;
            const uint64_t drawn = drawer.GetCounts().pixels - std::exchange(before, drawer.GetCounts().pixels);
            EXPECT_LE(drawn, Fresh(std::exchange(last, wanted.visible), wanted.visible))
                << "more than what came in sight";
        }
    }
}

// The thread sanitizer watches this one.
TEST(ViewerPdf, ThreadsOfViewsThatComeFasterThanTheyAreDrawn) {
    std::atomic<int> news{0};
    Drawer drawer(Pdf(kCorpus / "blend_modes.pdf", 3), [&] { ++news; });
    for (int i = 0; i < 60; ++i) {
        const int page = i / 20;
        const PageSize size{816, 1056};
        Drawer::Wanted wanted = WantedOf(page, drawer.GetStatus().size.value_or(size),
                                         0.5f + 0.125f * static_cast<float>(i % 5), {3 * i, 2 * i, 400, 300});
        wanted.thumbsTo = 3;
        drawer.Want(wanted);
        DrawnIn(drawer, wanted.visible);
        if (i % 4 == 0)
            drawer.WaitForNews();
    }
    const PageSize size = SizeOf("blend_modes.pdf", 2);
    const Drawer::Wanted last = WantedOf(2, size, 1.0f, {100, 100, 300, 300});
    drawer.Want(last);
    EXPECT_EQ(Settle(drawer).failure, "");
    EXPECT_EQ(
        Different(DrawnIn(drawer, last.visible), Reference("blend_modes.pdf", 2, 1.0f, last.extent, last.visible)), 0U);
    EXPECT_GT(news, 0);
}

TEST(ViewerPdf, DamagedFilesAreRepairedOrTold) {
    const auto failure = [](const std::filesystem::path& path, int page) {
        Drawer drawer(Pdf(path), [] {});
        drawer.WaitForNews();
        if (!drawer.GetStatus().opened)
            return drawer.GetStatus().failure;
        Drawer::Wanted wanted = WantedOf(page, {10, 10}, 1.0f, {0, 0, 100, 100});
        drawer.Want(wanted);
        while (!drawer.GetStatus().size && drawer.GetStatus().failure.empty())
            drawer.WaitForNews();
        if (const auto size = drawer.GetStatus().size) {
            drawer.Want(WantedOf(page, *size, 1.0f, {0, 0, 100, 100}));
            return Settle(drawer).failure;
        }
        return drawer.GetStatus().failure;
    };
    EXPECT_EQ(failure(kCorpus / "broken_xref.pdf", 0), "");
    const auto scratch = [](const char* name, const std::string& bytes) {
        const std::filesystem::path path = ScratchFolder() / name;
        std::ofstream(path, std::ios::binary) << bytes;
        return path;
    };
    EXPECT_NE(failure(scratch("text.pdf", "no PDF at all"), 0), "");
    EXPECT_NE(failure("nowhere.pdf", 0).find("cannot open 'nowhere.pdf'"), std::string::npos);
    std::ifstream good(kCorpus / "vector_tiger.pdf", std::ios::binary);
    std::string bytes(std::istreambuf_iterator<char>(good), {});
    for (size_t length = 1; length < bytes.size(); length = length * 3 + 17)
        failure(scratch("cut.pdf", bytes.substr(0, length)), 0); // an answer, whatever it is, and no crash
    for (size_t at = 200; at + 10 < bytes.size(); at += bytes.size() / 23) {
        std::string bent = bytes;
        bent.replace(at, 8, "<</>>[[(");
        failure(scratch("bent.pdf", bent), 0);
    }
    // Pages that claim to be larger than anything keep to what is in sight.
    EXPECT_EQ(failure(scratch("huge.pdf", "%PDF-1.4\n1 0 obj<</Type/Catalog/Pages 2 0 R>>endobj\n"
                                          "2 0 obj<</Type/Pages/Kids[3 0 R]/Count 1>>endobj\n"
                                          "3 0 obj<</Type/Page/Parent 2 0 R/MediaBox[0 0 9e5 9e5]>>endobj\n"
                                          "trailer<</Root 1 0 R>>\n"),
                      0),
              "");
}

} // namespace
} // namespace Viewer
