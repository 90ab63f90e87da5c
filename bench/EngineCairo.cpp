// SPDX-License-Identifier: MIT
// Cairo's image surface.
#include <cairo.h>
#if defined(BENCH_HAS_CAIRO_FT)
#include <cairo-ft.h>
#endif

#include <cstring>

#include "Engine.h"

namespace Bench {
namespace {

struct PathSink {
    cairo_t* cairo;
    void Move(Point p) const { cairo_move_to(cairo, p.x, p.y); }
    void Line(Point p) const { cairo_line_to(cairo, p.x, p.y); }
    void Cubic(Point a, Point b, Point c) const { cairo_curve_to(cairo, a.x, a.y, b.x, b.y, c.x, c.y); }
    void Close() const { cairo_close_path(cairo); }
};

constexpr cairo_operator_t kOperators[] = {
    CAIRO_OPERATOR_OVER,       CAIRO_OPERATOR_MULTIPLY,       CAIRO_OPERATOR_SCREEN,     CAIRO_OPERATOR_OVERLAY,
    CAIRO_OPERATOR_DARKEN,     CAIRO_OPERATOR_LIGHTEN,        CAIRO_OPERATOR_COLOR_BURN, CAIRO_OPERATOR_COLOR_DODGE,
    CAIRO_OPERATOR_HARD_LIGHT, CAIRO_OPERATOR_SOFT_LIGHT,     CAIRO_OPERATOR_DIFFERENCE, CAIRO_OPERATOR_EXCLUSION,
    CAIRO_OPERATOR_HSL_HUE,    CAIRO_OPERATOR_HSL_SATURATION, CAIRO_OPERATOR_HSL_COLOR,  CAIRO_OPERATOR_HSL_LUMINOSITY};

class CairoDrawing final : public Drawing {
public:
    CairoDrawing(const Scene& scene, const Canvas& canvas) : m_scene(scene) {
        m_surface =
            cairo_image_surface_create_for_data(reinterpret_cast<unsigned char*>(canvas.pixels), CAIRO_FORMAT_ARGB32,
                                                canvas.width, canvas.height, canvas.stride);
        m_cairo = cairo_create(m_surface);
        cairo_set_fill_rule(m_cairo, scene.evenOdd ? CAIRO_FILL_RULE_EVEN_ODD : CAIRO_FILL_RULE_WINDING);
        cairo_set_line_width(m_cairo, scene.width);
        cairo_set_line_join(m_cairo, scene.join == Join::Miter   ? CAIRO_LINE_JOIN_MITER
                                     : scene.join == Join::Round ? CAIRO_LINE_JOIN_ROUND
                                                                 : CAIRO_LINE_JOIN_BEVEL);
        cairo_set_miter_limit(m_cairo, 10);
        const std::vector<double> dashes(scene.dashes.begin(), scene.dashes.end());
        cairo_set_dash(m_cairo, dashes.data(), static_cast<int>(dashes.size()), 0);
        if (!scene.mask.empty()) {
            m_mask = cairo_image_surface_create(CAIRO_FORMAT_A8, canvas.width, canvas.height);
            for (int y = 0; y < canvas.height; ++y) {
                std::memcpy(cairo_image_surface_get_data(m_mask) + y * cairo_image_surface_get_stride(m_mask),
                            scene.mask.data() + y * canvas.width, static_cast<size_t>(canvas.width));
            }
            cairo_surface_mark_dirty(m_mask);
        }
        if (scene.action == Action::Image) {
            const Image& image = scene.image;
            m_image = cairo_image_surface_create_for_data(
                reinterpret_cast<unsigned char*>(const_cast<uint32_t*>(image.pixels.data())),
                image.opaque ? CAIRO_FORMAT_RGB24 : CAIRO_FORMAT_ARGB32, image.width, image.height, image.width * 4);
            m_pattern = cairo_pattern_create_for_surface(m_image);
            cairo_pattern_set_extend(m_pattern, CAIRO_EXTEND_PAD);
            cairo_pattern_set_filter(m_pattern,
                                     scene.filter == Filter::Nearest ? CAIRO_FILTER_NEAREST : CAIRO_FILTER_BILINEAR);
            return;
        }
        for (const Shape& shape : scene.shapes) {
            m_paths.push_back(scene.rebuild || shape.IsRectangle() ? nullptr : Build(shape));
        }
        if (!scene.clip.Empty()) {
            m_clip = Build(scene.clip);
        }
        MakePattern();
        MakeText();
    }

    ~CairoDrawing() override {
        for (cairo_path_t* path : m_paths) {
            if (path != nullptr) {
                cairo_path_destroy(path);
            }
        }
        if (m_clip != nullptr) {
            cairo_path_destroy(m_clip);
        }
        cairo_pattern_destroy(m_pattern);
        cairo_destroy(m_cairo);
        cairo_surface_destroy(m_surface);
        for (cairo_surface_t* surface : {m_image, m_mask}) {
            if (surface != nullptr) {
                cairo_surface_destroy(surface);
            }
        }
    }

    // A mask means a group here: Cairo masks one source at a time.
    void Draw() override {
        const bool grouped = m_scene.group != Group::None || m_mask != nullptr;
        if (grouped) {
            cairo_push_group(m_cairo);
        }
        cairo_set_operator(m_cairo, kOperators[m_scene.blend]);
        if (m_scene.action == Action::Mask) {
            DrawAlpha();
        } else if (m_scene.action == Action::Image) {
            DrawImages();
        } else {
            cairo_set_source(m_cairo, m_pattern);
            DrawShapes();
        }
        if (grouped) {
            cairo_identity_matrix(m_cairo);
            cairo_pop_group_to_source(m_cairo);
            cairo_set_operator(m_cairo, CAIRO_OPERATOR_OVER);
            if (m_mask != nullptr) {
                cairo_mask_surface(m_cairo, m_mask, 0, 0);
            } else {
                cairo_paint_with_alpha(m_cairo, static_cast<double>(m_scene.groupOpacity));
            }
        }
    }

    void Flush() override { cairo_surface_flush(m_surface); }

private:
    void DrawAlpha() {
        cairo_surface_t* alpha =
            cairo_image_surface_create_for_data(const_cast<uint8_t*>(m_scene.imageAlpha.data()), CAIRO_FORMAT_A8,
                                                m_scene.image.width, m_scene.image.height, m_scene.image.width);
        cairo_set_source(m_cairo, m_pattern);
        for (const Map& map : m_scene.placements) {
            cairo_mask_surface(m_cairo, alpha, static_cast<double>(map.dx), static_cast<double>(map.dy));
        }
        cairo_surface_destroy(alpha);
    }

    void DrawImages() {
        for (const Map& map : m_scene.placements) {
            const cairo_matrix_t matrix = {map.xx, map.xy, map.yx, map.yy, map.dx, map.dy};
            cairo_set_matrix(m_cairo, &matrix);
            cairo_set_source(m_cairo, m_pattern);
            cairo_rectangle(m_cairo, 0, 0, m_scene.image.width, m_scene.image.height);
            cairo_fill(m_cairo);
        }
    }

    void DrawShapes() {
        if (!m_glyphs.empty()) {
            cairo_show_glyphs(m_cairo, m_glyphs.data(), static_cast<int>(m_glyphs.size()));
            return;
        }
        for (size_t i = 0; i < m_scene.shapes.size(); ++i) {
            const Shape& shape = m_scene.shapes[i];
            if (m_clip != nullptr) {
                cairo_save(m_cairo);
                cairo_append_path(m_cairo, m_clip);
                cairo_clip(m_cairo);
            }
            if (m_paths[i] != nullptr) {
                cairo_append_path(m_cairo, m_paths[i]);
            } else if (shape.IsRectangle()) {
                const Point a = shape.TopLeft(), b = shape.BottomRight();
                cairo_rectangle(m_cairo, a.x, a.y, b.x - a.x, b.y - a.y);
            } else {
                shape.Replay(PathSink{m_cairo});
            }
            if (m_scene.action == Action::Fill) {
                cairo_fill(m_cairo);
            } else {
                cairo_stroke(m_cairo);
            }
            if (m_clip != nullptr) {
                cairo_restore(m_cairo);
            }
        }
    }

    [[nodiscard]] cairo_path_t* Build(const Shape& shape) const {
        cairo_new_path(m_cairo);
        shape.Replay(PathSink{m_cairo});
        cairo_path_t* path = cairo_copy_path(m_cairo);
        cairo_new_path(m_cairo);
        return path;
    }

    void MakePattern() {
        const auto channel = [](uint32_t color, int shift) { return static_cast<double>(color >> shift & 255) / 255; };
        const Paint& paint = m_scene.paint;
        if (paint.kind == PaintKind::Solid) {
            m_pattern = cairo_pattern_create_rgba(channel(paint.color, 16), channel(paint.color, 8),
                                                  channel(paint.color, 0), channel(paint.color, 24));
        } else {
            m_pattern = paint.kind == PaintKind::Linear
                            ? cairo_pattern_create_linear(paint.start.x, paint.start.y, paint.end.x, paint.end.y)
                            : cairo_pattern_create_radial(paint.start.x, paint.start.y, 0, paint.end.x, paint.end.y,
                                                          paint.radius);
            for (const Stop& stop : paint.stops) {
                cairo_pattern_add_color_stop_rgba(m_pattern, stop.offset, channel(stop.color, 16),
                                                  channel(stop.color, 8), channel(stop.color, 0),
                                                  channel(stop.color, 24));
            }
            cairo_pattern_set_extend(m_pattern, CAIRO_EXTEND_PAD);
        }
        cairo_set_source(m_cairo, m_pattern);
    }

    /// All glyphs of the scene for one call, unhinted and in grey; without the font the shapes are filled instead.
    void MakeText() {
#if defined(BENCH_HAS_CAIRO_FT)
        const Text& text = m_scene.text;
        if (text.fontFile.empty() || FT_Init_FreeType(&m_library) != 0 ||
            FT_New_Face(m_library, text.fontFile.c_str(), 0, &m_file) != 0) {
            return;
        }
        cairo_font_face_t* face = cairo_ft_font_face_create_for_ft_face(m_file, FT_LOAD_NO_HINTING);
        cairo_font_options_t* options = cairo_font_options_create();
        cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
        cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
        cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
        cairo_set_font_face(m_cairo, face);
        cairo_set_font_options(m_cairo, options);
        cairo_set_font_size(m_cairo, text.em);
        cairo_font_options_destroy(options);
        cairo_font_face_destroy(face);
        for (const Text::Use& use : text.uses) {
            m_glyphs.push_back({text.glyphs[use.outline], use.at.x, use.at.y});
        }
#endif
    }

    const Scene& m_scene;
#if defined(BENCH_HAS_CAIRO_FT)
    // Cairo may keep the face in its caches: both live as long as the process.
    FT_Library m_library = nullptr;
    FT_Face m_file = nullptr;
#endif
    std::vector<cairo_glyph_t> m_glyphs;
    cairo_surface_t* m_surface = nullptr;
    cairo_surface_t* m_image = nullptr;
    cairo_surface_t* m_mask = nullptr;
    cairo_t* m_cairo = nullptr;
    cairo_pattern_t* m_pattern = nullptr;
    cairo_path_t* m_clip = nullptr;
    std::vector<cairo_path_t*> m_paths;
};

} // namespace

const Engine kCairo = {"Cairo", [](const Scene& scene, const Canvas& canvas) -> std::unique_ptr<Drawing> {
                           if (scene.group == Group::NonIsolated || scene.group == Group::Knockout || scene.alone) {
                               return nullptr; // its groups are isolated
                           }
                           return std::make_unique<CairoDrawing>(scene, canvas);
                       }};

} // namespace Bench
