// SPDX-License-Identifier: MIT
#include "PixelInverter.h"

#include <algorithm>
#include <cmath>

#include "../Geometry/DeviceFeed.h"
#include "../Scan/DeviceFigures.h"
#include "../Scan/Rasterizer.h"

namespace Graphics {
namespace {

constexpr uint8_t kHalf = 127; // the coverage byte of 32 of 64 samples

} // namespace

PixelInverter::PixelInverter(const IntRect& bounds, const ClipRegion* clip) noexcept
    : m_bounds(bounds), m_clip(IsMasked(clip) ? clip : nullptr) {}

void PixelInverter::Pixels(int32_t y, int32_t x0, int32_t x1) {
    if (m_clip == nullptr) {
        Invert(y, x0, x1);
        return;
    }
    m_clip->ForParts(y, x0, x1, [&](int32_t from, int32_t to, const uint8_t* coverage) {
        if (coverage == nullptr) {
            Invert(y, from, to);
            return;
        }
        for (int32_t x = from; x < to; ++x) {
            if (coverage[x - from] >= kHalf) {
                Invert(y, x, x + 1);
            }
        }
    });
}

void PixelInverter::Row(int32_t y, std::span<CoverageRun> runs) {
    if (y < m_bounds.top || y >= m_bounds.bottom) {
        return;
    }
    for (const CoverageRun& run : runs) {
        const int32_t end = std::min(run.x1, m_bounds.right);
        int32_t x = std::max(run.x0, m_bounds.left);
        while (x < end) {
            const auto covered = [&](int32_t at) {
                return (run.shape == nullptr ? run.value : run.shape[at - run.x0]) >= kHalf;
            };
            int32_t stop = x + 1;
            if (covered(x)) {
                while (stop < end && covered(stop)) {
                    ++stop;
                }
                Pixels(y, x, stop);
            }
            x = stop;
        }
    }
}

void PixelInverter::Rectangle(int32_t left, int32_t top, int32_t right, int32_t bottom) {
    const IntRect r = Intersect({left, top, right, bottom}, m_bounds);
    for (int32_t y = r.top; y < r.bottom && r.left < r.right; ++y) {
        Pixels(y, r.left, r.right);
    }
}

IntRect PixelInverter::LineBox(const Point& from, const Point& to) noexcept {
    if (!std::isfinite(from.x) || !std::isfinite(from.y) || !std::isfinite(to.x) || !std::isfinite(to.y)) {
        return {0, 0, 0, 0};
    }
    // One more pixel on every side: the other coordinate is evaluated at the centre of a step, which may lie beyond an
    // end.
    return RoundOut({std::min(from.x, to.x) - 1.0F, std::min(from.y, to.y) - 1.0F, std::max(from.x, to.x) + 1.0F,
                     std::max(from.y, to.y) + 1.0F});
}

void PixelInverter::Line(const Point& from, const Point& to) {
    if (!std::isfinite(from.x) || !std::isfinite(from.y) || !std::isfinite(to.x) || !std::isfinite(to.y)) {
        return;
    }
    const double dx = static_cast<double>(to.x) - from.x;
    const double dy = static_cast<double>(to.y) - from.y;
    const bool steep = std::fabs(dy) > std::fabs(dx);
    // u is the coordinate along the longer direction, v the other one.
    const double u0 = steep ? from.y : from.x;
    const double u1 = steep ? to.y : to.x;
    const double v0 = steep ? from.x : from.y;
    const double slope = u1 == u0 ? 0.0 : (steep ? dx : dy) / (u1 - u0);
    const double low = steep ? m_bounds.top : m_bounds.left;
    const double high = steep ? m_bounds.bottom : m_bounds.right;
    const double begin = std::clamp(std::floor(std::min(u0, u1)), low, high);
    const double end =
        std::clamp(std::max(std::floor(std::max(u0, u1)), std::floor(std::min(u0, u1)) + 1.0), low, high);
    for (auto u = static_cast<int32_t>(begin); u < static_cast<int32_t>(end); ++u) {
        const double v = std::floor(v0 + (u + 0.5 - u0) * slope);
        if (v < (steep ? m_bounds.left : m_bounds.top) || v >= (steep ? m_bounds.right : m_bounds.bottom)) {
            continue;
        }
        const auto w = static_cast<int32_t>(v);
        Pixels(steep ? u : w, steep ? w : u, (steep ? w : u) + 1);
    }
}

Inversion::Inversion(const Matrix& transform, const BasicFigure& figure, PathShape& shapes)
    : m_transform(transform), m_shape(shapes.Of(figure)), m_isLine(figure.GetKind() == BasicFigure::Kind::Line),
      m_from(Map(transform, {figure.Box().left, figure.Box().top})),
      m_to(Map(transform, {figure.Box().right, figure.Box().bottom})) {}

IntRect Inversion::Box() const noexcept {
    return m_isLine ? PixelInverter::LineBox(m_from, m_to) : RoundOut(DeviceBox(m_shape, m_transform, 0.0F));
}

void Inversion::Send(PixelInverter& inverter, Rasterizer& rasterizer, const IntRect& area,
                     const IntRect& visible) const {
    if (m_isLine) {
        inverter.Line(m_from, m_to);
        return;
    }
    rasterizer.Begin(ToRect(area), visible, true);
    FeedFill(m_shape, m_transform, rasterizer);
    rasterizer.Finish(inverter);
}

} // namespace Graphics
