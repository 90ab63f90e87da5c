// SPDX-License-Identifier: MIT
// A set of whole pixels: its bounding rectangle, and a shared run structure unless it is that rectangle.
#pragma once

#include "Bands.h"

namespace Graphics {

class Region {
public:
    Region() noexcept = default;
    /// The region is empty if the rectangle has no area.
    explicit Region(const IntRect& rect) noexcept : m_bound(IsEmpty(rect) ? IntRect{} : rect) {}

    [[nodiscard]] bool IsAreaEmpty() const noexcept { return IsEmpty(m_bound); }
    /// The smallest rectangle around the region; (0, 0, 0, 0) for an empty region.
    [[nodiscard]] const IntRect& Bound() const noexcept { return m_bound; }
    /// Tests only the bound, including all four sides.
    [[nodiscard]] bool Contains(const IntPoint& p) const noexcept {
        return p.x >= m_bound.left && p.x <= m_bound.right && p.y >= m_bound.top && p.y <= m_bound.bottom;
    }
    /// Whether all of `o` is in this region.
    [[nodiscard]] bool Contains(const Region& o) const;
    [[nodiscard]] bool HasIntersection(const Region& o) const;

    /// Moves the region. Coordinates are limited to their range: parts moved beyond it are cut off.
    void Offset(int32_t dx, int32_t dy);

    [[nodiscard]] static Region Combine(const Region& a, const Region& b, RegionOp op);

    /// Calls `proc(IntRect)` for every rectangle, band by band from the top and from left to right inside a band.
    template <class Proc> void EnumRects(const Proc& proc) const {
        if (IsAreaEmpty()) {
            return;
        }
        if (m_bands.Empty()) {
            proc(m_bound);
            return;
        }
        for (Bands::Cursor band(m_bands, 0); band; band.Next()) {
            const int32_t top = static_cast<int32_t>(band->top + m_shift.y);
            const int32_t bottom = static_cast<int32_t>(band->bottom + m_shift.y);
            for (Intervals::Cursor i(band->intervals, 0); i; i.Next()) {
                proc(IntRect{static_cast<int32_t>(i->x0 + m_shift.x), top, static_cast<int32_t>(i->x1 + m_shift.x),
                             bottom});
            }
        }
    }

private:
    /// The offset to add to the bands' coordinates. Sums need 64 bits.
    struct Shift {
        int64_t x = 0, y = 0;
        friend bool operator==(const Shift&, const Shift&) = default;
    };

    Region(const Bands& bands, const Shift& shift);
    [[nodiscard]] bool IsRect() const noexcept { return m_bands.Empty(); }
    /// The shift under which both can be stored: that of the region with more bands, which then need not be rewritten.
    [[nodiscard]] static Shift CommonShift(const Region& a, const Region& b) noexcept;
    [[nodiscard]] Bands BandsUnder(const Shift& shift) const;

    Bands m_bands; // empty for a plain rectangle and for the empty region
    Shift m_shift;
    IntRect m_bound{};
};

} // namespace Graphics
