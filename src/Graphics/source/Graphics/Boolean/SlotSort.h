// SPDX-License-Identifier: MIT
// Sorts numbers that are spread evenly, as coordinates mostly are, in linear time: each number goes to the slot that
// its value suggests, one slot per number, and the few that are then out of order are moved.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <utility>

#include "../ProcessHeap.h"

namespace Graphics {

template <class T> class SlotSort {
public:
    /// False, with nothing done, if the numbers crowd together. `numberOf` gives an item's number; the sort is stable.
    template <class NumberOf> [[nodiscard]] bool Sort(HeapArray<T>& items, const NumberOf& numberOf) {
        const size_t count = items.size();
        if (count < 2) {
            return true;
        }
        uint64_t least = UINT64_MAX, most = 0;
        for (const T& item : items) {
            least = std::min<uint64_t>(least, numberOf(item));
            most = std::max<uint64_t>(most, numberOf(item));
        }
        const int shift = std::max(static_cast<int>(std::bit_width(most - least)) - 32, 0);
        const uint64_t scale = (static_cast<uint64_t>(count) << 32) / (((most - least) >> shift) + 1);
        const auto slotOf = [&](const T& item) { return ((numberOf(item) - least) >> shift) * scale >> 32; };
        m_slots.resize(count);
        std::fill(m_slots.begin(), m_slots.end(), 0U);
        for (const T& item : items) {
            ++m_slots[slotOf(item)];
        }
        uint32_t sum = 0;
        uint64_t pairs = 0;
        for (uint32_t& slot : m_slots) {
            pairs += static_cast<uint64_t>(slot) * slot;
            sum += std::exchange(slot, sum);
        }
        if (pairs > kPairsPerItem * count) {
            return false;
        }
        m_scratch.resize(count);
        for (const T& item : items) {
            m_scratch[m_slots[slotOf(item)]++] = item;
        }
        std::swap(items, m_scratch);
        for (size_t i = 1; i < count; ++i) {
            const T item = items[i];
            size_t k = i;
            for (; k > 0 && numberOf(items[k - 1]) > numberOf(item); --k) {
                items[k] = items[k - 1];
            }
            items[k] = item;
        }
        return true;
    }

private:
    static constexpr uint64_t kPairsPerItem = 16; // an item out of order moves by a quarter of this on average

    HeapArray<uint32_t> m_slots;
    HeapArray<T> m_scratch;
};

} // namespace Graphics
