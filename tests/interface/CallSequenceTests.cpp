// SPDX-License-Identifier: MIT
// Any order of calls, balanced or not, on objects that come and go: a result code, and no write outside the buffer.
#include <gtest/gtest.h>

#include <random>

#include "CallStream.h"

namespace {

class RandomChoice final : public CallChoice {
public:
    explicit RandomChoice(uint32_t seed) : m_random(seed) {}
    uint32_t Below(uint32_t n) override { return static_cast<uint32_t>(m_random() % n); }

private:
    std::mt19937 m_random;
};

TEST(CallSequences, RandomOnesGiveResultsAndStayInsideTheirBuffer) {
    constexpr uint32_t kSeeds = 1000;
    constexpr int kSequences = 200; // of each seed, on objects that they share
    for (uint32_t seed = 0; seed < kSeeds; ++seed) {
        RandomChoice choice(seed);
        CallStream calls(choice);
        for (int sequence = 0; sequence < kSequences; ++sequence) {
            ASSERT_TRUE(calls.Restart());
            const uint32_t count = 1 + choice.Below(6);
            for (uint32_t i = 0; i < count; ++i) {
                ASSERT_TRUE(calls.Call()) << "seed " << seed << " sequence " << sequence << " call " << i;
            }
            ASSERT_TRUE(calls.GuardsHold()) << "seed " << seed << " sequence " << sequence;
        }
    }
    EXPECT_EQ(GXBitmapCacheSetMemoryQuota(0), GXResultSuccess); // it knows handles that have gone
    EXPECT_EQ(GXBitmapCacheSetMemoryQuota(uint64_t{40} << 20), GXResultSuccess);
}

} // namespace
