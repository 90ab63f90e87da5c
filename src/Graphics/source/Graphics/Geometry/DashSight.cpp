// SPDX-License-Identifier: MIT
#include "DashSight.h"

#include <cmath>
#include <limits>

#include "StrokeScales.h"

namespace Graphics {
namespace {

// Samples are an eighth of a pixel apart; they cannot distinguish periods shorter than two samples.
constexpr double kFinestPeriod = 0.25 * (1 + 1e-6);
// Such patterns are drawn with periods of 3.618 samples. By the golden section the edges of successive dashes then fall
// between samples as evenly as possible, so the mean coverage is that of the pattern.
constexpr double kDrawnPeriod = 3.6180339887498949 / 8;
// Limit of the periods that caps add to the visible ones; patterns finer than that against the pen's width do not show.
constexpr double kMostUnderCaps = 1024;
// Limit, in pixels, of the position error that is allowed for. Where rounding moves points further the output is
// meaningless anyway; it is then derived from the target alone, so that no clip changes it either.
constexpr double kMostMargin = 16;
// Longest gap in a chain, as a fraction of half the width; beyond it a dash is hidden so little that it is sent
// separately.
constexpr double kLongestChainGap = 1;
constexpr double kDiagonal = 1.4142135623730951;
// Periods are counted in doubles.
constexpr double kCountable = 0x1p44;

} // namespace

DashSight::DashSight(const StrokePlan& plan, const StrokeStyle& style, const DashSequence& sequence) noexcept
    : m_plan(plan), m_period(sequence.Period()), m_toPen(plan.toPen), m_toDevice(plan.toDevice),
      m_round(style.cap == GXLineCapRound) {
    const MatrixScales pen(plan.toPen), device(plan.toDevice);
    if (m_round || style.cap == GXLineCapSquare) {
        m_cap = plan.half;
    }
    m_halfPixels = plan.half * device.most;
    m_mostScale = pen.most * device.most;
    for (uint32_t i = 0; i < sequence.Count(); i += 2) {
        m_hasDots = m_hasDots || sequence.ElementLength(i) == 0;
    }
    // The shortest period and the longest reach over all directions.
    const double wide = plan.targetPixels.right - plan.targetPixels.left;
    const double high = plan.targetPixels.bottom - plan.targetPixels.top;
    const double cap = m_cap * device.most;
    const double finest = m_period * pen.least * device.least;
    const bool joins = m_cap > 0 && m_period * pen.least <= 2 * plan.half;
    // A segment shows more periods than that only where rounding decides which.
    const double span = wide + high + 4 * kMostMargin;
    m_mostPeriods = 2 * kMostUnderCaps + span / kFinestPeriod;
    m_longest = m_period * std::min(m_mostPeriods, kCountable);
    m_plain = !plan.cullDashes && !joins && finest > kFinestPeriod && finest * kMostUnderCaps > 2 * cap &&
              finest * m_mostPeriods > span + 2 * cap;
    if (m_plain) {
        return;
    }

    // Dashes are placed in floats of user space and mapped in floats. If visible, their coordinates are within the
    // target's.
    const WideMatrix map = m_toPen.Then(m_toDevice);
    m_target = PenView(map, plan.InReachOf(plan.targetPixels));
    const double determinant = std::fabs(map.m00 * map.m11 - map.m01 * map.m10);
    if (determinant > 0) {
        const WideRect near = plan.targetPixels.Inflated(cap, cap);
        const double x = std::max(std::fabs(near.left), std::fabs(near.right)) + std::fabs(map.m20);
        const double y = std::max(std::fabs(near.top), std::fabs(near.bottom)) + std::fabs(map.m21);
        const double userX = (std::fabs(map.m11) * x + std::fabs(map.m10) * y) / determinant;
        const double userY = (std::fabs(map.m01) * x + std::fabs(map.m00) * y) / determinant;
        const double off = std::max(std::fabs(map.m00) * userX + std::fabs(map.m10) * userY + std::fabs(map.m20),
                                    std::fabs(map.m01) * userX + std::fabs(map.m11) * userY + std::fabs(map.m21));
        const double uncertain = off * 0x1p-22;
        m_certain = uncertain <= kMostMargin;
        m_margin += m_certain ? uncertain : kMostMargin;
    }
    // A dash of a chain gets its exact outline only together with both neighbours.
    m_margin += joins ? kLongestChainGap * m_halfPixels : 0.0;
}

/// The longest gap, in the pen's space, that the caps close. A gap g between round caps of radius h leaves a notch h -
/// sqrt(h^2 - g^2 / 4) deep, about g^2 / 8h. Square caps would cover a gap of 2h, but gaps wider than a pixel are so
/// few that they are drawn.
double DashSight::JoinedGap(double acrossLength) const noexcept {
    const double half = m_plan.half;
    const double pixel = half / acrossLength;
    if (!m_round) {
        return std::min(2 * half, pixel) * (1 - 1e-6);
    }
    const double notch = kNotch * pixel;
    return notch < half ? 2 * std::sqrt((2 * half - notch) * notch) : 2 * half;
}

/// Whether dots' squares are turned against the segment: a dot's square has the pen's orientation, and only squares
/// aligned with the segment cover the space between them.
bool DashSight::SquaresTurn(const Vector& pen) const noexcept {
    const double x = pen.x * m_toPen.m00 + pen.y * m_toPen.m01, y = pen.x * m_toPen.m01 - pen.y * m_toPen.m00;
    return std::min(std::fabs(x), std::fabs(y)) > 1e-9 * (std::fabs(x) + std::fabs(y));
}

void DashSight::Narrow(const Stripes& stripes, const WideRect& pixels, double& from, double& to) const noexcept {
    const WideRect r = pixels.Inflated(m_margin, m_margin);
    double lowT = 0, highT = 0, lowS = 0, highS = 0;
    for (int i = 0; i < 4; ++i) {
        const double x = (i % 2 == 0 ? r.left : r.right) - stripes.start.x;
        const double y = (i / 2 == 0 ? r.top : r.bottom) - stripes.start.y;
        const double t = (x * stripes.across.y - y * stripes.across.x) / stripes.area;
        const double s = (stripes.along.x * y - stripes.along.y * x) / stripes.area;
        lowT = i == 0 ? t : std::min(lowT, t), highT = i == 0 ? t : std::max(highT, t);
        lowS = i == 0 ? s : std::min(lowS, s), highS = i == 0 ? s : std::max(highS, s);
    }
    from = std::max(lowT - stripes.cap, 0.0);
    to = std::min(highT + stripes.cap, 1.0);
    if (lowS > stripes.half || highS < -stripes.half || !(from <= to)) {
        from = to = 0;
    }
}

DashLook DashSight::LookClosely(const Point& a, double dx, double dy, double length) const noexcept {
    const Vector pen{m_toPen.X(dx, dy), m_toPen.Y(dx, dy)};
    const double penLength = Length(pen.x, pen.y);
    const double k = m_plan.half / penLength;
    Stripes stripes{};
    stripes.along = {m_toDevice.X(pen.x, pen.y), m_toDevice.Y(pen.x, pen.y)};
    stripes.across = {m_toDevice.X(pen.y * k, -pen.x * k), m_toDevice.Y(pen.y * k, -pen.x * k)};
    stripes.area = stripes.along.x * stripes.across.y - stripes.along.y * stripes.across.x;
    const bool turned = !m_round && m_hasDots && m_cap > 0 && SquaresTurn(pen);
    stripes.half = turned ? kDiagonal : 1.0; // a dot's square may stand on its corner
    stripes.cap = m_cap * stripes.half / penLength;
    const double acrossLength = Length(stripes.across.x, stripes.across.y);
    const double pixels = std::fabs(stripes.area) / acrossLength; // of the whole segment, from edge to edge
    DashLook look{0, length};
    if (!(pixels > 0) || !std::isfinite(pixels)) {
        look.scale = std::numeric_limits<double>::infinity(); // all in one place, or nowhere
        return look;
    }
    const double startX = m_toPen.X(a.x, a.y) + m_toPen.m20, startY = m_toPen.Y(a.x, a.y) + m_toPen.m21;
    stripes.start = {m_toDevice.X(startX, startY) + m_toDevice.m20, m_toDevice.Y(startX, startY) + m_toDevice.m21};

    double from = 0, to = 1;
    Narrow(stripes, m_plan.targetPixels, from, to);
    const double period = m_period / length * pixels;
    if (period <= kFinestPeriod) {
        look.scale = kDrawnPeriod / period;
    }
    look.scale = std::max({look.scale, 2 * stripes.cap * pixels / (period * kMostUnderCaps),
                           length / (m_period * kCountable), (to - from) * length / (m_period * m_mostPeriods)});
    look.periods = (to - from) * length / (m_period * look.scale);
    // If a period is longer than the pen is wide there are few dashes, and joining them does not pay.
    if (m_cap > 0 && m_period * penLength <= 2 * m_plan.half * length) {
        look.join = turned ? 0.0 : JoinedGap(acrossLength) * length / penLength;
        look.chain = turned || m_round ? kLongestChainGap * m_plan.half * length / penLength : 0.0;
    }
    // Even if the pen reaches everything from everywhere, so that no corner can be culled, only some dashes are
    // visible.
    if (m_plan.cullDashes && m_certain) {
        Narrow(stripes, m_plan.visiblePixels, from, to);
    }
    look.from = from * length;
    look.to = to * length;
    return look;
}

} // namespace Graphics
