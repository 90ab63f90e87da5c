// SPDX-License-Identifier: MIT
#include "Region.h"

namespace Graphics {
namespace {

[[nodiscard]] bool Covers(const IntRect& a, const IntRect& b) noexcept {
    return a.left <= b.left && a.top <= b.top && a.right >= b.right && a.bottom >= b.bottom;
}

[[nodiscard]] bool Fits(int64_t v) noexcept { return v >= INT32_MIN && v <= INT32_MAX; }

} // namespace

Region::Region(const Bands& bands, const Shift& shift) : m_bands(bands), m_shift(shift) {
    if (m_bands.Empty()) {
        return;
    }
    const Bands::Cursor first(m_bands, 0), last(m_bands, m_bands.Size() - 1);
    m_bound = {static_cast<int32_t>(m_bands.Left() + shift.x), static_cast<int32_t>(first->top + shift.y),
               static_cast<int32_t>(m_bands.Right() + shift.x), static_cast<int32_t>(last->bottom + shift.y)};
    if (m_bands.Size() == 1 && first->intervals.Size() == 1) {
        m_bands = Bands();
        m_shift = {};
    }
}

Region::Shift Region::CommonShift(const Region& a, const Region& b) noexcept {
    const Shift shift = a.m_bands.Size() >= b.m_bands.Size() ? a.m_shift : b.m_shift;
    const IntRect &r = a.m_bound, &s = b.m_bound;
    const bool fits = Fits(std::min(r.left, s.left) - shift.x) && Fits(std::max(r.right, s.right) - shift.x) &&
                      Fits(std::min(r.top, s.top) - shift.y) && Fits(std::max(r.bottom, s.bottom) - shift.y);
    return fits ? shift : Shift{};
}

Bands Region::BandsUnder(const Shift& shift) const {
    if (IsRect()) {
        const auto x = [&](int32_t v) { return static_cast<int32_t>(v - shift.x); };
        const auto y = [&](int32_t v) { return static_cast<int32_t>(v - shift.y); };
        return MakeBands({x(m_bound.left), y(m_bound.top), x(m_bound.right), y(m_bound.bottom)});
    }
    return shift == m_shift ? m_bands : MoveBands(m_bands, m_shift.x - shift.x, m_shift.y - shift.y);
}

bool Region::Contains(const Region& o) const {
    if (o.IsAreaEmpty()) {
        return true;
    }
    if (IsAreaEmpty() || !Covers(m_bound, o.m_bound)) {
        return false;
    }
    if (IsRect()) {
        return true;
    }
    const Shift shift = CommonShift(*this, o);
    return BandsContain(BandsUnder(shift), o.BandsUnder(shift));
}

bool Region::HasIntersection(const Region& o) const {
    if (IsEmpty(Graphics::Intersect(m_bound, o.m_bound))) {
        return false;
    }
    if (IsRect() && o.IsRect()) {
        return true;
    }
    const Shift shift = CommonShift(*this, o);
    return BandsIntersect(BandsUnder(shift), o.BandsUnder(shift));
}

void Region::Offset(int32_t dx, int32_t dy) {
    const auto clamp = [](int64_t v) { return static_cast<int32_t>(std::clamp<int64_t>(v, INT32_MIN, INT32_MAX)); };
    const auto back = [&](int32_t end, int32_t by) { return clamp(static_cast<int64_t>(end) - by); };
    // The part that stays in range, at its present place.
    const IntRect window{back(INT32_MIN, dx), back(INT32_MIN, dy), back(INT32_MAX, dx), back(INT32_MAX, dy)};
    Region kept = Covers(window, m_bound) ? *this : Combine(*this, Region(window), RegionOp::Intersection);
    if (!kept.IsAreaEmpty()) {
        IntRect& r = kept.m_bound;
        const auto move = [](int32_t v, int32_t by) { return static_cast<int32_t>(static_cast<int64_t>(v) + by); };
        r = {move(r.left, dx), move(r.top, dy), move(r.right, dx), move(r.bottom, dy)};
        if (!kept.IsRect()) {
            kept.m_shift = {kept.m_shift.x + dx, kept.m_shift.y + dy};
        }
    }
    *this = std::move(kept);
}

Region Region::Combine(const Region& a, const Region& b, RegionOp op) {
    const bool apart = IsEmpty(Graphics::Intersect(a.m_bound, b.m_bound)); // also if one is empty
    if (op == RegionOp::Intersection) {
        if (apart) {
            return {};
        }
        if (a.IsRect() && Covers(a.m_bound, b.m_bound)) {
            return b;
        }
        if (b.IsRect() && Covers(b.m_bound, a.m_bound)) {
            return a;
        }
        if (a.IsRect() && b.IsRect()) {
            return Region(Graphics::Intersect(a.m_bound, b.m_bound));
        }
    } else if (op == RegionOp::Difference) {
        if (apart) {
            return a;
        }
        if (b.IsRect() && Covers(b.m_bound, a.m_bound)) {
            return {};
        }
    } else {
        if (a.IsAreaEmpty() || b.IsAreaEmpty()) {
            return a.IsAreaEmpty() ? b : a;
        }
        if (op == RegionOp::Union && a.IsRect() && Covers(a.m_bound, b.m_bound)) {
            return a;
        }
        if (op == RegionOp::Union && b.IsRect() && Covers(b.m_bound, a.m_bound)) {
            return b;
        }
    }
    const Shift shift = CommonShift(a, b);
    return {CombineBands(a.BandsUnder(shift), b.BandsUnder(shift), op), shift};
}

} // namespace Graphics
