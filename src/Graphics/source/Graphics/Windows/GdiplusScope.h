// SPDX-License-Identifier: MIT
// Keeps GDI+ running while the object lives.
#pragma once

#include "GdipCalls.h"

namespace Graphics {

class GdiplusScope {
public:
    /// Raises `message`, which differs between the uses of GDI+.
    explicit GdiplusScope(const char* message);
    GdiplusScope(const GdiplusScope&) = delete;
    GdiplusScope& operator=(const GdiplusScope&) = delete;
    ~GdiplusScope();

    /// Starts GDI+ once for the rest of the process. Raises "Failed to gdi+ startup"; the next call tries again. GDI+
    /// is then never shut down, because that is no longer allowed when a library's static objects are destroyed.
    static void BringUp();
    [[nodiscard]] static bool IsUp() noexcept;

private:
    ULONG_PTR m_token = 0;
};

} // namespace Graphics
