// SPDX-License-Identifier: MIT
// Chooses the sampler that draws a bitmap.
#pragma once

#include <memory>

#include "../Matrix.h"
#include "../Pixels/PixelView.h"
#include "SwColorSource.h"

namespace Graphics {

class CacheHolder;
class SwPixelReader;
class SwReducedImage;

/// How often an image drawn by area averaging is halved before it is sampled.
struct SwReduction {
    uint32_t halvingsX = 0;
    uint32_t halvingsY = 0;

    [[nodiscard]] bool Any() const noexcept { return halvingsX != 0 || halvingsY != 0; }
    /// `inverse` maps device pixels to those of the image.
    [[nodiscard]] static SwReduction For(int32_t width, int32_t height, const Matrix& inverse) noexcept;
};

/// The image that `reader` reads, reduced; from `derived` (may be null) where it is kept there.
[[nodiscard]] std::shared_ptr<const SwReducedImage> ReduceImage(const SwPixelReader& reader, int32_t width,
                                                                int32_t height, const SwReduction& reduction,
                                                                CacheHolder* derived, bool asMask);

/// Draws `view` placed by `bitmapToDevice`; all transparent where that has no inverse. `derived` keeps reduced images
/// from draw to draw; null when the view is not the whole bitmap. As a mask every byte of a word is the mask value:
/// Alpha1 and Alpha8 their coverage, Gray8 and BlackWhite1 their level, formats with alpha their alpha, others 255;
/// `opacity` does not count then. Values above 2 of interpolation and extend modes count as 0. The pixels must outlive
/// the arena's draw. Raises "Not implemented" for a format outside 1..10.
[[nodiscard]] SwColorSource* CreateBitmapSource(Arena& arena, const PixelView& view, CacheHolder* derived,
                                                uint32_t interpolation, uint32_t extendX, uint32_t extendY,
                                                float opacity, const Matrix& bitmapToDevice, bool asMask);

} // namespace Graphics
