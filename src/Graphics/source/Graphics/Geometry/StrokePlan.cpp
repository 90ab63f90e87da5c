// SPDX-License-Identifier: MIT
#include "StrokePlan.h"

#include <cmath>

namespace Graphics {
namespace {

constexpr float kDeviceTolerance = 0.25F;
// Inside this no point of an outline comes near the limits of the band; the band's clippers would change nothing.
constexpr float kSafeBand = 32000.0F;
// Patterns shorter than a rasterizer's sample in this unit, device pixels, look the same when longer by a whole factor.
constexpr double kFinestDashes = 0.125;
// Patterns on one straight line across what can be seen.
constexpr double kMostDashes = 65536;

/// Without std::hypot, whose last bits differ between libraries. The squares of what comes from floats fit.
[[nodiscard]] double Length(double x, double y) noexcept { return std::sqrt(x * x + y * y); }

struct Scales {
    double most, least; // singular values
};

[[nodiscard]] Scales ScalesOf(const Matrix& m) noexcept {
    const double a = m.m00, b = m.m01, c = m.m10, d = m.m11;
    const double p = Length(a + d, b - c) * 0.5, q = Length(a - d, b + c) * 0.5;
    return {p + q, std::fabs(p - q)};
}

[[nodiscard]] bool Finite(const Matrix& m) noexcept {
    return std::isfinite(m.m00) && std::isfinite(m.m01) && std::isfinite(m.m10) && std::isfinite(m.m11) &&
           std::isfinite(m.m20) && std::isfinite(m.m21);
}

[[nodiscard]] bool Finite(const Rect& r) noexcept {
    return std::isfinite(r.left) && std::isfinite(r.top) && std::isfinite(r.right) && std::isfinite(r.bottom);
}

[[nodiscard]] Rect Inflate(const Rect& r, float by) noexcept {
    return {r.left - by, r.top - by, r.right + by, r.bottom + by};
}

/// How far an outline may lie from its path, in half widths: a square cap's corner, a miter's tip.
[[nodiscard]] double Reach(const StrokeStyle& style) noexcept {
    const double miter = style.join == GXLineJoinMiter && style.miterLimit > 1.5F ? style.miterLimit : 1.5;
    return miter;
}

/// The whole-pixel position of a line's centre: both edges, half a width away, are whole.
[[nodiscard]] float SnapCentre(float centre, float width) noexcept {
    return std::floor(centre - width * 0.5F + 0.5F) + width * 0.5F;
}

} // namespace

StrokePlan::StrokePlan(const Rect& controlBox, bool finite, const Matrix& m, const StrokeStyle& style, float width,
                       const Rect& visibleDevice) noexcept {
    const Scales scales = ScalesOf(m);
    if (!(width >= 0) || !std::isfinite(width) || !Finite(m) || !(visibleDevice.left < visibleDevice.right) ||
        !(visibleDevice.top < visibleDevice.bottom)) {
        nothing = true;
        return;
    }
    const bool thinnest = width == 0;
    const double userScale = scales.most > 0 ? scales.most : 1.0;
    if (!thinnest && scales.least == 0) {
        nothing = true; // all of it on one line
        return;
    }
    const double halfDevice = thinnest ? 0.5 : 0.5 * width * scales.most;
    userTolerance = static_cast<float>(kDeviceTolerance / userScale);
    userHalf = static_cast<float>(halfDevice / userScale);
    if (thinnest || scales.most - scales.least <= 1e-6 * scales.most) {
        toPen = m;
        half = static_cast<float>(halfDevice);
        tolerance = kDeviceTolerance;
    } else {
        toDevice = m;
        half = userHalf;
        tolerance = userTolerance;
    }

    double sum = 0;
    for (uint32_t i = 0; i < style.dashCount; ++i) {
        sum += style.dashes[i];
    }
    // Under wide pens with caps so fine gaps are closed anyhow; without caps the number that can be seen is bounded.
    const double pattern = sum * userScale;
    const double across = Length(static_cast<double>(visibleDevice.right) - visibleDevice.left,
                                 static_cast<double>(visibleDevice.bottom) - visibleDevice.top) +
                          2 * halfDevice * Reach(style);
    const double capped = style.cap == GXLineCapFlat ? 0.0 : halfDevice / 256;
    const double finest = std::max({kFinestDashes, across / kMostDashes, capped});
    if (pattern > 0 && pattern < finest) {
        dashScale = static_cast<float>(std::min(std::ceil(finest / pattern), 1e30));
    }

    // Two pixels more for rounding and the tolerance.
    const float reach = static_cast<float>(halfDevice * Reach(style) + 2.0);
    const Rect box = MapBox(m, controlBox);
    const Rect seen = Inflate(visibleDevice, reach);
    if (finite && Finite(box)) {
        if (box.left > seen.right || box.right < seen.left || box.top > seen.bottom || box.bottom < seen.top) {
            nothing = true;
            return;
        }
        const Rect all = Inflate(box, reach);
        inBand = all.left > -kSafeBand && all.top > -kSafeBand && all.right < kSafeBand && all.bottom < kSafeBand;
        cull = box.left < seen.left || box.top < seen.top || box.right > seen.right || box.bottom > seen.bottom;
    } else {
        cull = true;
    }
    Matrix inverse;
    cull = cull && Finite(seen) && Invert(m, inverse);
    if (cull) {
        visibleUser = MapBox(inverse, seen);
        visiblePen = IsIdentity(toDevice) ? seen : visibleUser;
        cull = Finite(visibleUser);
    }
}

StrokeAdjuster::StrokeAdjuster(const Matrix& m, float width) noexcept : m_matrix(m) {
    const Scales scales = ScalesOf(m);
    double scaleX = scales.most, scaleY = scales.most;
    if (scales.most - scales.least > 1e-6 * scales.most) {
        const double tiny = 1e-6 * scales.most;
        if ((std::fabs(m.m01) > tiny || std::fabs(m.m10) > tiny) &&
            (std::fabs(m.m00) > tiny || std::fabs(m.m11) > tiny)) {
            return; // lines along the axes have no one width
        }
        scaleX = static_cast<double>(std::fabs(m.m00)) + std::fabs(m.m10);
        scaleY = static_cast<double>(std::fabs(m.m01)) + std::fabs(m.m11);
    }
    const double wide = 16384; // whole pixels and halves are exact far beyond it
    if (!Finite(m) || !Invert(m, m_inverse) || !(width * scaleX < wide) || !(width * scaleY < wide)) {
        return;
    }
    m_widthX = static_cast<float>(std::max(1.0, std::floor(width * scaleX + 0.5)));
    m_widthY = static_cast<float>(std::max(1.0, std::floor(width * scaleY + 0.5)));
    m_toDevice = {m_widthX * 0.5F, 0, 0, m_widthY * 0.5F, 0, 0};
    m_toPen = Concat(m, {2.0F / m_widthX, 0, 0, 2.0F / m_widthY, 0, 0});
    m_applies = true;
}

bool StrokeAdjuster::Adjust(const Figure& figure, HeapArray<Point>& path) const {
    constexpr float kAligned = 1.0F / 512;
    path.clear();
    for (uint32_t i = 0; i < figure.SegmentCount(); ++i) {
        if (figure.Kind(i) != Figure::kLine) {
            return false;
        }
    }
    for (const Point& point : figure.Points()) {
        const Point p = Map(m_matrix, point);
        if (!(std::fabs(p.x) < 1e6F) || !(std::fabs(p.y) < 1e6F)) {
            return false; // no fractions of a pixel to speak of
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
    // Directions are read before their points move: a vertical segment moves x, a horizontal one y, so a segment keeps
    // its length's coordinate until the next one moves it.
    const auto vertical = [&](const Point& a, const Point& b) { return std::fabs(a.y - b.y) > std::fabs(a.x - b.x); };
    const bool closesVertical = figure.Closed() && vertical(path[count - 1], path[0]);
    const Point first = path[0];
    Point from = first; // where the segment's start was
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

} // namespace Graphics
