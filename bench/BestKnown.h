// SPDX-License-Identifier: MIT
// How fast the fastest engine known draws a scene, as Cairo's time of the same run divided by its time. Measured once
// beside Cairo 1.16: AGG 2.6.1, Qt 5.15, MuPDF 1.21, Skia and Blend2D of late 2025. Ratios hold better from machine to
// machine than times do.
#pragma once

#include <string_view>

namespace Bench {

struct BestKnown {
    std::string_view scene;
    double ratio;
};

inline constexpr BestKnown kBestKnown[] = {
    {"rect_aligned_opaque_8", 13},
    {"rect_aligned_opaque_32", 5.32},
    {"rect_aligned_opaque_128", 1.48},
    {"rect_aligned_opaque_512", 1.00},
    {"rect_aligned_half_8", 14},
    {"rect_aligned_half_32", 6.61},
    {"rect_aligned_half_128", 4.22},
    {"rect_aligned_half_512", 4.26},
    {"rect_unaligned_opaque_8", 6.11},
    {"rect_unaligned_opaque_32", 1.91},
    {"rect_unaligned_opaque_128", 1.44},
    {"rect_unaligned_opaque_512", 1.44},
    {"rect_unaligned_half_8", 9.70},
    {"rect_unaligned_half_32", 4.13},
    {"rect_unaligned_half_128", 3.54},
    {"rect_unaligned_half_512", 3.88},
    {"roundrect_opaque_32", 3.50},
    {"roundrect_opaque_128", 3.60},
    {"roundrect_opaque_512", 2.55},
    {"roundrect_half_32", 4.26},
    {"roundrect_half_128", 4.21},
    {"roundrect_half_512", 4.19},
    {"triangle_opaque_8", 3.32},
    {"triangle_opaque_32", 3.65},
    {"triangle_opaque_128", 3.37},
    {"triangle_opaque_512", 2.91},
    {"triangle_half_128", 5.97},
    {"poly10_nz_32", 7.38},
    {"poly10_nz_128", 4.33},
    {"poly10_nz_512", 3.02},
    {"poly10_eo_32", 7.72},
    {"poly10_eo_128", 4.99},
    {"poly10_eo_512", 3.63},
    {"poly40_nz_32", 14},
    {"poly40_nz_128", 10},
    {"poly40_nz_512", 4.98},
    {"poly40_eo_32", 15},
    {"poly40_eo_128", 12},
    {"poly40_eo_512", 6.53},
    {"poly10_nz_half_128", 6.97},
    {"build_poly10_nz_32", 7.32},
    {"map100k_fill_nz", 4.87},
    {"map100k_fill_eo", 6.51},
    {"map100k_stroke_w1", 8.57},
    {"map100k_zoom20_fill_nz", 15},
    {"butterfly_eo_60", 4.44},
    {"spiral_nz_60", 5.61},
    {"butterfly_eo_250", 7.08},
    {"spiral_nz_250", 6.38},
    {"butterfly_eo_900", 7.51},
    {"spiral_nz_900", 7.79},
    {"stroke_poly_w1", 6.14},
    {"stroke_poly_w2", 6.99},
    {"stroke_poly_w10", 5.75},
    {"stroke_poly_w10_round", 6.18},
    {"stroke_poly_w2_dash", 1.96},
    {"stroke_poly_w2_dash_round", 2.13},
    {"stroke_rules_w1", 1.93},
    {"stroke_circle_w1", 4.49},
    {"stroke_circle_w5", 5.01},
    {"stroke_curves_w1", 4.72},
    {"stroke_curves_w3", 5.06},
    {"text_outlines_em16", 3.16},
    {"text_outlines_em40", 3.74},
    {"gradient_linear_512", 13},
    {"gradient_linear_1000", 13},
    {"gradient_radial_512", 15},
    {"gradient_radial_1000", 15},
    {"image_blit_opaque", 1.31},
    {"image_blit_alpha", 3.77},
    {"image_scale2.3_nearest", 1.38},
    {"image_scale2.3_bilinear", 1.52},
    {"image_scale0.7_bilinear", 1.26},
    {"image_rotated_bilinear", 6.59},
    {"image_reduce4_average", 14},
    {"mask_a8_solid_256", 6.51},
    {"blend_image_multiply", 42},
    {"blend_image_screen", 59},
    {"blend_image_overlay", 24},
    {"blend_image_colordodge", 18},
    {"blend_image_softlight", 14},
    {"blend_image_luminosity", 13},
    {"blend_solid_multiply_256", 61},
    {"group_opacity_20poly", 2.99},
    {"group_multiply_20poly", 20},
    {"clip_path_fill_512", 1.00},
    {"clip_path_100poly", 1.00},
    {"big_rect_aligned_opaque_512", 1.83},
    {"big_rect_aligned_half_512", 2.30},
    {"big_rect_aligned_opaque_4000", 1.00},
    {"big_rect_aligned_half_4000", 2.17},
    {"big_poly40_nz_1500", 3.03},
    {"big_triangle_1500", 2.17},
    {"big_map100k_fill_nz", 4.15},
    {"big_gradient_linear_4000", 13},
    {"big_image_blit_alpha", 2.72},
    {"big_group_opacity", 4.99},
};

/// 0 where nothing is known.
[[nodiscard]] constexpr double BestRatio(std::string_view scene) noexcept {
    for (const BestKnown& entry : kBestKnown) {
        if (entry.scene == scene) {
            return entry.ratio;
        }
    }
    return 0.0;
}

} // namespace Bench
