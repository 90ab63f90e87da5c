// SPDX-License-Identifier: MIT
// The page example as a program: files and arguments that can't be drawn end in one clear line and a non-zero exit.
#include "Picture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <sstream>

namespace {

std::string Corpus(const char* name) { return std::string(GX_PAGES_CORPUS) + "/" + name; }

struct Outcome {
    int code;
    std::string message;
};

Outcome Host(const std::string& arguments) {
    // Tests may run side by side: each has a file of its own.
    const std::string errors =
        (OutputFolder() / (std::string(testing::UnitTest::GetInstance()->current_test_info()->name()) + "-stderr.txt"))
            .string();
    const int code = Shell(Quoted(GX_PDFPAGE) + " " + arguments + " 2>" + Quoted(errors));
    std::ifstream in(errors);
    std::ostringstream text;
    text << in.rdbuf();
    return {code, text.str()};
}

void ExpectOneLine(const Outcome& outcome, const char* part) {
    EXPECT_GT(outcome.code, 0);
    EXPECT_EQ(1, std::count(outcome.message.begin(), outcome.message.end(), '\n')) << outcome.message;
    EXPECT_NE(std::string::npos, outcome.message.find(part)) << outcome.message;
}

TEST(PdfPage, SaysWhatIsWrongWithTheFile) {
    const std::string out = (OutputFolder() / "never.png").string();
    ExpectOneLine(Host(Quoted((OutputFolder() / "no such file.pdf").string())), "cannot open");

    const std::string junk = (OutputFolder() / "junk.pdf").string();
    std::ofstream(junk) << "this is no document\n";
    ExpectOneLine(Host(Quoted(junk) + " 1 " + Quoted(out)), "cannot read");

    const std::string locked = (OutputFolder() / "locked.pdf").string();
    ASSERT_EQ(0, Shell(Quoted(GX_MUTOOL) + " clean -E aes-256 -U secret -O owner " + Quoted(Corpus("page_tiny.pdf")) +
                       " " + Quoted(locked)));
    ExpectOneLine(Host(Quoted(locked) + " 1 " + Quoted(out)), "encrypted");
    EXPECT_FALSE(std::filesystem::exists(out));
}

TEST(PdfPage, RefusesPagesAndPlacesThatDoNotExist) {
    const std::string file = Quoted(Corpus("page_rotated.pdf"));
    ExpectOneLine(Host(file + " 0"), "does not exist");
    ExpectOneLine(Host(file + " 7"), "the file has 6 pages");
    ExpectOneLine(Host(file + " --pages 2-9 --out " + Quoted(OutputFolder().string())), "does not exist");
    ExpectOneLine(Host(file + " --pages 3-2"), "no range");
    ExpectOneLine(Host(file + " --dpi nan"), "resolution");
    ExpectOneLine(Host(file + " --dpi"), "needs a value");
    ExpectOneLine(Host(file + " 1 " + Quoted((OutputFolder() / "no folder" / "x.png").string())), "cannot write");
}

TEST(PdfPage, WritesARangeOfPagesAsAFolder) {
    const std::filesystem::path folder = OutputFolder() / "range";
    std::filesystem::remove_all(folder);
    const Outcome outcome =
        Host(Quoted(Corpus("page_rotated.pdf")) + " --pages 1-3 --dpi 36 --out " + Quoted(folder.string()));
    EXPECT_EQ(0, outcome.code) << outcome.message;
    Picture wide, tall;
    ASSERT_TRUE(ReadPng((folder / "page_rotated-1.png").string(), wide));
    ASSERT_TRUE(ReadPng((folder / "page_rotated-3.png").string(), tall));
    EXPECT_TRUE(std::filesystem::exists(folder / "page_rotated-2.png"));
    EXPECT_EQ(421u, wide.width);
    EXPECT_EQ(298u, wide.height);
    EXPECT_EQ(298u, tall.width);
    EXPECT_EQ(421u, tall.height);
}

} // namespace
