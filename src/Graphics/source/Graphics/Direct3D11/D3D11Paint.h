// SPDX-License-Identifier: MIT
// The paint of a draw, a constant colour or a texture with a map to its coordinates, made from inks. Colours that the
// GPU cannot sample are computed in software for the pixels of the draw.
#pragma once

#include "../Arena.h"
#include "../Drawing/Ink.h"
#include "D3D11SoftwareTextures.h"

namespace Graphics {

struct D3D11Paint {
    float color[4] = {1.0F, 1.0F, 1.0F, 1.0F}; ///< premultiplied red, green, blue, alpha; multiplies the texture
    std::shared_ptr<D3D11Texture> texture;     ///< null: none
    Matrix map = kIdentity;                    ///< device pixels to texture coordinates
    D3D11Sampling sampling;

    void SetWord(uint32_t premultiplied) noexcept;
};

class D3D11PaintMaker {
public:
    explicit D3D11PaintMaker(Arena& arena) noexcept : m_arena(arena) {}

    /// The paint for the GPU. `box`: the device pixels that may be sampled; `transform`: user space to the device.
    [[nodiscard]] D3D11Paint From(D3D11Context& context, const Ink& ink, const Matrix& transform, const IntRect& box);
    [[nodiscard]] D3D11Paint FromImage(D3D11Context& context, const PlacedImage& image, const IntRect& box);
    /// The colours of a source that computes them in software; the texture includes every factor.
    [[nodiscard]] D3D11Paint FromSource(D3D11Context& context, SwColorSource& source, const IntRect& box);
    /// The source for the software pipeline, allocated in the arena.
    [[nodiscard]] SwColorSource& Source(const Ink& ink, const Matrix& transform, const IntRect& box);
    [[nodiscard]] D3D11SoftwareTextures& Textures() noexcept { return m_textures; }

private:
    [[nodiscard]] bool FromLinear(D3D11Context& context, const GradientBrush& brush, const Matrix& transform,
                                  D3D11Paint& paint);

    Arena& m_arena;
    D3D11SoftwareTextures m_textures;
};

} // namespace Graphics
