// SPDX-License-Identifier: MIT
// Whether GDI+ renders a paint as the software renderer does.
#pragma once

#include "../Drawing/Ink.h"
#include "../Paint/Gradient.h"

namespace Graphics {

struct GdipShows {
    bool blends;      ///< the device composites pixels with alpha
    Matrix transform; ///< user space to device pixels
    IntRect visible;  ///< the pixels that are painted

    [[nodiscard]] bool Shows(const Ink& ink) const;

private:
    [[nodiscard]] bool Shows(const ImageInk& image) const;
    [[nodiscard]] bool Covers(const ImageInk& image, const Matrix& toDevice) const noexcept;
    [[nodiscard]] bool IsOpaque(const GradientBrush& brush) const noexcept;
};

} // namespace Graphics
