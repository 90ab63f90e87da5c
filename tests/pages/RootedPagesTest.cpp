// SPDX-License-Identifier: MIT
// A worker's view of one page: paths that stay below the root, and a count of deaths that outlives the worker.
#include "Program.h"
#include "TestFiles.h"

#include "../../examples/pdfpage/PageRenderer.h"
#include "../../examples/pdfpage/jobs/NewFile.h"
#include "../../examples/pdfpage/jobs/PageRecord.h"
#include "../../examples/pdfpage/jobs/RootedPages.h"

namespace {

namespace fs = std::filesystem;
using PdfPage::Failure;
using PdfPage::Folder;
using PdfPage::PageJob;
using PdfPage::PageRecord;
using PdfPage::RootedPages;

// A root with a document in it, and one beside it.
struct RootedPagesTest : testing::Test {
    RootedPagesTest() : folder(EmptyFolder()), root(folder / "root") {
        fs::create_directories(root / "in");
        fs::create_directories(folder / "outside");
        const fs::path tiny = fs::path(GX_PAGES_CORPUS) / "page_tiny.pdf";
        fs::copy_file(tiny, root / "in/tiny.pdf");
        fs::copy_file(tiny, folder / "outside/tiny.pdf");
    }

    RootedPages::Result Draw(const PageJob& job) const {
        return RootedPages(root, {}, false).Draw(job, [] {});
    }

    std::string Reason(const PageJob& job, const char* place) const {
        const Folder out = Folder::Open((root / place).string());
        const auto failed = PageRecord(out, job).Failed();
        return failed ? failed->reason : "";
    }

    const fs::path folder, root;
};

TEST_F(RootedPagesTest, DrawsOnceBelowTheRoot) {
    const PageJob job{"in/tiny.pdf", 1, 72.0f, "out/new/tiny-1.png", {}};
    EXPECT_EQ(RootedPages::Result::Settled, Draw(job));
    const fs::path picture = root / "out/new/tiny-1.png";
    EXPECT_EQ(0u, Contents(picture).rfind("\x89PNG", 0));
    EXPECT_EQ(std::vector<std::string>{}, Names(root / "out/new", false));
    // The same job again finds it done.
    std::ofstream(picture) << "mark";
    EXPECT_EQ(RootedPages::Result::Settled, Draw(job));
    EXPECT_EQ("mark", Contents(picture));
    // A page that isn't there is a record, and no picture.
    const PageJob missing{"in/tiny.pdf", 9, 72.0f, "out/tiny-9.png", {}};
    EXPECT_EQ(RootedPages::Result::Settled, Draw(missing));
    EXPECT_EQ("page 9 does not exist, the file has 1 page", Reason(missing, "out"));
    EXPECT_FALSE(fs::exists(root / "out/tiny-9.png"));
}

TEST_F(RootedPagesTest, LeaveNothingOutsideTheRoot) {
    fs::create_directory_symlink(folder / "outside", root / "link");
    fs::create_symlink(folder / "outside/tiny.pdf", root / "in/link.pdf");
    fs::create_symlink(root / "in/tiny.pdf", root / "in/inside.pdf");
    const std::string absolute = (folder / "outside").string();
    // Where the picture may not go there is no place for a record either.
    for (const std::string& output :
         {std::string("../outside/x.png"), absolute + "/x.png", std::string("link/x.png"),
          std::string("in/../../x.png"), std::string("link/new/x.png"), std::string("in/.hidden.png"),
          std::string("in/tiny.pdf"), std::string(".."), std::string("in/"), std::string("in/tiny.pdf/x.png")})
        EXPECT_THROW(Draw({"in/tiny.pdf", 1, 72.0f, output, {}}), Failure) << output;
    EXPECT_EQ(1, std::distance(fs::directory_iterator(folder / "outside"), fs::directory_iterator()));
    // A picture's name that is a link is replaced, and what it leads to stays.
    fs::create_symlink(folder / "outside/tiny.pdf", root / "in/x.png");
    EXPECT_EQ(RootedPages::Result::Settled, Draw({"in/tiny.pdf", 1, 72.0f, "in/x.png", {}}));
    EXPECT_FALSE(fs::is_symlink(root / "in/x.png"));
    EXPECT_EQ(0u, Contents(folder / "outside/tiny.pdf").rfind("%PDF", 0));

    mkfifo((root / "in/pipe.pdf").c_str(), 0666);
    for (const std::string& file :
         {std::string("../outside/tiny.pdf"), absolute + "/tiny.pdf", std::string("link/tiny.pdf"),
          std::string("in/link.pdf"), std::string("in/inside.pdf"), std::string("in/../../outside/tiny.pdf"),
          std::string("in/pipe.pdf"), std::string("in"), std::string("none.pdf")}) {
        const PageJob job{file, 1, 72.0f, "out/y.png", {}};
        EXPECT_EQ(RootedPages::Result::Settled, Draw(job)) << file;
        EXPECT_NE("", Reason(job, "out")) << file;
        EXPECT_FALSE(fs::exists(root / "out/y.png")) << file;
    }
}

TEST_F(RootedPagesTest, CountDeathsWhereTheyLast) {
    if (!kHoldsLimits)
        GTEST_SKIP() << kHoldsNoLimits;
    WriteKillingFile(root / "in/killer.pdf");
    const PageJob job{"in/killer.pdf", 2, 72.0f, "out/killer-2.png", {}};
    rlimit before{};
    getrlimit(RLIMIT_STACK, &before);
    const rlimit small{kSmallStack, before.rlim_max};
    setrlimit(RLIMIT_STACK, &small);
    // Each object is another worker; only the folder remembers.
    EXPECT_EQ(RootedPages::Result::GiveBack, Draw(job));
    EXPECT_EQ(RootedPages::Result::GiveBack, Draw(job));
    EXPECT_EQ("", Reason(job, "out"));
    EXPECT_EQ(RootedPages::Result::Settled, Draw(job));
    setrlimit(RLIMIT_STACK, &before);
    EXPECT_EQ("killed 3 workers, the last one: killed by signal 11 (Segmentation fault)", Reason(job, "out"));
    const Folder out = Folder::Open((root / "out").string());
    EXPECT_TRUE(PageRecord(out, job).Failed()->killsWorkers);
    EXPECT_EQ(1u, Names(root / "out", false).size());
}

TEST_F(RootedPagesTest, ClearUpAfterWorkersThatVanished) {
    // Two workers began and were never heard of again; the second one still holds its file.
    const Folder out = Folder::Make((root / "out").string());
    const PageJob job{"in/tiny.pdf", 1, 72.0f, "out/tiny-1.png", {}};
    const PageRecord record(out, job);
    std::ofstream(root / "out/.pdfpage-1111.part") << "half";
    record.Begin(".pdfpage-1111.part");
    PdfPage::NewFile slow(out, "tiny-1.png");
    record.Begin(slow.TemporaryName());
    EXPECT_TRUE(record.IsMine(slow.TemporaryName()));
    out.Append(".pdfpage-" + job.Key() + ".tries", ""); // as the workers of another machine would
    EXPECT_EQ(2u, record.Tries());

    EXPECT_EQ(RootedPages::Result::Settled, Draw(job));
    const std::string picture = Contents(root / "out/tiny-1.png");
    EXPECT_NE("", picture);
    EXPECT_EQ(std::vector<std::string>{}, Names(root / "out", false));
    // The slow one wakes up: its file is gone, and the picture stays.
    EXPECT_FALSE(record.IsMine(slow.TemporaryName()));
    EXPECT_FALSE(slow.Publish(false));
    EXPECT_EQ(picture, Contents(root / "out/tiny-1.png"));

    // Three that vanished are enough, and what they wrote as names of files is not trusted.
    const PageJob other{"in/tiny.pdf", 1, 73.0f, "out/other-1.png", {}};
    out.Append(".pdfpage-" + other.Key() + ".tries", "../in/tiny.pdf\n.pdfpage-/../../in/tiny.part\nx\n");
    EXPECT_EQ(RootedPages::Result::Settled, Draw(other));
    EXPECT_EQ("killed 3 workers", Reason(other, "out"));
    EXPECT_TRUE(fs::exists(root / "in/tiny.pdf"));
}

TEST_F(RootedPagesTest, HoldTheNarrowerLimit) {
    WriteEndlessFile(root / "in/endless.pdf");
    if (kHoldsLimits) {
        const PageJob job{"in/endless.pdf", 2, 72.0f, "out/a-2.png", {100, 8 << 20}};
        EXPECT_EQ(RootedPages::Result::Settled, RootedPages(root, {0, 1 << 30}, false).Draw(job, [] {}));
        EXPECT_EQ("memory limit of 8 MB reached", Reason(job, "out"));
    }
    const PageJob slow{"in/endless.pdf", 2, 72.0f, "out/b-2.png", {100, 0}};
    int alive = 0;
    EXPECT_EQ(RootedPages::Result::Settled, RootedPages(root, {1.5, 0}, false).Draw(slow, [&] { ++alive; }));
    EXPECT_EQ("time limit of 1.5 s reached", Reason(slow, "out"));
    EXPECT_GE(alive, 2);
}

} // namespace
