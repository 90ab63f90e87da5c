// SPDX-License-Identifier: MIT
// Chooses the sampler that draws a bitmap.
#pragma once

#include <memory>

#include "SwColorSource.h"

namespace Graphics {

class PixelReader;
class ReducedImage;

/// How often an image drawn by area averaging is halved before it is sampled.
struct ImageReduction {
    uint32_t halvingsX = 0;
    uint32_t halvingsY = 0;

    [[nodiscard]] bool Any() const noexcept { return halvingsX != 0 || halvingsY != 0; }
    /// `inverse` maps device pixels to those of the image.
    [[nodiscard]] static ImageReduction For(int32_t width, int32_t height, const Matrix& inverse) noexcept;
};

/// The image that `reader` reads, reduced; from `derived` (may be null) where it is kept there.
[[nodiscard]] std::shared_ptr<const ReducedImage> ReduceImage(const PixelReader& reader, int32_t width, int32_t height,
                                                              const ImageReduction& reduction, CacheHolder* derived,
                                                              bool asMask);

/// All transparent where the placement has no inverse. As a mask every byte of a word is the mask value: Alpha1 and
/// Alpha8 their coverage, Gray8 and BlackWhite1 their level, formats with alpha their alpha, others 255. The pixels
/// must outlive the arena's draw. Raises "Not implemented" for a format outside 1..10.
/// Pixels that are `written` by the draw are read as they were before it.
[[nodiscard]] SwColorSource* CreateBitmapSource(Arena& arena, const PlacedImage& image,
                                                const WrittenPixels* written = nullptr);

} // namespace Graphics
