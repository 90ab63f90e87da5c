// SPDX-License-Identifier: MIT
// The page example as a program: files and arguments that can't be drawn end in one clear line and a non-zero exit.
#include "Picture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
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

TEST(PdfPage, DrawsAPageByManyThreadsWithTheBytesOfOne) {
    const auto bytes = [](const std::filesystem::path& path) {
        std::ifstream in(path, std::ios::binary);
        std::ostringstream text;
        text << in.rdbuf();
        return text.str();
    };
    const std::filesystem::path one = OutputFolder() / "threads-1.png", many = OutputFolder() / "threads-n.png";
    for (const char* page : {"softmask_alpha.pdf", "group_knockout.pdf", "shading_lattice.pdf", "tiling.pdf",
                             "text_type3_bitmap.pdf", "images_masked.pdf", "page_tiny.pdf"}) {
        const std::string file = Quoted(Corpus(page));
        ASSERT_EQ(Host(file + " 1 " + Quoted(one.string())).code, 0) << page;
        for (const char* threads : {" --threads 2", " --threads 5"}) {
            const Outcome outcome = Host(file + " 1 " + Quoted(many.string()) + threads);
            EXPECT_EQ(outcome.code, 0) << outcome.message;
            EXPECT_TRUE(outcome.message.empty()) << outcome.message;
            EXPECT_TRUE(bytes(one) == bytes(many)) << page << threads;
        }
    }
    ExpectOneLine(Host(Quoted(Corpus("tiling.pdf")) + " --pages 1 --threads 2"), "--jobs");
    ExpectOneLine(Host(Quoted(Corpus("tiling.pdf")) + " --threads 0"), "number of threads");
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

// A triangle over the lower left half of the page, drawn at half its opacity: background and triangle show together.
TEST(PdfPage, PaintsTheBackgroundOfAMeshItself) {
    const std::string file = (OutputFolder() / "mesh-background.pdf").string();
    std::ofstream(file) << R"(%PDF-1.4
1 0 obj <</Type/Catalog/Pages 2 0 R>> endobj
2 0 obj <</Type/Pages/Kids[3 0 R]/Count 1>> endobj
3 0 obj <</Type/Page/Parent 2 0 R/MediaBox[0 0 72 72]/Contents 4 0 R
/Resources<</Pattern<</P 5 0 R>>/ExtGState<</G<</ca 0.5>>>>>>>> endobj
4 0 obj <</Length 42>> stream
/G gs /Pattern cs /P scn 0 0 72 72 re f   
endstream endobj
5 0 obj <</Type/Pattern/PatternType 2/Shading 6 0 R>> endobj
6 0 obj <</ShadingType 4/ColorSpace/DeviceRGB/Background[0 1 0]/BitsPerCoordinate 8/BitsPerComponent 8/BitsPerFlag 8
/Decode[0 72 0 72 0 1 0 1 0 1]/Filter/ASCIIHexDecode/Length 37>> stream
000000FF0000 00FF00FF0000 0000FFFF0000>
endstream endobj
trailer <</Root 1 0 R>>
)";
    const std::string out = (OutputFolder() / "mesh-background.png").string();
    const Outcome outcome = Host(Quoted(file) + " 1 " + Quoted(out) + " --dpi 72");
    ASSERT_EQ(0, outcome.code) << outcome.message;
    Picture picture;
    ASSERT_TRUE(ReadPng(out, picture));
    ASSERT_EQ(72u, picture.width);
    const auto near = [&](size_t x, size_t y, std::array<int, 3> color) {
        for (size_t i = 0; i < 3; ++i)
            EXPECT_NEAR(color[i], picture.rgb[(y * 72 + x) * 3 + i], 1) << x << ", " << y << " channel " << i;
    };
    near(10, 60, {255, 128, 128});
    near(60, 10, {128, 255, 128});
}

} // namespace
