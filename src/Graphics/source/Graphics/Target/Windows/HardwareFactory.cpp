// SPDX-License-Identifier: MIT
// Names the hardware back end.
#include "../HwRenderTargetFactory.h"

namespace Graphics {

std::unique_ptr<HwRenderTargetFactory> CreateHardwareFactory() { return nullptr; }

} // namespace Graphics
