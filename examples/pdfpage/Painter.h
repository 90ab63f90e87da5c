// SPDX-License-Identifier: MIT
// Draws the calls of a MuPDF device with the library. Matrices map to page pixels.
//
// Surfaces form a stack: a soft mask is drawn on a bitmap of its own between BeginMask and EndMask, and so is a group
// where GroupRoads says so, which is painted on the surface below at its end. Each other clip, mask and group is one
// entry of the current surface's stack. The content of a tiling pattern is recorded (Recorder) and replayed for each
// cell.
#pragma once

#include "Glyphs.h"
#include "GroupRoads.h"
#include "Images.h"
#include "Paths.h"
#include "Reduction.h"
#include "Shadings.h"
#include "Surface.h"

#include <memory>
#include <optional>
#include <vector>

namespace PdfPage {

// What outlives a page: everything made from the document's own objects.
struct Caches {
    Caches(fz_context* ctx, const Gxr::Calls& calls) : glyphs(ctx), images(ctx), shadings(ctx, calls) {}
    Glyphs glyphs;
    Images images;
    Shadings shadings;
};

struct Paint {
    fz_colorspace* space;
    const float* color;
    float alpha;
    fz_color_params params;
};

class Painter {
public:
    // `roads` are those of the list that will be drawn.
    Painter(fz_context* ctx, const Gxr::Calls& calls, Report& report, Caches& caches, Surface& page, float dpi,
            bool adjust, GroupRoads roads);
    ~Painter();
    Painter(const Painter&) = delete;
    Painter& operator=(const Painter&) = delete;

    // The device that calls this object; needed to replay tiles and type 3 glyphs.
    void SetDevice(fz_device* device) noexcept { m_device = device; }
    // Not null while a tile is recorded: all calls go there then.
    fz_device* Recorder() const noexcept { return m_tile ? m_tile->device : nullptr; }
    // True inside a soft mask that is not drawn.
    bool Skipping() const noexcept { return m_skippedMasks > 0; }
    void OutOfMemory() noexcept { m_report.Notice("out of memory, a part of the page is missing"); }

    void FillPath(const fz_path* path, bool evenOdd, const fz_matrix& ctm, const Paint& paint);
    void StrokePath(const fz_path* path, const fz_stroke_state& stroke, const fz_matrix& ctm, const Paint& paint);
    void ClipPath(const fz_path* path, bool evenOdd, const fz_matrix& ctm);
    void ClipStrokePath(const fz_path* path, const fz_stroke_state& stroke, const fz_matrix& ctm);

    void FillText(const fz_text& text, const fz_matrix& ctm, const Paint& paint);
    void StrokeText(const fz_text& text, const fz_stroke_state& stroke, const fz_matrix& ctm, const Paint& paint);
    void ClipText(const fz_text& text, const fz_matrix& ctm);
    void ClipStrokeText(const fz_text& text, const fz_stroke_state& stroke, const fz_matrix& ctm);

    void FillShade(fz_shade* shade, const fz_matrix& ctm, float alpha, fz_color_params params);
    void FillImage(fz_image* image, const fz_matrix& ctm, float alpha, fz_color_params params);
    void FillImageMask(fz_image* image, const fz_matrix& ctm, const Paint& paint);
    void ClipImageMask(fz_image* image, const fz_matrix& ctm);

    void PopClip();
    void BeginMask(const fz_rect& area, bool luminosity, const Paint& backdrop);
    void EndMask();
    void BeginGroup(const fz_rect& area, bool isolated, bool knockout, int blendMode, float alpha);
    void EndGroup();

    void BeginTile(const fz_rect& area, const fz_rect& view, float xStep, float yStep, const fz_matrix& ctm, int id);
    void EndTile();

    void SetDefaultColorspaces(fz_default_colorspaces* defaults);

    // Paints the groups that a list which ended early left open.
    void Finish();

private:
    // A surface above the page's.
    struct Sheet {
        enum class Kind { Mask, Group, Covered };
        Kind kind = Kind::Group;
        std::unique_ptr<Surface> surface;
        float opacity = 1.0f;
        GXBlendMode blendMode = GXBlendModeNormal;
        bool luminosity = false;       // of a mask
        Span span;                     // of a mask: what it will cover
        std::unique_ptr<Surface> mask; // of what a mask covers
    };
    struct Tile {
        fz_display_list* list = nullptr;
        fz_device* device = nullptr;
        fz_rect area, view;
        float xStep, yStep;
        fz_matrix ctm;
        int nested = 0; // tiles begun inside the recording
    };

    Surface& Current() const { return m_sheets.empty() ? m_page : *m_sheets.back().surface; }
    GXRenderTarget Target() const { return Current().Target(); }
    fz_rect Visible() const; // the device's scissor inside the surface

    GXColor Color(const Paint& paint) const;
    GXBrush Brush(const Paint& paint);

    // Strokes under `ctm`. `path` gives the dashes where the library doesn't take them.
    void Stroke(const fz_path* path, GXGeometry geometry, const fz_stroke_state& stroke, const fz_matrix& ctm,
                GXBrush brush);
    void ClipStroke(const fz_path* path, GXGeometry geometry, const fz_stroke_state& stroke, const fz_matrix& ctm);
    // In user space.
    float PenWidth(const fz_stroke_state& stroke, const fz_matrix& ctm) const;
    Handle<GXGeometry> Dashes(const fz_path* path, const fz_stroke_state& stroke, const fz_matrix& ctm);
    void FillType3(const fz_text_span& span, const fz_matrix& ctm, const Paint& paint);
    fz_matrix ImageMatrix(const fz_matrix& ctm) const;
    // Without adjustment, of an image that is drawn smaller and upright.
    std::optional<Reduced> TrueReduction(GXBitmap image, const fz_matrix& matrix);
    void ReplayTile(Tile& tile);
    Span NextSpan();
    // Takes `sheet` unless it has to be a layer: it can't be seen, or too many are open.
    bool OpenSheet(Sheet& sheet, const fz_rect& area, const fz_rect& content);
    void PaintSheet();
    // The end of a group or of what a mask covers.
    void EndSpan(Sheet::Kind kind);

    fz_context* m_ctx;
    const Gxr::Calls& m_calls;
    Report& m_report;
    Caches& m_caches;
    Surface& m_page;
    float m_dpi;
    bool m_adjust;
    fz_device* m_device = nullptr;
    std::vector<Sheet> m_sheets;
    double m_sheetPixels = 0.0;   // of open groups
    double m_reducedPixels = 0.0; // read by TrueReduction
    GroupRoads m_roads;
    std::unique_ptr<Tile> m_tile;
    fz_default_colorspaces* m_defaults = nullptr;
    int m_skippedMasks = 0;       // depth of begin_mask calls passed over
    int m_skippedTiles = 0;       // depth of tiles in there
    bool m_hideAfterSkip = false; // the passed-over mask covers nothing: what it masks is hidden
    bool m_dashesSupported = true;
    int m_type3Depth = 0;
    const GXColor* m_stencilColor = nullptr; // the text's colour while a colourless type 3 glyph runs
    GXColor m_brushColor{};
    Handle<GXBrush> m_brush;
    Handle<GXGeometry> m_unitSquare;
};

} // namespace PdfPage
