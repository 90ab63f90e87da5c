// SPDX-License-Identifier: MIT
// Walks the body of a recording: reads the page and the objects, then the commands. The same code checks a file (no
// call of the library is made, every number and every order of calls is looked at) and plays it, so that nothing is
// played that was not checked.
#pragma once

#include "Arguments.h"
#include "Handle.h"

namespace Gxr {

struct PageInfo {
    uint32_t width = 0, height = 0;
    GXPixelFormat format = 0;
    float dpiX = 96.0f, dpiY = 96.0f;
};

// What a page is drawn on: an area of the target, in its pixels, in one colour, which nothing is drawn beside, and the
// colour of all the rest. Colours as GXRenderTargetClear takes them.
struct Paper {
    uint32_t color = 0, around = 0;
    GXRect area{};
};

class Interpreter {
public:
    // Reads page and objects; with `live` the objects are made. The body outlives this object. Throws Error.
    Interpreter(const Bytes& body, bool live);

    const PageInfo& Page() const noexcept { return m_page; }
    // Checks all commands, or, when live, plays them: `page` is not being painted on, and is not afterwards.
    // With `paper` the target is filled when painting on the page begins for the first time.
    void Run(GXRenderTarget page, float scale, const Paper* paper = nullptr);

    // For the arguments of commands.
    GXGeometry Find(uint64_t number, GXGeometry) const { return At(m_geometries, number); }
    GXGradient Find(uint64_t number, GXGradient) const { return At(m_gradients, number); }
    GXFontFace Find(uint64_t number, GXFontFace) const { return At(m_faces, number); }
    GXBitmap Find(uint64_t reference, GXBitmap) const;
    GXBrush Find(uint64_t reference, GXBrush) const;

private:
    template <class H> using List = std::vector<Handle<H>>;
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

    // 0 is null; beyond the list throws.
    template <class H> static H At(const List<H>& list, uint64_t number) {
        if (number > list.size())
            throw Error("the recording uses an object that is not there");
        return number == 0 ? nullptr : list[static_cast<size_t>(number - 1)].Get();
    }
    static void Check(GXResult result, const char* what);

    PageInfo ReadSize(ByteReader& in) const;
    bool ReadObject(ByteReader& in);
    void ReadGeometry(ByteReader& in);
    void ReadPalette(ByteReader& in);
    void ReadBitmap(ByteReader& in);
    void ReadGradient(ByteReader& in, ObjectKind kind);
    void ReadBrush(ByteReader& in, ObjectKind kind);
    void ReadFontFace(ByteReader& in);

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
    GXResult SetMatrix(const Surface& surface, const GXMatrix* matrix) const;

    const bool m_live;
    PageInfo m_page;
    size_t m_commandsAt = 0;
    const Bytes& m_body;
    List<GXGeometry> m_geometries;
    List<GXPalette> m_palettes;
    List<GXBitmap> m_bitmaps;
    List<GXGradient> m_gradients;
    List<GXFontFace> m_faces;
    List<GXBrush> m_brushes;

    // While commands run.
    float m_scale = 1.0f;
    const Paper* m_paper = nullptr;
    bool m_filled = false; // with the paper
    std::vector<Surface> m_surfaces;
    std::vector<SurfaceBrush> m_surfaceBrushes;
    uint32_t m_selected = 0;
    uint64_t m_livePixels = 0;
    size_t m_layers = 0, m_states = 0;
};

} // namespace Gxr
