// SPDX-License-Identifier: MIT
// The processor's own instruction for storing one word many times, where it has one.
#pragma once

#include "Vectors.h"

namespace Graphics::GX_SIMD_NAMESPACE {
namespace {

#if defined(__x86_64__)
constexpr bool kHasStringStore = true;
GX_INLINE inline void StringStore(uint32_t* dst, uint32_t value, size_t count) noexcept {
    __asm__ volatile("rep stosl" : "+D"(dst), "+c"(count) : "a"(value) : "memory");
}
#else
constexpr bool kHasStringStore = false;
GX_INLINE inline void StringStore(uint32_t* /*dst*/, uint32_t /*value*/, size_t /*count*/) noexcept {}
#endif

} // namespace
} // namespace Graphics::GX_SIMD_NAMESPACE
