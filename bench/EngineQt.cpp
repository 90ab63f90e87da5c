// SPDX-License-Identifier: MIT
// Qt's raster engine: a painter on an image.
#include <QImage>
#include <QPainter>
#include <QPainterPath>

#include "Engine.h"

namespace Bench {
namespace {

struct PathSink {
    QPainterPath& path;
    static QPointF At(Point p) { return {static_cast<double>(p.x), static_cast<double>(p.y)}; }
    void Move(Point p) const { path.moveTo(At(p)); }
    void Line(Point p) const { path.lineTo(At(p)); }
    void Cubic(Point a, Point b, Point c) const { path.cubicTo(At(a), At(b), At(c)); }
    void Close() const { path.closeSubpath(); }
};

// The modes up to Exclusion; there are none for hue, saturation, colour and luminosity.
constexpr QPainter::CompositionMode kModes[] = {
    QPainter::CompositionMode_SourceOver, QPainter::CompositionMode_Multiply,   QPainter::CompositionMode_Screen,
    QPainter::CompositionMode_Overlay,    QPainter::CompositionMode_Darken,     QPainter::CompositionMode_Lighten,
    QPainter::CompositionMode_ColorBurn,  QPainter::CompositionMode_ColorDodge, QPainter::CompositionMode_HardLight,
    QPainter::CompositionMode_SoftLight,  QPainter::CompositionMode_Difference, QPainter::CompositionMode_Exclusion};

class QtDrawing final : public Drawing {
public:
    QtDrawing(const Scene& scene, const Canvas& canvas)
        : m_scene(scene), m_target(reinterpret_cast<uchar*>(canvas.pixels), canvas.width, canvas.height, canvas.stride,
                                   QImage::Format_ARGB32_Premultiplied),
          m_painter(&m_target) {
        m_painter.setRenderHint(QPainter::Antialiasing);
        m_painter.setRenderHint(QPainter::SmoothPixmapTransform, scene.filter == Filter::Bilinear);
        m_painter.setCompositionMode(kModes[scene.blend]);
        if (scene.action == Action::Image) {
            const Image& image = scene.image;
            m_image =
                QImage(reinterpret_cast<const uchar*>(image.pixels.data()), image.width, image.height, image.width * 4,
                       image.opaque ? QImage::Format_RGB32 : QImage::Format_ARGB32_Premultiplied);
            return;
        }
        for (const Shape& shape : scene.shapes) {
            m_paths.push_back(scene.rebuild ? QPainterPath() : Build(shape));
        }
        m_clip = Build(scene.clip);
        MakeBrush();
        m_pen = QPen(m_brush, static_cast<double>(scene.width), Qt::SolidLine, Qt::FlatCap,
                     scene.join == Join::Miter   ? Qt::MiterJoin
                     : scene.join == Join::Round ? Qt::RoundJoin
                                                 : Qt::BevelJoin);
        m_pen.setMiterLimit(5); // counted in half the units of the others
        if (!scene.dashes.empty()) {
            QVector<qreal> dashes;
            for (float length : scene.dashes) {
                dashes.append(static_cast<double>(length / scene.width)); // counted in widths
            }
            m_pen.setDashPattern(dashes);
        }
    }

    void Draw() override {
        if (m_scene.action == Action::Image) {
            for (const Map& map : m_scene.placements) {
                if (map.IsShift()) {
                    m_painter.drawImage(static_cast<int>(map.dx), static_cast<int>(map.dy), m_image);
                    continue;
                }
                m_painter.setTransform(QTransform(map.xx, map.xy, map.yx, map.yy, map.dx, map.dy));
                m_painter.drawImage(0, 0, m_image);
            }
            return;
        }
        for (size_t i = 0; i < m_scene.shapes.size(); ++i) {
            const Shape& shape = m_scene.shapes[i];
            if (!m_clip.isEmpty()) {
                m_painter.save();
                m_painter.setClipPath(m_clip);
            }
            if (m_scene.action == Action::Stroke) {
                m_painter.strokePath(m_paths[i], m_pen);
            } else if (shape.IsRectangle()) {
                m_painter.fillRect(QRectF(PathSink::At(shape.TopLeft()), PathSink::At(shape.BottomRight())), m_brush);
            } else if (m_scene.rebuild) {
                m_painter.fillPath(Build(shape), m_brush);
            } else {
                m_painter.fillPath(m_paths[i], m_brush);
            }
            if (!m_clip.isEmpty()) {
                m_painter.restore();
            }
        }
    }

private:
    [[nodiscard]] QPainterPath Build(const Shape& shape) const {
        QPainterPath path;
        path.setFillRule(m_scene.evenOdd ? Qt::OddEvenFill : Qt::WindingFill);
        shape.Replay(PathSink{path});
        return path;
    }

    void MakeBrush() {
        const Paint& paint = m_scene.paint;
        if (paint.kind == PaintKind::Solid) {
            m_brush = QBrush(QColor::fromRgba(paint.color));
            return;
        }
        QGradientStops stops;
        for (const Stop& stop : paint.stops) {
            stops.append({static_cast<double>(stop.offset), QColor::fromRgba(stop.color)});
        }
        if (paint.kind == PaintKind::Linear) {
            QLinearGradient gradient(PathSink::At(paint.start), PathSink::At(paint.end));
            gradient.setStops(stops);
            m_brush = QBrush(gradient);
        } else {
            QRadialGradient gradient(PathSink::At(paint.start), static_cast<double>(paint.radius));
            gradient.setStops(stops);
            m_brush = QBrush(gradient);
        }
    }

    const Scene& m_scene;
    QImage m_target;
    QPainter m_painter;
    QImage m_image;
    QBrush m_brush;
    QPen m_pen;
    QPainterPath m_clip;
    std::vector<QPainterPath> m_paths;
};

} // namespace

const Engine kQt = {"Qt", [](const Scene& scene, const Canvas& canvas) -> std::unique_ptr<Drawing> {
                        if (scene.blend >= static_cast<int>(std::size(kModes)) || scene.group != Group::None ||
                            !scene.mask.empty() || scene.action == Action::Mask || scene.alone) {
                            return nullptr;
                        }
                        // A pen up to one pixel wide is drawn by a line algorithm, not as an outline.
                        if (scene.action == Action::Stroke && scene.width <= 1) {
                            return nullptr;
                        }
                        return std::make_unique<QtDrawing>(scene, canvas);
                    }};

} // namespace Bench
