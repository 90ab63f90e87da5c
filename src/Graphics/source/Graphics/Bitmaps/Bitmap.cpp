// SPDX-License-Identifier: MIT
#include "Bitmap.h"

#include <utility>

namespace Graphics {

Bitmap::Bitmap(std::shared_ptr<SysMemBitmap> image) noexcept : m_image(std::move(image)) {}

std::shared_ptr<Bitmap> Bitmap::Create(const GXBitmapDesc& desc) {
    return std::make_shared<Bitmap>(std::make_shared<SysMemBitmap>(
        static_cast<int32_t>(desc.width), static_cast<int32_t>(desc.height), desc.format, desc.dpiX, desc.dpiY));
}

void Bitmap::CopyToMemory(const IntRect* rect, const GXBitmapData& destination) const {
    m_image->CopyToMemory(rect, destination);
}

void Bitmap::SetPalette(std::shared_ptr<const Palette> palette) {
    m_image->SetPalette(std::move(palette));
    NotifyChanged();
}

GXBitmapData Bitmap::Lock(const IntRect* rect, uint32_t mode) noexcept {
    m_lockMode.store(mode, std::memory_order_relaxed);
    const LockedPixels locked = m_image->Lock(rect);
    return {locked.data, locked.rowBytes, locked.strideBytes};
}

void Bitmap::Unlock() {
    if (m_lockMode.load(std::memory_order_relaxed) == GXLockWrite) {
        NotifyChanged();
    }
}

void Bitmap::EndPainting() {
    m_painters.fetch_sub(1, std::memory_order_relaxed);
    NotifyChanged();
}

void Bitmap::CopyFromMemory(const IntRect* rect, const GXBitmapData& source) {
    m_image->CopyFromMemory(rect, source);
    NotifyChanged();
}

void Bitmap::CopyFromBitmap(const IntPoint* origin, const Bitmap& source, const IntRect* sourceRect) {
    m_image->CopyFromBitmap(origin != nullptr ? *origin : IntPoint{0, 0}, *source.m_image, sourceRect);
    NotifyChanged();
}

void Bitmap::ColorFill(const IntRect* rect, const Color& color) {
    m_image->ColorFill(rect, color);
    NotifyChanged();
}

} // namespace Graphics
