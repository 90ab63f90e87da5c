// SPDX-License-Identifier: MIT
// The list of pages as numbers.
#include "PageList.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace Viewer {
namespace {

TEST(PageList, EveryRowOfTheWindowBelongsToThePageWhosePlaceCoversIt) {
    std::mt19937 random(3);
    PageList list;
    for (int i = 0; i < 3000; ++i) {
        const int count = static_cast<int>(random() % 30), height = 1 + static_cast<int>(random() % 1200);
        list.SetCount(count);
        list.SetHeight(height);
        list.ScrollBy(static_cast<double>(random() % 4000) - 2000.0 + 0.25);
        if (random() % 4 == 0 && count > 0) {
            const int page = static_cast<int>(random() % static_cast<unsigned>(count));
            list.Reveal(page);
            const Box slot = list.Slot(page);
            ASSERT_TRUE(slot.top >= 0 && (slot.Bottom() <= height || slot.top == 0)) << page;
        }
        ASSERT_GE(list.Scrolled(), 0.0);
        ASSERT_LE(list.Scrolled(), std::max(0.0, static_cast<double>(count) * PageList::kSlot - height));
        const int row = static_cast<int>(random() % static_cast<unsigned>(height));
        const int page = list.At(row);
        if (page < 0) {
            ASSERT_GE(row + list.Scrolled(), static_cast<double>(count) * PageList::kSlot - 1);
            continue;
        }
        ASSERT_TRUE(page >= list.First() && page < list.End());
        ASSERT_TRUE(list.Slot(page).Contains(0, row));
    }
}

TEST(PageList, RevealMovesNoFurtherThanNeeded) {
    PageList list;
    list.SetCount(100000);
    list.SetHeight(3 * PageList::kSlot);
    list.Reveal(2);
    EXPECT_EQ(list.Scrolled(), 0.0);
    list.Reveal(3);
    EXPECT_EQ(list.Scrolled(), 1.0 * PageList::kSlot);
    list.Reveal(1);
    EXPECT_EQ(list.Scrolled(), 1.0 * PageList::kSlot);
    list.Reveal(99999);
    EXPECT_EQ(list.End(), 100000);
    EXPECT_EQ(list.First(), 99997);
    list.ScrollBy(static_cast<double>(NAN));
    EXPECT_EQ(list.First(), 0);
    list.SetCount(1);
    EXPECT_EQ(list.At(PageList::kSlot), -1);
}

TEST(PageList, ThumbnailsStandInTheMiddleOfTheirPlaces) {
    PageList list;
    list.SetCount(9);
    list.SetHeight(500);
    for (const auto& [width, height] : {std::pair(112, 80), std::pair(79, 112), std::pair(1, 112)}) {
        const Box slot = list.Slot(2), thumb = list.Thumb(2, width, height);
        EXPECT_EQ(Common(slot, thumb), thumb);
        EXPECT_LE(std::abs((thumb.left - slot.left) - (slot.Right() - thumb.Right())), 1);
    }
}

} // namespace
} // namespace Viewer
