// SPDX-License-Identifier: MIT
// What colours the pixels of a draw: a colour alone, or a texture and the map to its coordinates; and how brushes and
// bitmaps become it. What the card cannot sample the software computes for the pixels of the draw.
#pragma once

#include "../Arena.h"
#include "../Drawing/Ink.h"
#include "D3D11SoftwareTextures.h"

namespace Graphics {

struct D3D11Paint {
    float color[4] = {1.0F, 1.0F, 1.0F, 1.0F}; ///< premultiplied red, green, blue, alpha; times the texture
    std::shared_ptr<D3D11Texture> texture;     ///< null: none
    Matrix map = kIdentity;                    ///< device pixels to texture coordinates
    D3D11Sampling sampling;

    void SetWord(uint32_t premultiplied) noexcept;
};

class D3D11PaintMaker {
public:
    explicit D3D11PaintMaker(Arena& arena) noexcept : m_arena(arena) {}

    /// For the card; `box`: the device pixels that will be asked for, `transform`: user space to the device.
    [[nodiscard]] D3D11Paint From(D3D11Context& context, const Ink& ink, const Matrix& transform, const IntRect& box);
    [[nodiscard]] D3D11Paint FromImage(D3D11Context& context, const PlacedImage& image, const IntRect& box);
    /// The colours of a source that computes them in software, with every factor already in the texture.
    [[nodiscard]] D3D11Paint FromSource(D3D11Context& context, SwColorSource& source, const IntRect& box);
    /// For the software's pipeline, in the arena.
    [[nodiscard]] SwColorSource& Source(const Ink& ink, const Matrix& transform, const IntRect& box);
    [[nodiscard]] D3D11SoftwareTextures& Textures() noexcept { return m_textures; }

private:
    [[nodiscard]] bool FromLinear(D3D11Context& context, const GradientBrush& brush, const Matrix& transform,
                                  D3D11Paint& paint);

    Arena& m_arena;
    D3D11SoftwareTextures m_textures;
};

} // namespace Graphics
