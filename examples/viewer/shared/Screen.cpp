// SPDX-License-Identifier: MIT
#include "Screen.h"

#include "Digits.h"
#include "Document.h"
#include "Reason.h"

#include <cstring>

namespace Viewer {
namespace {

constexpr uint32_t kPaper = 0xFFFFFFFF, kListGround = 0xFF3A3D41, kChosen = 0xFF4C8DD6, kLabel = 0xFFE4E6E8,
                   kBroken = 0xFFB04040;

void Check(GXResult result, const char* what) {
    if (result != GXResultSuccess)
        throw Gxr::Error(WithReason(std::string(what) + " failed"));
}

GXRect ToRect(const Box& box) {
    return {static_cast<float>(box.left), static_cast<float>(box.top), static_cast<float>(box.Right()),
            static_cast<float>(box.Bottom())};
}

void Fill(GXRenderTarget target, const Box& box, uint32_t argb) {
    const GXRect rect = ToRect(box);
    Gxr::Handle<GXBrush> brush;
    Check(GXCreateBrushSolidARGB(argb, brush.Out()), "GXCreateBrushSolidARGB");
    Check(GXRenderTargetFillRect(target, &rect, brush.Get()), "GXRenderTargetFillRect");
}

void Cross(GXRenderTarget target, const Box& box) {
    const GXRect r = ToRect(box);
    const GXPoint corners[] = {{r.left, r.top}, {r.right, r.bottom}, {r.left, r.bottom}, {r.right, r.top}};
    Gxr::Handle<GXBrush> brush;
    Check(GXCreateBrushSolidARGB(kBroken, brush.Out()), "GXCreateBrushSolidARGB");
    for (int line = 0; line < 4; line += 2)
        Check(GXRenderTargetStrokeLine(target, &corners[line], &corners[line + 1], brush.Get(), 2.0f, nullptr),
              "GXRenderTargetStrokeLine");
}

Gxr::Handle<GXBitmap> NewBitmap(int width, int height, const void* pixels, size_t strideBytes) {
    const GXBitmapDesc desc{static_cast<uint32_t>(width), static_cast<uint32_t>(height), GXPixelFormatBGRX32, 96, 96};
    const GXBitmapData data{const_cast<void*>(pixels), desc.width * 4, static_cast<uint32_t>(strideBytes)};
    Gxr::Handle<GXBitmap> bitmap;
    Check(GXCreateBitmap(&desc, bitmap.Out()), "GXCreateBitmap");
    Check(GXBitmapCopyFromMemory(bitmap.Get(), nullptr, &data), "GXBitmapCopyFromMemory");
    return bitmap;
}

} // namespace

Drawer::Wanted WantedBy(const Reader& reader) {
    const View& view = reader.GetView();
    const Box page = view.Page();
    Drawer::Wanted wanted;
    wanted.page = reader.Page();
    wanted.size = view.GetPageSize();
    wanted.zoom = view.Zoom();
    wanted.extent = {0, 0, page.width, page.height};
    wanted.visible = view.Visible().MovedBy(-page.left, -page.top);
    if (reader.IsListShown()) {
        wanted.thumbsFrom = reader.List().First();
        wanted.thumbsTo = reader.List().End();
    }
    return wanted;
}

void Screen::Compose(const Reader& reader, const Drawer& drawer) {
    const View& view = reader.GetView();
    const Box shown = view.Visible();
    const int left = reader.ViewLeft();
    m_width = left + view.ClientWidth();
    m_height = view.ClientHeight();
    m_pixels.resize(static_cast<size_t>(m_width) * static_cast<size_t>(m_height));
    const Drawer::Status status = drawer.GetStatus();
    const bool hasPage = reader.HasPages(), broken = !status.failure.empty();
    const Box page = view.Page().MovedBy(left, 0);

    const GXExtBufLayout layout{static_cast<float>(m_width), static_cast<float>(m_height),
                                static_cast<float>(m_width) * 4, 96, 96};
    Gxr::Handle<GXRenderTarget> target;
    Check(GXCreateRenderTargetExtBuf(m_pixels.data(), GXPixelFormatBGRX32, &layout, target.Out()),
          "GXCreateRenderTargetExtBuf");
    Check(GXRenderTargetBeginPaint(target.Get()), "GXRenderTargetBeginPaint");
    Check(GXRenderTargetClear(target.Get(), kGround), "GXRenderTargetClear");
    if (hasPage) {
        const Box paper = shown.MovedBy(left, 0);
        Fill(target.Get(), paper, kPaper);
        if (broken)
            Cross(target.Get(), paper);
        else if (!status.complete && m_still.page == reader.Page() && m_still.bitmap)
            DrawDraft(target.Get(), page, view.Zoom());
    }
    if (reader.IsListShown())
        DrawList(target.Get(), reader, drawer);
    Check(GXRenderTargetEndPaint(target.Get()), "GXRenderTargetEndPaint");
    target.Reset();
    if (!hasPage || broken)
        return;
    CopyDrawn(page, drawer);
    if (status.complete)
        KeepStill(reader.Page(), view.Zoom(), page, shown.MovedBy(left, 0));
}

// The old picture in its new place and size; the view's part of the window clips it.
void Screen::DrawDraft(GXRenderTarget target, const Box& page, float zoom) const {
    const double factor = static_cast<double>(zoom) / static_cast<double>(m_still.zoom);
    const Box& seen = m_still.visible;
    const auto x = [&](int at) { return static_cast<float>(page.left + at * factor); };
    const auto y = [&](int at) { return static_cast<float>(page.top + at * factor); };
    const GXRect there{x(seen.left), y(seen.top), x(seen.Right()), y(seen.Bottom())};
    const GXRect clip = ToRect(page);
    Check(GXRenderTargetPushState(target), "GXRenderTargetPushState");
    Check(GXRenderTargetClipRect(target, &clip), "GXRenderTargetClipRect");
    Check(GXRenderTargetStretchBitmap(target, m_still.bitmap.Get(), &there, nullptr, 1.0f, GXInterpolationLinear),
          "GXRenderTargetStretchBitmap");
    Check(GXRenderTargetPopState(target), "GXRenderTargetPopState");
}

void Screen::CopyDrawn(const Box& page, const Drawer& drawer) {
    const Box window{0, 0, m_width, m_height};
    drawer.ForDrawn([&](const Box& box, const uint8_t* pixels, size_t strideBytes) {
        const Box there = box.MovedBy(page.left, page.top), seen = Common(there, window);
        const uint8_t* from = pixels + static_cast<size_t>(seen.top - there.top) * strideBytes +
                              4 * static_cast<size_t>(seen.left - there.left);
        for (int row = seen.top; row < seen.Bottom(); ++row, from += strideBytes)
            std::memcpy(
                &m_pixels[static_cast<size_t>(row) * static_cast<size_t>(m_width) + static_cast<size_t>(seen.left)],
                from, 4 * static_cast<size_t>(seen.width));
    });
}

void Screen::KeepStill(int number, float zoom, const Box& page, const Box& visible) {
    const Box seen = visible.MovedBy(-page.left, -page.top);
    if (m_still.page == number && m_still.zoom == zoom && m_still.visible == seen)
        return;
    const uint32_t* const first = m_pixels.data() + static_cast<size_t>(visible.top) * static_cast<size_t>(m_width) +
                                  static_cast<size_t>(visible.left);
    m_still.bitmap = NewBitmap(visible.width, visible.height, first, size_t{4} * static_cast<size_t>(m_width));
    m_still.page = number;
    m_still.zoom = zoom;
    m_still.visible = seen;
}

void Screen::DrawList(GXRenderTarget target, const Reader& reader, const Drawer& drawer) const {
    const PageList& list = reader.List();
    Fill(target, {0, 0, reader.ViewLeft(), m_height}, kListGround);
    const GXRect clip = ToRect({0, 0, reader.ViewLeft(), m_height});
    Check(GXRenderTargetPushState(target), "GXRenderTargetPushState");
    Check(GXRenderTargetClipRect(target, &clip), "GXRenderTargetClipRect");
    for (int page = list.First(); page < list.End(); ++page) {
        const std::optional<Drawer::Thumb> thumb = drawer.GetThumb(page);
        const int width = thumb ? thumb->width : PageList::kThumb * 3 / 4;
        const Box box = list.Thumb(page, width, thumb ? thumb->height : PageList::kThumb);
        if (page == reader.Page())
            Fill(target, {box.left - 4, box.top - 4, box.width + 8, box.height + 8}, kChosen);
        Fill(target, box, kPaper);
        if (thumb && thumb->pixels) {
            const auto picture =
                NewBitmap(thumb->width, thumb->height, thumb->pixels.get(), 4 * static_cast<size_t>(thumb->width));
            const GXPoint at{static_cast<float>(box.left), static_cast<float>(box.top)};
            Check(GXRenderTargetDrawBitmap(target, picture.Get(), &at, 1.0f, GXInterpolationNearest),
                  "GXRenderTargetDrawBitmap");
        } else if (thumb) {
            Cross(target, box);
        }
        const Box slot = list.Slot(page);
        DrawNumber(target, page + 1, slot.left + slot.width / 2, slot.Bottom() - 18, kLabel);
    }
    Check(GXRenderTargetPopState(target), "GXRenderTargetPopState");
}

void Screen::Save(const std::filesystem::path& path) const {
    const auto bitmap = NewBitmap(m_width, m_height, m_pixels.data(), size_t{4} * static_cast<size_t>(m_width));
    if (GXBitmapSaveToFile(bitmap.Get(), path.wstring().c_str()) != GXResultSuccess)
        throw Gxr::Error(WithReason("cannot write '" + Document::Text(path) + "'"));
}

} // namespace Viewer
