// SPDX-License-Identifier: MIT
// A part of a page: rows of it, with the rows of the page's own surfaces that can be seen there.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Gxr {

// Rows of a surface in its pixels, from `top` to before `bottom`.
struct Rows {
    int32_t top = 0, bottom = 0;

    bool IsEmpty() const noexcept { return top >= bottom; }
    bool Meets(const Rows& other) const noexcept {
        return !IsEmpty() && !other.IsEmpty() && top < other.bottom && other.top < bottom;
    }
};

struct Band {
    std::vector<Rows> surfaces;               // by number, the page first: all that has to be drawn
    const std::vector<Rows>* calls = nullptr; // what each call on a target can change there, in their order
};

} // namespace Gxr
