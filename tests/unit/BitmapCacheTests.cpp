// SPDX-License-Identifier: MIT
// The bitmap cache against a plain model, and from several threads.
#include <gtest/gtest.h>

#include <atomic>
#include <deque>
#include <random>
#include <thread>
#include <vector>

#include "BitmapCache.h"

using namespace Graphics;

namespace {

/// Handles are never looked into: any address does.
GXBitmap Handle(uintptr_t n) { return reinterpret_cast<GXBitmap>(n * 16); }

TEST(BitmapCache, EntriesCountWithoutPadding) {
    constexpr uint64_t kBits[] = {32, 24, 32, 32, 32, 8, 8, 8, 1, 1, 1, 32};
    for (uint32_t format = 0; format < 12; ++format) {
        EXPECT_EQ(BitmapCache::EntryBytes({13, 7}, format), (13 * kBits[format] + 7) / 8 * 7) << format;
    }
    EXPECT_EQ(BitmapCache::EntryBytes({3, 1}, GXPixelFormatBGR24), 9U);
    EXPECT_EQ(BitmapCache::EntryBytes({2147483647, 2147483647}, GXPixelFormatBGRA32), 2147483647ULL * 4 * 2147483647);
}

TEST(BitmapCache, FollowsThePlainModel) {
    struct Entry {
        uint32_t ticket;
        GXBitmap bitmap;
        uint64_t bytes;
    };
    std::mt19937 random(1);
    BitmapCache cache;
    std::deque<Entry> model;
    uint64_t quota = 41943040, inUse = 0;
    uint32_t last = 0;
    const auto evict = [&](uint64_t more) {
        while (!model.empty() && inUse + more > quota) {
            inUse -= model.front().bytes;
            model.pop_front();
        }
    };
    for (uint32_t step = 0; step < 20000; ++step) {
        switch (random() % 8) {
        case 0:
            quota = random() % 5 == 0 ? random() % 2 * 41943040 : random() % 60000000;
            cache.SetQuota(quota);
            evict(0);
            break;
        case 1:
        case 2:
        case 3: {
            const uint64_t pixels = random() % 20 == 0 ? 4000 : 400;
            const Size size{static_cast<uint32_t>(1 + random() % pixels), static_cast<uint32_t>(1 + random() % pixels)};
            const uint32_t format = 1 + random() % 10;
            const uint64_t bytes = BitmapCache::EntryBytes(size, format);
            ASSERT_EQ(cache.Put(Handle(step + 1), size, format), ++last);
            evict(bytes);
            model.push_back({last, Handle(step + 1), bytes});
            inUse += bytes;
            break;
        }
        case 4: {
            const uint32_t ticket = last + 2 - random() % 40;
            cache.Remove(ticket);
            for (auto it = model.begin(); it != model.end(); ++it) {
                if (it->ticket == ticket) {
                    inUse -= it->bytes;
                    model.erase(it);
                    break;
                }
            }
            break;
        }
        default: {
            const uint32_t ticket = last + 2 - random() % 40;
            GXBitmap expected = nullptr;
            for (const Entry& e : model) {
                expected = e.ticket == ticket ? e.bitmap : expected;
            }
            ASSERT_EQ(cache.Get(ticket), expected);
            break;
        }
        }
        ASSERT_EQ(cache.InUse(), inUse) << step;
        ASSERT_EQ(cache.Quota(), quota);
    }
}

TEST(BitmapCache, ThreadsShareIt) {
    BitmapCache cache;
    const Size size{512, 512};
    const uint64_t bytes = BitmapCache::EntryBytes(size, GXPixelFormatPBGRA32);
    std::vector<std::thread> threads;
    std::atomic<int> wrong{0};
    for (uintptr_t t = 0; t < 4; ++t) {
        threads.emplace_back([&, t] {
            uint32_t kept = 0;
            for (uintptr_t i = 0; i < 2000; ++i) {
                const uint32_t ticket = cache.Put(Handle(t + 1), size, GXPixelFormatPBGRA32);
                const GXBitmap got = cache.Get(ticket);
                wrong += got != nullptr && got != Handle(t + 1) ? 1 : 0;
                cache.Remove(kept);
                kept = ticket;
                if (i % 64 == 0) {
                    cache.SetQuota(bytes * (1 + i % 50));
                }
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    cache.SetQuota(0);
    EXPECT_EQ(cache.InUse(), 0U);
    EXPECT_EQ(wrong.load(), 0);
}

} // namespace
