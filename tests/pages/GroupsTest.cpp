// SPDX-License-Identifier: MIT
// Groups and soft masks of a page: which road each takes, that blends in them are exact, and what they may cost.
#include "../../examples/pdfpage/GroupRoads.h"
#include "../../examples/pdfpage/PageRenderer.h"
#include "Program.h"
#include "TestFiles.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

using PdfPage::Road;
using PdfPage::Span;

constexpr int kSide = 100;
// What pages and forms draw with: Multiply, half opacity, a luminosity mask, no mask; the forms A (object 6) and B.
const std::string kResources = "/ExtGState<</M<</BM/Multiply>>/H<</ca 0.5>>/S<</SMask<</S/Luminosity/G 5 0 R>>>>"
                               "/N<</SMask/None>>>>/XObject<</A 6 0 R/B 7 0 R>>"
                               "/Pattern<</P 8 0 R>>";

// A red square of 20 points at (x, 50).
std::string Square(int x) { return "1 0 0 rg " + std::to_string(x) + " 50 20 20 re f\n"; }

std::vector<Span> Survey(const std::string& content, const std::string& a, const char* flagsOfA,
                         const std::string& b = "", const char* flagsOfB = " ") {
    const std::string file = TestPath(".pdf").string();
    const std::string tile = "<</PatternType 1/PaintType 1/TilingType 1/BBox[0 0 9 9]/XStep 9/YStep 9/Resources<<" +
                             kResources + ">>/Length 22>>stream\n/M gs 0 0 1 rg 0 0 5 5 re f\nendstream";
    WritePage(file, kSide, content, kResources, "",
              {Form(kSide, "1 g 0 0 100 100 re f", "", "/CS/DeviceGray"), Form(kSide, a, kResources, flagsOfA),
               Form(kSide, b, kResources, flagsOfB), tile});
    fz_context* const ctx = fz_new_context(nullptr, nullptr, FZ_STORE_DEFAULT);
    fz_register_document_handlers(ctx);
    fz_document* const document = fz_open_document(ctx, file.c_str());
    fz_page* const page = fz_load_page(ctx, document, 0);
    fz_display_list* const list = fz_new_display_list_from_page(ctx, page);
    std::vector<Span> spans = PdfPage::SurveyGroups(ctx, list, fz_identity, fz_infinite_rect);
    fz_drop_display_list(ctx, list);
    fz_drop_page(ctx, page);
    fz_drop_document(ctx, document);
    fz_drop_context(ctx);
    return spans;
}

TEST(GroupRoads, FollowFromWhatGroupsHold) {
    constexpr Road P = Road::Plain, S = Road::State, B = Road::Bitmap, L = Road::Layer;
    const std::string two = Square(10) + Square(20), blended = Square(10) + "/M gs " + Square(20);
    struct Case {
        const char* what;
        std::string content, a;
        const char* flags;
        std::vector<Road> roads; // the first is that of the page, which is an isolated group
    };
    const Case cases[] = {
        {"one object in a mode", "/M gs " + Square(10), two, " ", {B, S}},
        {"Normal in Normal", "/A Do", two, " ", {P, P}},
        {"isolated, all Normal", "/A Do", two, "/I true", {P, P}},
        {"faded", "/H gs /A Do", two, " ", {P, B}},
        {"in a mode, all Normal", Square(0) + "/M gs /A Do", two, " ", {B, B}},
        {"in a mode, isolated, blending inside", "/M gs /A Do", blended, "/I true", {B, B, S}},
        {"Normal, not isolated, blending inside", "/A Do", blended, " ", {B, P, S}},
        {"in a mode, not isolated, blending inside", "/M gs /A Do", blended, " ", {B, L, S}},
        {"knockout, and all inside", "/A Do", "/M gs " + two, "/I true/K true", {P, L, L, L}},
        {"blending tiles", "/M gs /A Do", "/Pattern cs /P scn 0 0 90 90 re f", " ", {B, L}},
        // The mask's own group comes between what it covers and the groups in there.
        {"one object under a mask", "/S gs " + Square(10), two, " ", {P, S, P}},
        {"a group under a mask", "/S gs /A Do", two, " ", {P, S, P, B}},
        {"a blending group under a mask", "/S gs /A Do", blended, " ", {B, S, P, L, S}},
    };
    for (const Case& c : cases) {
        std::vector<Road> roads;
        for (const Span& span : Survey(c.content, c.a, c.flags))
            roads.push_back(span.road);
        EXPECT_EQ(c.roads, roads) << c.what;
    }
}

TEST(GroupRoads, KnowWhatGroupsCanChange) {
    // The clip of the page, the form's own and what is drawn: only where they meet anything can be seen.
    const std::vector<Span> spans =
        Survey("0 0 60 100 re W n /H gs /A Do", Square(10) + Square(45) + "0 55 100 10 re W n " + Square(20), " ");
    ASSERT_EQ(2u, spans.size());
    const fz_rect box = spans[1].bounds;
    EXPECT_NEAR(10, box.x0, 2.1);
    EXPECT_NEAR(60, box.x1, 2.1);
    EXPECT_NEAR(30, box.y0, 2.1); // y runs down: 100 - 70 to 100 - 50
    EXPECT_NEAR(50, box.y1, 2.1);
    EXPECT_TRUE(fz_is_empty_rect(fz_expand_rect(Survey("/H gs /A Do", "q Q", " ").back().bounds, -1.0f)));
}

using Color = std::array<double, 3>;

struct Layered {
    Color color{}; // premultiplied
    double alpha = 0;
};

struct Mode {
    const char* name;
    double (*blend)(double cb, double cs);
};

double HardLight(double cb, double cs) { return cs <= 0.5 ? 2 * cs * cb : cb + (2 * cs - 1) - cb * (2 * cs - 1); }

constexpr Mode kModes[] = {
    {"Normal", [](double, double cs) { return cs; }},
    {"Multiply", [](double cb, double cs) { return cb * cs; }},
    {"Screen", [](double cb, double cs) { return cb + cs - cb * cs; }},
    {"Overlay", [](double cb, double cs) { return HardLight(cs, cb); }},
    {"Darken", [](double cb, double cs) { return std::min(cb, cs); }},
    {"Lighten", [](double cb, double cs) { return std::max(cb, cs); }},
    {"ColorDodge", [](double cb, double cs) { return std::min(1.0, cb / (1 - cs)); }},
    {"ColorBurn", [](double cb, double cs) { return 1 - std::min(1.0, (1 - cb) / cs); }},
    {"HardLight", HardLight},
    {"SoftLight",
     [](double cb, double cs) {
         const double d = cb <= 0.25 ? ((16 * cb - 12) * cb + 4) * cb : std::sqrt(cb);
         return cs <= 0.5 ? cb - (1 - 2 * cs) * cb * (1 - cb) : cb + (2 * cs - 1) * (d - cb);
     }},
    {"Difference", [](double cb, double cs) { return std::fabs(cb - cs); }},
    {"Exclusion", [](double cb, double cs) { return cb + cs - 2 * cb * cs; }},
};

constexpr Color kBelow{0.9, 0.3, 0.2}, kAbove{0.2, 0.7, 0.5};
constexpr double kAlpha = 0.7;

// The second of two partly transparent colours in a group whose backdrop is transparent (ISO 32000-1, 11.3.6).
Layered Blended(const Mode& mode) {
    Layered result;
    result.alpha = kAlpha + kAlpha - kAlpha * kAlpha;
    for (size_t i = 0; i < 3; ++i)
        result.color[i] =
            (1 - kAlpha) * kAlpha * (kBelow[i] + kAbove[i]) + kAlpha * kAlpha * mode.blend(kBelow[i], kAbove[i]);
    return result;
}

// Pairs of squares of 40 points, one for each mode, in a group; where they overlap the blend can be read.
TEST(Groups, BlendExactlyOnATransparentBackdrop) {
    std::string content, states;
    for (size_t i = 0; i < std::size(kModes); ++i) {
        const std::string at = std::to_string(60 * (i % 4)) + " " + std::to_string(60 * (i / 4));
        content += "q 1 0 0 1 " + at + " cm /A gs 0.9 0.3 0.2 rg 0 0 40 40 re f /B" + std::to_string(i) +
                   " gs 0.2 0.7 0.5 rg 10 10 40 40 re f Q\n";
        states += "/B" + std::to_string(i) + "<</ca 0.7/BM/" + kModes[i].name + ">>";
    }
    const std::string all =
        "/ExtGState<</A<</ca 0.7>>/F<</ca 0.6>>" + states + "/S<</SMask<</S/Luminosity/G 5 0 R>>>>>>";
    const std::string isolated = "/I true/CS/DeviceRGB", page = "/Group<</S/Transparency/I true/CS/DeviceRGB>>";
    const std::vector<std::string> objects{Form(240, "0.6 g 0 0 240 240 re f", "", "/CS/DeviceGray"),
                                           Form(240, content, all, isolated),
                                           Form(240, content, all, isolated + "/K false")};
    struct Case {
        const char* what;
        std::string content;
        double opacity;
    };
    const Case cases[] = {{"the page's own group", content, 1.0},
                          {"isolated", "/X Do", 1.0},
                          {"isolated and faded", "/F gs /X Do", 0.6},
                          {"isolated under a mask", "/S gs /X Do", 0.6},
                          {"in a group that is faded", "/F gs /X Do", 0.6}};
    for (const Case& c : cases) {
        const std::string file = TestPath(".pdf").string();
        WritePage(file, 240, c.content, all + "/XObject<</X 6 0 R>>", page, objects);
        const PdfPage::Picture picture = DrawFile(file);
        for (size_t m = 0; m < std::size(kModes); ++m) {
            const Layered expected = Blended(kModes[m]);
            const size_t x = 60 * (m % 4) + 25, y = 240 - 60 * (m / 4) - 25;
            for (size_t i = 0; i < 3; ++i) {
                const double white = 1 - c.opacity * expected.alpha + c.opacity * expected.color[i];
                // Premultiplying, the blend, its share and laying on what is below each cost a level; a division by
                // what is left of a colour multiplies the first of them.
                const bool divides = std::string(kModes[m].name).rfind("Color", 0) == 0;
                EXPECT_NEAR(255 * white, picture.pixels[y * picture.StrideBytes() + 4 * x + 2 - i], divides ? 8 : 4)
                    << c.what << ", " << kModes[m].name << ", channel " << i;
            }
        }
    }
}

// A red square, then a blue one under a soft mask of one half, in a knockout group on grey. Without AIS the mask is
// opacity, not shape (ISO 32000-1, 11.6.4.3): the blue square knocks out all of the red one and lets the grey through. The
// second renderer mixes it with the red one.
TEST(Groups, TakeSoftMasksInKnockoutGroupsForOpacity) {
    const std::string file = TestPath(".pdf").string();
    const std::string content = "1 0 0 rg 10 10 30 30 re f /S gs 0 0 1 rg 20 20 40 40 re f";
    WritePage(file, 72, "0.8 g 0 0 72 72 re f /X Do", "/XObject<</X 6 0 R>>", "",
              {Form(72, "0.5 g 0 0 72 72 re f", "", "/CS/DeviceGray"),
               Form(72, content, kResources, "/I true/K true/CS/DeviceRGB")});
    const PdfPage::Picture picture = DrawFile(file);
    for (const size_t at : {size_t{30}, size_t{50}}) { // over the red square, and beside it
        const uint8_t* const pixel = picture.pixels.data() + (72 - at) * picture.StrideBytes() + 4 * at;
        EXPECT_NEAR(0.5 * 255 + 0.5 * 204, pixel[0], 2) << at;
        EXPECT_NEAR(0.5 * 204, pixel[1], 2) << at;
        EXPECT_NEAR(0.5 * 204, pixel[2], 2) << at;
    }
}

// Fifty groups within each other, all of the page by their boxes, each with little on it. The page takes 9 MB at this
// resolution, fifty of it 450 MB.
TEST(Groups, CostWhatIsSeenOfThem) {
    const std::string file = TestPath(".pdf").string(), out = TestPath(".png").string();
    const std::string state = "/ExtGState<</H<</ca 0.9>>>>";
    std::vector<std::string> objects;
    constexpr int kDepth = 50;
    for (int i = 0; i < kDepth; ++i) {
        const std::string next = i + 1 < kDepth ? "/XObject<</X " + std::to_string(6 + i) + " 0 R>>" : "";
        objects.push_back(Form(720, Square(i) + (next.empty() ? "" : "/H gs /X Do"), state + next, "/I true"));
    }
    WritePage(file, 720, "/H gs /X Do", state + "/XObject<</X 5 0 R>>", "", objects);
    Program program({GX_PDFPAGE, file, "1", out, "--dpi", "150", "--max-memory", "60M"}, TestPath(".txt"));
    EXPECT_EQ(0, program.Wait());
    EXPECT_EQ("", program.Said());
}

} // namespace
