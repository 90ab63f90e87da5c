// SPDX-License-Identifier: MIT
#include "BorderPuzzle.h"

#include <algorithm>

#include "../Exception.h"
#include "Orientation.h"

namespace Graphics {
namespace {

[[nodiscard]] bool Less(const Point& a, const Point& b) noexcept { return a.y != b.y ? a.y < b.y : a.x < b.x; }
[[nodiscard]] bool Same(const Point& a, const Point& b) noexcept { return a.x == b.x && a.y == b.y; }

} // namespace

void BorderPuzzle::AddSeam(const Point& from, const Point& to) {
    const bool upright = from.x == to.x;
    const PlaneAxis axis = upright ? PlaneAxis::Y : PlaneAxis::X;
    HeapArray<SeamStep>& steps = upright ? m_upright : m_level;
    const float begin = Along(axis, from), end = Along(axis, to), across = Across(axis, from);
    steps.push_back({across, begin, 1});
    steps.push_back({across, end, -1});
}

/// Along a line the weight is the sum over all seams begun so far; where it is not 0 it is 1 or -1, a border. The
/// border is cut at every recorded place.
void BorderPuzzle::JoinSeams(PlaneAxis axis, HeapArray<SeamStep>& steps) {
    std::sort(steps.begin(), steps.end(), [](const SeamStep& a, const SeamStep& b) {
        return a.across != b.across ? a.across < b.across : a.along < b.along;
    });
    const auto pointOf = [&](const SeamStep& step) {
        return axis == PlaneAxis::X ? Point{step.along, step.across} : Point{step.across, step.along};
    };
    int32_t weight = 0;
    const SeamStep* from = nullptr;
    for (size_t i = 0; i < steps.size();) {
        const SeamStep& step = steps[i];
        const int32_t before = weight;
        for (; i < steps.size() && steps[i].across == step.across && steps[i].along == step.along; ++i) {
            weight += steps[i].change;
        }
        if (weight != 0 || before != 0) {
            if (before > 0) {
                AddEdge(pointOf(*from), pointOf(step));
            } else if (before < 0) {
                AddEdge(pointOf(step), pointOf(*from));
            }
            from = &step;
        }
    }
}

void BorderPuzzle::Write(Geometry& out) {
    JoinSeams(PlaneAxis::X, m_level);
    JoinSeams(PlaneAxis::Y, m_upright);
    Link();
    m_visited.resize(m_junctions);
    std::fill(m_visited.begin(), m_visited.end(), kNone);
    for (size_t i = 0; i < m_edges.size(); ++i) {
        if (!m_edges[i].written) {
            Follow(static_cast<uint32_t>(i), out);
        }
    }
}

void BorderPuzzle::Link() {
    const size_t count = m_edges.size();
    HeapArray<uint32_t> ins, outs;
    ins.resize(count);
    outs.resize(count);
    for (size_t i = 0; i < count; ++i) {
        ins[i] = outs[i] = static_cast<uint32_t>(i);
    }
    std::sort(ins.begin(), ins.end(), [&](uint32_t a, uint32_t b) { return Less(m_edges[a].to, m_edges[b].to); });
    std::sort(outs.begin(), outs.end(), [&](uint32_t a, uint32_t b) { return Less(m_edges[a].from, m_edges[b].from); });
    for (size_t i = 0, end = 0; i < count; i = end) {
        const Point at = m_edges[outs[i]].from;
        for (end = i; end < count && Same(m_edges[outs[end]].from, at); ++end) {
            if (!Same(m_edges[ins[end]].to, at)) {
                GX_RAISE("Graphics::BorderPuzzle::Link", "Borders of areas do not close");
            }
        }
        if (end - i == 1) {
            m_edges[ins[i]].next = outs[i];
        } else {
            LinkJunction(at, ins.data() + i, outs.data() + i, end - i);
        }
    }
}

/// Around the point, inside and outside alternate between the edges: after an edge that leaves comes the inside, up to
/// an edge that arrives.
void BorderPuzzle::LinkJunction(const Point& at, const uint32_t* ins, const uint32_t* outs, size_t count) {
    m_spokes.clear();
    for (size_t i = 0; i < count; ++i) {
        m_spokes.push_back({ins[i], false, m_edges[ins[i]].from});
        m_spokes.push_back({outs[i], true, m_edges[outs[i]].to});
        m_edges[outs[i]].junction = m_junctions;
    }
    ++m_junctions;
    const auto second = [&](const Point& p) { return p.y < at.y || (p.y == at.y && p.x < at.x); };
    std::sort(m_spokes.begin(), m_spokes.end(), [&](const Spoke& a, const Spoke& b) {
        const bool half = second(a.other), otherHalf = second(b.other);
        return half != otherHalf ? otherHalf : OrientationSign(a.other, b.other, at) > 0;
    });
    const size_t spokes = m_spokes.size();
    for (size_t i = 0; i < spokes; ++i) {
        const Spoke &leaving = m_spokes[i], &coming = m_spokes[i + 1 == spokes ? 0 : i + 1];
        if (leaving.leaves == coming.leaves) {
            GX_RAISE("Graphics::BorderPuzzle::LinkJunction", "Borders of areas cross");
        }
        if (leaving.leaves) {
            m_edges[coming.edge].next = leaving.edge;
        }
    }
}

/// Follows one closed border. When it returns to a junction, the part since then becomes a separate figure.
void BorderPuzzle::Follow(uint32_t first, Geometry& out) {
    m_path.clear();
    uint32_t edge = first;
    do {
        const uint32_t junction = m_edges[edge].junction;
        if (junction != kNone) {
            if (m_visited[junction] != kNone) {
                CloseLoop(m_visited[junction], out);
            }
            m_visited[junction] = static_cast<uint32_t>(m_path.size());
        }
        m_path.push_back(edge);
        edge = m_edges[edge].next;
    } while (edge != first);
    CloseLoop(0, out);
}

void BorderPuzzle::CloseLoop(size_t from, Geometry& out) {
    m_loop.clear();
    for (size_t i = from; i < m_path.size(); ++i) {
        Edge& edge = m_edges[m_path[i]];
        if (edge.junction != kNone) {
            m_visited[edge.junction] = kNone;
        }
        const size_t n = m_loop.size();
        if (n >= 2 && OrientationSign(m_loop[n - 2], m_loop[n - 1], edge.from) == 0) {
            m_loop.pop_back();
        }
        m_loop.push_back(edge.from);
        edge.written = true;
    }
    m_path.resize(from);
    size_t begin = 0, end = m_loop.size();
    while (end - begin > 3 && OrientationSign(m_loop[end - 2], m_loop[end - 1], m_loop[begin]) == 0) {
        --end;
    }
    while (end - begin > 3 && OrientationSign(m_loop[end - 1], m_loop[begin], m_loop[begin + 1]) == 0) {
        ++begin;
    }
    out.BeginFigure(m_loop[begin]);
    for (size_t i = begin + 1; i < end; ++i) {
        out.LineTo(m_loop[i]);
    }
    out.EndFigureClose();
}

} // namespace Graphics
