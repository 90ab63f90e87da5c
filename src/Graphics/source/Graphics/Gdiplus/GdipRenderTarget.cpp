// SPDX-License-Identifier: MIT
#include "GdipRenderTarget.h"

#include "../Bitmaps/Windows/GdipBitmap.h"
#include "../Exception.h"
#include "../Geometry/Figures.h"
#include "../Scan/DeviceFigures.h"
#include "GdipFlattener.h"

namespace Graphics {
namespace {

constexpr float kPointsPerInch = 72.0F;

} // namespace

GdipRenderTarget::GdipRenderTarget(const GdipDevice& device, BitmapTargetMaker makeTarget) : m_makeTarget(makeTarget) {
    SetDevice(device);
}

GdipRenderTarget::~GdipRenderTarget() = default;

void GdipRenderTarget::SetDevice(const GdipDevice& device) noexcept {
    m_device = device;
    m_toPage = {kPointsPerInch / device.dpiX, 0.0F, 0.0F, kPointsPerInch / device.dpiY, 0.0F, 0.0F};
}

Size GdipRenderTarget::GetSize() const {
    return {static_cast<uint32_t>(m_device.area.right), static_cast<uint32_t>(m_device.area.bottom)};
}

std::shared_ptr<const Brush> GdipRenderTarget::KeepMask(std::shared_ptr<const Brush> brush) {
    return m_page.Keep(*brush);
}

void GdipRenderTarget::BeginPaint() {
    if (GdipBitmap::FormatOf(m_device.format) == 0) {
        GX_RAISE("Graphics::GdipRenderTarget::BeginPaint", "Unsuported pixel format");
    }
    try {
        m_graphics = Open();
        m_targets.emplace_back(GdipClip{m_device.area, false, m_graphics->Save()}, true, m_page.Drawings());
    } catch (...) {
        Finish();
        throw;
    }
}

void GdipRenderTarget::Finish() noexcept {
    m_graphics.reset();
    Close();
    m_targets.clear();
    m_page.Clear();
    m_left = Region();
}

void GdipRenderTarget::EndPaint() {
    struct AtEnd {
        GdipRenderTarget& target;
        ~AtEnd() { target.Finish(); }
    };
    const AtEnd atEnd{*this};
    m_graphics->Restore(m_targets.front().First().restore);
    GdipFlattener(m_page, m_makeTarget)
        .Run(m_left, [this](const PixelView& pixels, const IntPoint& origin, const std::vector<IntRect>& rects) {
            Place(*m_graphics, pixels, origin, rects);
        });
}

void GdipRenderTarget::PushState() {
    m_page.MakeRoom();
    m_targets.back().PushClip(m_graphics->Save());
    m_page.AddScope({}, [](RenderTargetBase& t, const GraphicsState&) { t.PushState(); });
}

void GdipRenderTarget::PopState() {
    const GdipGraphics::SavedState restore = m_targets.back().PopClip();
    m_page.AddScope({}, [](RenderTargetBase& t, const GraphicsState&) { t.PopState(); });
    m_graphics->Restore(restore);
}

void GdipRenderTarget::BeginLayer(const GraphicsState& state, const GXLayerDesc& desc) {
    const IntRect around = CurrentClip().box;
    GdipClip first;
    first.box = Intersect(LayerBox(desc.bounds, state.transform, m_device.area), around);
    if (IsEmpty(first.box)) {
        first.box = {};
    }
    const bool transparent = DrawsItself(state) && desc.knockout == 0 && desc.opacity == 1.0F;
    m_targets.reserve(m_targets.size() + 1);
    first.restore = m_graphics->Save();
    if (transparent && !(first.box == around)) {
        GdipPath box(m_toPage);
        AddRectangle(box, ToRect(first.box));
        m_graphics->IntersectClip(box);
    }
    GdipSubTarget group(first, transparent, m_page.Drawings());
    m_page.AddScope(state, [desc](RenderTargetBase& t, const GraphicsState& s) { t.BeginLayer(s, desc); });
    m_targets.push_back(std::move(group));
}

void GdipRenderTarget::EndLayer(const GraphicsState& around) {
    const GdipSubTarget& group = m_targets.back();
    if (m_page.Drawings() != group.DrawingsBefore()) {
        around.CheckMasks();
    }
    m_page.MakeRoom();
    m_graphics->Restore(group.First().restore);
    m_page.AddScope(around, [](RenderTargetBase& t, const GraphicsState& s) { t.EndLayer(s); });
    m_targets.pop_back();
}

void GdipRenderTarget::DropLayer() noexcept {
    m_targets.pop_back();
    try {
        m_page.AddScope({}, [](RenderTargetBase& t, const GraphicsState&) { t.DropLayer(); });
    } catch (const std::bad_alloc&) {
        // Nothing to do: the page ends, and with it all groups.
    }
}

} // namespace Graphics
