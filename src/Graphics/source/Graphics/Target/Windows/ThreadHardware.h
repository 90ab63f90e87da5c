// SPDX-License-Identifier: MIT
// Each thread's own permission to draw with the graphics processor.
#pragma once

#include <memory>

#include "../../Drawing/HwRenderTargetFactory.h"

namespace Graphics {

class ThreadHardware {
public:
    using Maker = std::unique_ptr<HwRenderTargetFactory> (*)();

    /// The calling thread's factory; null where it has none. It ends with the thread.
    [[nodiscard]] static HwRenderTargetFactory* Factory() noexcept;

    /// Makes the calling thread's factory unless it has one. A failure leaves the thread without.
    static void Enable();

    /// For tests: puts another maker in the place of CreateHardwareFactory and gives the one that was there. The
    /// calling thread loses its factory.
    static Maker Replace(Maker maker) noexcept;
};

} // namespace Graphics
