// SPDX-License-Identifier: MIT
// A sequence of calls goes on after one that failed; what failed first is remembered and raised at its end.
#pragma once

#include <string>
#include <utility>

#include "../Exception.h"
#include "../Windows/GdipCalls.h"

namespace Graphics {

class GdipStatus {
public:
    /// Remembers the first failure. True for success.
    bool Note(Gdiplus::GpStatus status) noexcept {
        if (m_status == Gdiplus::Ok) {
            m_status = status;
        }
        return status == Gdiplus::Ok;
    }
    [[nodiscard]] Gdiplus::GpStatus Get() const noexcept { return m_status; }

    /// Raises "Gdiplus call failed - status: {n}" for what was remembered, and forgets it.
    void Check(const char* raiser) {
        if (const Gdiplus::GpStatus status = std::exchange(m_status, Gdiplus::Ok); status != Gdiplus::Ok) {
            GX_RAISE(raiser, "Gdiplus call failed - status: {" + std::to_string(static_cast<int>(status)) + "}");
        }
    }

private:
    Gdiplus::GpStatus m_status = Gdiplus::Ok;
};

} // namespace Graphics
