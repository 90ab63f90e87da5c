// SPDX-License-Identifier: MIT
// Draws real pages through the C interface and compares them with a second, independent renderer, page by page.
// Two good renderers differ along every edge and in every enlarged or reduced image: the limit of a page is the mean
// difference of a channel that two others show on it, and at least 3 of 255. On failure both pictures and their
// difference (8 times enlarged) stay in the build folder.
#include "Picture.h"

#include <GX/GX.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <ostream>

namespace {

// What a page asks of the library beyond fills, plain strokes, clips, images and gradients.
enum Needs { kPlain, kDashes, kGroups };

struct PageCase {
    const char* file;
    int page;
    int dpi;
    double limit; // mean absolute difference of the worst channel
    Needs needs;
    const char* reason;
};

void PrintTo(const PageCase& c, std::ostream* out) { *out << c.file << " page " << c.page << " (" << c.reason << ")"; }

constexpr PageCase kPages[] = {
    {"blend_images.pdf", 1, 150, 3.0, kGroups, "sixteen blend modes between RGB images with soft masks"},
    {"blend_modes.pdf", 1, 150, 3.0, kGroups, "all sixteen blend modes on radial shadings inside non-isolated"},
    {"blend_modes.pdf", 2, 150, 3.0, kGroups, "all sixteen blend modes on radial shadings inside non-isolated"},
    {"blend_modes.pdf", 3, 150, 3.7, kGroups, "all sixteen blend modes on radial shadings inside non-isolated"},
    {"broken_xref.pdf", 1, 150, 3.0, kPlain, "old damaged file"},
    {"cad_pcb.pdf", 1, 150, 3.0, kPlain, "CAD"},
    {"cad_pcb.pdf", 2, 150, 3.0, kPlain, "CAD"},
    {"cad_pcb.pdf", 3, 150, 3.0, kPlain, "CAD"},
    {"cad_pcb.pdf", 4, 150, 3.0, kPlain, "CAD"},
    {"charts_dashed.pdf", 1, 150, 3.0, kGroups, "scientific charts"},
    {"form_tax.pdf", 1, 150, 6.8, kDashes, "filled form"},
    {"form_tax.pdf", 2, 150, 6.8, kDashes, "filled form"},
    {"group_artwork.pdf", 1, 150, 3.0, kGroups, "realistic artwork"},
    {"group_knockout.pdf", 1, 150, 3.0, kGroups, "isolated, non-isolated, knockout and nested groups over a patterned"},
    {"group_knockout.pdf", 2, 150, 3.0, kGroups, "isolated, non-isolated, knockout and nested groups over a patterned"},
    {"group_knockout.pdf", 3, 150, 3.0, kGroups, "isolated, non-isolated, knockout and nested groups over a patterned"},
    {"images_1bit.pdf", 1, 150, 6.6, kPlain, "difference is the scaling filter for 1-bit images only"},
    {"images_cmyk.pdf", 1, 150, 3.0, kPlain, "CMYK JPEG"},
    {"images_masked.pdf", 1, 150, 4.5, kPlain, "printed web page"},
    {"map_globe.pdf", 1, 150, 5.7, kPlain, "difference is the minimum line width for hairlines"},
    {"page_huge_map.pdf", 1, 40, 11.3, kDashes, "difference is the minimum line width for hairlines"},
    {"page_rotated.pdf", 1, 150, 3.0, kPlain, "pages with /Rotate"},
    {"page_rotated.pdf", 2, 150, 3.0, kPlain, "pages with /Rotate"},
    {"page_rotated.pdf", 3, 150, 3.0, kPlain, "pages with /Rotate"},
    {"page_rotated.pdf", 4, 150, 3.0, kPlain, "pages with /Rotate"},
    {"page_rotated.pdf", 5, 150, 3.0, kPlain, "pages with /Rotate"},
    {"page_rotated.pdf", 6, 150, 3.0, kPlain, "pages with /Rotate"},
    {"page_tiny.pdf", 1, 150, 3.0, kPlain, "tiny page (19 x 20 pt) with image mask"},
    {"scan_page.pdf", 1, 150, 3.1, kPlain, "scanned book page with illustration (full-page JPEG, gray tones)"},
    {"shading_axial.pdf", 1, 150, 3.0, kGroups, "axial shadings with the four extend combinations"},
    {"shading_freeform.pdf", 1, 150, 3.0, kPlain, "free-form triangle mesh (type 4) of a plot, axes and text"},
    {"shading_function.pdf", 1, 150, 8.6, kPlain, "second renderer draws the chequerboard black"},
    {"shading_lattice.pdf", 1, 150, 3.0, kPlain, "plots"},
    {"shading_lattice.pdf", 2, 150, 3.8, kPlain, "plots"},
    {"shading_radial.pdf", 1, 150, 3.0, kPlain, "radial shadings"},
    {"shading_radial.pdf", 2, 150, 3.5, kPlain, "radial shadings"},
    {"shading_radial.pdf", 3, 150, 3.1, kPlain, "radial shadings"},
    {"shading_radial.pdf", 4, 150, 3.5, kPlain, "radial shadings"},
    {"shading_radial.pdf", 5, 150, 3.5, kPlain, "radial shadings"},
    {"slides.pdf", 1, 150, 3.0, kGroups, "slide deck"},
    {"slides.pdf", 2, 150, 3.0, kGroups, "slide deck"},
    {"softmask_alpha.pdf", 1, 150, 3.0, kGroups, "alpha soft masks"},
    {"softmask_alpha.pdf", 2, 150, 3.0, kGroups, "alpha soft masks"},
    {"softmask_backdrop.pdf", 1, 150, 3.0, kGroups,
     "luminosity soft mask with a backdrop colour, gray image inside the"},
    {"softmask_luminosity.pdf", 1, 150, 3.0, kGroups,
     "fifty luminosity soft masks made of radial shadings, 180 clips, code"},
    {"solids_clipped.pdf", 1, 150, 5.4, kPlain,
     "about 2000 small clip paths each with a fill and a stroke, under text"},
    {"stroke_dash_degenerate.pdf", 1, 150, 3.0, kDashes, "dashes on degenerate and zero-length segments, all caps"},
    {"text_cjk.pdf", 1, 150, 9.8, kGroups, "difference is glyph hinting and anti-aliasing only"},
    {"text_clip.pdf", 1, 150, 3.0, kPlain, "clip by text"},
    {"text_clip.pdf", 2, 150, 3.0, kPlain, "clip by text"},
    {"text_dense.pdf", 1, 150, 3.3, kPlain, "text-heavy page, Latin Type 1 fonts, many glyph outlines"},
    {"text_pattern.pdf", 1, 150, 3.0, kPlain, "text filled with a tiling pattern and with an axial shading (clip by"},
    {"text_type3_bitmap.pdf", 1, 150, 3.0, kPlain,
     "bitmap type 3 glyphs (169 image masks through the glyph procedures)"},
    {"tiling.pdf", 1, 150, 3.0, kPlain, "tiling patterns"},
    {"vector_tiger.pdf", 1, 150, 3.0, kPlain, "vector drawing, 226 curved fills and 78 strokes"},
};

// A tiny target with something to try on.
struct Probe {
    GXBitmap bitmap = nullptr;
    GXRenderTarget target = nullptr;
    GXBrush brush = nullptr;

    Probe() {
        const GXBitmapDesc desc{8, 8, GXPixelFormatPBGRA32, 96.0f, 96.0f};
        if (GXCreateBitmap(&desc, &bitmap) == GXResultSuccess)
            GXCreateRenderTargetBitmap(bitmap, &target);
        GXCreateBrushSolidARGB(0xFF000000u, &brush);
        GXRenderTargetBeginPaint(target);
    }
    ~Probe() {
        if (target)
            GXObjectRelease(target);
        if (brush)
            GXObjectRelease(brush);
        if (bitmap)
            GXObjectRelease(bitmap);
    }
};

bool LibraryHas(Needs needs) {
    Probe probe;
    const GXLayerDesc layer{{0.0f, 0.0f, 8.0f, 8.0f}, 1.0f, 1, 0};
    const bool layers = GXRenderTargetBeginLayer(probe.target, &layer) == GXResultSuccess &&
                        GXRenderTargetEndLayer(probe.target) == GXResultSuccess;
    const GXPoint from{0.0f, 4.0f}, to{8.0f, 4.0f};
    const GXStrokeStyle style{GXLineJoinMiter, GXLineCapFlat, 10.0f, 0, 0.0f, {2.0f, 1.0f}, 2};
    const bool dashes =
        GXRenderTargetStrokeLine(probe.target, &from, &to, probe.brush, 1.0f, &style) == GXResultSuccess;
    return needs == kPlain || (needs == kDashes && dashes) || (needs == kGroups && layers && dashes);
}

class Pages : public testing::TestWithParam<PageCase> {};

TEST_P(Pages, MatchSecondRenderer) {
    const PageCase& c = GetParam();
    if (!LibraryHas(c.needs))
        GTEST_SKIP() << "the library does not draw groups or dashes yet";

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
