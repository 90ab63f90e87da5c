// SPDX-License-Identifier: MIT
#include "StrokePlan.h"

#include <cmath>

#include "StrokeScales.h"

namespace Graphics {
namespace {

constexpr float kDeviceTolerance = 0.25F;
// Inside this range no point of an outline comes near the limits of the sink, so the clippers would change nothing.
constexpr double kSafeBand = 32000;
// A pen this many times wider than the path and the visible area looks the same as a wider one, and floats still
// resolve the coordinates of its outline.
constexpr double kWidestPen = 16;
constexpr double kMostHalf = 1e37;
// Outlines of paths beyond this may exceed the floats; their pens work on coordinates divided by kSmaller.
constexpr double kFarthest = 1e36;
constexpr float kSmaller = 0x1p20F;
constexpr double kPlainHalf = 16; // in target pixels

[[nodiscard]] WideRect Wide(const Rect& r) noexcept { return {r.left, r.top, r.right, r.bottom}; }

/// The box of the four mapped corners.
[[nodiscard]] WideRect MapBox(const WideMatrix& m, const WideRect& r) noexcept {
    const double x[4] = {m.X(r.left, r.top), m.X(r.right, r.top), m.X(r.right, r.bottom), m.X(r.left, r.bottom)};
    const double y[4] = {m.Y(r.left, r.top), m.Y(r.right, r.top), m.Y(r.right, r.bottom), m.Y(r.left, r.bottom)};
    WideRect box{x[0], y[0], x[0], y[0]};
    for (int i = 1; i < 4; ++i) {
        box = {std::min(box.left, x[i]), std::min(box.top, y[i]), std::max(box.right, x[i]),
               std::max(box.bottom, y[i])};
    }
    return {box.left + m.m20, box.top + m.m21, box.right + m.m20, box.bottom + m.m21};
}

[[nodiscard]] double Farthest(const WideRect& r) noexcept {
    return std::max({std::fabs(r.left), std::fabs(r.top), std::fabs(r.right), std::fabs(r.bottom)});
}

/// Half the width, limited to what matters beside the extents of the path and the target, in the pen's space.
[[nodiscard]] float UsefulHalf(double half, const WideRect& path, const WideRect& target) noexcept {
    const double extent = std::max(Farthest(path), Farthest(target));
    return static_cast<float>(std::min({half, extent * kWidestPen, kMostHalf}));
}

} // namespace

StrokePlan::StrokePlan(const Rect& box, const Matrix& m, const StrokeStyle& style, float width,
                       const StrokeSight& sight) noexcept
    : targetPixels(Wide(sight.target)), visiblePixels(Wide(sight.visible)) {
    const MatrixScales scales(m);
    if (!(width >= 0) || !std::isfinite(width) || !IsFinite(m) || !(sight.visible.left < sight.visible.right) ||
        !(sight.visible.top < sight.visible.bottom)) {
        nothing = true;
        return;
    }
    const bool thinnest = width == 0;
    const double userScale = scales.most > 0 ? scales.most : 1.0;
    if (!thinnest && scales.least == 0) {
        nothing = true; // the matrix maps everything to one line
        return;
    }
    if (style.join == GXLineJoinMiter && style.miterLimit > 1.5F) {
        m_factor = style.miterLimit;
    }
    const WideMatrix wide(m);
    const WideRect path = MapBox(wide, Wide(box));
    const double halfDevice = thinnest ? 0.5 : 0.5 * width * scales.most;
    const bool deviceSpace = thinnest || scales.most - scales.least <= 1e-6 * scales.most;
    userTolerance = static_cast<float>(kDeviceTolerance / userScale);
    if (deviceSpace) {
        const float device =
            halfDevice <= kPlainHalf ? static_cast<float>(halfDevice) : UsefulHalf(halfDevice, path, targetPixels);
        userHalf = static_cast<float>(device / userScale);
        SetPen(m, kIdentity, device, kDeviceTolerance);
    } else {
        Matrix inverse;
        const WideRect seen = Invert(m, inverse) ? MapBox(WideMatrix(inverse), targetPixels) : WideRect();
        userHalf = UsefulHalf(halfDevice / userScale, Wide(box), seen);
        SetPen(kIdentity, m, userHalf, userTolerance);
    }
    if (Farthest(deviceSpace ? path : Wide(box)) > kFarthest) {
        SetPen(Concat(toPen, {1 / kSmaller, 0, 0, 1 / kSmaller, 0, 0}),
               Concat({kSmaller, 0, 0, kSmaller, 0, 0}, toDevice), half / kSmaller, tolerance / kSmaller);
    }

    const auto rounding = [&](float x, float y, float shift) {
        const double across = std::fabs(static_cast<double>(x)) * std::max(std::fabs(box.left), std::fabs(box.right));
        const double down = std::fabs(static_cast<double>(y)) * std::max(std::fabs(box.top), std::fabs(box.bottom));
        return (across + down + std::fabs(shift)) * PenView::kRounding;
    };
    const WideRect around = path.Inflated(rounding(m.m00, m.m10, m.m20), rounding(m.m01, m.m11, m.m21));
    const WideRect inReach = InReachOf(visiblePixels);
    nothing = inReach.Misses(around);
    cull = !inReach.Holds(around);
    // Whatever the pen's width: if the path is much longer than the target, most dashes lie outside.
    const double across = std::min(m_reachX / m_factor, targetPixels.right - targetPixels.left);
    const double down = std::min(m_reachY / m_factor, targetPixels.bottom - targetPixels.top);
    cullDashes = cull || std::isinf(m_factor) || !visiblePixels.Inflated(across, down).Holds(around);
    cullTarget = cull && !InReachOf(targetPixels).Holds(around);
    partial = cull && !visiblePixels.Holds(targetPixels);
    inBand = WideRect{-kSafeBand, -kSafeBand, kSafeBand, kSafeBand}.Holds(InReachOf(around));
}

void StrokePlan::SetPen(const Matrix& pen, const Matrix& device, float newHalf, float newTolerance) noexcept {
    toPen = pen;
    toDevice = device;
    half = newHalf;
    tolerance = newTolerance;
    const double reach = half * m_factor;
    const bool plain = IsIdentity(device);
    m_reachX = plain ? reach : reach * Length(device.m00, device.m10);
    m_reachY = plain ? reach : reach * Length(device.m01, device.m11);
}

} // namespace Graphics
