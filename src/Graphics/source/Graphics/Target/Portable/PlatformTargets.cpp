// SPDX-License-Identifier: MIT
// A platform without windows: drawing is done in memory, in software.
#include "../PlatformTargets.h"

#include "../../Exception.h"

namespace Graphics {
namespace {

constexpr const char* kNoPlatform = "Not supported on this platform";

} // namespace

std::unique_ptr<RenderTargetBase> CreateWindowTarget(void*, bool) {
    GX_RAISE("Graphics::CreateWindowTarget", kNoPlatform);
}

std::unique_ptr<RenderTargetBase> CreateDeviceTarget(void*, const IntRect&) {
    GX_RAISE("Graphics::CreateDeviceTarget", kNoPlatform);
}

std::unique_ptr<RenderTargetBase> CreatePrinterTarget(void*) { GX_RAISE("Graphics::CreatePrinterTarget", kNoPlatform); }

void EnableHardwareForThread() {}

} // namespace Graphics
