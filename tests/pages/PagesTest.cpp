// SPDX-License-Identifier: MIT
// Draws real pages through the C interface and compares them with a second, independent renderer, page by page.
// Two good renderers differ along every edge and in every enlarged or reduced image: the limit of a page is the mean
// difference of a channel that two others show on it, and at least 3 of 255. On failure both pictures and their
// difference (8 times enlarged) stay in the build folder.
#include "Picture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <ostream>

namespace {

struct PageCase {
    const char* file;
    int page;
    int dpi;
    double limit; // mean absolute difference of the worst channel
    const char* reason;
};

void PrintTo(const PageCase& c, std::ostream* out) { *out << c.file << " page " << c.page << " (" << c.reason << ")"; }

constexpr PageCase kPages[] = {
    {"blend_images.pdf", 1, 150, 3.0, "sixteen blend modes between RGB images with soft masks"},
    {"blend_modes.pdf", 1, 150, 3.0, "all sixteen blend modes on radial shadings inside non-isolated"},
    {"blend_modes.pdf", 2, 150, 3.0, "all sixteen blend modes on radial shadings inside non-isolated"},
    {"blend_modes.pdf", 3, 150, 3.7, "all sixteen blend modes on radial shadings inside non-isolated"},
    {"broken_xref.pdf", 1, 150, 3.0, "old damaged file"},
    {"cad_pcb.pdf", 1, 150, 3.0, "CAD"},
    {"cad_pcb.pdf", 2, 150, 3.0, "CAD"},
    {"cad_pcb.pdf", 3, 150, 3.0, "CAD"},
    {"cad_pcb.pdf", 4, 150, 3.0, "CAD"},
    {"charts_dashed.pdf", 1, 150, 3.0, "scientific charts"},
    {"form_tax.pdf", 1, 150, 6.8, "filled form"},
    {"form_tax.pdf", 2, 150, 6.8, "filled form"},
    {"group_artwork.pdf", 1, 150, 3.0, "realistic artwork"},
    {"group_knockout.pdf", 1, 150, 3.0, "isolated, non-isolated, knockout and nested groups over a patterned"},
    {"group_knockout.pdf", 2, 150, 3.0, "isolated, non-isolated, knockout and nested groups over a patterned"},
    {"group_knockout.pdf", 3, 150, 3.0, "isolated, non-isolated, knockout and nested groups over a patterned"},
    {"images_1bit.pdf", 1, 150, 6.6, "difference is the scaling filter for 1-bit images only"},
    {"images_cmyk.pdf", 1, 150, 3.0, "CMYK JPEG"},
    {"images_masked.pdf", 1, 150, 4.5, "printed web page"},
    {"map_globe.pdf", 1, 150, 5.7, "difference is the minimum line width for hairlines"},
    {"page_huge_map.pdf", 1, 40, 11.3, "difference is the minimum line width for hairlines"},
    {"page_rotated.pdf", 1, 150, 3.0, "pages with /Rotate"},
    {"page_rotated.pdf", 2, 150, 3.0, "pages with /Rotate"},
    {"page_rotated.pdf", 3, 150, 3.0, "pages with /Rotate"},
    {"page_rotated.pdf", 4, 150, 3.0, "pages with /Rotate"},
    {"page_rotated.pdf", 5, 150, 3.0, "pages with /Rotate"},
    {"page_rotated.pdf", 6, 150, 3.0, "pages with /Rotate"},
    {"page_tiny.pdf", 1, 150, 3.0, "tiny page (19 x 20 pt) with image mask"},
    {"scan_page.pdf", 1, 150, 3.1, "scanned book page with illustration (full-page JPEG, gray tones)"},
    {"shading_axial.pdf", 1, 150, 3.0, "axial shadings with the four extend combinations"},
    {"shading_freeform.pdf", 1, 150, 3.0, "free-form triangle mesh (type 4) of a plot, axes and text"},
    {"shading_function.pdf", 1, 150, 8.6, "second renderer draws the chequerboard black"},
    {"shading_lattice.pdf", 1, 150, 3.0, "plots"},
    {"shading_lattice.pdf", 2, 150, 3.8, "plots"},
    {"shading_radial.pdf", 1, 150, 3.0, "radial shadings"},
    {"shading_radial.pdf", 2, 150, 3.5, "radial shadings"},
    {"shading_radial.pdf", 3, 150, 3.1, "radial shadings"},
    {"shading_radial.pdf", 4, 150, 3.5, "radial shadings"},
    {"shading_radial.pdf", 5, 150, 3.5, "radial shadings"},
    {"slides.pdf", 1, 150, 3.0, "slide deck"},
    {"slides.pdf", 2, 150, 3.0, "slide deck"},
    {"softmask_alpha.pdf", 1, 150, 3.0, "alpha soft masks"},
    {"softmask_alpha.pdf", 2, 150, 3.0, "alpha soft masks"},
    {"softmask_backdrop.pdf", 1, 150, 3.0, "luminosity soft mask with a backdrop colour, gray image inside the"},
    {"softmask_luminosity.pdf", 1, 150, 3.0, "fifty luminosity soft masks made of radial shadings, 180 clips, code"},
    {"solids_clipped.pdf", 1, 150, 5.4, "about 2000 small clip paths each with a fill and a stroke, under text"},
    {"stroke_dash_degenerate.pdf", 1, 150, 3.0, "dashes on degenerate and zero-length segments, all caps"},
    {"text_cjk.pdf", 1, 150, 9.8, "difference is glyph hinting and anti-aliasing only"},
    {"text_clip.pdf", 1, 150, 3.0, "clip by text"},
    {"text_clip.pdf", 2, 150, 3.0, "clip by text"},
    {"text_dense.pdf", 1, 150, 3.3, "text-heavy page, Latin Type 1 fonts, many glyph outlines"},
    {"text_pattern.pdf", 1, 150, 3.0, "text filled with a tiling pattern and with an axial shading (clip by"},
    {"text_type3_bitmap.pdf", 1, 150, 3.0, "bitmap type 3 glyphs (169 image masks through the glyph procedures)"},
    {"tiling.pdf", 1, 150, 3.0, "tiling patterns"},
    {"vector_tiger.pdf", 1, 150, 3.0, "vector drawing, 226 curved fills and 78 strokes"},
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

    Picture difference = actual;
    double sums[3] = {0.0, 0.0, 0.0};
    for (size_t i = 0; i < actual.rgb.size(); ++i) {
        const int d = std::abs(int{actual.rgb[i]} - int{expected.rgb[i]});
        sums[i % 3] += d;
        difference.rgb[i] = static_cast<uint8_t>(std::min(255, 8 * d));
    }
    const double worst = *std::max_element(sums, sums + 3) / (static_cast<double>(actual.width) * actual.height);
    RecordProperty("meanDifference", std::to_string(worst));
    if (worst > c.limit) {
        WritePng(differencePath, difference);
        ADD_FAILURE() << "mean difference " << worst << ", limit " << c.limit << ": see " << differencePath;
    } else {
        std::filesystem::remove(actualPath);
        std::filesystem::remove(expectedPath);
    }
}

INSTANTIATE_TEST_SUITE_P(Corpus, Pages, testing::ValuesIn(kPages), [](const testing::TestParamInfo<PageCase>& page) {
    return std::filesystem::path(page.param.file).stem().string() + "_" + std::to_string(page.param.page);
});

} // namespace
