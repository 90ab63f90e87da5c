// SPDX-License-Identifier: MIT
// Drawing an image onto itself: a draw must not read pixels that it has written. The needed pixels are copied first, so
// every draw shows its image as it was before the draw, in whatever order pixels are painted.
#pragma once

#include "../Arena.h"
#include "../Matrix.h"
#include "../Pixels/PixelView.h"

namespace Graphics {

/// The range of memory that a draw may write, and the device pixels in it.
struct WrittenPixels {
    const uint8_t* begin = nullptr;
    const uint8_t* end = nullptr;
    IntRect visible{};

    /// Whether pixels of the image lie inside the range.
    [[nodiscard]] bool Overlaps(const PixelView& view) const noexcept;
};

/// The view on a copy in the arena. Only the pixels that the visible device pixels can show are copied, or all of them
/// with `all`. `toImage` maps device to image pixels.
[[nodiscard]] PixelView CopyStillPixels(Arena& arena, const PixelView& view, const WrittenPixels& written,
                                        const Matrix& toImage, bool all);

} // namespace Graphics
