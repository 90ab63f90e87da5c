// SPDX-License-Identifier: MIT
// Selects the hardware back end.
#include "../../Direct3D11/D3D11RenderTargetFactory.h"

namespace Graphics {

std::unique_ptr<HwRenderTargetFactory> CreateHardwareFactory() { return std::make_unique<D3D11RenderTargetFactory>(); }

} // namespace Graphics
