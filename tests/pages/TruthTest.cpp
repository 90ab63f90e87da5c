// SPDX-License-Identifier: MIT
// No page is further from the truth (Truth.h) than the second renderer's own by more than kFurther, or the reason stands
// beside it; and none gets further away than it was measured. page_truth measures other pages and other resolutions.
#include "Truth.h"

#include "Picture.h"

#include "../../examples/pdfpage/PageRenderer.h"

#include <gtest/gtest.h>

#include <ostream>

namespace {

struct TruthCase {
    const char* file;
    int page;
    int dpi;
    double ours, theirs; // as measured
    const char* reason;  // why ours is further away
};

void PrintTo(const TruthCase& c, std::ostream* out) { *out << c.file << " page " << c.page; }

// Thousands of level and upright strokes of one to three pixels, or thin slanted ones over each other: an edge takes one
// of 8 places across a pixel here, of 17 by 15 there, and is off by half a step.
constexpr const char* kSamples = "8 by 8 samples a pixel";

/// What rounding may do on another machine.
constexpr double kSlack = 0.02;

constexpr TruthCase kPages[] = {
    {"blend_images.pdf", 1, 75, 1.43, 1.73, nullptr},
    {"blend_modes.pdf", 1, 75, 0.86, 1.99, nullptr},
    {"blend_modes.pdf", 2, 75, 1.06, 1.84, nullptr},
    {"blend_modes.pdf", 3, 75, 1.30, 3.18, nullptr},
    {"broken_xref.pdf", 1, 75, 0.19, 0.34, nullptr},
    {"cad_pcb.pdf", 1, 75, 0.97, 0.69, kSamples},
    {"cad_pcb.pdf", 2, 75, 1.74, 1.17, kSamples},
    {"cad_pcb.pdf", 3, 75, 1.34, 0.91, kSamples},
    {"cad_pcb.pdf", 4, 75, 0.11, 0.10, nullptr},
    {"charts_dashed.pdf", 1, 75, 0.96, 1.32, nullptr},
    {"form_tax.pdf", 1, 75, 2.43, 4.02, nullptr},
    {"form_tax.pdf", 2, 75, 2.49, 3.90, nullptr},
    {"group_artwork.pdf", 1, 75, 0.11, 0.07, nullptr},
    {"group_knockout.pdf", 1, 75, 0.92, 1.73, nullptr},
    {"group_knockout.pdf", 2, 75, 1.06, 2.07, nullptr},
    {"group_knockout.pdf", 3, 75, 1.10, 2.13, nullptr},
    {"images_1bit.pdf", 1, 75, 2.83, 3.77, nullptr},
    {"images_cmyk.pdf", 1, 75, 0.10, 0.36, nullptr},
    {"images_masked.pdf", 1, 75, 0.80, 4.31, nullptr},
    {"map_globe.pdf", 1, 75, 0.88, 0.89, nullptr},
    {"page_rotated.pdf", 1, 75, 0.09, 0.24, nullptr},
    {"page_rotated.pdf", 2, 75, 0.08, 0.22, nullptr},
    {"page_rotated.pdf", 3, 75, 0.09, 0.23, nullptr},
    {"page_rotated.pdf", 4, 75, 0.09, 0.22, nullptr},
    {"page_rotated.pdf", 5, 75, 0.07, 0.34, nullptr},
    {"page_rotated.pdf", 6, 75, 0.07, 0.33, nullptr},
    {"page_tiny.pdf", 1, 75, 0.06, 0.92, nullptr},
    {"scan_page.pdf", 1, 75, 2.36, 3.20, nullptr},
    {"shading_axial.pdf", 1, 75, 0.40, 0.89, nullptr},
    {"shading_freeform.pdf", 1, 75, 0.76, 1.04, nullptr},
    {"shading_function.pdf", 1, 75, 0.60, 1.25, nullptr},
    {"shading_lattice.pdf", 1, 75, 0.74, 1.32, nullptr},
    {"shading_lattice.pdf", 2, 75, 0.69, 1.48, nullptr},
    {"shading_radial.pdf", 1, 75, 0.44, 0.89, nullptr},
    {"shading_radial.pdf", 2, 75, 0.52, 1.23, nullptr},
    {"shading_radial.pdf", 3, 75, 0.53, 1.12, nullptr},
    {"shading_radial.pdf", 4, 75, 0.87, 1.53, nullptr},
    {"shading_radial.pdf", 5, 75, 0.92, 1.62, nullptr},
    {"slides.pdf", 1, 75, 1.49, 2.56, nullptr},
    {"slides.pdf", 2, 75, 1.24, 2.15, nullptr},
    {"softmask_alpha.pdf", 1, 75, 0.51, 0.44, nullptr},
    {"softmask_alpha.pdf", 2, 75, 0.11, 0.11, nullptr},
    {"softmask_backdrop.pdf", 1, 75, 0.09, 0.15, nullptr},
    {"softmask_luminosity.pdf", 1, 75, 0.98, 2.30, nullptr},
    {"solids_clipped.pdf", 1, 75, 2.22, 2.61, nullptr},
    {"stroke_dash_degenerate.pdf", 1, 75, 0.33, 0.58, nullptr},
    {"text_cjk.pdf", 1, 75, 2.69, 10.83, nullptr},
    {"text_clip.pdf", 1, 75, 0.17, 0.50, nullptr},
    {"text_clip.pdf", 2, 75, 0.26, 1.35, nullptr},
    {"text_dense.pdf", 1, 75, 1.12, 2.77, nullptr},
    {"text_pattern.pdf", 1, 75, 0.52, 0.69, nullptr},
    {"text_type3_bitmap.pdf", 1, 75, 0.84, 1.74, nullptr},
    {"tiling.pdf", 1, 75, 0.45, 0.80, nullptr},
    {"vector_tiger.pdf", 1, 75, 0.80, 0.59, kSamples},
    {"page_huge_map.pdf", 1, 25, 0.60, 0.72, nullptr},
};

class TruePages : public testing::TestWithParam<TruthCase> {};

TEST_P(TruePages, AreNearerThanTheSecondRenderersOrSayWhyNot) {
    const TruthCase& c = GetParam();
    const TruthDistance distance =
        MeasureTruth(std::string(GX_PAGES_CORPUS) + "/" + c.file, c.page, static_cast<float>(c.dpi));
    RecordProperty("ours", std::to_string(distance.ours));
    RecordProperty("theirs", std::to_string(distance.theirs));
    EXPECT_LE(distance.ours, c.ours + kSlack);
    EXPECT_NEAR(c.theirs, distance.theirs, kSlack) << "the measure is another one";
    EXPECT_EQ(c.reason != nullptr, distance.ours > distance.theirs + kFurther)
        << distance.ours << " and " << distance.theirs;
}

INSTANTIATE_TEST_SUITE_P(Corpus, TruePages, testing::ValuesIn(kPages),
                         [](const testing::TestParamInfo<TruthCase>& page) {
                             return std::filesystem::path(page.param.file).stem().string() + "_" +
                                    std::to_string(page.param.page);
                         });

// The truth itself: a page whose means are known, in bands of a few rows.
TEST(Truth, IsTheMeanOfTheLargerPage) {
    PdfPage::Report report(false);
    PdfPage::Document document(std::string(GX_PAGES_CORPUS) + "/tiling.pdf", report);
    PdfPage::Page page(document, 1, 72), large(document, 1, 216);
    const PdfPage::Means means = page.DrawTruth(3);
    PdfPage::Picture picture;
    large.DrawWithPeer(&picture, nullptr);
    ASSERT_EQ(3 * means.width, picture.width);
    ASSERT_EQ(3 * means.height, picture.height);
    for (uint32_t y = 0; y < means.height; ++y)
        for (uint32_t x = 0; x < means.width; ++x)
            for (size_t c = 0; c < 3; ++c) {
                int sum = 0;
                for (size_t i = 0; i < 9; ++i)
                    sum +=
                        picture
                            .pixels[(3 * size_t{y} + i / 3) * picture.StrideBytes() + 4 * (3 * size_t{x} + i % 3) + c];
                // Patterns are cut at whole pixels of what is drawn, a band at a time.
                ASSERT_NEAR(static_cast<float>(sum) / 9, means.values[3 * (size_t{y} * means.width + x) + c], 0.01)
                    << x << ", " << y;
            }
}

} // namespace
