// SPDX-License-Identifier: MIT
// The seam of the platform: back ends that draw into its windows, device contexts and printers. Where there are none,
// every function but the hardware switch raises "Not supported on this platform".
#pragma once

#include <memory>

#include "../Drawing/RenderTargetBase.h"

namespace Graphics {

/// With the graphics processor when this thread may use it and `softwareOnly` is false, else in software. Raises "The
/// window does not exist".
[[nodiscard]] std::unique_ptr<RenderTargetBase> CreateWindowTarget(void* window, bool softwareOnly);

/// `area` in device pixels; an empty one is the whole device. Raises "CreateCompatibleDC is failed.", "CreateDIBSection
/// fail".
[[nodiscard]] std::unique_ptr<RenderTargetBase> CreateDeviceTarget(void* dc, const IntRect& area);

[[nodiscard]] std::unique_ptr<RenderTargetBase> CreatePrinterTarget(void* dc);

/// Lets window targets made on this thread from now on use the graphics processor, if there is one.
void EnableHardwareForThread();

} // namespace Graphics
