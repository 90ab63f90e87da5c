// SPDX-License-Identifier: MIT
// GDI+ is up while a scope lives.
#pragma once

#include "GdipCalls.h"

namespace Graphics {

class GdiplusScope {
public:
    /// Raises `message`, its own for each use of GDI+.
    explicit GdiplusScope(const char* message);
    GdiplusScope(const GdiplusScope&) = delete;
    GdiplusScope& operator=(const GdiplusScope&) = delete;
    ~GdiplusScope();

    /// Brings GDI+ up for the rest of the process, once. Raises "Failed to gdi+ startup"; the next call tries again.
    /// That scope does not end: by the time a library's static objects go, GDI+ may not be shut down any more.
    static void BringUp();
    [[nodiscard]] static bool IsUp() noexcept;

private:
    ULONG_PTR m_token = 0;
};

} // namespace Graphics
