// SPDX-License-Identifier: MIT
// Draws real pages through the C interface and compares them with a second, independent renderer, page by page.
// Two good renderers differ along every edge and in every enlarged or reduced image, by as much as is measured here for
// each page. No page may get further away: by kMoreMean levels in the mean of a channel, which is a change all over the
// page; by kMoreStrays pixels that differ by more than kStray levels, which is less than a line of letters at another
// place; or by more than kOtherBlocks blocks that are lighter or darker in the mean, or by kMoreWorst levels in the
// worst of them, which is less than one lost hairline as long as four blocks. Fewer blocks are a change as well: what
// is lost may be something that the second renderer has at another place. A change that is meant to move pages measures
// them again: each test prints its numbers. On failure both pictures and their difference (8 times enlarged) stay in
// the build folder.
#include "Distance.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <ostream>

namespace {

struct PageCase {
    const char* file;
    int page;
    int dpi;
    Distance measured;
    const char* reason;
};

constexpr double kMoreMean = 0.3;
constexpr int kMoreStrays = 150;
constexpr int kOtherBlocks = 3;
constexpr double kMoreWorst = 2.0;

bool IsNear(const Distance& distance, const Distance& measured) {
    return distance.mean <= measured.mean + kMoreMean && distance.strays <= measured.strays + kMoreStrays &&
           std::abs(distance.lighter - measured.lighter) <= kOtherBlocks &&
           std::abs(distance.darker - measured.darker) <= kOtherBlocks && distance.worst <= measured.worst + kMoreWorst;
}

void PrintTo(const PageCase& c, std::ostream* out) { *out << c.file << " page " << c.page << " (" << c.reason << ")"; }

constexpr PageCase kPages[] = {
    {"blend_images.pdf",
     1,
     150,
     {1.90, 18423, 823, 649, 181.6},
     "sixteen blend modes between RGB images with soft masks"},
    {"blend_modes.pdf",
     1,
     150,
     {1.52, 2157, 32, 70, 13.4},
     "all sixteen blend modes on radial shadings inside non-isolated"},
    {"blend_modes.pdf",
     2,
     150,
     {1.77, 6134, 100, 137, 255.0},
     "all sixteen blend modes on radial shadings inside non-isolated"},
    {"blend_modes.pdf",
     3,
     150,
     {2.17, 4162, 76, 90, 114.1},
     "all sixteen blend modes on radial shadings inside non-isolated"},
    {"broken_xref.pdf", 1, 150, {0.17, 272, 79, 22, 24.7}, "old damaged file"},
    {"cad_pcb.pdf", 1, 150, {0.65, 0, 0, 0, 6.1}, "CAD"},
    {"cad_pcb.pdf", 2, 150, {1.14, 0, 0, 0, 6.1}, "CAD"},
    {"cad_pcb.pdf", 3, 150, {0.80, 0, 4, 0, 9.2}, "CAD"},
    {"cad_pcb.pdf", 4, 150, {0.10, 0, 0, 0, 6.1}, "CAD"},
    {"charts_dashed.pdf", 1, 150, {1.18, 819, 30, 13, 12.2}, "scientific charts"},
    {"form_tax.pdf", 1, 150, {2.74, 2872, 114, 109, 16.4}, "filled form"},
    {"form_tax.pdf", 2, 150, {2.75, 3412, 99, 115, 15.9}, "filled form"},
    {"group_artwork.pdf", 1, 150, {0.09, 0, 4, 1, 19.0}, "realistic artwork"},
    {"group_knockout.pdf",
     1,
     150,
     {1.15, 829, 80, 857, 27.3},
     "isolated, non-isolated, knockout and nested groups over a patterned"},
    {"group_knockout.pdf",
     2,
     150,
     {1.48, 1443, 73, 1471, 30.8},
     "isolated, non-isolated, knockout and nested groups over a patterned"},
    {"group_knockout.pdf",
     3,
     150,
     {1.53, 1514, 75, 1481, 31.0},
     "isolated, non-isolated, knockout and nested groups over a patterned"},
    {"images_1bit.pdf", 1, 150, {0.05, 501, 48, 34, 31.9}, "difference is the scaling filter for 1-bit images only"},
    {"images_cmyk.pdf", 1, 150, {0.03, 87, 12, 12, 15.0}, "CMYK JPEG"},
    {"images_masked.pdf", 1, 150, {2.08, 300, 86, 135, 22.1}, "printed web page"},
    {"map_globe.pdf", 1, 150, {0.58, 24, 2, 7, 11.7}, "difference is the minimum line width for hairlines"},
    {"page_huge_map.pdf", 1, 40, {0.46, 41, 0, 0, 5.5}, "difference is the minimum line width for hairlines"},
    {"page_rotated.pdf", 1, 150, {0.19, 968, 176, 140, 21.8}, "pages with /Rotate"},
    {"page_rotated.pdf", 2, 150, {0.17, 856, 171, 138, 21.8}, "pages with /Rotate"},
    {"page_rotated.pdf", 3, 150, {0.19, 1228, 163, 145, 26.6}, "pages with /Rotate"},
    {"page_rotated.pdf", 4, 150, {0.18, 1124, 159, 142, 26.6}, "pages with /Rotate"},
    {"page_rotated.pdf", 5, 150, {0.21, 2019, 169, 162, 26.4}, "pages with /Rotate"},
    {"page_rotated.pdf", 6, 150, {0.20, 1942, 166, 159, 26.4}, "pages with /Rotate"},
    {"page_tiny.pdf", 1, 150, {0.29, 0, 0, 0, 1.9}, "tiny page (19 x 20 pt) with image mask"},
    {"scan_page.pdf", 1, 150, {0.00, 0, 0, 0, 0.0}, "scanned book page with illustration (full-page JPEG, gray tones)"},
    {"shading_axial.pdf", 1, 150, {0.86, 6068, 580, 164, 37.3}, "axial shadings with the four extend combinations"},
    {"shading_freeform.pdf",
     1,
     150,
     {0.92, 262, 9, 1, 10.7},
     "free-form triangle mesh (type 4) of a plot, axes and text"},
    {"shading_function.pdf", 1, 150, {0.77, 3377, 506, 213, 32.0}, "second renderer draws the chequerboard black"},
    {"shading_lattice.pdf", 1, 150, {1.36, 4368, 246, 238, 44.3}, "plots"},
    {"shading_lattice.pdf", 2, 150, {1.31, 3347, 47, 51, 25.6}, "plots"},
    {"shading_radial.pdf", 1, 150, {0.80, 4097, 642, 39, 33.5}, "radial shadings"},
    {"shading_radial.pdf", 2, 150, {1.20, 7074, 769, 137, 191.2}, "radial shadings"},
    {"shading_radial.pdf", 3, 150, {1.09, 6043, 730, 189, 35.9}, "radial shadings"},
    {"shading_radial.pdf", 4, 150, {1.38, 7452, 914, 339, 35.9}, "radial shadings"},
    {"shading_radial.pdf", 5, 150, {1.46, 7878, 938, 397, 35.9}, "radial shadings"},
    {"slides.pdf", 1, 150, {1.49, 1086, 104, 13, 22.5}, "slide deck"},
    {"slides.pdf", 2, 150, {1.88, 1821, 103, 15, 22.5}, "slide deck"},
    {"softmask_alpha.pdf", 1, 150, {0.23, 0, 0, 0, 4.4}, "alpha soft masks"},
    {"softmask_alpha.pdf", 2, 150, {0.10, 0, 0, 0, 6.5}, "alpha soft masks"},
    {"softmask_backdrop.pdf",
     1,
     150,
     {0.09, 140, 1, 18, 16.0},
     "luminosity soft mask with a backdrop colour, gray image inside the"},
    {"softmask_luminosity.pdf",
     1,
     150,
     {2.10, 5899, 78, 68, 20.2},
     "fifty luminosity soft masks made of radial shadings, 180 clips, code"},
    {"solids_clipped.pdf",
     1,
     150,
     {1.31, 3599, 62, 38, 17.3},
     "about 2000 small clip paths each with a fill and a stroke, under text"},
    {"stroke_dash_degenerate.pdf",
     1,
     150,
     {0.43, 1079, 150, 5, 29.4},
     "dashes on degenerate and zero-length segments, all caps"},
    {"text_cjk.pdf", 1, 150, {6.71, 11354, 840, 548, 18.5}, "difference is glyph hinting and anti-aliasing only"},
    {"text_clip.pdf", 1, 150, {0.36, 201, 51, 58, 19.5}, "clip by text"},
    {"text_clip.pdf", 2, 150, {0.54, 141, 64, 47, 13.0}, "clip by text"},
    {"text_dense.pdf", 1, 150, {2.17, 7038, 118, 90, 14.3}, "text-heavy page, Latin Type 1 fonts, many glyph outlines"},
    {"text_pattern.pdf",
     1,
     150,
     {0.40, 1132, 270, 158, 21.4},
     "text filled with a tiling pattern and with an axial shading (clip by"},
    {"text_type3_bitmap.pdf",
     1,
     150,
     {1.15, 2851, 392, 336, 22.2},
     "bitmap type 3 glyphs (169 image masks through the glyph procedures)"},
    {"tiling.pdf", 1, 150, {0.75, 5988, 687, 437, 39.9}, "tiling patterns"},
    {"vector_tiger.pdf", 1, 150, {0.47, 26, 3, 0, 25.3}, "vector drawing, 226 curved fills and 78 strokes"},
};

class Pages : public testing::TestWithParam<PageCase> {};

TEST_P(Pages, MatchSecondRenderer) {
    const PageCase& c = GetParam();
    const std::string file = std::string(GX_PAGES_CORPUS) + "/" + c.file;
    const std::string stem =
        (OutputFolder() / (std::filesystem::path(c.file).stem().string() + "-" + std::to_string(c.page))).string();
    const std::string actualPath = stem + "-actual.png", expectedPath = stem + "-expected.png",
                      differencePath = stem + "-difference.png";
    for (const std::string& path : {actualPath, expectedPath, differencePath})
        std::filesystem::remove(path);
    const std::string page = std::to_string(c.page), dpi = std::to_string(c.dpi);

    ASSERT_EQ(0,
              Shell(Quoted(GX_PDFPAGE) + " " + Quoted(file) + " " + page + " " + Quoted(actualPath) + " --dpi " + dpi));
    ASSERT_EQ(0, Shell(Quoted(GX_MUTOOL) + " draw -q -F png -r " + dpi + " -o " + Quoted(expectedPath) + " " +
                       Quoted(file) + " " + page + " 2>/dev/null"));
    Picture actual, expected;
    ASSERT_TRUE(ReadPng(actualPath, actual));
    ASSERT_TRUE(ReadPng(expectedPath, expected));
    ASSERT_EQ(expected.width, actual.width);
    ASSERT_EQ(expected.height, actual.height);

    const Distance distance = Measure(actual, expected);
    RecordProperty("distance", testing::PrintToString(distance));
    if (!IsNear(distance, c.measured)) {
        Picture difference = actual;
        for (size_t i = 0; i < actual.rgb.size(); ++i) {
            const int d = std::abs(int{actual.rgb[i]} - int{expected.rgb[i]});
            difference.rgb[i] = static_cast<uint8_t>(std::min(255, 8 * d));
        }
        WritePng(differencePath, difference);
        ADD_FAILURE() << "mean, strays, lighter and darker blocks, and the worst of them: " << distance << " where "
                      << c.measured << " was measured, see " << differencePath;
    } else {
        std::filesystem::remove(actualPath);
        std::filesystem::remove(expectedPath);
    }
}

INSTANTIATE_TEST_SUITE_P(Corpus, Pages, testing::ValuesIn(kPages), [](const testing::TestParamInfo<PageCase>& page) {
    return std::filesystem::path(page.param.file).stem().string() + "_" + std::to_string(page.param.page);
});

} // namespace
