// SPDX-License-Identifier: MIT
#include "Shape.h"

#include <algorithm>

namespace Graphics {
namespace {

constinit std::atomic<uint64_t> g_lastIdentity{0};

} // namespace

uint64_t Shape::NewIdentity() const noexcept {
    const uint64_t fresh = g_lastIdentity.fetch_add(1, std::memory_order_relaxed) + 1;
    uint64_t known = 0;
    // Another thread that reads the same finished shape may have been first.
    return m_identity.compare_exchange_strong(known, fresh, std::memory_order_relaxed) ? fresh : known;
}

void Shape::MakeRoom(size_t figures) {
    const size_t size = m_figures.size();
    if (m_figures.capacity() - size < figures) {
        m_figures.reserve(std::max(size + figures, size * 2));
    }
}

void Shape::BeginFigure(const Point& start) {
    const Point p = start;
    if (m_open && m_current.Drawn()) {
        Figure next;
        next.Start(p);
        EndFigure();
        m_current = std::move(next);
    } else {
        m_current.Reset(); // a lone start point; its memory takes the new one
        m_current.Start(p);
    }
    m_open = true;
    m_bounds.BeginFigure(p);
    Changed();
}

void Shape::EndFigure() {
    if (!m_open || !m_current.Drawn()) {
        return;
    }
    MakeRoom(1);
    m_figures.push_back(std::move(m_current));
    Changed();
    m_current = Figure();
    m_open = false;
    m_bounds.EndFigure();
}

void Shape::EndFigureClose() {
    if (m_open) {
        MakeRoom(1);
        m_current.SetClosed();
        EndFigure();
    }
}

void Shape::Append(Figure&& closed) {
    MakeRoom(2);
    EndFigure();
    m_current.Reset();
    m_open = false;
    for (const Point& p : closed.Points()) {
        m_bounds.LineTo(p);
    }
    m_figures.push_back(std::move(closed));
    Changed();
}

void Shape::Clear() noexcept {
    if (!m_figures.empty() && m_current.Points().empty()) {
        m_current = std::move(m_figures.front());
    }
    m_current.Reset();
    m_figures.clear();
    Changed();
    m_open = false;
    m_fillRule = GXFillRuleNonZero;
    m_bounds.Reset();
}

bool Shape::CurrentPoint(Point& out) const noexcept {
    if (!m_open && m_figures.empty()) {
        return false;
    }
    const Figure& figure = m_open ? m_current : m_figures.back();
    out = figure.Closed() ? figure.Points().front() : figure.Points().back();
    return true;
}

bool Shape::Equals(const Shape& o) const noexcept {
    if (Empty() || m_figures.size() != o.m_figures.size() || m_fillRule != o.m_fillRule) {
        return false;
    }
    for (size_t i = 0; i < m_figures.size(); ++i) {
        if (!m_figures[i].Equals(o.m_figures[i])) {
            return false;
        }
    }
    return true;
}

} // namespace Graphics
