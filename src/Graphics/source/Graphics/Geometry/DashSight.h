// SPDX-License-Identifier: MIT
// Which of a segment's dashes are visible, and which are too small to be told apart.
//
// The dashes of a straight segment are stripes across it. Let d be the whole segment on the device, and a the pen's
// half width across it. The point P0 + t d + s a lies in the stripe of the dash [t0, t1] if t0 <= t <= t1 and |s| <= 1;
// caps lengthen the stripe by their reach. So the corners of the visible rectangle bound the t of visible dashes, and
// two stripe edges that are t apart are t |d x a| / |a| pixels apart, which is less than t |d| if the matrix shears.
#pragma once

#include "DashSequence.h"
#include "StrokePlan.h"

namespace Graphics {

/// Lengths in user units along the segment.
struct DashLook {
    double from; // dashes outside [from, to] are not visible
    double to;
    double scale = 1;   // the pattern is enlarged by this factor where it is too fine to be told apart
    double join = -1;   // gaps up to this length are closed by the caps; negative: none are
    double chain = 0;   // gaps up to this length join dashes into a chain
    double periods = 0; // number visible in the whole target, where counted
};

class DashSight {
public:
    DashSight(const StrokePlan& plan, const StrokeStyle& style, const DashSequence& sequence) noexcept;

    /// For the segment that starts at `a` and runs by (dx, dy); `length` is its length.
    [[nodiscard]] DashLook Look(const Point& a, double dx, double dy, double length) const noexcept {
        const DashLook all{0, length};
        return m_plain && length < m_longest ? all : LookClosely(a, dx, dy, length);
    }
    /// An upper bound of the periods that one segment shows in the target.
    [[nodiscard]] double MostPeriods() const noexcept { return m_mostPeriods; }
    /// Whether two segments, their directions given by the cosine between them, are straight enough to omit the join.
    [[nodiscard]] bool Straight(double cosine) const noexcept { return m_halfPixels * (1 - cosine) <= 4 * kJoinError; }
    /// Whether a point at this distance from the path, in user units, is near enough to be omitted.
    [[nodiscard]] bool Near(double distance) const noexcept { return distance * m_mostScale <= kNotch; }
    /// Whether a dash may be part of a chain. Under square caps only dots (dashes of length 0) may.
    [[nodiscard]] bool Chains(bool dot) const noexcept { return dot || m_round; }
    /// Whether a dash of length 0 paints anything.
    [[nodiscard]] bool Dots() const noexcept { return m_cap > 0; }
    /// Bit set of the sides of the target, enlarged by the pen's reach, beyond which the point lies.
    [[nodiscard]] uint32_t OutsideOfTarget(double x, double y) const noexcept {
        return m_plan.cullTarget ? m_target.OutsideOf(x, y) : 0U;
    }

private:
    // In pixels. Gaps with a shallower notch are closed, and joins that stick out less are omitted; a flattened circle
    // has an error of the same size.
    static constexpr double kNotch = 1.0 / 64;
    static constexpr double kJoinError = 1.0 / 8;

    struct Vector {
        double x, y;
    };
    struct Stripes {
        Vector start, along, across; // device
        double area;                 // cross product of along and across
        double cap;                  // reach of the caps as a fraction of the segment
        double half;                 // reach of the caps across, in half widths
    };

    [[nodiscard]] DashLook LookClosely(const Point& a, double dx, double dy, double length) const noexcept;
    /// Narrows [from, to], fractions of the segment, to the part visible inside `pixels`.
    void Narrow(const Stripes& stripes, const WideRect& pixels, double& from, double& to) const noexcept;
    [[nodiscard]] double JoinedGap(double acrossLength) const noexcept;
    [[nodiscard]] bool SquaresTurn(const Vector& pen) const noexcept;

    const StrokePlan& m_plan;
    const double m_period;
    WideMatrix m_toPen;
    WideMatrix m_toDevice; // from the pen's space
    PenView m_target;      // for points of user space
    double m_cap = 0;      // the caps' reach in the pen's space
    bool m_round = false;
    bool m_hasDots = false;
    bool m_plain = false; // every segment up to m_longest shows all its dashes unchanged
    double m_longest = 0;
    double m_mostPeriods = 0; // on one segment
    double m_margin = 2;      // pixels around the visible part of a segment
    bool m_certain = true;    // points are off by less than the margin
    double m_halfPixels = 0;
    double m_mostScale = 1; // pixels per user unit
};

} // namespace Graphics
