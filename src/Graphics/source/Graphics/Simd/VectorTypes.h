// SPDX-License-Identifier: MIT
// The vector types of one instruction set. Included by the set's file of verbs alone, which says first how many bytes a
// register has (GX_SIMD_BYTES).
//
// A source of kernels is compiled once for each set, with the set's flags and its name in GX_SIMD. Everything that it
// makes lies in the set's namespace, and in an unnamed one but for the tables: so no inline function that was compiled
// for a wide processor can be linked into code for a narrow one.
#pragma once

#include <cstddef>
#include <cstdint>

#include "InstructionSets.h"

#define GX_SIMD_JOINED(a, b) a##b
#define GX_SIMD_JOIN(a, b) GX_SIMD_JOINED(a, b)
#define GX_SIMD_NAMESPACE GX_SIMD_JOIN(Simd, GX_SIMD)

/// An attribute, also for members and lambdas. Verbs and what is built from them are always inlined, since vectors
/// would go through memory at a call.
#define GX_INLINE __attribute__((always_inline))

namespace Graphics::GX_SIMD_NAMESPACE {
namespace {

using U8 = uint8_t __attribute__((vector_size(GX_SIMD_BYTES)));
using I8 = int8_t __attribute__((vector_size(GX_SIMD_BYTES)));
using U16 = uint16_t __attribute__((vector_size(GX_SIMD_BYTES)));
using I16 = int16_t __attribute__((vector_size(GX_SIMD_BYTES)));
using U32 = uint32_t __attribute__((vector_size(GX_SIMD_BYTES)));
using I32 = int32_t __attribute__((vector_size(GX_SIMD_BYTES)));
using F32 = float __attribute__((vector_size(GX_SIMD_BYTES)));
using U64 = uint64_t __attribute__((vector_size(GX_SIMD_BYTES)));
using F64 = double __attribute__((vector_size(GX_SIMD_BYTES)));
using I64 = int64_t __attribute__((vector_size(GX_SIMD_BYTES)));

inline constexpr size_t kLanes = GX_SIMD_BYTES / 4;     ///< of 32 bits, each a pixel
inline constexpr size_t kLongLanes = GX_SIMD_BYTES / 8; ///< of 64 bits
inline constexpr InstructionSet kSet = InstructionSet::GX_SIMD;

} // namespace
} // namespace Graphics::GX_SIMD_NAMESPACE
