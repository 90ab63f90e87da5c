// SPDX-License-Identifier: MIT
// Which instruction sets the processor has, and one switch for all tables of kernels together: a page must have the
// same bytes whichever tables draw it, and a test can only say so when it can choose.
#pragma once

#include <atomic>

namespace Graphics {

enum class InstructionSet { Plain, SSE2, AVX2, AVX512 };

inline constexpr int kInstructionSetCount = 4;

[[nodiscard]] bool ProcessorHas(InstructionSet set) noexcept;

namespace Detail {
inline constinit std::atomic<int> g_widestAllowed{kInstructionSetCount - 1};
}

/// For tests and benches: kernels made for sets beyond `widest` are not used from the next draw on. Not while another
/// thread draws.
inline void AllowInstructionSets(InstructionSet widest) noexcept {
    Detail::g_widestAllowed.store(static_cast<int>(widest), std::memory_order_relaxed);
}

/// The tables of one kind of kernels, the best one of each allowance found once.
template <class Table> class KernelChoice {
public:
    /// `find` gives the table made for a set, null where build or processor lack it; one at least is there.
    explicit KernelChoice(const Table* (*find)(InstructionSet) noexcept) noexcept {
        const Table* best = nullptr;
        for (int set = 0; set < kInstructionSetCount; ++set) {
            if (const Table* table = find(static_cast<InstructionSet>(set))) {
                best = table;
            }
            m_best[set] = best;
        }
        for (int set = kInstructionSetCount - 1; set > 0; --set) {
            if (m_best[set - 1] == nullptr) {
                m_best[set - 1] = m_best[set];
            }
        }
    }

    [[nodiscard]] const Table& Active() const noexcept {
        const Table* selected = m_selected.load(std::memory_order_acquire);
        return selected != nullptr ? *selected : *m_best[Detail::g_widestAllowed.load(std::memory_order_relaxed)];
    }

    /// For tests and benches of one kind of kernels: makes a table the active one; null gives the choice back.
    void Select(const Table* table) noexcept { m_selected.store(table, std::memory_order_release); }

private:
    std::atomic<const Table*> m_selected{nullptr};
    const Table* m_best[kInstructionSetCount];
};

} // namespace Graphics
