// SPDX-License-Identifier: MIT
// What of a segment's dashes can be seen, and told apart.
//
// The dashes of a straight segment are stripes across it. With d the whole segment on the device, and a the pen's half
// width across it, the point P0 + t d + s a is in the stripe of the dash [t0, t1] where t0 <= t <= t1 and |s| <= 1;
// caps make it longer by their reach. So the corners of what is on view say between which t anything can be seen, and
// two edges of stripes that are t apart have t |d x a| / |a| pixels between them, less than t |d| where the matrix
// shears.
#pragma once

#include "DashSequence.h"
#include "StrokePlan.h"

namespace Graphics {

/// Lengths in user units along the segment.
struct DashLook {
    double from; // dashes outside of [from, to] are out of sight
    double to;
    double scale = 1;   // the pattern is drawn so many times larger: nobody can see that it is not finer
    double join = -1;   // gaps up to this are closed by caps; none where negative
    double chain = 0;   // gaps up to this make dashes a chain
    double periods = 0; // that the whole target would show, where they were counted
};

class DashSight {
public:
    DashSight(const StrokePlan& plan, const StrokeStyle& style, const DashSequence& sequence) noexcept;

    /// For the segment from `a` by (dx, dy), which is `length` long.
    [[nodiscard]] DashLook Look(const Point& a, double dx, double dy, double length) const noexcept {
        const DashLook all{0, length};
        return m_plain && length < m_longest ? all : LookClosely(a, dx, dy, length);
    }
    /// Periods that no segment shows more of in the target.
    [[nodiscard]] double MostPeriods() const noexcept { return m_mostPeriods; }
    /// How far the cut off corner between two segments, as vectors of length 1, may be taken for none.
    [[nodiscard]] bool Straight(double cosine) const noexcept { return m_halfPixels * (1 - cosine) <= 4 * kJoinError; }
    /// The same for a point so far, in user units, beside the path.
    [[nodiscard]] bool Near(double distance) const noexcept { return distance * m_mostScale <= kNotch; }
    /// Whether a dash may be part of a chain: of squares dots alone.
    [[nodiscard]] bool Chains(bool dot) const noexcept { return dot || m_round; }
    /// Whether a dash without length leaves anything on the page.
    [[nodiscard]] bool Dots() const noexcept { return m_cap > 0; }
    /// Bit set of the sides of the target, the pen's reach included, that a point lies beyond.
    [[nodiscard]] uint32_t OutsideOfTarget(double x, double y) const noexcept {
        return m_plan.cullTarget ? m_target.OutsideOf(x, y) : 0U;
    }

private:
    // All in pixels. Gaps whose notch is less deep are closed, and joins that stick out by less are none; a flattened
    // circle is off by as much.
    static constexpr double kNotch = 1.0 / 64;
    static constexpr double kJoinError = 1.0 / 8;

    struct Vector {
        double x, y;
    };
    struct Stripes {
        Vector start, along, across; // device
        double area;                 // cross product of along and across
        double cap;                  // their reach, as a share of the segment
        double half;                 // and across, in half widths
    };

    [[nodiscard]] DashLook LookClosely(const Point& a, double dx, double dy, double length) const noexcept;
    /// Narrows [from, to], shares of the segment, to what the pixels show.
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
    bool m_plain = false; // every segment up to m_longest shows all its dashes as they are
    double m_longest = 0;
    double m_mostPeriods = 0; // on one segment
    double m_margin = 2;      // pixels, around what is seen of a segment
    bool m_certain = true;    // points are off by less than the margin
    double m_halfPixels = 0;
    double m_mostScale = 1; // pixels per user unit
};

} // namespace Graphics
