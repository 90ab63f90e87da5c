// SPDX-License-Identifier: MIT
// A path at one moment: finished figures, the fill rule and the box of all points. To keep a path beyond a call, copy
// it: that costs one count, and a copy never changes.
#pragma once

#include <atomic>

#include "BoundCalculator.h"
#include "FigureList.h"
#include "GeometrySink.h"

namespace Graphics {

class Shape {
public:
    Shape() noexcept = default;
    Shape(const Shape& o) noexcept
        : m_figures(o.m_figures), m_bounds(o.m_bounds), m_fillRule(o.m_fillRule), m_identity(o.Identity()) {}
    Shape& operator=(const Shape&) = delete;

    [[nodiscard]] uint32_t FillRule() const noexcept { return m_fillRule; }
    /// True if there is no finished figure.
    [[nodiscard]] bool Empty() const noexcept { return m_figures.empty(); }
    [[nodiscard]] const FigureList& Figures() const noexcept { return m_figures; }
    [[nodiscard]] const BoundCalculator& Bounds() const noexcept { return m_bounds; }
    [[nodiscard]] Rect ControlBox() const noexcept { return m_bounds.Box(); }
    [[nodiscard]] bool AllFinite() const noexcept { return m_bounds.AllFinite(); }
    /// True if both have finished figures and the same figures and fill rule.
    [[nodiscard]] bool Equals(const Shape& o) const noexcept;

    /// A number for the path's present content. (1) Copies share it; no other path has or ever had it; a path that
    /// changes gets a new one. (2) So data derived under the number is valid as long as the number matches. (3) Several
    /// threads may call this at once.
    [[nodiscard]] uint64_t Identity() const noexcept {
        const uint64_t known = m_identity.load(std::memory_order_relaxed);
        return known != 0 ? known : NewIdentity();
    }

    /// Sends the rule and every figure.
    template <GeometrySink Sink> void Replay(Sink& sink) const {
        sink.SetFillRule(m_fillRule);
        ReplayFigures(sink);
    }
    struct EveryFigure {
        bool operator()(const Figure&) const noexcept { return true; }
    };
    /// Sends the figures that `accept` selects, without the fill rule.
    template <FigureSink Sink, class Accept = EveryFigure>
    void ReplayFigures(Sink& sink, const Accept& accept = Accept()) const {
        for (const Figure& figure : m_figures) {
            if (accept(figure)) {
                figure.Replay(sink);
            }
        }
    }

protected:
    void Changed() noexcept { m_identity.store(0, std::memory_order_relaxed); }

    FigureList m_figures;
    BoundCalculator m_bounds; // includes a figure under construction
    uint32_t m_fillRule = GXFillRuleNonZero;

private:
    [[nodiscard]] uint64_t NewIdentity() const noexcept;

    mutable std::atomic<uint64_t> m_identity{0}; // 0: not requested since the last change
};

} // namespace Graphics
