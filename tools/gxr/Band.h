// SPDX-License-Identifier: MIT
// A part of a page: rows of it, with the rows of the page's own surfaces that can be seen there.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <exception>
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

// Set by whoever no longer wants what is being drawn.
using StopFlag = std::atomic<bool>;

// Thrown out of a drawing that was stopped; what it has drawn so far is of no use.
struct Stopped : std::exception {
    const char* what() const noexcept override { return "stopped"; }
};

// What a call on a target can change.
struct Touched {
    Rows rows;
    int32_t left = 0, right = 0; // from `left` to before `right`
};

struct Band {
    std::vector<Rows> surfaces;                  // by number, the page first: all that has to be drawn
    const std::vector<Touched>* calls = nullptr; // of each call, in their order
    int32_t left = 0, right = INT32_MAX;         // columns of the page
    const StopFlag* stop = nullptr;              // looked at before every call

    // Of all columns of the other surfaces something may be seen.
    bool Meets(size_t call, size_t surface) const noexcept {
        const Touched& reach = (*calls)[call];
        return reach.rows.Meets(surfaces[surface]) && (surface != 0 || (reach.left < right && left < reach.right));
    }
};

} // namespace Gxr
