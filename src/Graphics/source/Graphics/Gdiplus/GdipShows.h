// SPDX-License-Identifier: MIT
// Whether GDI+ shows a paint as the software renderer does.
#pragma once

#include "../Matrix.h"
#include "../Paint/Brush.h"
#include "../Paint/Gradient.h"
#include "../Pixels/PixelView.h"

namespace Graphics {

struct GdipShows {
    bool blends;      ///< the device composites pixels with alpha
    Matrix transform; ///< user space to device pixels
    IntRect visible;  ///< the pixels that are painted

    [[nodiscard]] bool Shows(const Brush& brush) const;
    /// An image drawn into its own place; `toDevice` maps its pixels.
    [[nodiscard]] bool Shows(const PixelView& pixels, float opacity, uint32_t interpolation,
                             const Matrix& toDevice) const;

private:
    [[nodiscard]] bool Covers(const BitmapBrush& brush, const Matrix& toDevice) const noexcept;
    [[nodiscard]] bool IsOpaque(const GradientBrush& brush) const noexcept;
};

} // namespace Graphics
