// SPDX-License-Identifier: MIT
// Which instruction sets the processor has, and one switch for all tables of kernels together: a page must have the
// same bytes whichever tables draw it, and a test can only say so when it can choose.
#pragma once

#include <atomic>

namespace Graphics {

/// From the narrowest to the widest. Plain runs everywhere.
enum class InstructionSet { Plain, SSE2, AVX2, AVX512 };

inline constexpr int kInstructionSetCount = 4;

/// True where the build has kernels for the set and the processor runs them.
[[nodiscard]] bool ProcessorHas(InstructionSet set) noexcept;

/// "plain", "sse2", "avx2" or "avx512".
[[nodiscard]] const char* NameOf(InstructionSet set) noexcept;

/// For tests and benches: kernels made for sets beyond `widest` are not used from the next draw on. Not while another
/// thread draws.
void AllowInstructionSets(InstructionSet widest) noexcept;

namespace Detail {
inline constexpr int kNotYetKnown = -1;
inline constinit std::atomic<int> g_activeSet{kNotYetKnown};
} // namespace Detail

/// The widest set that the processor has and that is allowed. It is found at the first use, whichever static object
/// asks first.
[[nodiscard]] inline InstructionSet ActiveInstructionSet() noexcept {
    const int set = Detail::g_activeSet.load(std::memory_order_relaxed);
    if (set != Detail::kNotYetKnown) [[likely]] {
        return static_cast<InstructionSet>(set);
    }
    AllowInstructionSets(static_cast<InstructionSet>(kInstructionSetCount - 1));
    return static_cast<InstructionSet>(Detail::g_activeSet.load(std::memory_order_relaxed));
}

} // namespace Graphics
