// SPDX-License-Identifier: MIT
#include "GdipPageList.h"

#include <algorithm>
#include <cstring>

#include "../Bitmaps/Bitmap.h"
#include "../Exception.h"
#include "../Pixels/PixelFormat.h"

namespace Graphics {
namespace {

constexpr IntRect kEverywhere{INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX};

[[nodiscard]] bool SamePixels(const PixelView& a, const PixelView& b) noexcept {
    if (a.format != b.format || a.width != b.width || a.height != b.height || a.paletteCount != b.paletteCount ||
        (a.palette == nullptr) != (b.palette == nullptr) ||
        (a.palette != nullptr && std::memcmp(a.palette, b.palette, a.paletteCount * sizeof(uint32_t)) != 0)) {
        return false;
    }
    const size_t bytes = RowBytes(a.format, a.width);
    for (int32_t y = 0; y < a.height; ++y) {
        if (std::memcmp(a.data + y * a.strideBytes, b.data + y * b.strideBytes, bytes) != 0) {
            return false;
        }
    }
    return true;
}

} // namespace

GdipKeptPath::GdipKeptPath(const Path& path)
    : m_kind(path.GetKind()), m_shape(path.Stored() != nullptr ? *path.Stored() : Shape()),
      m_figure(path.IsFigure() ? path.Figure() : BasicFigure(BasicFigure::Kind::Rectangle, {})) {}

Path GdipKeptPath::Get() const {
    switch (m_kind) {
    case Path::Kind::Plane:
        return Path::Plane();
    case Path::Kind::Figure:
        return m_figure;
    case Path::Kind::Outline:
        return Path::Outline(m_shape);
    default:
        return m_shape;
    }
}

void GdipPageList::AddScope(const GraphicsState& state, Call call) {
    m_entries.push_back({state, kEverywhere, std::move(call)});
}

void GdipPageList::MakeRoom() {
    if (m_entries.size() == m_entries.capacity()) {
        m_entries.reserve(std::max<size_t>(16, m_entries.size() * 2));
    }
}

void GdipPageList::Replay(RenderTargetBase& target, const IntRect& part) const {
    const Matrix shift{1.0F, 0.0F, 0.0F, 1.0F, static_cast<float>(-part.left), static_cast<float>(-part.top)};
    for (const Entry& entry : m_entries) {
        if (IsEmpty(Intersect(entry.box, part))) {
            continue;
        }
        GraphicsState state = entry.state;
        for (Matrix* m : {&state.transform, &state.shapeMask.transform, &state.opacityMask.transform}) {
            *m = Concat(*m, shift);
        }
        entry.call(target, state);
    }
}

void GdipPageList::Clear() noexcept {
    m_entries.clear();
    m_bitmaps.clear();
}

std::shared_ptr<Bitmap> GdipPageList::Keep(const Bitmap& bitmap) {
    std::shared_ptr<Bitmap>& kept = m_bitmaps[bitmap.Image().get()];
    if (kept == nullptr || !SamePixels(kept->View(), bitmap.View())) {
        const Size size = bitmap.GetSize();
        auto copy = Bitmap::Create({size.width, size.height, bitmap.Format(), bitmap.DpiX(), bitmap.DpiY()});
        copy->SetPalette(bitmap.GetPalette());
        copy->CopyFromBitmap(nullptr, bitmap, nullptr);
        kept = std::move(copy);
    }
    return kept;
}

std::shared_ptr<const Brush> GdipPageList::Keep(const Brush& brush) {
    switch (brush.Kind()) {
    case kBrushSolid:
        return std::make_shared<SolidBrush>(static_cast<const SolidBrush&>(brush));
    case kBrushBitmap: {
        auto copy = std::make_shared<BitmapBrush>(static_cast<const BitmapBrush&>(brush));
        copy->bitmap = Keep(*copy->bitmap);
        return copy;
    }
    case kBrushGradient:
        return std::make_shared<GradientBrush>(static_cast<const GradientBrush&>(brush));
    default:
        GX_RAISE("Graphics::GdipPageList::Keep", "Not implemented");
    }
}

GdipKeptInk GdipPageList::Keep(const Ink& ink) {
    GdipKeptInk kept{ink, nullptr};
    if (auto* image = std::get_if<ImageInk>(&kept.ink)) {
        const std::shared_ptr<Bitmap> bitmap = Keep(*image->bitmap);
        image->bitmap = bitmap.get();
        kept.owner = bitmap;
    } else if (auto* gradient = std::get_if<GradientInk>(&kept.ink)) {
        const auto brush = std::make_shared<GradientBrush>(*gradient->brush);
        gradient->brush = brush.get();
        kept.owner = brush;
    }
    return kept;
}

} // namespace Graphics
