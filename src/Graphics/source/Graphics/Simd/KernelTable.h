// SPDX-License-Identifier: MIT
// The tables of one kind of kernels, one for each instruction set of the build. `Kernels` is a struct of function
// pointers. The loops are in a source whose name ends in Loops.cpp; the build compiles it once per set, and each
// compilation defines that set's table. Tables of sets that the processor lacks are never called, and there are none for
// those that the build lacks.
#pragma once

#include "InstructionSets.h"

namespace Graphics {

template <class Kernels> class KernelTable {
public:
    /// The table used for drawing.
    [[nodiscard]] static const Kernels& Active() noexcept {
        const Kernels* selected = s_selected.load(std::memory_order_acquire);
        return selected != nullptr ? *selected : Made(ActiveInstructionSet());
    }

    /// The table of a set; null if the processor or the build lacks the set.
    [[nodiscard]] static const Kernels* Of(InstructionSet set) noexcept {
        return ProcessorHas(set) ? s_bySet[static_cast<int>(set)] : nullptr;
    }

    /// The table of a set that the processor is known to have.
    [[nodiscard]] static const Kernels& Made(InstructionSet set) noexcept { return *s_bySet[static_cast<int>(set)]; }

    /// For tests and benches of one kind of kernels: forces a table; null restores the choice by instruction set.
    static void Select(const Kernels* table) noexcept { s_selected.store(table, std::memory_order_release); }

private:
    static const Kernels* const s_bySet[kInstructionSetCount];
    static inline constinit std::atomic<const Kernels*> s_selected{nullptr};
};

} // namespace Graphics

// The sets that a build has kernels for, in the order of InstructionSet: of(set, ...) for each, none(set, ...) for the rest.
#if defined(__x86_64__)
#define GX_EACH_SET(of, none, ...)                                                                                     \
    of(Plain, __VA_ARGS__) none(NEON, __VA_ARGS__) of(SSE2, __VA_ARGS__) of(AVX2, __VA_ARGS__) of(AVX512, __VA_ARGS__)
#elif defined(__aarch64__)
#define GX_EACH_SET(of, none, ...)                                                                                     \
    of(Plain, __VA_ARGS__) of(NEON, __VA_ARGS__) none(SSE2, __VA_ARGS__) none(AVX2, __VA_ARGS__)                       \
        none(AVX512, __VA_ARGS__)
#else
#define GX_EACH_SET(of, none, ...)                                                                                     \
    of(Plain, __VA_ARGS__) none(NEON, __VA_ARGS__) none(SSE2, __VA_ARGS__) none(AVX2, __VA_ARGS__)                     \
        none(AVX512, __VA_ARGS__)
#endif

// In a kind's header, in namespace Graphics: each set's table, which has the name `table` in the set's own namespace.
#define GX_DECLARE_KERNEL_TABLE(set, Kernels, table)                                                                   \
    namespace Simd##set {                                                                                              \
        extern const Kernels table;                                                                                    \
    }
#define GX_DECLARE_NO_TABLE(set, Kernels, table)
#define GX_DECLARE_KERNEL_TABLES(Kernels, table)                                                                       \
    GX_EACH_SET(GX_DECLARE_KERNEL_TABLE, GX_DECLARE_NO_TABLE, Kernels, table)                                          \
    template <> const Kernels* const KernelTable<Kernels>::s_bySet[kInstructionSetCount];

// In one source of the kind, in namespace Graphics.
#define GX_KERNEL_TABLE_ENTRY(set, table) &Simd##set::table,
#define GX_NO_TABLE_ENTRY(set, table) nullptr,
#define GX_DEFINE_KERNEL_TABLES(Kernels, table)                                                                        \
    template <>                                                                                                        \
    const Kernels* const KernelTable<Kernels>::s_bySet[kInstructionSetCount] = {                                       \
        GX_EACH_SET(GX_KERNEL_TABLE_ENTRY, GX_NO_TABLE_ENTRY, table)};
