// SPDX-License-Identifier: MIT
// The library, through its public header.
#include <GX/GX.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "Engine.h"

namespace Bench {
namespace {

void Check(GXResult result, const char* call) {
    if (result != GXResultSuccess) {
        std::fprintf(stderr, "%s gave %u\n", call, result);
        std::exit(1);
    }
}
#define CHECK(call) Check(call, #call)

GXPoint ToGX(Point p) { return {p.x, p.y}; }

struct PathSink {
    GXGeometry geometry;
    void Move(Point p) const {
        const GXPoint point = ToGX(p);
        CHECK(GXGeometryBeginFigure(geometry, &point));
    }
    void Line(Point p) const {
        const GXPoint point = ToGX(p);
        CHECK(GXGeometryLineTo(geometry, &point));
    }
    void Cubic(Point a, Point b, Point c) const {
        const GXPoint points[] = {ToGX(a), ToGX(b), ToGX(c)};
        CHECK(GXGeometryCubicCurveTo(geometry, &points[0], &points[1], &points[2]));
    }
    void Close() const { CHECK(GXGeometryEndFigureClose(geometry)); }
};

class GraphicsDrawing final : public Drawing {
public:
    GraphicsDrawing(const Scene& scene, const Canvas& canvas, bool adjust) : m_scene(scene) {
        const GXExtBufLayout layout = {static_cast<float>(canvas.width), static_cast<float>(canvas.height),
                                       static_cast<float>(canvas.stride), 96.0f, 96.0f};
        CHECK(GXCreateRenderTargetExtBuf(canvas.pixels, GXPixelFormatPBGRA32, &layout, &m_target));
        CHECK(GXRenderTargetBeginPaint(m_target));
        CHECK(GXRenderTargetSetStrokeAdjustment(m_target, adjust ? 1 : 0));
        // The blend mode of a scene with a group is that inside the group.
        if (scene.group == Group::None) {
            CHECK(GXRenderTargetSetBlendMode(m_target, static_cast<GXBlendMode>(scene.blend)));
        }
        if (scene.action == Action::Image) {
            MakeImage();
        } else {
            MakeBrush();
            if (scene.action == Action::Mask) {
                MakeAlpha();
            }
            for (const Shape& outline : scene.text.outlines) {
                m_outlines.push_back(Build(outline));
            }
            if (scene.text.strings && !scene.text.family.empty()) {
                MakeFace();
            }
            for (const Shape& shape : scene.shapes) {
                m_geometries.push_back(scene.rebuild ? nullptr : Build(shape));
            }
        }
        if (!scene.clip.Empty()) {
            m_clip = Build(scene.clip);
        }
        m_style.join = static_cast<GXLineJoin>(scene.join);
        m_style.cap = scene.roundCaps ? GXLineCapRound : GXLineCapFlat;
        m_style.miterLimit = 10.0f;
        m_style.dashCount = scene.dashes.size();
        std::copy(scene.dashes.begin(), scene.dashes.end(), m_style.dashes);
        m_layer.opacity = scene.groupOpacity;
        m_layer.isolated = scene.group == Group::Isolated;
        m_layer.knockout = scene.group == Group::Knockout;
        if (!scene.mask.empty()) {
            MakeMask(canvas);
        }
    }

    ~GraphicsDrawing() override {
        CHECK(GXRenderTargetEndPaint(m_target));
        for (const auto* geometries : {&m_geometries, &m_outlines}) {
            for (GXGeometry geometry : *geometries) {
                GXObjectRelease(geometry);
            }
        }
        for (void* object : {static_cast<void*>(m_target), static_cast<void*>(m_brush), static_cast<void*>(m_bitmap),
                             static_cast<void*>(m_clip), static_cast<void*>(m_mask), static_cast<void*>(m_face)}) {
            GXObjectRelease(object); // null is refused without harm
        }
    }

    void Draw() override {
        const bool grouped = m_scene.group != Group::None;
        if (m_mask != nullptr) {
            GXRenderTargetPushState(m_target);
            GXRenderTargetSetOpacityMask(m_target, GXMaskTypeAlpha, m_mask);
        }
        if (grouped) {
            GXRenderTargetBeginLayer(m_target, &m_layer);
            GXRenderTargetSetBlendMode(m_target, static_cast<GXBlendMode>(m_scene.blend));
        }
        DrawContent();
        if (grouped) {
            GXRenderTargetEndLayer(m_target);
        }
        if (m_mask != nullptr) {
            GXRenderTargetPopState(m_target);
        }
    }

private:
    void DrawContent() {
        if (m_scene.action == Action::Mask) {
            for (const Map& map : m_scene.placements) {
                const GXMatrix matrix = {map.xx, map.xy, map.yx, map.yy, map.dx, map.dy};
                GXRenderTargetSetCTM(m_target, &matrix);
                GXRenderTargetFillMask(m_target, m_bitmap, m_brush, nullptr, GXInterpolationNearest);
            }
            return;
        }
        if (m_scene.action == Action::Image) {
            const auto filter = m_scene.filter == Filter::Nearest ? GXInterpolationNearest : GXInterpolationLinear;
            for (const Map& map : m_scene.placements) {
                const GXMatrix matrix = {map.xx, map.xy, map.yx, map.yy, map.dx, map.dy};
                GXRenderTargetSetCTM(m_target, &matrix);
                GXRenderTargetDrawBitmap(m_target, m_bitmap, nullptr, 1.0f, filter);
            }
            return;
        }
        if (!m_scene.text.uses.empty()) {
            const float em = m_scene.text.em;
            if (m_face != nullptr) {
                const float scale = em / kFaceEm;
                for (const Text::Use& use : m_scene.text.uses) {
                    const GXMatrix matrix = {scale, 0, 0, scale, use.at.x, use.at.y};
                    const uint16_t string[] = {static_cast<uint16_t>(m_scene.text.characters[use.outline]), 0};
                    GXRenderTargetSetCTM(m_target, &matrix);
                    GXRenderTargetFillText(m_target, m_face, string, m_brush);
                }
                return;
            }
            for (const Text::Use& use : m_scene.text.uses) {
                const GXMatrix matrix = {em, 0, 0, em, use.at.x, use.at.y};
                GXRenderTargetSetCTM(m_target, &matrix);
                GXRenderTargetFillTextGeometry(m_target, m_outlines[use.outline], m_brush);
            }
            return;
        }
        for (size_t i = 0; i < m_scene.shapes.size(); ++i) {
            if (m_clip != nullptr) {
                GXRenderTargetPushState(m_target);
                GXRenderTargetClipGeometry(m_target, m_clip);
            }
            DrawShape(m_scene.shapes[i], m_geometries[i]);
            if (m_clip != nullptr) {
                GXRenderTargetPopState(m_target);
            }
        }
    }

    void DrawShape(const Shape& shape, GXGeometry geometry) {
        if (m_scene.action == Action::Stroke) {
            GXRenderTargetStrokeGeometry(m_target, geometry, m_brush, m_scene.width, &m_style);
        } else if (shape.IsRectangle()) {
            const GXRect rect = {shape.TopLeft().x, shape.TopLeft().y, shape.BottomRight().x, shape.BottomRight().y};
            GXRenderTargetFillRect(m_target, &rect, m_brush);
        } else if (m_scene.rebuild) {
            geometry = Build(shape);
            GXRenderTargetFillGeometry(m_target, geometry, m_brush);
            GXObjectRelease(geometry);
        } else {
            GXRenderTargetFillGeometry(m_target, geometry, m_brush);
        }
    }

    [[nodiscard]] GXGeometry Build(const Shape& shape) const {
        GXGeometry geometry = nullptr;
        CHECK(GXCreateGeometry(&geometry));
        CHECK(GXGeometrySetFillRule(geometry, m_scene.evenOdd ? GXFillRuleEvenOdd : GXFillRuleNonZero));
        shape.Replay(PathSink{geometry});
        CHECK(GXGeometryEndFigure(geometry));
        return geometry;
    }

    void MakeBrush() {
        const Paint& paint = m_scene.paint;
        if (paint.kind == PaintKind::Solid) {
            CHECK(GXCreateBrushSolidARGB(paint.color, &m_brush));
            return;
        }
        std::vector<GXGradientStop> stops;
        for (const Stop& stop : paint.stops) {
            stops.push_back({stop.offset, stop.color});
        }
        GXGradient gradient = nullptr;
        if (paint.kind == PaintKind::Linear) {
            const GXLinearGradientDesc desc = {stops.data(), stops.size(), ToGX(paint.start), ToGX(paint.end), 1, 1, 0};
            CHECK(GXCreateGradientLinear(&desc, &gradient));
        } else {
            const GXRadialGradientDesc desc = {
                stops.data(), stops.size(), ToGX(paint.start), 0.0f, ToGX(paint.end), paint.radius, 1, 1, 0};
            CHECK(GXCreateGradientRadial(&desc, &gradient));
        }
        CHECK(GXCreateBrushGradient(gradient, 1.0f, nullptr, &m_brush));
        GXObjectRelease(gradient);
    }

    void MakeFace() {
        const Text& text = m_scene.text;
        const std::vector<uint16_t> family(text.family.c_str(), text.family.c_str() + text.family.size() + 1);
        const auto flags = static_cast<uint32_t>((text.bold ? GXFontBold : 0) | (text.italic ? GXFontItalic : 0));
        CHECK(GXCreateFontFace(family.data(), flags, kFaceEm * 72 / 96, &m_face));
    }

    void MakeMask(const Canvas& canvas) {
        const GXBitmapDesc desc = {static_cast<uint32_t>(canvas.width), static_cast<uint32_t>(canvas.height),
                                   GXPixelFormatAlpha8, 96.0f, 96.0f};
        const GXBitmapData data = {const_cast<uint8_t*>(m_scene.mask.data()), desc.width, desc.width};
        const GXBitmapBrushOptions options = {GXInterpolationNearest, GXExtendClamp, GXExtendClamp};
        GXBitmap bitmap = nullptr;
        CHECK(GXCreateBitmap(&desc, &bitmap));
        CHECK(GXBitmapCopyFromMemory(bitmap, nullptr, &data));
        CHECK(GXCreateBrushBitmap(bitmap, 1.0f, &options, nullptr, &m_mask));
        GXObjectRelease(bitmap);
    }

    void MakeImage() {
        const Image& image = m_scene.image;
        const GXBitmapDesc desc = {
            static_cast<uint32_t>(image.width), static_cast<uint32_t>(image.height),
            image.opaque ? GXPixelFormat{GXPixelFormatBGRX32} : GXPixelFormat{GXPixelFormatPBGRA32}, 96.0f, 96.0f};
        CHECK(GXCreateBitmap(&desc, &m_bitmap));
        const auto rowBytes = static_cast<uint32_t>(image.width) * 4;
        const GXBitmapData data = {const_cast<uint32_t*>(image.pixels.data()), rowBytes, rowBytes};
        CHECK(GXBitmapCopyFromMemory(m_bitmap, nullptr, &data));
    }

    void MakeAlpha() {
        const Image& image = m_scene.image;
        const auto width = static_cast<uint32_t>(image.width);
        const GXBitmapDesc desc = {width, static_cast<uint32_t>(image.height), GXPixelFormatAlpha8, 96.0f, 96.0f};
        CHECK(GXCreateBitmap(&desc, &m_bitmap));
        const GXBitmapData data = {const_cast<uint8_t*>(m_scene.imageAlpha.data()), width, width};
        CHECK(GXBitmapCopyFromMemory(m_bitmap, nullptr, &data));
    }

    static constexpr float kFaceEm = 100;

    const Scene& m_scene;
    GXFontFace m_face = nullptr;
    GXRenderTarget m_target = nullptr;
    GXBrush m_brush = nullptr;
    GXBitmap m_bitmap = nullptr;
    GXGeometry m_clip = nullptr;
    GXBrush m_mask = nullptr;
    GXStrokeStyle m_style = {};
    GXLayerDesc m_layer = {};
    std::vector<GXGeometry> m_geometries;
    std::vector<GXGeometry> m_outlines;
};

} // namespace

const Engine kGraphics = {"Graphics", [](const Scene& scene, const Canvas& canvas) -> std::unique_ptr<Drawing> {
                              return std::make_unique<GraphicsDrawing>(scene, canvas, true);
                          }};
const Engine kGraphicsFree = {"free", [](const Scene& scene, const Canvas& canvas) -> std::unique_ptr<Drawing> {
                                  return std::make_unique<GraphicsDrawing>(scene, canvas, false);
                              }};

} // namespace Bench
