// SPDX-License-Identifier: MIT
#include "CrossPoint.h"

namespace Graphics {
namespace {

__extension__ using Wide = __int128;
__extension__ using WideCount = unsigned __int128;

[[nodiscard]] int Sign(int64_t v) noexcept { return v < 0 ? -1 : v > 0 ? 1 : 0; }

} // namespace

CrossPoint::CrossPoint(const GridEdge& e, const GridEdge& f) noexcept
    : m_from(e.lo), m_dx(e.hi.x - e.lo.x), m_dy(e.hi.y - e.lo.y) {
    const int64_t fx = f.hi.x - f.lo.x, fy = f.hi.y - f.lo.y;
    m_whole = m_dx * fy - m_dy * fx;
    m_part = (f.lo.x - e.lo.x) * fy - (f.lo.y - e.lo.y) * fx;
    if (m_whole < 0) {
        m_whole = -m_whole;
        m_part = -m_part;
    }
    const double share = static_cast<double>(m_part) / static_cast<double>(m_whole);
    m_x = m_from.x + m_dx * share;
    m_y = m_from.y + m_dy * share;
}

CrossPoint::Fraction CrossPoint::Exact(int32_t from, int32_t along) const noexcept {
    const Wide way = static_cast<Wide>(along) * m_part;
    auto floor = static_cast<int64_t>(way / m_whole);
    auto rest = static_cast<int64_t>(way - static_cast<Wide>(floor) * m_whole);
    if (rest < 0) {
        rest += m_whole;
        floor -= 1;
    }
    return {from + floor, static_cast<uint64_t>(rest)};
}

int CrossPoint::CompareExactly(const CrossPoint& other) const noexcept {
    const auto compare = [&](const Fraction& a, const Fraction& b) {
        const WideCount l = static_cast<WideCount>(a.rest) * static_cast<uint64_t>(other.m_whole);
        const WideCount r = static_cast<WideCount>(b.rest) * static_cast<uint64_t>(m_whole);
        return a.floor != b.floor ? Sign(a.floor - b.floor) : l < r ? -1 : l > r ? 1 : 0;
    };
    const int order = compare(ExactY(), other.ExactY());
    return order != 0 ? order : compare(ExactX(), other.ExactX());
}

int CrossPoint::CompareExactly(const GridPoint& p) const noexcept {
    const auto compare = [](const Fraction& a, int64_t b) {
        return a.floor != b ? Sign(a.floor - b) : a.rest != 0 ? 1 : 0;
    };
    const int order = compare(ExactY(), p.y);
    return order != 0 ? order : compare(ExactX(), p.x);
}

bool CrossPoint::LiesExactlyOn(const GridEdge& e) const noexcept {
    const Fraction x = ExactX(), y = ExactY();
    const Wide acrossX = static_cast<Wide>(x.floor - e.lo.x) * m_whole + static_cast<Wide>(x.rest);
    const Wide acrossY = static_cast<Wide>(y.floor - e.lo.y) * m_whole + static_cast<Wide>(y.rest);
    return acrossX * (e.hi.y - e.lo.y) == acrossY * (e.hi.x - e.lo.x);
}

GridPoint CrossPoint::Nearest() const noexcept {
    return LineCrossing::Along(m_from, {m_from.x + m_dx, m_from.y + m_dy}, m_part, m_whole).Nearest();
}

} // namespace Graphics
