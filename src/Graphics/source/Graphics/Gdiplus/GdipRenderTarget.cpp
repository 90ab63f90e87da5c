// SPDX-License-Identifier: MIT
#include "GdipRenderTarget.h"

#include "../Bitmaps/Windows/GdipBitmap.h"
#include "../Exception.h"
#include "../Geometry/Figures.h"
#include "../Scan/DeviceFigures.h"
#include "GdipFlattener.h"

namespace Graphics {
namespace {

constexpr uint32_t kMaskTypes = 4;
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

// --- State ---

template <class Change> void GdipRenderTarget::ChangeState(const GdipPageList::Call& call, Change&& change) {
    change(m_cached);
    if (m_graphics != nullptr) {
        m_page.AddState(State().transform, call);
        change(State());
    }
}

Matrix GdipRenderTarget::GetTransform() const {
    return m_graphics != nullptr ? m_targets.back().State().transform : m_cached.transform;
}

void GdipRenderTarget::SetTransform(const Matrix& m) {
    m_cached.transform = m; // every call is noted with its matrix
    if (m_graphics != nullptr) {
        State().transform = m;
    }
}

void GdipRenderTarget::SetBlendMode(uint32_t mode) {
    ChangeState([mode](RenderTargetBase& t) { t.SetBlendMode(mode); }, [mode](auto& s) { s.blendMode = mode; });
}

void GdipRenderTarget::SetStrokeAdjustment(bool on) {
    ChangeState([on](RenderTargetBase& t) { t.SetStrokeAdjustment(on); }, [on](auto& s) { s.strokeAdjustment = on; });
}

void GdipRenderTarget::SetOpacityMask(uint32_t type, std::shared_ptr<const Brush> brush) {
    SetMask(&GdipState::opacityMask, &RenderTargetBase::SetOpacityMask, {std::move(brush), type, GetTransform()});
}

void GdipRenderTarget::SetShapeMask(uint32_t type, std::shared_ptr<const Brush> brush) {
    SetMask(&GdipState::shapeMask, &RenderTargetBase::SetShapeMask, {std::move(brush), type, GetTransform()});
}

void GdipRenderTarget::SetMask(GdipMask GdipState::*which, MaskSetter set, GdipMask mask) {
    if (mask.brush != nullptr) {
        mask.brush = m_page.Keep(*mask.brush);
    }
    m_cached.*which = mask;
    if (m_graphics != nullptr) {
        AddMask(set, mask);
        State().*which = std::move(mask);
    }
}

void GdipRenderTarget::AddMask(MaskSetter set, const GdipMask& mask) {
    m_page.AddState(mask.transform, [set, mask](RenderTargetBase& t) { (t.*set)(mask.type, mask.brush); });
}

void GdipRenderTarget::CheckMasks(const GdipState& state) {
    for (const GdipMask* mask : {&state.shapeMask, &state.opacityMask}) {
        if (mask->brush != nullptr && mask->type >= kMaskTypes) {
            GX_RAISE("Graphics::GdipRenderTarget::CheckMasks", "Unsupported soft mask type.");
        }
    }
}

// --- The bracket ---

void GdipRenderTarget::BeginPaint() {
    if (GdipBitmap::FormatOf(m_device.format) == 0) {
        GX_RAISE("Graphics::GdipRenderTarget::BeginPaint", "Unsuported pixel format");
    }
    try {
        m_graphics = Open();
        GdipState first = m_cached;
        first.clip = m_device.area;
        first.restore = m_graphics->Save();
        first.drawingsBefore = m_page.Drawings();
        m_targets.emplace_back(first, true);
        m_page.AddState(kIdentity, [mode = first.blendMode, on = first.strokeAdjustment](RenderTargetBase& t) {
            t.SetBlendMode(mode);
            t.SetStrokeAdjustment(on);
        });
        AddMask(&RenderTargetBase::SetShapeMask, first.shapeMask);
        AddMask(&RenderTargetBase::SetOpacityMask, first.opacityMask);
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
        ~AtEnd() {
            target.Finish();
            target.m_cached = GdipState();
        }
    };
    const AtEnd atEnd{*this};
    // Groups that are still open end with the page.
    m_graphics->Restore(m_targets.front().First().restore);
    GdipFlattener(m_page, m_makeTarget)
        .Run(m_left, [this](const PixelView& pixels, const IntPoint& origin, const std::vector<IntRect>& rects) {
            Place(*m_graphics, pixels, origin, rects);
        });
}

void GdipRenderTarget::PushState() {
    const GdipGraphics::SavedState restore = m_graphics->Save();
    m_page.AddState(kIdentity, [](RenderTargetBase& t) { t.PushState(); });
    m_targets.back().PushState(restore);
}

void GdipRenderTarget::PopState() {
    const GdipGraphics::SavedState restore = m_targets.back().PopState();
    m_page.AddState(kIdentity, [](RenderTargetBase& t) { t.PopState(); });
    m_graphics->Restore(restore);
}

void GdipRenderTarget::BeginLayer(const GXLayerDesc& desc) {
    const GdipState state = State();
    GdipState first;
    first.transform = state.transform;
    first.strokeAdjustment = state.strokeAdjustment;
    first.clip = Intersect(LayerBox(desc.bounds, state.transform, m_device.area), state.clip);
    if (IsEmpty(first.clip)) {
        first.clip = {};
    }
    const bool transparent = DrawsItself() && desc.knockout == 0 && desc.opacity == 1.0F;
    m_targets.reserve(m_targets.size() + 1);
    first.restore = m_graphics->Save();
    first.drawingsBefore = m_page.Drawings();
    if (transparent && !(first.clip == state.clip)) {
        GdipPath box(m_toPage);
        AddRectangle(box, ToRect(first.clip));
        m_graphics->IntersectClip(box);
    }
    m_page.AddState(first.transform, [desc](RenderTargetBase& t) { t.BeginLayer(desc); });
    m_targets.emplace_back(first, transparent);
}

void GdipRenderTarget::EndLayer() {
    if (m_targets.size() < 2) {
        GX_RAISE("Graphics::GdipRenderTarget::EndLayer", "No layer is open");
    }
    GdipSubTarget& around = m_targets[m_targets.size() - 2];
    const GdipState first = m_targets.back().First();
    if (m_page.Drawings() != first.drawingsBefore) {
        CheckMasks(around.State());
    }
    m_page.AddState(around.State().transform, [](RenderTargetBase& t) { t.EndLayer(); });
    m_targets.pop_back();
    m_graphics->Restore(first.restore);
}

} // namespace Graphics
