// SPDX-License-Identifier: MIT
// The platform interface for back ends that draw into windows, device contexts and printers. On platforms without them,
// every function but the hardware switch raises "Not supported on this platform".
#pragma once

#include <memory>

#include "../Drawing/RenderTargetBase.h"

namespace Graphics {

/// Uses the GPU if this thread may and `softwareOnly` is false, else software. Raises "The window does not exist".
[[nodiscard]] std::unique_ptr<RenderTargetBase> CreateWindowTarget(void* window, bool softwareOnly);

/// `area` in device pixels; an empty one is the whole device. Raises "CreateCompatibleDC is failed.", "CreateDIBSection
/// fail".
[[nodiscard]] std::unique_ptr<RenderTargetBase> CreateDeviceTarget(void* dc, const IntRect& area);

[[nodiscard]] std::unique_ptr<RenderTargetBase> CreatePrinterTarget(void* dc);

/// Lets window targets that this thread makes from now on use the GPU, if there is one.
void EnableHardwareForThread();

} // namespace Graphics
