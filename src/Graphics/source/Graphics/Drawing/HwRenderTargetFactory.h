// SPDX-License-Identifier: MIT
// What a hardware back end implements: the maker of its targets, one object for each thread that may use it.
#pragma once

#include <memory>

#include "RenderTargetBase.h"

namespace Graphics {

class HwRenderTargetFactory {
public:
    virtual ~HwRenderTargetFactory() = default;

    /// A target for the window. Null, or an engine error, where the hardware cannot: the window is then drawn in
    /// software.
    [[nodiscard]] virtual std::unique_ptr<RenderTargetBase> CreateWindowTarget(void* window) = 0;
};

/// The factory of the build's hardware back end with a new device. Null, or an engine error, where there is none.
[[nodiscard]] std::unique_ptr<HwRenderTargetFactory> CreateHardwareFactory();

} // namespace Graphics
