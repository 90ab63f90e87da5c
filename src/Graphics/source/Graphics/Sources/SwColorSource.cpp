// SPDX-License-Identifier: MIT
// Creates the colour source of an ink.
#include "SwColorSource.h"

#include "SwBitmapColorSource.h"
#include "SwGradientColorSource.h"
#include "SwSolidColorSource.h"

namespace Graphics {

SwColorSource* SwColorSource::Create(Arena& arena, const Ink& ink, const Rect& bounds, const Matrix& transform,
                                     const WrittenPixels* written) {
    if (const auto* solid = std::get_if<SolidInk>(&ink)) {
        return arena.Make<SwSolidColorSource>(PremultiplyPixel(solid->argb));
    }
    if (const auto* image = std::get_if<ImageInk>(&ink)) {
        return CreateBitmapSource(arena, image->Place(transform, false), written);
    }
    return SwGradientColorSource::Factory(arena, *std::get<GradientInk>(ink).brush, bounds, transform);
}

} // namespace Graphics
