// SPDX-License-Identifier: MIT
#include "BitmapBase.h"

#include <algorithm>
#include <cstring>

#include "../Pixels/PixelFormat.h"
#include "PixelTransfer.h"

namespace Graphics {

Size BitmapBase::GetSize() const noexcept {
    const PixelView view = View();
    return {static_cast<uint32_t>(view.width), static_cast<uint32_t>(view.height)};
}

LockedPixels BitmapBase::Lock(const IntRect* rect) const noexcept {
    const PixelView view = View();
    const IntRect clipped = Clip(rect, view.width, view.height);
    if (IsEmpty(clipped)) {
        return {};
    }
    const PixelView part = PixelTransfer::Part(view, clipped);
    return {part.data, static_cast<uint32_t>(part.strideBytes),
            static_cast<uint32_t>(RowBytes(part.format, part.width))};
}

void BitmapBase::CopyToMemory(const IntRect* rect, const GXBitmapData& destination) const {
    const LockedPixels locked = Lock(rect);
    if (locked.data == nullptr) {
        return;
    }
    const PixelView view = View();
    const IntRect clipped = Clip(rect, view.width, view.height);
    const size_t bytes = std::min(locked.rowBytes, destination.rowLength);
    auto* out = static_cast<uint8_t*>(destination.data);
    for (int32_t y = 0; y < clipped.bottom - clipped.top; ++y) {
        std::memmove(out + static_cast<size_t>(y) * destination.stride,
                     locked.data + static_cast<size_t>(y) * locked.strideBytes, bytes);
    }
}

void BitmapBase::CopyFromMemory(const IntRect* rect, const GXBitmapData& source) {
    const LockedPixels locked = Lock(rect);
    if (locked.data == nullptr) {
        return;
    }
    const PixelView view = View();
    const IntRect clipped = Clip(rect, view.width, view.height);
    const size_t bytes = std::min(locked.rowBytes, source.rowLength);
    const auto* in = static_cast<const uint8_t*>(source.data);
    for (int32_t y = 0; y < clipped.bottom - clipped.top; ++y) {
        std::memmove(locked.data + static_cast<size_t>(y) * locked.strideBytes,
                     in + static_cast<size_t>(y) * source.stride, bytes);
    }
    NotifyChanged();
}

void BitmapBase::CopyFromBitmap(const IntPoint& origin, const BitmapBase& source, const IntRect* sourceRect) {
    const PixelView to = View();
    const PixelView from = source.View();
    const IntRect rect = sourceRect != nullptr ? *sourceRect : IntRect{0, 0, from.width, from.height};
    // In source coordinates, the destination starts at rect.left - origin.x and has its own width.
    const auto clip = [](int64_t low, int64_t high, int64_t shift, int64_t sourceSize, int64_t destSize) {
        return std::pair{std::max({low, int64_t{0}, -shift}), std::min({high, sourceSize, destSize - shift})};
    };
    const int64_t shiftX = static_cast<int64_t>(origin.x) - rect.left;
    const int64_t shiftY = static_cast<int64_t>(origin.y) - rect.top;
    const auto [left, right] = clip(rect.left, rect.right, shiftX, from.width, to.width);
    const auto [top, bottom] = clip(rect.top, rect.bottom, shiftY, from.height, to.height);
    if (left >= right || top >= bottom) {
        return;
    }
    const auto part = [](const PixelView& view, int64_t l, int64_t t, int64_t r, int64_t b) {
        return PixelTransfer::Part(
            view, {static_cast<int32_t>(l), static_cast<int32_t>(t), static_cast<int32_t>(r), static_cast<int32_t>(b)});
    };
    PixelTransfer::Copy(part(to, left + shiftX, top + shiftY, right + shiftX, bottom + shiftY),
                        part(from, left, top, right, bottom));
    NotifyChanged();
}

void BitmapBase::ColorFill(const IntRect* rect, const Color& color) {
    const PixelView view = View();
    const IntRect clipped = Clip(rect, view.width, view.height);
    if (!IsEmpty(clipped)) {
        PixelTransfer::Fill(PixelTransfer::Part(view, clipped), PackColor(color));
        NotifyChanged();
    }
}

} // namespace Graphics
