// SPDX-License-Identifier: MIT
// The one device context in which the process asks for glyphs, made at first use and given back at unload, and the lock
// around every use of it.
#pragma once

#include <mutex>

#include "../../Windows/DCHandle.h"

namespace Graphics {

/// A font stays in the context, and other threads stay out of it, while this lives.
class GlyphContext {
public:
    /// Null leaves the context's own font. Raises "CreateCompatibleDC is failed." and "SetGraphicsMode is failed.";
    /// the next use tries again.
    explicit GlyphContext(HFONT font);

    [[nodiscard]] HDC Get() const noexcept { return m_dc; }

private:
    std::lock_guard<std::mutex> m_lock;
    HDC m_dc;
    GdiSelection m_selection; // ends before the lock does
};

} // namespace Graphics
