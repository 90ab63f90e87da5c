// SPDX-License-Identifier: MIT
// What is in sight and not yet drawn.
#include "Cells.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>

namespace Viewer {
namespace {

// With the columns that the box touches drawn in full width.
Box Widened(const Box& box) {
    const int left = box.left / Cells::kColumn * Cells::kColumn;
    return {left, box.top, (box.Right() + Cells::kColumn - 1) / Cells::kColumn * Cells::kColumn - left, box.height};
}

uint64_t Area(const Box& box) { return static_cast<uint64_t>(box.width) * static_cast<uint64_t>(box.height); }

// Draws all that is missing: marks each pixel, and counts.
uint64_t DrawMissing(Cells& cells) {
    uint64_t pixels = 0;
    while (const auto piece = cells.Missing()) {
        EXPECT_EQ(Common(piece->part, piece->cell), piece->part);
        EXPECT_EQ(Common(piece->part, Widened(cells.Visible())), piece->part);
        EXPECT_TRUE(cells.IsWanted(*piece));
        for (int y = piece->part.top; y < piece->part.Bottom(); ++y)
            for (int x = piece->part.left; x < piece->part.Right(); ++x) {
                auto* const pixel = reinterpret_cast<uint32_t*>(
                    piece->pixels.get() + static_cast<size_t>(y - piece->cell.top) * piece->strideBytes +
                    4 * static_cast<size_t>(x - piece->cell.left));
                EXPECT_EQ(*pixel, 0U) << "drawn twice: " << x << " " << y;
                *pixel = static_cast<uint32_t>(y) << 16 | static_cast<uint32_t>(x) | 1U << 31;
                ++pixels;
            }
        cells.Done(*piece);
    }
    return pixels;
}

// Everything in sight once, with its own pixels.
void ExpectAll(const Cells& cells) {
    const Box seen = cells.Visible();
    size_t pixels = 0, wrong = 0;
    cells.ForDrawn([&](const Box& box, const uint8_t* data, size_t stride) {
        for (int y = 0; y < box.height; ++y)
            for (int x = 0; x < box.width; ++x) {
                uint32_t value = 0;
                std::memcpy(&value, data + static_cast<size_t>(y) * stride + 4 * static_cast<size_t>(x), 4);
                wrong += value !=
                         (static_cast<uint32_t>(box.top + y) << 16 | static_cast<uint32_t>(box.left + x) | 1U << 31);
                ++pixels;
            }
    });
    EXPECT_EQ(wrong, 0U);
    EXPECT_EQ(pixels, static_cast<size_t>(seen.width) * static_cast<size_t>(seen.height));
}

TEST(Cells, OnlyColumnsAndRowsThatComeInSightAreDrawn) {
    constexpr int kWidth = 700, kHeight = 500;
    const Box extent{0, 0, 5000, 7000};
    Cells cells;
    Box view{900, 1800, kWidth, kHeight};
    cells.Show(3, 2.0f, extent, view);
    EXPECT_EQ(DrawMissing(cells), Area(Widened(view)));
    ExpectAll(cells);
    std::mt19937 random(5);
    for (int i = 0; i < 40; ++i) {
        const int dx = static_cast<int>(random() % 41) - 20, dy = static_cast<int>(random() % 41) - 20;
        const Box before = view;
        view = view.MovedBy(dx, dy);
        cells.Show(3, 2.0f, extent, view);
        const uint64_t fresh = Area(Widened(view)) - Area(Common(Widened(before), Widened(view)));
        EXPECT_LE(DrawMissing(cells), fresh) << i;
        ExpectAll(cells);
    }
    const uint64_t drawn = DrawMissing(cells);
    EXPECT_EQ(drawn, 0U);
}

TEST(Cells, WhatIsOutOfSightOrAnotherViewIsDropped) {
    const Box extent{0, 0, 60000, 60000};
    Cells cells;
    for (int i = 0; i < 50; ++i) {
        cells.Show(0, 64.0f, extent, {i * 1100, i * 900, 800, 600});
        EXPECT_LE(cells.PixelsHeld(), 4U * Cells::kSide * Cells::kSide);
    }
    const auto piece = cells.Missing();
    ASSERT_TRUE(piece);
    cells.Show(0, 32.0f, extent, {0, 0, 10, 10});
    EXPECT_FALSE(cells.IsWanted(*piece));
    cells.Done(*piece); // too late: nothing of it is taken for the new cell
    EXPECT_TRUE(cells.Missing());
    cells.Show(1, 32.0f, {0, 0, 5, 7}, {0, 0, 100, 100});
    EXPECT_EQ(DrawMissing(cells), 35U);
    EXPECT_EQ(cells.PixelsHeld(), 35U);
    cells.Show(1, 32.0f, {0, 0, 5, 7}, {0, 0, 0, 0});
    EXPECT_FALSE(cells.Missing());
    EXPECT_EQ(cells.PixelsHeld(), 0U);
}

// A part is finished although the view has moved on meanwhile, and one of a cell that was dropped and made anew is not.
TEST(Cells, PartsThatComeLateFindTheirOwnCellAlone) {
    const Box extent{0, 0, 3000, 3000};
    Cells cells;
    cells.Show(0, 1.0f, extent, {0, 0, 100, 100});
    const auto first = cells.Missing();
    cells.Show(0, 1.0f, extent, {50, 50, 100, 100});
    EXPECT_TRUE(cells.IsWanted(*first));
    cells.Done(*first);
    uint64_t missing = 0;
    while (const auto piece = cells.Missing()) {
        missing += Area(piece->part);
        cells.Done(*piece);
    }
    EXPECT_EQ(missing, 50U * Cells::kColumn);
    cells.Show(0, 1.0f, extent, {2000, 2000, 100, 100});
    cells.Show(0, 1.0f, extent, {0, 0, 100, 100});
    cells.Done(*first);
    EXPECT_EQ(DrawMissing(cells), 100U * Cells::kColumn);
}

} // namespace
} // namespace Viewer
