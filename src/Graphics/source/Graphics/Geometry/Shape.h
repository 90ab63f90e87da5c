// SPDX-License-Identifier: MIT
// A stored path: finished figures, the figure under construction, the fill rule and the box of all points.
#pragma once

#include <atomic>
#include <vector>

#include "BoundCalculator.h"
#include "Figure.h"

namespace Graphics {

class Shape final : public GeometrySink {
public:
    Shape() noexcept = default;
    Shape(const Shape&) = delete;
    Shape& operator=(const Shape&) = delete;

    /// Kept as it is; every value but 0 acts as even-odd.
    void SetFillRule(uint32_t rule) override {
        m_fillRule = rule;
        Changed();
    }
    /// Ends a figure that is still open. A refused allocation changes nothing, here as in every other operation.
    void BeginFigure(const Point& start) override;
    /// Stores the figure unless it is a lone start point, which stays open.
    void EndFigure() override;
    void EndFigureClose() override;
    /// Ignored while no figure is open; so is CubicTo.
    void LineTo(const Point& p) override {
        if (m_open) {
            m_current.AddLine(p);
            m_bounds.LineTo(p);
            Changed();
        }
    }
    void CubicTo(const Point& c1, const Point& c2, const Point& end) override {
        if (m_open) {
            m_current.AddCubic(c1, c2, end);
            m_bounds.CubicTo(c1, c2, end);
            Changed();
        }
    }

    /// Adds the closed figure that `add` sends to a sink, if any: as if it were sent here, but all of it or nothing.
    template <class Add> void AddClosed(const Add& add) {
        ClosedFigure sink;
        add(sink);
        if (sink.figure.Drawn()) {
            Append(std::move(sink.figure));
        }
    }

    /// Back to a new shape, keeping one figure's memory: for shapes that live for one draw call.
    void Clear() noexcept;

    [[nodiscard]] uint32_t FillRule() const noexcept { return m_fillRule; }
    /// No finished figure.
    [[nodiscard]] bool Empty() const noexcept { return m_figures.empty(); }
    [[nodiscard]] std::span<const Figure> Figures() const noexcept { return m_figures; }
    [[nodiscard]] const BoundCalculator& Bounds() const noexcept { return m_bounds; }
    [[nodiscard]] Rect ControlBox() const noexcept { return m_bounds.Box(); }
    [[nodiscard]] bool AllFinite() const noexcept { return m_bounds.AllFinite(); }
    /// The last point, or a closed figure's first one. False where there is no figure.
    [[nodiscard]] bool CurrentPoint(Point& out) const noexcept;
    /// Both have finished figures, and these and the rules are the same. An open figure does not count.
    [[nodiscard]] bool Equals(const Shape& o) const noexcept;

    /// A number for the shape as it is now: no other one has it or ever had it, and this one loses it with any change.
    /// So what was derived under the number is never mistaken, whatever became of the shape. Readers on several threads
    /// may ask at once.
    [[nodiscard]] uint64_t Identity() const noexcept {
        const uint64_t known = m_identity.load(std::memory_order_relaxed);
        return known != 0 ? known : NewIdentity();
    }

    /// Sends the rule and every finished figure. Direct calls where Sink is final.
    template <class Sink> void Replay(Sink& sink) const {
        sink.SetFillRule(m_fillRule);
        ReplayFigures(sink, [](const Figure&) { return true; });
    }
    /// Sends, without the rule, the figures that `accept` takes.
    template <class Sink, class Accept> void ReplayFigures(Sink& sink, const Accept& accept) const {
        const size_t count = m_figures.size(); // a sink may add figures
        for (size_t i = 0; i < count; ++i) {
            if (m_figures[i].Drawn() && accept(m_figures[i])) {
                m_figures[i].Replay(sink);
            }
        }
    }

private:
    /// Takes one closed figure aside.
    struct ClosedFigure {
        void BeginFigure(const Point& start) { figure.Start(start); }
        void LineTo(const Point& p) { figure.AddLine(p); }
        void CubicTo(const Point& c1, const Point& c2, const Point& end) { figure.AddCubic(c1, c2, end); }
        void EndFigureClose() noexcept { figure.SetClosed(); }
        Figure figure;
    };
    void Append(Figure&& closed);
    /// So that this many figures can be stored without an allocation.
    void MakeRoom(size_t figures);

    [[nodiscard]] uint64_t NewIdentity() const noexcept;
    void Changed() noexcept { m_identity.store(0, std::memory_order_relaxed); }

    mutable std::atomic<uint64_t> m_identity{0}; // 0: not asked for since the last change
    uint32_t m_fillRule = GXFillRuleNonZero;
    bool m_open = false;
    Figure m_current;
    std::vector<Figure> m_figures;
    BoundCalculator m_bounds;
};

} // namespace Graphics
