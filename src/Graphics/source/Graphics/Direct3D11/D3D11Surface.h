// SPDX-License-Identifier: MIT
// What a hardware target paints into.
#pragma once

#include "D3D11Context.h"

namespace Graphics {

class D3D11Surface {
public:
    virtual ~D3D11Surface() = default;
    [[nodiscard]] virtual Size GetSize() const = 0;
    /// The opaque texture to draw into, of the surface's current size; its pixels stay from paint to paint. Null when
    /// the surface has no pixels.
    [[nodiscard]] virtual std::shared_ptr<D3D11Texture> BeginPaint(D3D11Context& context) = 0;
    /// Brings the pixels to their place.
    virtual void EndPaint(D3D11Context& context) = 0;
    /// Gives back everything of the device, and the pixels with it.
    virtual void Forget() noexcept {}
};

} // namespace Graphics
