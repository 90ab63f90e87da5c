// SPDX-License-Identifier: MIT
// The processor's instruction sets, and one switch for all kernel tables: a page must have the same bytes whichever
// tables draw it, and tests choose tables to prove it.
#pragma once

#include <atomic>

namespace Graphics {

/// From the narrowest to the widest of each kind of processor: Plain runs everywhere, NEON is 64-bit ARM's, the others are
/// those of 64-bit x86.
enum class InstructionSet { Plain, NEON, SSE2, AVX2, AVX512 };

inline constexpr int kInstructionSetCount = 5;

/// True if the build has kernels for the set and the processor supports it.
[[nodiscard]] bool ProcessorHas(InstructionSet set) noexcept;

/// "plain", "neon", "sse2", "avx2" or "avx512".
[[nodiscard]] const char* NameOf(InstructionSet set) noexcept;

/// For tests and benches: from the next draw on, no kernels of sets beyond `widest` are used. Not while another thread
/// draws.
void AllowInstructionSets(InstructionSet widest) noexcept;

namespace Detail {
inline constexpr int kNotYetKnown = -1;
inline constinit std::atomic<int> g_activeSet{kNotYetKnown};
} // namespace Detail

/// The widest set that the processor has and that is allowed. Determined at first use, which may be in the constructor
/// of any static object.
[[nodiscard]] inline InstructionSet ActiveInstructionSet() noexcept {
    const int set = Detail::g_activeSet.load(std::memory_order_relaxed);
    if (set != Detail::kNotYetKnown) [[likely]] {
        return static_cast<InstructionSet>(set);
    }
    AllowInstructionSets(static_cast<InstructionSet>(kInstructionSetCount - 1));
    return static_cast<InstructionSet>(Detail::g_activeSet.load(std::memory_order_relaxed));
}

} // namespace Graphics
