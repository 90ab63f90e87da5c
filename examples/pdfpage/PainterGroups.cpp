// SPDX-License-Identifier: MIT
// Groups, soft masks and tiling patterns.
#include "Painter.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace PdfPage {
namespace {

GXBlendMode BlendMode(int mode) {
    switch (mode & FZ_BLEND_MODEMASK) {
    case FZ_BLEND_COLOR_DODGE:
        return GXBlendModeColorDodge;
    case FZ_BLEND_COLOR_BURN:
        return GXBlendModeColorBurn;
    default:
        return static_cast<GXBlendMode>(mode & FZ_BLEND_MODEMASK);
    }
}

} // namespace

Span Painter::NextSpan() { return m_type3Depth > 0 || m_skippedTiles > 0 ? Span{} : m_roads.Next(); }

bool Painter::OpenSheet(Sheet& sheet, const fz_rect& area, const fz_rect& content) {
    // A recording may hold 16 pages open, its own and those of masks among them.
    constexpr double kMostPages = 12.0;
    const fz_irect box = fz_irect_from_rect(fz_intersect_rect(fz_intersect_rect(area, content), Visible()));
    const fz_irect& page = m_page.Area();
    const double pixels = double{1} * fz_irect_width(box) * fz_irect_height(box);
    if (fz_is_empty_irect(box) || m_sheetPixels + pixels > kMostPages * fz_irect_width(page) * fz_irect_height(page))
        return false;
    try {
        sheet.surface = std::make_unique<Surface>(m_calls, m_report, box, GXPixelFormatPBGRA32, m_dpi, 0);
    } catch (const std::runtime_error&) {
        return false;
    }
    m_sheets.push_back(std::move(sheet));
    m_sheetPixels += pixels;
    return true;
}

void Painter::PaintSheet() {
    const Sheet sheet = std::move(m_sheets.back());
    m_sheets.pop_back();
    const fz_irect& box = sheet.surface->Area();
    m_sheetPixels -= double{1} * fz_irect_width(box) * fz_irect_height(box);
    sheet.surface->Finish();
    Current().Paint(*sheet.surface, sheet.opacity, sheet.blendMode, sheet.mask.get(), sheet.luminosity);
}

void Painter::EndSpan(Sheet::Kind kind) {
    if (Current().HasOpenEntries() || m_sheets.empty() || m_sheets.back().kind != kind)
        Current().Pop();
    else
        PaintSheet();
}

void Painter::Finish() {
    while (!m_sheets.empty()) {
        if (m_sheets.back().kind == Sheet::Kind::Mask)
            m_sheets.pop_back(); // what it would cover never came
        else
            PaintSheet();
    }
}

void Painter::PopClip() { EndSpan(Sheet::Kind::Covered); }

void Painter::BeginGroup(const fz_rect& area, bool isolated, bool knockout, int blendMode, float alpha) {
    const Span span = NextSpan();
    if (Skipping())
        return;
    Sheet sheet;
    sheet.opacity = std::clamp(alpha, 0.0f, 1.0f);
    sheet.blendMode = BlendMode(blendMode);
    if (span.road == Road::Plain)
        return Current().PushNothing();
    if (span.road == Road::State)
        return Current().PushBlendMode(sheet.blendMode);
    if (span.road == Road::Layer || !OpenSheet(sheet, area, span.bounds))
        Current().PushGroup(area, sheet.opacity, isolated, knockout, sheet.blendMode);
}

void Painter::EndGroup() { EndSpan(Sheet::Kind::Group); }

void Painter::BeginMask(const fz_rect& area, bool luminosity, const Paint& backdrop) {
    const Span span = NextSpan();
    if (m_skippedMasks > 0) {
        ++m_skippedMasks;
        return;
    }
    const fz_irect box = fz_irect_from_rect(fz_intersect_rect(area, Visible()));
    if (!Surface::LayersSupported() || fz_is_empty_irect(box)) {
        m_skippedMasks = 1;
        m_hideAfterSkip = fz_is_empty_irect(box);
        if (!m_hideAfterSkip)
            m_report.Notice("soft masks left out, the library has no layers");
        return;
    }
    uint32_t clear = 0;
    if (luminosity) {
        const GXColor c = Color(backdrop);
        const auto channel = [](float v) {
            return static_cast<uint32_t>(std::lround(std::clamp(v, 0.0f, 1.0f) * 255.0f));
        };
        clear = 0xFF000000u | channel(c.red) << 16 | channel(c.green) << 8 | channel(c.blue);
    }
    try {
        Sheet sheet;
        sheet.kind = Sheet::Kind::Mask;
        sheet.surface = std::make_unique<Surface>(m_calls, m_report, box, GXPixelFormatPBGRA32, m_dpi, clear);
        sheet.luminosity = luminosity;
        sheet.span = span;
        m_sheets.push_back(std::move(sheet));
    } catch (...) {
        m_skippedMasks = 1; // the calls stay balanced
        m_hideAfterSkip = false;
        throw;
    }
}

void Painter::EndMask() {
    if (m_skippedMasks > 0) {
        if (--m_skippedMasks > 0)
            return;
        if (m_hideAfterSkip) {
            Handle<GXGeometry> nothing;
            m_report.Check(GXCreateGeometry(nothing.Out()), "GXCreateGeometry");
            Current().PushClip(nothing.Get(), fz_identity);
        } else {
            Current().PushNothing();
        }
        return;
    }
    if (m_sheets.empty() || m_sheets.back().kind != Sheet::Kind::Mask)
        return;
    Sheet mask = std::move(m_sheets.back());
    m_sheets.pop_back();
    mask.surface->Finish();
    const Span span = mask.span;
    const fz_rect area = fz_rect_from_irect(mask.surface->Area());
    if (span.road == Road::Bitmap) {
        Sheet covered;
        covered.kind = Sheet::Kind::Covered;
        covered.luminosity = mask.luminosity;
        covered.mask = std::move(mask.surface);
        if (OpenSheet(covered, area, span.bounds))
            return;
        mask.surface = std::move(covered.mask);
    }
    Current().PushOpacityMask(*mask.surface, mask.luminosity, span.road != Road::State);
}

void Painter::BeginTile(const fz_rect& area, const fz_rect& view, float xStep, float yStep, const fz_matrix& ctm,
                        int id) {
    if (Skipping()) {
        ++m_skippedTiles;
        return;
    }
    if (m_tile) {
        ++m_tile->nested;
        Try(m_ctx, [&] { fz_begin_tile_id(m_ctx, m_tile->device, area, view, xStep, yStep, ctm, id); });
        return;
    }
    auto tile = std::make_unique<Tile>();
    tile->area = area;
    tile->view = view;
    tile->xStep = std::fabs(xStep); // the same lattice either way
    tile->yStep = std::fabs(yStep);
    tile->ctm = ctm;
    Tile* const t = tile.get();
    const bool ok = Try(m_ctx, [&] {
        t->list = fz_new_display_list(m_ctx, fz_infinite_rect);
        t->device = fz_new_list_device(m_ctx, t->list);
    });
    if (ok)
        m_tile = std::move(tile);
    else
        fz_drop_display_list(m_ctx, t->list);
}

void Painter::EndTile() {
    if (m_skippedTiles > 0) {
        --m_skippedTiles;
        return;
    }
    if (!m_tile)
        return;
    if (m_tile->nested > 0) {
        --m_tile->nested;
        Try(m_ctx, [&] { fz_end_tile(m_ctx, m_tile->device); });
        return;
    }
    const std::unique_ptr<Tile> tile = std::move(m_tile);
    Try(m_ctx, [&] { fz_close_device(m_ctx, tile->device); });
    fz_drop_device(m_ctx, tile->device);
    ReplayTile(*tile);
    fz_drop_display_list(m_ctx, tile->list);
}

void Painter::ReplayTile(Tile& tile) {
    constexpr double kMaxCells = 200000;
    fz_matrix inverse;
    if (fz_try_invert_matrix(&inverse, tile.ctm))
        return;
    const fz_rect visible = Visible();
    const fz_rect area = fz_intersect_rect(tile.area, fz_transform_rect(fz_expand_rect(visible, 1.0f), inverse));
    if (fz_is_empty_rect(area) || fz_is_empty_rect(tile.view))
        return;

    // Cell i covers view shifted by i steps: it meets the area when view.x1 + i step > area.x0 and view.x0 + i step <
    // area.x1.
    const auto range = [](float step, float view0, float view1, float area0, float area1, int& first, int& last) {
        if (!(step > 0.0f)) {
            first = last = 0;
            return;
        }
        const auto whole = [](float v) { return static_cast<int>(std::clamp(v, -1e9f, 1e9f)); };
        first = whole(std::floor((area0 - view1) / step)) + 1;
        last = whole(std::ceil((area1 - view0) / step)) - 1;
    };
    int firstX, lastX, firstY, lastY;
    range(tile.xStep, tile.view.x0, tile.view.x1, area.x0, area.x1, firstX, lastX);
    range(tile.yStep, tile.view.y0, tile.view.y1, area.y0, area.y1, firstY, lastY);
    if ((double{1} + lastX - firstX) * (double{1} + lastY - firstY) > kMaxCells)
        return m_report.Notice("a tiling pattern with too many cells was left out");

    const Handle<GXGeometry> cell = RectGeometry(m_report, tile.view);
    // Groups may be cut off from a cell at the edge, so each cell is surveyed by itself.
    GroupRoads roads = std::move(m_roads);
    m_roads = {};
    const bool grouped = !SurveyGroups(m_ctx, tile.list, fz_identity, fz_infinite_rect).empty();
    for (int y = firstY; y <= lastY; ++y)
        for (int x = firstX; x <= lastX; ++x) {
            const fz_matrix place =
                fz_pre_translate(tile.ctm, static_cast<float>(x) * tile.xStep, static_cast<float>(y) * tile.yStep);
            const fz_rect box = fz_intersect_rect(visible, fz_expand_rect(fz_transform_rect(tile.view, place), 1.0f));
            if (fz_is_empty_rect(box))
                continue;
            const fz_matrix shift = fz_translate(place.e - tile.ctm.e, place.f - tile.ctm.f);
            if (grouped)
                m_roads = GroupRoads(SurveyGroups(m_ctx, tile.list, shift, box));
            Current().PushClip(cell.Get(), place);
            Try(m_ctx, [&] { fz_run_display_list(m_ctx, tile.list, m_device, shift, box, nullptr); });
            Current().Pop();
        }
    m_roads = std::move(roads);
}

} // namespace PdfPage
