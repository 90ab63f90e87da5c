// SPDX-License-Identifier: MIT
// The destination of a hardware target.
#pragma once

#include "D3D11Context.h"

namespace Graphics {

class D3D11Surface {
public:
    virtual ~D3D11Surface() = default;
    [[nodiscard]] virtual Size GetSize() const = 0;
    /// The opaque texture to draw into, of the surface's current size; it keeps its pixels from paint to paint. Null if
    /// the surface has no pixels.
    [[nodiscard]] virtual std::shared_ptr<D3D11Texture> BeginPaint(D3D11Context& context) = 0;
    /// Presents the pixels.
    virtual void EndPaint(D3D11Context& context) = 0;
    /// Releases everything that belongs to the device, including the pixels.
    virtual void Forget() noexcept {}
};

} // namespace Graphics
