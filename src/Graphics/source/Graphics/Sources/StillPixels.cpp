// SPDX-License-Identifier: MIT
#include "StillPixels.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>

#include "../Pixels/PixelFormat.h"
#include "../Scan/DeviceFigures.h"

namespace Graphics {
namespace {

struct Range {
    int32_t begin, end;
};

/// The range of a line of `size` pixels that coordinates from `low` to `high` can show, including neighbours;
/// coordinates beyond the ends show the first or the last pixel.
[[nodiscard]] Range Shown(double low, double high, int32_t size) noexcept {
    constexpr double kNeighbours = 2;
    if (!std::isfinite(low) || !std::isfinite(high)) {
        return {0, size};
    }
    const double last = size - 1;
    return {static_cast<int32_t>(std::clamp(std::floor(low) - kNeighbours, 0.0, last)),
            static_cast<int32_t>(std::clamp(std::ceil(high) + kNeighbours, 0.0, last)) + 1};
}

/// Bytes of a row up to pixel `x`, including a partial last byte.
[[nodiscard]] size_t BytesTo(const PixelView& view, int32_t x) noexcept {
    return (static_cast<size_t>(x) * static_cast<size_t>(BitsPerPixel(view.format)) + view.bitOffset + 7) / 8;
}

} // namespace

bool WrittenPixels::Overlaps(const PixelView& view) const noexcept {
    if (begin == end || view.height <= 0) {
        return false;
    }
    const uint8_t* const first = view.data;
    const uint8_t* const last = view.data + (view.height - 1) * view.strideBytes;
    const size_t rowBytes = BytesTo(view, view.width);
    return std::less<>()(std::min(first, last, std::less<>()), end) &&
           std::less<>()(begin, std::max(first, last, std::less<>()) + rowBytes);
}

PixelView CopyStillPixels(Arena& arena, const PixelView& view, const WrittenPixels& written, const Matrix& toImage,
                          bool all) {
    Range rows{0, view.height}, columns{0, view.width};
    if (!all) {
        // Pixels sample at their centres, half a pixel inside the box, which is more than any rounding.
        const Rect box = MapBox(toImage, ToRect(written.visible));
        rows = Shown(box.top, box.bottom, view.height);
        columns = Shown(box.left, box.right, view.width);
    }
    // Address space for the whole image; the system provides only the pages written.
    const size_t rowBytes = BytesTo(view, view.width);
    PixelView copy = view;
    copy.strideBytes = static_cast<ptrdiff_t>(rowBytes);
    copy.data = arena.AllocArray<uint8_t>(rowBytes * static_cast<size_t>(view.height));
    const size_t begin = columns.begin == 0 ? 0 : BytesTo(view, columns.begin) - 1;
    const size_t end = BytesTo(view, columns.end);
    for (int32_t row = rows.begin; row < rows.end; ++row) {
        std::memcpy(copy.data + row * copy.strideBytes + begin, view.data + row * view.strideBytes + begin,
                    end - begin);
    }
    return copy;
}

} // namespace Graphics
