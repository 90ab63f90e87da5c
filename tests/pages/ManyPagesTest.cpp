// SPDX-License-Identifier: MIT
// Many pages as a run of processes: what fails costs its page, what is there is whole, and a second run goes on.
#include "Program.h"
#include "TestFiles.h"

#include "../../examples/pdfpage/PageRenderer.h"
#include "../../examples/pdfpage/jobs/Failures.h"
#include "../../examples/pdfpage/jobs/PageJob.h"
#include "../../examples/pdfpage/jobs/PageList.h"
#include "../../examples/pdfpage/jobs/PageNames.h"
#include "../../examples/pdfpage/jobs/Progress.h"

#include <algorithm>

namespace {

namespace fs = std::filesystem;
using PdfPage::Failure;

std::string Corpus(const char* name) { return std::string(GX_PAGES_CORPUS) + "/" + name; }

struct Ended {
    int code;
    std::string said;
    bool Says(const std::string& part) const { return said.find(part) != std::string::npos; }
};

Ended Draw(std::vector<std::string> arguments, size_t stackBytes = 0) {
    arguments.insert(arguments.begin(), GX_PDFPAGE);
    Program program(arguments, TestPath(".log"), stackBytes);
    const int code = program.Wait();
    return {code, program.Said()};
}

using Strings = std::vector<std::string>;

TEST(PageList, ReadsRangesAndNamesEachPageOnce) {
    const auto pages = [](const char* text, int count) {
        std::string all;
        const PdfPage::PageList list = PdfPage::PageList::Parse(text).In(count);
        for (const PdfPage::PageRange& range : list.Ranges())
            all += std::to_string(range.first) + "-" + std::to_string(range.last) + " ";
        return all;
    };
    EXPECT_EQ("1-500 ", pages("1-500", 500));
    EXPECT_EQ("3-3 7-9 ", pages("3,7-9", 9));
    EXPECT_EQ("5-8 ", pages("5-", 8));
    EXPECT_EQ("1-6 9-9 ", pages("9,4-6,1-2,2-5", 9));
    EXPECT_EQ("2-9 ", pages("7,2-,3", 9));
    EXPECT_THROW(pages("5-", 4), Failure);
    EXPECT_THROW(pages("1-5,9", 8), Failure);
    for (const char* text : {"", "0", "-3", "3-2", "1,,2", "1,", "2-3-4", "1 - 2", "a", "1-0", "99999999999"})
        EXPECT_THROW(PdfPage::PageList::Parse(text), Failure) << text;
    EXPECT_EQ("3, 7-9, 11", PdfPage::PageText({9, 3, 8, 7, 11}));
}

TEST(PageNames, NeverMeet) {
    const PdfPage::PageNames alone({"a/x.pdf", "y.pdf"});
    EXPECT_EQ("x-3.png", alone.Of(0, 3));
    const PdfPage::PageNames twins({"a/x.pdf", "b/x.pdf", "x.xps", "x-1.pdf", "y.pdf"});
    std::vector<std::string> names;
    for (size_t file = 0; file < 5; ++file)
        for (const int page : {1, 2, 11})
            names.push_back(twins.Of(file, page));
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names.end(), std::unique(names.begin(), names.end()));
    EXPECT_EQ("y-2.png", twins.Of(4, 2));
    // A name does not depend on what else is on the command line, or on its order.
    EXPECT_EQ(twins.Of(1, 7), PdfPage::PageNames({"b/x.pdf", "q/x.pdf"}).Of(0, 7));
    const std::string stem = twins.Of(0, 1).substr(0, twins.Of(0, 1).rfind('-'));
    EXPECT_THROW(PdfPage::PageNames({"a/x.pdf", "b/x.pdf", "c/" + stem + ".pdf"}), Failure);
    EXPECT_EQ(1u, PdfPage::WithoutTwins({"a/x.pdf", "a/../a/./x.pdf"}).size());
}

TEST(PageJob, TravelsAsText) {
    const PdfPage::PageJob job{"a\\n b\n/ü.pdf", 7, 98.7654321f, "out/x-7.png", {0.1, 123456789012}};
    const PdfPage::PageJob back = PdfPage::PageJob::Unpacked(job.Packed());
    EXPECT_EQ(job.Packed(), back.Packed());
    EXPECT_EQ(job.file, back.file);
    EXPECT_EQ(job.dpi, back.dpi);
    EXPECT_EQ(job.limits.seconds, back.limits.seconds);
    PdfPage::PageJob other = job;
    other.limits.bytes += 1;
    EXPECT_NE(job.Key(), other.Key());
    other = job;
    other.adjust = false;
    EXPECT_FALSE(PdfPage::PageJob::Unpacked(other.Packed()).adjust);
    EXPECT_TRUE(back.adjust);
    EXPECT_NE(job.Key(), other.Key());
    EXPECT_EQ(32u, job.Key().size());
    const std::string text = job.Packed();
    for (const std::string& bad :
         {std::string(), std::string("pdfpage 2\n") + text.substr(10), text + "colour 0\n", text + "page 0\n",
          text + "dpi nan\n", text + std::string(1, '\0'), std::string("pdfpage 1\nfile a\n")})
        EXPECT_THROW(PdfPage::PageJob::Unpacked(bad), Failure) << bad;
}

TEST(Progress, TellsRateRestAndTrouble) {
    const PdfPage::Tally tally{100, 48, 2, 10};
    EXPECT_EQ("[##################............] 60/100, 5.0 pages/s, 0:08 left, 2 failed, 10 there already",
              PdfPage::Progress::Bar(tally, 10));
    EXPECT_EQ("48 of 100 pages done, 2 failed, 10 there already, 0.0 pages/s, 2:13:20 left",
              PdfPage::Progress::Line(tally, 10000));
    EXPECT_EQ("0 of 0 pages done", PdfPage::Progress::Line({}, 0));
    PdfPage::Failures failures;
    for (const int page : {5, 3, 4, 9})
        failures.AddPage("killed", "a.pdf", page);
    failures.AddPage("killed", "b.pdf", 1);
    failures.AddFile("cannot open 'c.pdf'", "c.pdf");
    EXPECT_EQ("5 of 20 pages and 1 of 3 files failed: cannot open 'c.pdf'; killed: a.pdf 3-5, 9, b.pdf 1",
              failures.Line(20, 3));
}

TEST(ManyPages, AreThoseOfOnePageAtATime) {
    const fs::path out = EmptyFolder();
    const Ended all = Draw({Corpus("page_rotated.pdf"), Corpus("vector_tiger.pdf"), Corpus("slides.pdf"), "--jobs", "3",
                            "--dpi", "40", "--out", (out / "new/folder").string()});
    EXPECT_EQ(0, all.code) << all.said;
    EXPECT_EQ("pdfpage: 9 of 9 pages done", all.said.substr(0, 26));
    EXPECT_EQ(
        (Strings{"page_rotated-1.png", "page_rotated-2.png", "page_rotated-3.png", "page_rotated-4.png",
                 "page_rotated-5.png", "page_rotated-6.png", "slides-1.png", "slides-2.png", "vector_tiger-1.png"}),
        Names(out / "new/folder", true));
    EXPECT_EQ(Strings{}, Names(out / "new/folder", false));
    const std::string one = (out / "one.png").string();
    for (const auto& [file, page] : {std::pair{"page_rotated", "3"}, {"vector_tiger", "1"}, {"slides", "2"}}) {
        EXPECT_EQ(0, Shell(Quoted(GX_PDFPAGE) + " " + Quoted(Corpus(file) + ".pdf") + " " + page + " " + Quoted(one) +
                           " --dpi 40"));
        EXPECT_EQ(Contents(one), Contents(out / "new/folder" / (std::string(file) + "-" + page + ".png"))) << file;
    }
}

TEST(ManyPages, KeepWhatIsThereWhenResumed) {
    const fs::path out = EmptyFolder();
    const Strings arguments{Corpus("page_rotated.pdf"), "--pages", "2,4-5", "--dpi", "20", "--out", out.string()};
    std::ofstream(out / "page_rotated-4.png") << "kept";
    std::ofstream(out / "page_rotated-5.png");                       // of a machine that stopped: empty
    std::ofstream(out / ".pdfpage-0123456789abcdef.part") << "half"; // of a program that was killed
    Strings resumed = arguments;
    resumed.push_back("--resume");
    Ended ended = Draw(resumed);
    EXPECT_EQ(0, ended.code);
    EXPECT_TRUE(ended.Says("2 of 3 pages done, 1 there already")) << ended.said;
    EXPECT_EQ("kept", Contents(out / "page_rotated-4.png"));
    EXPECT_NE("", Contents(out / "page_rotated-5.png"));
    EXPECT_EQ(Strings{}, Names(out, false));
    ended = Draw(arguments);
    EXPECT_EQ(0, ended.code);
    EXPECT_NE("kept", Contents(out / "page_rotated-4.png"));
}

TEST(ManyPages, LoseNoOtherPageToOneThatKillsItsProcess) {
    if (!kHoldsLimits)
        GTEST_SKIP() << kHoldsNoLimits;
    const fs::path folder = EmptyFolder();
    WriteKillingFile(folder / "killer.pdf");
    const Ended ended = Draw({(folder / "killer.pdf").string(), Corpus("page_tiny.pdf"), (folder / "none.pdf").string(),
                              "--out", (folder / "out").string()},
                             kSmallStack);
    EXPECT_EQ(1, ended.code);
    EXPECT_EQ((Strings{"killer-1.png", "killer-3.png", "page_tiny-1.png"}), Names(folder / "out", true));
    EXPECT_EQ(Strings{}, Names(folder / "out", false));
    EXPECT_TRUE(ended.Says("1 of 4 pages and 1 of 3 files failed: cannot open")) << ended.said;
    EXPECT_TRUE(ended.Says("killed by signal 11 (Segmentation fault): " + (folder / "killer.pdf").string() + " 2"))
        << ended.said;
}

TEST(ManyPages, EndAtTheirLimits) {
    const fs::path folder = EmptyFolder();
    const std::string file = (folder / "endless.pdf").string(), out = (folder / "out").string();
    WriteEndlessFile(file);
    Ended ended;
    if (kHoldsLimits) {
        ended = Draw({file, Corpus("page_tiny.pdf"), "--out", out, "--max-memory", "8M"});
        EXPECT_EQ(1, ended.code);
        EXPECT_TRUE(ended.Says("1 of 3 pages failed: memory limit of 8 MB reached: " + file + " 2")) << ended.said;
        EXPECT_EQ((Strings{"endless-1.png", "page_tiny-1.png"}), Names(out, true));
    }
    ended = Draw({file, "--out", out, "--timeout", "1.5", "--resume"});
    EXPECT_EQ(1, ended.code);
    EXPECT_TRUE(ended.Says("time limit of 1.5 s reached")) << ended.said;
    EXPECT_EQ(Strings{}, Names(out, false));
    // The same for one page.
    const Strings limit = kHoldsLimits ? Strings{"--max-memory", "8M"} : Strings{"--timeout", "1.5"};
    ended = Draw({file, "2", out + "/one.png", limit[0], limit[1]});
    EXPECT_EQ(1, ended.code);
    EXPECT_EQ(kHoldsLimits ? "pdfpage: memory limit of 8 MB reached\n" : "pdfpage: time limit of 1.5 s reached\n",
              ended.said);
    EXPECT_FALSE(fs::exists(out + "/one.png"));
    EXPECT_EQ(0, Draw({file, "1", out + "/one.png", "--max-memory", "64M", "--timeout", "100"}).code);
}

TEST(ManyPages, AreNamedWhenTheyAreWhole) {
    const fs::path folder = EmptyFolder();
    WriteEndlessFile(folder / "endless.pdf");
    const fs::path out = folder / "out";
    Program program({GX_PDFPAGE, (folder / "endless.pdf").string(), "--jobs", "1", "--out", out.string()},
                    folder / "log");
    // The first page is there, the second one under way: without a name.
    ASSERT_TRUE(Await([&] { return fs::exists(out / "endless-1.png") && Names(out, false).size() == 1; }));
    EXPECT_EQ(0u, Names(out, false)[0].rfind(".pdfpage-", 0));
    EXPECT_EQ(Strings{"endless-1.png"}, Names(out, true));
    // Who is asked to stop leaves nothing behind.
    kill(program.Id(), SIGTERM);
    EXPECT_EQ(130, program.Wait());
    EXPECT_NE(std::string::npos, program.Said().find("stopped, 1 pages are left")) << program.Said();
    EXPECT_EQ(Strings{}, Names(out, false));
}

// Pages at a time, not pages in all, are what is in memory: the program's peak, and that of its largest child.
TEST(ManyPages, HoldNoMoreMemoryForMorePages) {
    const fs::path folder = EmptyFolder();
    const auto peakKilobytes = [&](const char* pages) {
        const fs::path out = folder / pages;
        const pid_t process = fork();
        if (process == 0) {
            execl(GX_PDFPAGE, GX_PDFPAGE, Corpus("page_rotated.pdf").c_str(), "--pages", pages, "--dpi", "72", "--out",
                  out.c_str(), "--jobs", "1", static_cast<char*>(nullptr));
            _exit(127);
        }
        int status = 0;
        rusage usage{};
        EXPECT_EQ(process, wait4(process, &status, 0, &usage));
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
        return usage.ru_maxrss;
    };
    EXPECT_LT(peakKilobytes("1-6"), peakKilobytes("1-1") + 4096);
}

TEST(ManyPages, RefuseWhatMakesNoSense) {
    const std::string file = Corpus("page_tiny.pdf");
    for (const Strings& arguments : {Strings{file, "--pages", "1", "--jobs", "0"},
                                     {file, "--pages", "1", "--timeout", "-1"},
                                     {file, "--pages", "1", "--max-memory", "lots"},
                                     {file, "--max-memory", "2000000000"},
                                     {file, "--resume"},
                                     {file, "--pages", "1", "--peer", "x.png"},
                                     {file, "--time", "3", "--timeout", "1"},
                                     {"--pages", "1"},
                                     {"--worker", "localhost", file},
                                     {file, "--via", "localhost:0"}}) {
        const Ended ended = Draw(arguments);
        EXPECT_GT(ended.code, 0);
        EXPECT_EQ(1, std::count(ended.said.begin(), ended.said.end(), '\n')) << ended.said;
    }
}

} // namespace
