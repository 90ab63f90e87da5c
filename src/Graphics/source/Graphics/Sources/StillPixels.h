// SPDX-License-Identifier: MIT
// An image drawn onto itself: what a draw writes it must not read again. The pixels that it needs are copied first, so
// that every draw shows its image as it was before the draw, in whatever order pixels are painted.
#pragma once

#include "../Arena.h"
#include "../Matrix.h"
#include "../Pixels/PixelView.h"

namespace Graphics {

/// The memory that a draw may write, and the device pixels that lie there.
struct WrittenPixels {
    const uint8_t* begin = nullptr;
    const uint8_t* end = nullptr;
    IntRect visible{};

    /// Whether pixels of the image lie between the first and the last of these.
    [[nodiscard]] bool Overlaps(const PixelView& view) const noexcept;
};

/// The view, with the memory of a copy in the arena, of which only those pixels are there that the visible device
/// pixels can show: `toImage` maps device to image pixels, unless `all` is needed.
[[nodiscard]] PixelView CopyStillPixels(Arena& arena, const PixelView& view, const WrittenPixels& written,
                                        const Matrix& toImage, bool all);

} // namespace Graphics
