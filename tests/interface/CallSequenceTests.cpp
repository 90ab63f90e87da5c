// SPDX-License-Identifier: MIT
// Any order of calls, balanced or not, on objects that come and go: a result code, and no write outside the buffer.
#include <gtest/gtest.h>

#include <random>

#include "CallStream.h"

namespace {

struct RandomChoice {
    std::mt19937 random;
    uint32_t Below(uint32_t n) { return static_cast<uint32_t>(random() % n); }
};

TEST(CallSequences, RandomOnesGiveResultsAndStayInsideTheirBuffer) {
    for (uint32_t seed = 0; seed < 1200; ++seed) {
        RandomChoice choice{std::mt19937(seed)};
        CallStream<RandomChoice> calls(choice);
        for (int i = 0; i < 400; ++i) {
            ASSERT_TRUE(calls.Call()) << "seed " << seed << " call " << i;
        }
        ASSERT_TRUE(calls.GuardsHold()) << "seed " << seed;
    }
    EXPECT_EQ(GXBitmapCacheSetMemoryQuota(0), GXResultSuccess); // it knows handles that have gone
    EXPECT_EQ(GXBitmapCacheSetMemoryQuota(uint64_t{40} << 20), GXResultSuccess);
}

} // namespace
