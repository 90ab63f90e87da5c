// SPDX-License-Identifier: MIT
#include "Geometry.h"

#include <optional>

#include "Dasher.h"
#include "Pen.h"
#include "Transformer.h"

namespace Graphics {

void Geometry::BeginFigure(const Point& start) {
    const Point p = start;
    if (m_open && m_current.Drawn()) {
        Figure next;
        next.Start(p);
        EndFigure();
        m_current = std::move(next);
    } else {
        m_current.Reset(); // a lone start point; its memory is reused
        m_current.Start(p);
    }
    m_open = true;
    m_bounds.Add(p);
    Changed();
}

void Geometry::EndFigure() {
    if (!m_open || !m_current.Drawn()) {
        return;
    }
    m_figures.MakeRoom();
    m_figures.Add(std::move(m_current));
    Changed();
    m_current = Figure();
    m_open = false;
}

void Geometry::EndFigureClose() {
    if (m_open) {
        m_figures.MakeRoom();
        m_current.SetClosed();
        EndFigure();
    }
}

void Geometry::ConicTo(const Point& c2, const Point& end) {
    Point c1 = c2;
    static_cast<void>(CurrentPoint(c1));
    CubicTo(c1, c2, end);
}

void Geometry::Append(Figure&& closed) {
    m_figures.MakeRoom();
    EndFigure();
    m_current.Reset();
    m_open = false;
    for (const Point& p : closed.Points()) {
        m_bounds.Add(p);
    }
    m_figures.Add(std::move(closed));
    Changed();
}

void Geometry::Clear() noexcept {
    Figure first = m_figures.Clear();
    if (m_current.Points().empty()) {
        m_current = std::move(first);
    }
    m_current.Reset();
    m_open = false;
    m_fillRule = GXFillRuleNonZero;
    m_bounds = BoundCalculator();
    Changed();
}

bool Geometry::CurrentPoint(Point& out) const noexcept {
    if (!m_open && Empty()) {
        return false;
    }
    const Figure& figure = m_open ? m_current : m_figures.back();
    out = figure.Closed() ? figure.Points().front() : figure.Points().back();
    return true;
}

std::shared_ptr<Geometry> Geometry::Transform(const Matrix& m) const {
    auto result = std::make_shared<Geometry>();
    if (IsIdentity(m)) {
        Replay(*result);
    } else {
        Transformer<Geometry> transformer(*result, m);
        result->SetFillRule(m_fillRule);
        ReplayFigures(transformer);
    }
    return result;
}

std::shared_ptr<Geometry> Geometry::Widen(float width, const StrokeStyle& style) const {
    constexpr float kTolerance = 0.25F;
    std::optional<DashSequence> dashes;
    if (style.dashCount != 0) {
        dashes.emplace(style);
    }
    auto result = std::make_shared<Geometry>();
    if (!std::isfinite(width)) {
        return result;
    }
    PenStorage storage;
    Pen<Geometry> pen(*result, storage, style, width * 0.5F, kTolerance);
    const auto finite = [](const Figure& figure) { return Graphics::AllFinite(figure, kIdentity); };
    if (dashes) {
        Dasher<Pen<Geometry>> dasher(pen, *dashes, kTolerance);
        ReplayFigures(dasher, finite);
    } else {
        ReplayFigures(pen, finite);
    }
    return result;
}

} // namespace Graphics
