// SPDX-License-Identifier: MIT
// The paint of a draw. The function that makes a brush fills it in; from then on it is shared as const, so that any
// number of threads may draw with it.
#pragma once

#include <memory>

#include "../Matrix.h"
#include "../Types.h"

namespace Graphics {

class Bitmap;
class Gradient;

inline constexpr uint32_t kBrushSolid = 0;
inline constexpr uint32_t kBrushBitmap = 1;
inline constexpr uint32_t kBrushGradient = 3;

class Brush {
public:
    virtual ~Brush() = default;
    [[nodiscard]] virtual uint32_t Kind() const noexcept = 0;

    Matrix transform = kIdentity; ///< brush space to user space
    float opacity = 1.0F;         ///< multiplies the alpha of every colour; may be any value
};

/// One straight colour, each channel in [0, 1]. The opacity is included.
class SolidBrush final : public Brush {
public:
    explicit SolidBrush(const Color& c) noexcept : color(c), argb(PackColor(c)) {}
    [[nodiscard]] uint32_t Kind() const noexcept override { return kBrushSolid; }

    const Color color;
    const uint32_t argb; ///< the same colour, packed, because every draw needs it
};

/// Brush space is that of the bitmap's pixels. Later changes of the pixels take effect.
class BitmapBrush final : public Brush {
public:
    explicit BitmapBrush(std::shared_ptr<Bitmap> b) noexcept : bitmap(std::move(b)) {}
    [[nodiscard]] uint32_t Kind() const noexcept override { return kBrushBitmap; }

    std::shared_ptr<Bitmap> bitmap;
    uint32_t interpolation = GXInterpolationLinear; ///< unknown values count as nearest
    uint32_t extendX = GXExtendClamp;               ///< unknown values count as clamp
    uint32_t extendY = GXExtendClamp;
};

class GradientBrush final : public Brush {
public:
    explicit GradientBrush(std::shared_ptr<const Gradient> g) noexcept : gradient(std::move(g)) {}
    [[nodiscard]] uint32_t Kind() const noexcept override { return kBrushGradient; }

    std::shared_ptr<const Gradient> gradient;
};

} // namespace Graphics
