// SPDX-License-Identifier: MIT
// A sink that forwards the calls to a host's function table. Each point is passed as a copy.
#pragma once

#include "../Types.h"

namespace Graphics {

class GeometrySinkAdapter {
public:
    /// Null entries are not called.
    explicit GeometrySinkAdapter(const GXGeometrySinkCallbacks& table) noexcept : m_table(table) {}

    void SetFillRule(uint32_t rule) {
        if (m_table.SetFillRule != nullptr) {
            m_table.SetFillRule(m_table.context, rule);
        }
    }
    void BeginFigure(const Point& start) {
        if (m_table.BeginFigure != nullptr) {
            const Point p = start;
            m_table.BeginFigure(m_table.context, &p);
        }
    }
    void EndFigure() {
        if (m_table.EndFigure != nullptr) {
            m_table.EndFigure(m_table.context);
        }
    }
    void EndFigureClose() {
        if (m_table.EndFigureClose != nullptr) {
            m_table.EndFigureClose(m_table.context);
        }
    }
    void LineTo(const Point& point) {
        if (m_table.LineTo != nullptr) {
            const Point p = point;
            m_table.LineTo(m_table.context, &p);
        }
    }
    void CubicTo(const Point& c1, const Point& c2, const Point& end) {
        if (m_table.CubicTo != nullptr) {
            const Point p[3] = {c1, c2, end};
            m_table.CubicTo(m_table.context, &p[0], &p[1], &p[2]);
        }
    }

private:
    const GXGeometrySinkCallbacks m_table;
};

} // namespace Graphics
