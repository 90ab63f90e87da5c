// SPDX-License-Identifier: MIT
// What colours the pixels of a draw: a colour alone, or a texture and the map to its coordinates; and how brushes and
// bitmaps become it. What the card cannot sample the software computes for the pixels of the draw.
#pragma once

#include "../Arena.h"
#include "../Paint/Brush.h"
#include "D3D11SoftwareTextures.h"

namespace Graphics {

struct D3D11Paint {
    float color[4] = {1.0F, 1.0F, 1.0F, 1.0F}; ///< premultiplied red, green, blue, alpha; times the texture
    std::shared_ptr<D3D11Texture> texture;     ///< null: none
    Matrix map = kIdentity;                    ///< device pixels to texture coordinates
    D3D11Sampling sampling;

    void SetWord(uint32_t premultiplied) noexcept;
};

/// An image to be drawn.
struct D3D11Image {
    PixelView view;
    CacheHolder* derived = nullptr; ///< null when the view is a part of the bitmap
    uint32_t interpolation = 0;
    uint32_t extendX = GXExtendClamp;
    uint32_t extendY = GXExtendClamp;
    float opacity = 1.0F;
    Matrix toDevice = kIdentity;
    bool asMask = false;
};

/// What a drawing call draws with, before it is known whether the card or the software does: a brush or an image.
struct D3D11Ink {
    const Brush* brush = nullptr;
    Matrix transform = kIdentity; ///< the brush's
    const D3D11Image* image = nullptr;
};

class D3D11PaintMaker {
public:
    explicit D3D11PaintMaker(Arena& arena) noexcept : m_arena(arena) {}

    /// For the card; `box`: the device pixels that will be asked for.
    [[nodiscard]] D3D11Paint From(D3D11Context& context, const D3D11Ink& ink, const IntRect& box);
    /// For the software's pipeline, in the arena.
    [[nodiscard]] SwColorSource& Source(const D3D11Ink& ink, const IntRect& box);

    [[nodiscard]] D3D11Paint FromBrush(D3D11Context& context, const Brush& brush, const Matrix& transform,
                                       const IntRect& box);
    /// The same with every factor already in the texture: what a rule may be applied to that makes values of colours.
    [[nodiscard]] D3D11Paint FromBrushInSoftware(D3D11Context& context, const Brush& brush, const Matrix& transform,
                                                 const IntRect& box);
    [[nodiscard]] D3D11Paint FromImage(D3D11Context& context, const D3D11Image& image, const IntRect& box);
    [[nodiscard]] D3D11SoftwareTextures& Textures() noexcept { return m_textures; }

private:
    [[nodiscard]] SwColorSource& BrushSource(const Brush& brush, const Matrix& transform, const IntRect& box);
    [[nodiscard]] SwColorSource& ImageSource(const D3D11Image& image);
    [[nodiscard]] D3D11Paint FromSource(D3D11Context& context, SwColorSource& source, const IntRect& box);
    [[nodiscard]] bool FromLinear(D3D11Context& context, const GradientBrush& brush, const Matrix& transform,
                                  D3D11Paint& paint);

    Arena& m_arena;
    D3D11SoftwareTextures m_textures;
};

} // namespace Graphics
