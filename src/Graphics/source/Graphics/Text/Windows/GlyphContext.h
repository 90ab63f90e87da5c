// SPDX-License-Identifier: MIT
// The process's one device context for reading glyphs, created at first use and deleted at unload, and the lock around
// every use of it.
#pragma once

#include <mutex>

#include "../../Windows/DCHandle.h"

namespace Graphics {

/// While this object lives, a font is selected in the context, and other threads wait.
class GlyphContext {
public:
    /// Null leaves the context's default font. Raises "CreateCompatibleDC is failed." and "SetGraphicsMode is failed.";
    /// the next use tries again.
    explicit GlyphContext(HFONT font);

    [[nodiscard]] HDC Get() const noexcept { return m_dc; }

private:
    std::lock_guard<std::mutex> m_lock;
    HDC m_dc;
    GdiSelection m_selection; // must end before the lock does
};

} // namespace Graphics
