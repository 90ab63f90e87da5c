// SPDX-License-Identifier: MIT
// Textures computed in software for draws of the GPU: colours of radial and mesh gradients and of unusual bitmaps, and
// planes of coverage. Their texels lie exactly on the device pixels.
#pragma once

#include "../Coverage/ClipRegion.h"
#include "../ProcessHeap.h"
#include "../Sources/SwColorSource.h"
#include "D3D11Context.h"

namespace Graphics {

class D3D11SoftwareTextures {
public:
    /// A texture and the map from device pixels to its coordinates.
    struct Image {
        std::shared_ptr<D3D11Texture> texture;
        Matrix map = kIdentity;
    };

    /// The colours of `source` in `box`.
    [[nodiscard]] Image Paint(D3D11Context& context, SwColorSource& source, const IntRect& box);
    /// The coverage of a clip that has a mask, in an alpha texture over its box.
    [[nodiscard]] Image Coverage(D3D11Context& context, const ClipRegion& clip);

private:
    [[nodiscard]] static Image Upload(D3D11Context& context, const IntRect& box, DXGI_FORMAT format, const void* pixels,
                                      uint32_t strideBytes);

    HeapArray<uint32_t> m_words;
    HeapArray<uint8_t> m_values;
};

} // namespace Graphics
