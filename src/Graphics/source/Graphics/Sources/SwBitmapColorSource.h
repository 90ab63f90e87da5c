// SPDX-License-Identifier: MIT
// Chooses the sampler for a bitmap.
#pragma once

#include <memory>

#include "SwColorSource.h"

namespace Graphics {

class PixelReader;
class ReducedImage;

/// How often an image drawn with area averaging is halved before it is sampled.
struct ImageReduction {
    uint32_t halvingsX = 0;
    uint32_t halvingsY = 0;

    [[nodiscard]] bool Any() const noexcept { return halvingsX != 0 || halvingsY != 0; }
    /// `inverse` maps device to image pixels.
    [[nodiscard]] static ImageReduction For(int32_t width, int32_t height, const Matrix& inverse) noexcept;
};

/// The reduced image of `reader`; taken from `derived` (may be null) if cached there.
[[nodiscard]] std::shared_ptr<const ReducedImage> ReduceImage(const PixelReader& reader, int32_t width, int32_t height,
                                                              const ImageReduction& reduction, CacheHolder* derived,
                                                              bool asMask);

/// Transparent everywhere if the placement has no inverse. In a mask every byte of a word is the mask value: coverage
/// for Alpha1 and Alpha8, level for Gray8 and BlackWhite1, alpha for formats with alpha, 255 for others. The pixels
/// must outlive the arena's draw; pixels `written` by the draw are read as they were before it. Raises "Not
/// implemented" for a format outside 1..10.
[[nodiscard]] SwColorSource* CreateBitmapSource(Arena& arena, const PlacedImage& image,
                                                const WrittenPixels* written = nullptr);

} // namespace Graphics
