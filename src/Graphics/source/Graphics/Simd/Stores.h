// SPDX-License-Identifier: MIT
// How the processor likes long stores: in an instruction of its own, aligned, after a fetch of the lines.
#pragma once

#include "Vectors.h"

namespace Graphics::GX_SIMD_NAMESPACE {
namespace {

#if defined(__x86_64__)
constexpr bool kHasStringStore = true;
constexpr bool kAlignsStores = true;
constexpr bool kFetchesBeforeStores = true;
GX_INLINE inline void StringStore(uint32_t* dst, uint32_t value, size_t count) noexcept {
    __asm__ volatile("rep stosl" : "+D"(dst), "+c"(count) : "a"(value) : "memory");
}
#else
// Vectors of 16 bytes seldom cross a line, and processors that see a stream of stores write whole lines unread.
constexpr bool kHasStringStore = false;
constexpr bool kAlignsStores = false;
constexpr bool kFetchesBeforeStores = false;
GX_INLINE inline void StringStore(uint32_t* /*dst*/, uint32_t /*value*/, size_t /*count*/) noexcept {}
#endif

} // namespace
} // namespace Graphics::GX_SIMD_NAMESPACE
