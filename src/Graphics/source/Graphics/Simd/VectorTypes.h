// SPDX-License-Identifier: MIT
// The vector types of one instruction set. Included only by the set's verb file, which first defines the bytes of a
// register (GX_SIMD_BYTES).
//
// A kernel source is compiled once per set, with the set's flags and its name in GX_SIMD. Everything in it lies in the
// set's namespace, and all but the tables in an unnamed one; so the linker cannot use an inline function compiled for a
// wide processor in code for a narrow one.
#pragma once

#include <cstddef>
#include <cstdint>

#include "InstructionSets.h"

#define GX_SIMD_JOINED(a, b) a##b
#define GX_SIMD_JOIN(a, b) GX_SIMD_JOINED(a, b)
#define GX_SIMD_NAMESPACE GX_SIMD_JOIN(Simd, GX_SIMD)

/// An attribute, also for members and lambdas. Verbs and the functions built from them are always inlined, since a call
/// would pass vectors through memory.
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
