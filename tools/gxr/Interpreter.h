// SPDX-License-Identifier: MIT
// Walks the body of a recording: reads the page and the objects, then the commands. The same code checks a file (no
// call of the library is made, every number and every order of calls is looked at) and plays it, so that nothing is
// played that was not checked.
#pragma once

#include "Band.h"
#include "SeenCall.h"

#include <memory>

namespace Gxr {

// What a page is drawn on: an area of the target, in its pixels, in one colour, which nothing is drawn beside, and the
// colour of all the rest. Colours as GXRenderTargetClear takes them.
struct Paper {
    uint32_t color = 0, around = 0;
    GXRect area{};
};

class Interpreter {
public:
    // Reads page and objects; with `live` the objects are made. The body outlives this object. Throws Error.
    Interpreter(const Bytes& body, bool live) : Interpreter(std::make_shared<const Objects>(body, live)) {}
    // Shares the objects with others.
    explicit Interpreter(std::shared_ptr<const Objects> objects) : m_objects(std::move(objects)) {}

    const PageInfo& Page() const noexcept { return m_objects->Page(); }
    // Plays all commands: `page` is not being painted on, and is not afterwards. Checks them when the objects are not
    // live. With `paper` the target is filled when painting on the page begins for the first time; with `band` nothing
    // else is drawn than what it has of each surface.
    void Run(GXRenderTarget page, float scale, const Paper* paper = nullptr, const Band* band = nullptr);
    // Tells the watcher of all commands and plays none.
    void Watch(CommandWatcher& watcher);

    // For the arguments of commands.
    GXGeometry Find(uint64_t number, GXGeometry) const { return m_objects->Geometry(number); }
    GXGradient Find(uint64_t number, GXGradient) const { return m_objects->Gradient(number); }
    GXFontFace Find(uint64_t number, GXFontFace) const { return m_objects->FontFace(number); }
    GXBitmap Find(uint64_t reference, GXBitmap) const;
    GXBrush Find(uint64_t reference, GXBrush) const;

private:
    struct Surface {
        Handle<GXBitmap> bitmap;
        Handle<GXRenderTarget> owned;
        GXRenderTarget target = nullptr;
        uint32_t width = 0, height = 0;
        bool alive = false, painting = false;
        bool placed = false;  // the matrix of the whole surface has been set
        std::vector<Op> open; // states and layers, outermost first
        GXMatrix base{1, 0, 0, 1, 0, 0};
    };
    struct SurfaceBrush {
        Handle<GXBrush> brush;
        uint32_t surface = 0;
    };

    void Start(float scale);
    void Commands(ByteReader in);
    Surface& SurfaceAt(uint64_t number);
    void NewSurface(ByteReader& in);
    void DropSurface(ByteReader& in);
    void NewSurfaceBrush(ByteReader& in);
    void SetSurfacePixels(ByteReader& in);
    void StopPainting() noexcept;

    template <class... P> void TargetCall(Op op, ByteReader& in, GXResult (*call)(GXRenderTarget, P...) noexcept);
    void Place(Surface& surface);
    void Follow(Op op, Surface& surface);
    void LayPaper(const Surface& surface);
    void ClipToBand(const Surface& surface);
    Rows RowsOf(const Surface& surface) const;
    bool IsHidden(Op op, const Surface& surface) const;
    GXResult SetMatrix(const Surface& surface, const GXMatrix* matrix) const;

    std::shared_ptr<const Objects> m_objects;

    // While commands run.
    float m_scale = 1.0f;
    bool m_playing = false;
    CommandWatcher* m_watcher = nullptr;
    const Paper* m_paper = nullptr;
    const Band* m_band = nullptr;
    size_t m_calls = 0;    // on targets, made or left out so far
    bool m_filled = false; // with the paper
    std::vector<Surface> m_surfaces;
    std::vector<SurfaceBrush> m_surfaceBrushes;
    uint32_t m_selected = 0;
    uint64_t m_livePixels = 0;
    size_t m_layers = 0, m_states = 0;
};

} // namespace Gxr
