// SPDX-License-Identifier: MIT
// Selects the back end for each kind of Windows destination.
#include "../PlatformTargets.h"

#include "../../Exception.h"
#include "../../Gdiplus/GdipDeviceRenderTarget.h"
#include "../../Software/Surfaces/SwBitmapSurface.h"
#include "../../Software/Surfaces/Windows/SwDeviceSurface.h"
#include "../../Software/Surfaces/Windows/SwWindowSurface.h"
#include "../../Software/SwRenderTarget.h"
#include "ThreadHardware.h"

namespace Graphics {

std::unique_ptr<RenderTargetBase> CreateWindowTarget(void* window, bool softwareOnly) {
    if (HwRenderTargetFactory* hardware = softwareOnly ? nullptr : ThreadHardware::Factory(); hardware != nullptr) {
        try {
            if (std::unique_ptr<RenderTargetBase> target = hardware->CreateWindowTarget(window); target != nullptr) {
                return target;
            }
        } catch (const Exception&) {
            // Falls back to software.
        }
    }
    return std::make_unique<SwRenderTarget>(std::make_unique<SwWindowSurface>(static_cast<HWND>(window)));
}

std::unique_ptr<RenderTargetBase> CreateDeviceTarget(void* dc, const IntRect& area) {
    return std::make_unique<SwRenderTarget>(std::make_unique<SwDeviceSurface>(static_cast<HDC>(dc), area));
}

std::unique_ptr<RenderTargetBase> CreatePrinterTarget(void* dc) {
    // Draws in software what GDI+ cannot.
    const BitmapTargetMaker inSoftware = [](std::shared_ptr<Bitmap> bitmap) -> std::unique_ptr<RenderTargetBase> {
        return std::make_unique<SwRenderTarget>(std::make_unique<SwBitmapSurface>(std::move(bitmap)));
    };
    return std::make_unique<GdipDeviceRenderTarget>(static_cast<HDC>(dc), inSoftware);
}

void EnableHardwareForThread() { ThreadHardware::Enable(); }

} // namespace Graphics
