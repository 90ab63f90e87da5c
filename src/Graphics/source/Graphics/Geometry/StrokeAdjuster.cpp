// SPDX-License-Identifier: MIT
#include "StrokeAdjuster.h"

#include "StrokeScales.h"

namespace Graphics {
namespace {

// The distance in pixels by which a segment may deviate from its axis.
constexpr float kAligned = 1.0F / 512;
// In mixed figures shorter segments are steps of a curve and are not adjusted.
constexpr float kShortest = 1.0F;

/// The whole-pixel position of a line's centre: both edges, half a width away, are whole.
[[nodiscard]] float SnapCentre(float centre, float width) noexcept {
    return std::floor(centre - width * 0.5F + 0.5F) + width * 0.5F;
}

/// Larger coordinates have no significant fractions of a pixel. NaN compares false.
[[nodiscard]] bool HasFractions(const Point& p) noexcept { return std::fabs(p.x) < 1e6F && std::fabs(p.y) < 1e6F; }

} // namespace

StrokeAdjuster::StrokeAdjuster(const Matrix& m, float width) noexcept : m_matrix(m) {
    const MatrixScales scales(m);
    double scaleX = scales.most, scaleY = scales.most;
    if (scales.most - scales.least > 1e-6 * scales.most) {
        const double tiny = 1e-6 * scales.most;
        if ((std::fabs(m.m01) > tiny || std::fabs(m.m10) > tiny) &&
            (std::fabs(m.m00) > tiny || std::fabs(m.m11) > tiny)) {
            return; // axis-aligned lines have no single width
        }
        scaleX = static_cast<double>(std::fabs(m.m00)) + std::fabs(m.m10);
        scaleY = static_cast<double>(std::fabs(m.m01)) + std::fabs(m.m11);
    }
    const double wide = 16384; // whole pixels and halves are exact far beyond it
    if (!IsFinite(m) || !Invert(m, m_inverse) || !(width * scaleX < wide) || !(width * scaleY < wide)) {
        return;
    }
    m_widthX = static_cast<float>(std::max(1.0, std::floor(width * scaleX + 0.5)));
    m_widthY = static_cast<float>(std::max(1.0, std::floor(width * scaleY + 0.5)));
    m_toDevice = {m_widthX * 0.5F, 0, 0, m_widthY * 0.5F, 0, 0};
    m_toPen = Concat(m, {2.0F / m_widthX, 0, 0, 2.0F / m_widthY, 0, 0});
    m_applies = true;
}

/// Adjusts a figure of horizontal and vertical segments only, without its repeated points.
bool StrokeAdjuster::AdjustStraight(const Figure& figure, HeapArray<Point>& path) const {
    path.clear();
    for (uint32_t i = 0; i < figure.SegmentCount(); ++i) {
        if (figure.Kind(i) != Figure::kLine) {
            return false;
        }
    }
    for (const Point& point : figure.Points()) {
        const Point p = Map(m_matrix, point);
        if (!HasFractions(p)) {
            return false;
        }
        if (path.empty() || path.back().x != p.x || path.back().y != p.y) {
            path.push_back(p);
        }
    }
    if (figure.Closed() && path.size() > 1 && path.back().x == path[0].x && path.back().y == path[0].y) {
        path.pop_back();
    }
    const size_t count = path.size();
    if (count < 2) {
        return false;
    }
    const size_t segments = figure.Closed() ? count : count - 1;
    for (size_t i = 0; i < segments; ++i) {
        const Point& a = path[i];
        const Point& b = path[i + 1 == count ? 0 : i + 1];
        if (std::fabs(a.x - b.x) > kAligned && std::fabs(a.y - b.y) > kAligned) {
            return false;
        }
    }
    // Directions are determined before points move. A vertical segment moves x, a horizontal one y, so the coordinate
    // along a segment changes only when the next segment moves it.
    const auto vertical = [&](const Point& a, const Point& b) { return std::fabs(a.y - b.y) > std::fabs(a.x - b.x); };
    const bool closesVertical = figure.Closed() && vertical(path[count - 1], path[0]);
    const Point first = path[0];
    Point from = first; // original position of the segment's start
    for (size_t i = 0; i + 1 < count; ++i) {
        const Point to = path[i + 1];
        if (vertical(from, to)) {
            path[i].x = path[i + 1].x = SnapCentre(from.x, m_widthX);
        } else {
            path[i].y = path[i + 1].y = SnapCentre(from.y, m_widthY);
        }
        from = to;
    }
    if (figure.Closed()) {
        Point& last = path[count - 1];
        if (closesVertical) {
            last.x = path[0].x = SnapCentre(first.x, m_widthX);
        } else {
            last.y = path[0].y = SnapCentre(first.y, m_widthY);
        }
    }
    for (Point& p : path) {
        p = Map(m_inverse, p);
    }
    return true;
}

/// Each horizontal or vertical segment moves both its ends across itself. The next segment's start, which is the same
/// point, and the control points beside it move too, so that curves keep their tangents.
bool StrokeAdjuster::AdjustMixed(const Figure& figure, HeapArray<Point>& path) const {
    const std::span<const Point> points = figure.Points();
    const size_t count = points.size();
    path.clear();
    path.resize(2 * count);
    Point* const moved = path.data();
    Point* const placed = moved + count; // original positions
    for (size_t i = 0; i < count; ++i) {
        moved[i] = placed[i] = Map(m_matrix, points[i]);
        if (!HasFractions(placed[i])) {
            return false;
        }
    }
    bool any = false;
    const auto move = [&](size_t from, size_t to) {
        const float dx = std::fabs(placed[to].x - placed[from].x), dy = std::fabs(placed[to].y - placed[from].y);
        if (dx <= kAligned && dy >= kShortest) {
            moved[from].x = moved[to].x = SnapCentre(placed[from].x, m_widthX);
            any = true;
        } else if (dy <= kAligned && dx >= kShortest) {
            moved[from].y = moved[to].y = SnapCentre(placed[from].y, m_widthY);
            any = true;
        }
    };
    size_t at = 0;
    for (uint32_t i = 0; i < figure.SegmentCount(); ++i) {
        const size_t next = at + (figure.Kind(i) == Figure::kLine ? 1U : 3U);
        if (figure.Kind(i) == Figure::kLine) {
            move(at, next);
        }
        at = next;
    }
    if (figure.Closed()) {
        const bool meets = placed[at].x == placed[0].x && placed[at].y == placed[0].y;
        if (!meets) {
            move(at, 0);
        } else {
            // First and last are the same point of the figure, stored twice.
            moved[0].x = moved[at].x = moved[0].x != placed[0].x ? moved[0].x : moved[at].x;
            moved[0].y = moved[at].y = moved[0].y != placed[0].y ? moved[0].y : moved[at].y;
        }
    }
    if (!any) {
        return false;
    }
    at = 0;
    for (uint32_t i = 0; i < figure.SegmentCount(); ++i) {
        if (figure.Kind(i) == Figure::kLine) {
            at += 1;
            continue;
        }
        const auto follow = [&](size_t control, size_t end) {
            moved[control].x += moved[end].x - placed[end].x;
            moved[control].y += moved[end].y - placed[end].y;
        };
        follow(at + 1, at);
        follow(at + 2, at + 3);
        at += 3;
    }
    path.resize(count);
    for (Point& p : path) {
        p = Map(m_inverse, p);
    }
    return true;
}

StrokeAdjuster::Result StrokeAdjuster::Adjust(const Figure& figure, HeapArray<Point>& path) const {
    if (AdjustStraight(figure, path)) {
        return Result::Path;
    }
    return AdjustMixed(figure, path) ? Result::Moved : Result::Untouched;
}

} // namespace Graphics
