// SPDX-License-Identifier: MIT
// Sends the stroke outline of every figure it receives, as closed figures for the non-zero rule.
#pragma once

#include "GeometrySink.h"
#include "PenOutline.h"

namespace Graphics {

template <FigureSink Sink> class Pen {
public:
    /// `half` is half the line's width. A storage serves one pen at a time.
    Pen(Sink& sink, PenStorage& storage, const StrokeStyle& style, float half, float tolerance) noexcept
        : m_outline(storage, style, half, tolerance), m_sink(sink) {}

    [[nodiscard]] PenOutline& Outline() noexcept { return m_outline; }

    void BeginFigure(const Point& start) { m_outline.Begin(start); }
    void LineTo(const Point& p) { m_outline.LineTo(p); }
    void CubicTo(const Point& c1, const Point& c2, const Point& end) { m_outline.CubicTo(c1, c2, end); }
    void EndFigure() {
        m_outline.EndOpen();
        SendFirst();
    }
    /// Ends the current dash here; the next one starts at `p`, at most half the pen's width away. The two outlines are
    /// joined where that is simple.
    void Gap(const Point& p) {
        if (!m_outline.Gap(p)) {
            const Point end = m_outline.Current();
            EndFigure();
            m_outline.Begin(end);
            static_cast<void>(m_outline.Gap(p));
        }
    }
    void EndFigureClose() {
        m_outline.EndClosed();
        SendFirst();
        const std::span<const Point> points = m_outline.Second();
        if (!points.empty()) {
            m_sink.BeginFigure(points.back());
            for (size_t i = points.size() - 1; i-- > 0;) {
                m_sink.LineTo(points[i]);
            }
            m_sink.EndFigureClose();
        }
    }

private:
    void SendFirst() {
        const std::span<const Point> points = m_outline.First();
        if (points.empty()) {
            return;
        }
        m_sink.BeginFigure(points[0]);
        for (size_t i = 1; i < points.size(); ++i) {
            m_sink.LineTo(points[i]);
        }
        m_sink.EndFigureClose();
    }

    PenOutline m_outline;
    Sink& m_sink;
};

} // namespace Graphics
