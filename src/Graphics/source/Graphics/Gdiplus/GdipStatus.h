// SPDX-License-Identifier: MIT
// The status of a sequence of GDI+ calls, which continues after a failure: stores the first failure and raises it at
// the end.
#pragma once

#include <string>
#include <utility>

#include "../Exception.h"
#include "../Windows/GdipCalls.h"

namespace Graphics {

class GdipStatus {
public:
    /// Stores the first failure. Returns true for success.
    bool Note(Gdiplus::GpStatus status) noexcept {
        if (m_status == Gdiplus::Ok) {
            m_status = status;
        }
        return status == Gdiplus::Ok;
    }
    [[nodiscard]] Gdiplus::GpStatus Get() const noexcept { return m_status; }

    /// Raises "Gdiplus call failed - status: {n}" for the stored failure, if any, and clears it.
    void Check(const char* raiser) {
        if (const Gdiplus::GpStatus status = std::exchange(m_status, Gdiplus::Ok); status != Gdiplus::Ok) {
            GX_RAISE(raiser, "Gdiplus call failed - status: {" + std::to_string(static_cast<int>(status)) + "}");
        }
    }

private:
    Gdiplus::GpStatus m_status = Gdiplus::Ok;
};

} // namespace Graphics
