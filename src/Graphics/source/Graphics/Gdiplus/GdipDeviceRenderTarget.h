// SPDX-License-Identifier: MIT
// The target on a device context that GDI+ draws on, such as a printer's.
#pragma once

#include <optional>

#include "../Windows/DCHandle.h"
#include "GdipRenderTarget.h"

namespace Graphics {

class GdipDeviceRenderTarget final : public GdipRenderTarget {
public:
    /// The context must outlive this object. Raises "Failed to gdi+ startup", "The DC does not exist".
    GdipDeviceRenderTarget(HDC dc, BitmapTargetMaker makeTarget);

protected:
    [[nodiscard]] std::unique_ptr<GdipGraphics> Open() override;
    /// Raises "StretchDIBits is failed."
    void Place(GdipGraphics& graphics, const PixelView& pixels, const IntPoint& origin,
               const std::vector<IntRect>& rects) override;
    void Close() noexcept override { m_devicePixels.reset(); }

private:
    [[nodiscard]] static GdipDevice DeviceOf(HDC dc);

    const HDC m_dc;
    std::optional<DevicePixels> m_devicePixels; // while painting
};

} // namespace Graphics
