// SPDX-License-Identifier: MIT
// Each thread's permission to draw with the GPU.
#pragma once

#include <memory>

#include "../../Drawing/HwRenderTargetFactory.h"

namespace Graphics {

class ThreadHardware {
public:
    using Maker = std::unique_ptr<HwRenderTargetFactory> (*)();

    /// The calling thread's factory, which ends with the thread; null if it has none.
    [[nodiscard]] static HwRenderTargetFactory* Factory() noexcept;

    /// Makes the calling thread's factory unless it has one. After a failure it has none.
    static void Enable();

    /// For tests: replaces CreateHardwareFactory by `maker` and returns the previous one. The calling thread's factory
    /// is dropped.
    static Maker Replace(Maker maker) noexcept;
};

} // namespace Graphics
