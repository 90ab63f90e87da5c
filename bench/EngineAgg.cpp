// SPDX-License-Identifier: MIT
// AGG, assembled as its own examples do: scanline rasterizer, packed scanlines, premultiplied BGRA.
#include <algorithm>
#include <cmath>

#include <agg_alpha_mask_u8.h>
#include <agg_conv_curve.h>
#include <agg_conv_dash.h>
#include <agg_conv_stroke.h>
#include <agg_gradient_lut.h>
#include <agg_image_accessors.h>
#include <agg_path_storage.h>
#include <agg_pixfmt_rgba.h>
#include <agg_rasterizer_scanline_aa.h>
#include <agg_renderer_base.h>
#include <agg_renderer_scanline.h>
#include <agg_scanline_p.h>
#include <agg_scanline_u.h>
#include <agg_span_allocator.h>
#include <agg_span_gradient.h>
#include <agg_span_image_filter_rgba.h>
#include <agg_span_interpolator_linear.h>

#include "Engine.h"

namespace Bench {
namespace {

using Plain = agg::pixfmt_bgra32_pre;
using Blended =
    agg::pixfmt_custom_blend_rgba<agg::comp_op_adaptor_rgba_pre<agg::rgba8, agg::order_bgra>, agg::rendering_buffer>;
using Interpolator = agg::span_interpolator_linear<>;
using Lut = agg::gradient_lut<agg::color_interpolator<agg::rgba8>, 1024>;

struct PathSink {
    agg::path_storage& path;
    void Move(Point p) const { path.move_to(p.x, p.y); }
    void Line(Point p) const { path.line_to(p.x, p.y); }
    void Cubic(Point a, Point b, Point c) const { path.curve4(a.x, a.y, b.x, b.y, c.x, c.y); }
    void Close() const { path.close_polygon(); }
};

// The modes up to Exclusion.
constexpr agg::comp_op_e kOperators[] = {agg::comp_op_src_over,   agg::comp_op_multiply,    agg::comp_op_screen,
                                         agg::comp_op_overlay,    agg::comp_op_darken,      agg::comp_op_lighten,
                                         agg::comp_op_color_burn, agg::comp_op_color_dodge, agg::comp_op_hard_light,
                                         agg::comp_op_soft_light, agg::comp_op_difference,  agg::comp_op_exclusion};

agg::rgba8 ToAgg(uint32_t color) { return agg::rgba8(color >> 16 & 255, color >> 8 & 255, color & 255, color >> 24); }

void SetOperator(Plain&, int) {}
void SetOperator(Blended& pixels, int mode) { pixels.comp_op(kOperators[mode]); }

template <class Pixels> class AggDrawing final : public Drawing {
public:
    AggDrawing(const Scene& scene, const Canvas& canvas)
        : m_scene(scene), m_buffer(reinterpret_cast<agg::int8u*>(canvas.pixels), static_cast<unsigned>(canvas.width),
                                   static_cast<unsigned>(canvas.height), canvas.stride),
          m_pixels(m_buffer), m_base(m_pixels) {
        SetOperator(m_pixels, scene.blend);
        m_rasterizer.clip_box(0, 0, canvas.width, canvas.height);
        m_rasterizer.filling_rule(scene.evenOdd ? agg::fill_even_odd : agg::fill_non_zero);
        for (const Shape& shape : scene.shapes) {
            m_paths.emplace_back();
            if (!scene.rebuild) {
                shape.Replay(PathSink{m_paths.back()});
            }
        }
        m_color = ToAgg(scene.paint.color);
        m_color.premultiply();
        for (const Stop& stop : scene.paint.stops) {
            m_lut.add_color(stop.offset, ToAgg(stop.color));
        }
        if (!scene.paint.stops.empty()) {
            m_lut.build_lut();
        }
        if (!scene.mask.empty()) {
            m_maskBuffer.attach(const_cast<uint8_t*>(scene.mask.data()), static_cast<unsigned>(canvas.width),
                                static_cast<unsigned>(canvas.height), canvas.width);
        }
        if (scene.action == Action::Image) {
            m_imageBuffer.attach(reinterpret_cast<agg::int8u*>(const_cast<uint32_t*>(scene.image.pixels.data())),
                                 static_cast<unsigned>(scene.image.width), static_cast<unsigned>(scene.image.height),
                                 scene.image.width * 4);
        }
    }

    void Draw() override {
        if (m_scene.action == Action::Image) {
            for (const Map& map : m_scene.placements) {
                DrawImage(map);
            }
            return;
        }
        for (size_t i = 0; i < m_paths.size(); ++i) {
            if (m_scene.rebuild) {
                m_paths[i].remove_all();
                m_scene.shapes[i].Replay(PathSink{m_paths[i]});
            }
            agg::conv_curve<agg::path_storage> curve(m_paths[i]);
            m_rasterizer.reset();
            if (m_scene.action == Action::Stroke) {
                if (m_scene.dashes.empty()) {
                    AddStroke(curve);
                } else {
                    agg::conv_dash<agg::conv_curve<agg::path_storage>> dash(curve);
                    for (size_t k = 0; k + 1 < m_scene.dashes.size(); k += 2) {
                        dash.add_dash(m_scene.dashes[k], m_scene.dashes[k + 1]);
                    }
                    AddStroke(dash);
                }
            } else {
                m_rasterizer.add_path(curve);
            }
            Paint();
        }
    }

private:
    template <class Path> void AddStroke(Path& path) {
        agg::conv_stroke<Path> stroke(path);
        stroke.width(m_scene.width);
        stroke.line_join(m_scene.join == Join::Miter   ? agg::miter_join_revert
                         : m_scene.join == Join::Round ? agg::round_join
                                                       : agg::bevel_join);
        stroke.miter_limit(10);
        m_rasterizer.add_path(stroke);
    }

    void Paint() {
        const auto& paint = m_scene.paint;
        if (!m_scene.mask.empty()) {
            agg::render_scanlines_aa_solid(m_rasterizer, m_maskedScanline, m_base, m_color);
        } else if (paint.kind == PaintKind::Solid) {
            agg::render_scanlines_aa_solid(m_rasterizer, m_scanline, m_base, m_color);
        } else if (paint.kind == PaintKind::Linear) {
            const double dx = paint.end.x - paint.start.x, dy = paint.end.y - paint.start.y;
            agg::trans_affine matrix = agg::trans_affine_rotation(std::atan2(dy, dx));
            matrix *= agg::trans_affine_translation(paint.start.x, paint.start.y);
            Gradient(agg::gradient_x(), matrix, std::hypot(dx, dy));
        } else {
            Gradient(agg::gradient_radial(), agg::trans_affine_translation(paint.start.x, paint.start.y), paint.radius);
        }
    }

    template <class Function> void Gradient(Function function, agg::trans_affine matrix, double length) {
        matrix.invert();
        Interpolator interpolator(matrix);
        agg::span_gradient<agg::rgba8, Interpolator, Function, Lut> spans(interpolator, function, m_lut, 0, length);
        agg::render_scanlines_aa(m_rasterizer, m_scanline, m_base, m_allocator, spans);
    }

    void DrawImage(const Map& map) {
        Plain image(m_imageBuffer);
        if (map.IsShift()) {
            if (m_scene.image.opaque && m_scene.blend == 0) {
                m_base.copy_from(m_imageBuffer, nullptr, static_cast<int>(map.dx), static_cast<int>(map.dy));
            } else {
                m_base.blend_from(image, nullptr, static_cast<int>(map.dx), static_cast<int>(map.dy));
            }
            return;
        }
        agg::trans_affine matrix(map.xx, map.xy, map.yx, map.yy, map.dx, map.dy);
        m_rasterizer.reset();
        const double w = m_scene.image.width, h = m_scene.image.height;
        const double corners[][2] = {{0, 0}, {w, 0}, {w, h}, {0, h}};
        for (int i = 0; i < 4; ++i) {
            double x = corners[i][0], y = corners[i][1];
            matrix.transform(&x, &y);
            m_rasterizer.add_vertex(x, y, i == 0 ? agg::path_cmd_move_to : agg::path_cmd_line_to);
        }
        matrix.invert();
        Interpolator interpolator(matrix);
        using Source = agg::image_accessor_clone<Plain>;
        Source source(image);
        if (m_scene.filter == Filter::Nearest) {
            agg::span_image_filter_rgba_nn<Source, Interpolator> spans(source, interpolator);
            agg::render_scanlines_aa(m_rasterizer, m_scanline, m_base, m_allocator, spans);
        } else {
            agg::span_image_filter_rgba_bilinear<Source, Interpolator> spans(source, interpolator);
            agg::render_scanlines_aa(m_rasterizer, m_scanline, m_base, m_allocator, spans);
        }
    }

    const Scene& m_scene;
    agg::rendering_buffer m_buffer;
    Pixels m_pixels;
    agg::renderer_base<Pixels> m_base;
    agg::rasterizer_scanline_aa<> m_rasterizer;
    agg::scanline_p8 m_scanline;
    agg::rendering_buffer m_maskBuffer;
    agg::alpha_mask_gray8 m_mask{m_maskBuffer};
    agg::scanline_u8_am<agg::alpha_mask_gray8> m_maskedScanline{m_mask};
    agg::span_allocator<agg::rgba8> m_allocator;
    Lut m_lut;
    agg::rgba8 m_color;
    agg::rendering_buffer m_imageBuffer;
    std::vector<agg::path_storage> m_paths;
};

} // namespace

const Engine kAgg = {"AGG", [](const Scene& scene, const Canvas& canvas) -> std::unique_ptr<Drawing> {
                         if (scene.blend >= static_cast<int>(std::size(kOperators)) || !scene.clip.Empty() ||
                             scene.group != Group::None || scene.action == Action::Mask || scene.alone) {
                             return nullptr; // clips are boxes only, and there are no groups
                         }
                         if (scene.blend == 0) {
                             return std::make_unique<AggDrawing<Plain>>(scene, canvas);
                         }
                         return std::make_unique<AggDrawing<Blended>>(scene, canvas);
                     }};

} // namespace Bench
