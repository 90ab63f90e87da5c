// SPDX-License-Identifier: MIT
// Looks at all calls of a recording before it is drawn in bands: which rows and columns each call can change, which rows
// of the page's own surfaces a band of the page shows, and about what each row of the page costs.
//
// Rows and boxes are in the pixels of the surface that is drawn on. What a call can change is never too small a guess:
// calls outside of a band are left out there. Costs are in nanoseconds of one core, as good as a guess by kind and area
// can be; they decide where bands end and no pixel.
#pragma once

#include "Band.h"
#include "SeenCall.h"

namespace Gxr {

class Interpreter;

class PageSurvey final : private CommandWatcher {
public:
    // Of a page on a target of this size, whose matrix is `matrix`, at `scale` (Player::Play). The objects are live.
    PageSurvey(Interpreter& interpreter, const Objects& objects, GXSize target, const GXMatrix& matrix, float scale);

    // The band that shows these rows of the page. It lives as long as this object.
    Band BandOf(Rows page) const;
    // For every row of the page.
    const std::vector<double>& Costs() const noexcept { return m_costs; }

private:
    struct Box {
        double left = 0, top = 0, right = 0, bottom = 0;
    };
    struct State {
        GXMatrix ctm{1, 0, 0, 1, 0, 0};
        Box clip;
        bool blended = false;
        bool opacityMask = false, shapeMask = false;
        int layers = 0;
    };
    struct Surface {
        GXMatrix base{1, 0, 0, 1, 0, 0};
        int32_t width = 0, height = 0;
        State state;
        std::vector<std::pair<Op, State>> open; // states and layers, outermost first
        double cost = 0;                        // of what was drawn since it was last used, for all but the page
    };
    struct SurfaceBrush {
        uint32_t surface = 0;
        GXMatrix matrix{1, 0, 0, 1, 0, 0}; // from the surface's pixels to user units
        bool rowsInPlace = false;          // a row of pixels shows one of the surface, or two that touch
    };
    // A surface shown on another one: row y of it at row `step * y + start`, or, with a step of 0, anywhere.
    struct Use {
        uint32_t source = 0, on = 0;
        double step = 0, start = 0;
    };

    void OnCall(const SeenCall& call) override;
    void OnSurface(uint32_t width, uint32_t height) override;
    void OnSurfaceBrush(uint32_t surface, const GXBitmapBrushOptions* options, const GXMatrix* matrix) override;

    void AddSurface(const GXMatrix& base, double width, double height);
    // Calls that change the state, but for clips.
    void Follow(const SeenCall& call, Surface& surface);
    void NoteUse(uint32_t source, uint32_t on, const GXMatrix* matrix);
    // What the call can change, or leave for others to change, without its clip. False when that is not known.
    bool Reach(const SeenCall& call, const Surface& surface, Box* box) const;
    bool OwnBox(const SeenCall& call, GXRect* box) const;
    double PixelCost(const SeenCall& call, const State& state) const;
    void AddCost(uint32_t surface, const Box& box, double perPixel, double perCall);
    static Box Whole(const Surface& surface);
    static Box Common(const Box& a, const Box& b);
    static bool Map(const GXRect& rect, const GXMatrix& matrix, double margin, Box* box);
    static Rows RowsOf(const Box& box, const Surface& surface);
    static Touched TouchedBy(const Box& box, const Surface& surface);

    const Objects& m_objects;
    const float m_scale;
    std::vector<Surface> m_surfaces;
    std::vector<SurfaceBrush> m_brushes;
    std::vector<Use> m_uses;
    std::vector<Touched> m_calls;
    std::vector<double> m_costs; // while calls come: differences from row to row
};

} // namespace Gxr
