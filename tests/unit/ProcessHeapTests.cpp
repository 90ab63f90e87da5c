// SPDX-License-Identifier: MIT
// Aligned blocks of every size change their size with their contents, on both sides of where they come from the system.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <numeric>
#include <vector>

#include "Exception.h"
#include "ProcessHeap.h"
#include "SpareBlocks.h"

namespace Graphics {
namespace {

constexpr size_t kSystem = ProcessHeap::kSystemBytes;

TEST(ProcessHeap, ArraysKeepTheirValuesWhereverTheyMove) {
    const ProcessHeap::Held before = ProcessHeap::AlignedHeld();
    {
        HeapArray<uint32_t> array;
        for (uint32_t i = 0; i < 2000000; ++i) {
            array.push_back(i);
        }
        for (uint32_t i = 0; i < 2000000; ++i) {
            ASSERT_EQ(array[i], i);
        }
        EXPECT_GE(ProcessHeap::AlignedHeld().systemBytes - before.systemBytes, 8000000);
        array.Remake(100);
        EXPECT_LT(ProcessHeap::AlignedHeld().bytes - before.bytes, 4096) << "a large block is not kept for a small one";
        array.Remake(50);
        EXPECT_EQ(array.capacity(), 100U);
        array.Release();
        EXPECT_EQ(ProcessHeap::AlignedHeld().bytes, before.bytes);
    }
    for (const size_t from : {size_t{0}, size_t{64}, kSystem - 1, kSystem, kSystem * 3 + 5}) {
        for (const size_t to : {size_t{1}, kSystem - 1, kSystem, kSystem * 2, kSystem * 5 + 7}) {
            auto* block = from == 0 ? nullptr : static_cast<uint8_t*>(ProcessHeap::AllocAligned(from));
            std::iota(block, block + from, uint8_t{1});
            const size_t kept = std::min(from, to);
            auto* moved = static_cast<uint8_t*>(ProcessHeap::ReallocAligned(block, from, to, kept));
            EXPECT_EQ(reinterpret_cast<uintptr_t>(moved) % 64, 0U);
            for (size_t i = 0; i < kept; ++i) {
                ASSERT_EQ(moved[i], static_cast<uint8_t>(i + 1)) << from << " to " << to;
            }
            moved[to - 1] = 1;
            EXPECT_EQ(ProcessHeap::AlignedHeld().bytes - before.bytes, static_cast<int64_t>(to));
            EXPECT_EQ(ProcessHeap::AlignedHeld().systemBytes - before.systemBytes,
                      static_cast<int64_t>(to < kSystem ? 0 : to));
            ProcessHeap::FreeAligned(moved, to);
        }
    }
    EXPECT_EQ(ProcessHeap::AlignedHeld().bytes, before.bytes);
    EXPECT_EQ(ProcessHeap::AlignedHeld().systemBytes, before.systemBytes);
}

TEST(ProcessHeap, ARefusedChangeLeavesTheBlock) {
    HeapArray<uint8_t> array;
    array.resize(kSystem);
    array[7] = 77;
    ProcessHeap::FailAfter(0);
    EXPECT_THROW(array.resize(kSystem * 2), Exception);
    ProcessHeap::FailAfter(-1);
    EXPECT_THROW(array.reserve(SIZE_MAX / 4 * 3), Exception);
    EXPECT_EQ(array.size(), kSystem);
    EXPECT_EQ(array[7], 77);
}

TEST(ProcessHeap, BlocksOfMiddleSizeWaitWithinABound) {
    for (const size_t bytes : {SpareBlocks::kLeastBytes, size_t{70000}, kSystem - 1, kSystem, kSystem + 1,
                               SpareBlocks::kMostBytes - 1, SpareBlocks::kMostBytes}) {
        void* const block = ProcessHeap::AllocAligned(bytes);
        std::memset(block, 0xAB, bytes);
        ProcessHeap::FreeAligned(block, bytes);
        auto* const zeroed = static_cast<const uint8_t*>(ProcessHeap::AllocZeroed(bytes));
        EXPECT_EQ(std::count(zeroed, zeroed + bytes, 0), static_cast<ptrdiff_t>(bytes)) << bytes;
        // Of a length next to it, too.
        const size_t rounded = SpareBlocks::Rounded(bytes);
        void* const again = ProcessHeap::AllocAligned(rounded);
        EXPECT_EQ(again, block) << bytes;
        EXPECT_LE(rounded, bytes + bytes / 8 + 1);
        ProcessHeap::FreeAligned(again, rounded);
        ProcessHeap::FreeAligned(const_cast<uint8_t*>(zeroed), bytes);
    }
    std::vector<void*> blocks(100);
    for (size_t i = 0; i < blocks.size(); ++i) {
        blocks[i] = ProcessHeap::AllocAligned(kSystem + i * 4096);
    }
    for (size_t i = 0; i < blocks.size(); ++i) {
        ProcessHeap::FreeAligned(blocks[i], kSystem + i * 4096);
        EXPECT_LE(SpareBlocks::Waiting(), SpareBlocks::kKeptBytes);
    }
    EXPECT_GT(SpareBlocks::Waiting(), SpareBlocks::kKeptBytes - SpareBlocks::kMostBytes);
    const size_t waiting = SpareBlocks::Waiting();
    ProcessHeap::FreeAligned(ProcessHeap::AllocAligned(SpareBlocks::kMostBytes * 2), SpareBlocks::kMostBytes * 2);
    EXPECT_EQ(SpareBlocks::Waiting(), waiting) << "large blocks go straight back";
}

} // namespace
} // namespace Graphics
