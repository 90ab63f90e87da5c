// SPDX-License-Identifier: MIT
// Regions against a bitmap: random operations, every query, and the canonical form of what comes out.
#include <gtest/gtest.h>

#include <array>
#include <bitset>
#include <cmath>
#include <random>
#include <vector>

#include "Regions/Region.h"

// Found by name look-up, which does not reach from googletest into namespace Graphics.
static bool operator==(const GXIntRect& a, const GXIntRect& b) {
    return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}

namespace Graphics {
namespace {

constexpr int kSide = 48;
using Map = std::bitset<kSide * kSide>;
using Rects = std::vector<IntRect>;

Map ToMap(const IntRect& r) {
    Map map;
    for (int y = std::max(r.top, 0); y < std::min(r.bottom, kSide); ++y) {
        for (int x = std::max(r.left, 0); x < std::min(r.right, kSide); ++x) {
            map.set(static_cast<size_t>(y * kSide + x));
        }
    }
    return map;
}

Rects RectsOf(const Region& region) {
    Rects rects;
    region.EnumRects([&](const IntRect& r) { rects.push_back(r); });
    return rects;
}

Map Apply(const Map& a, const Map& b, RegionOp op) {
    switch (op) {
    case RegionOp::Intersection:
        return a & b;
    case RegionOp::Union:
        return a | b;
    case RegionOp::ExclusiveOr:
        return a ^ b;
    case RegionOp::Difference:
        break;
    }
    return a & ~b;
}

/// Order, disjointness, coalescing in both directions, and the tight bound.
void ExpectCanonical(const Region& region) {
    const Rects rects = RectsOf(region);
    IntRect bound{INT32_MAX, INT32_MAX, INT32_MIN, INT32_MIN};
    std::vector<Rects> bands;
    for (const IntRect& r : rects) {
        ASSERT_FALSE(IsEmpty(r));
        bound = {std::min(bound.left, r.left), std::min(bound.top, r.top), std::max(bound.right, r.right),
                 std::max(bound.bottom, r.bottom)};
        if (!bands.empty() && bands.back().back().top == r.top) {
            ASSERT_EQ(bands.back().back().bottom, r.bottom);
            ASSERT_LT(bands.back().back().right, r.left);
            bands.back().push_back(r);
        } else {
            ASSERT_TRUE(bands.empty() || bands.back().back().bottom <= r.top);
            bands.push_back({r});
        }
    }
    EXPECT_EQ(region.Bound(), rects.empty() ? IntRect{} : bound);
    EXPECT_EQ(region.IsAreaEmpty(), rects.empty());
    for (size_t i = 1; i < bands.size(); ++i) {
        const bool same =
            std::equal(bands[i].begin(), bands[i].end(), bands[i - 1].begin(), bands[i - 1].end(),
                       [](const IntRect& a, const IntRect& b) { return a.left == b.left && a.right == b.right; });
        ASSERT_FALSE(same && bands[i - 1].back().bottom == bands[i].back().top) << "two bands that are one";
    }
}

/// A region, the same area as a bitmap, and how far both were moved.
struct Pair {
    Region region;
    Map map;
    int dx = 0, dy = 0;

    void Check() const {
        Map drawn;
        size_t area = 0;
        for (const IntRect& r : RectsOf(region)) {
            drawn |= ToMap({r.left - dx, r.top - dy, r.right - dx, r.bottom - dy});
            area += static_cast<size_t>(r.right - r.left) * static_cast<size_t>(r.bottom - r.top);
        }
        ASSERT_EQ(drawn, map);
        ASSERT_EQ(area, map.count());
        ExpectCanonical(region);
    }
};

class Random {
public:
    explicit Random(uint32_t seed) : m_engine(seed) {}
    int operator()(int from, int to) { return std::uniform_int_distribution<int>(from, to)(m_engine); }
    IntRect Rect() {
        const int size = (*this)(0, 3) == 0 ? kSide : 7;
        const int x = (*this)(0, kSide - 1), y = (*this)(0, kSide - 1);
        return {x, y, std::min(kSide, x + (*this)(0, size)), std::min(kSide, y + (*this)(0, size))};
    }

private:
    std::mt19937 m_engine;
};

/// The tree under regions beside a plain vector: replacements anywhere, in order as well, keep content, extremes and
/// balance, and leave the earlier sequences as they were.
TEST(Region, SequencesStayBalancedAndUnchanged) {
    struct Item {
        int32_t other;
        [[nodiscard]] int32_t Left() const noexcept { return other; }
        [[nodiscard]] int32_t Right() const noexcept { return other + 5; }
    };
    Random random(3);
    for (int round = 0; round < 4; ++round) {
        std::vector<Item> plain, earlierPlain;
        Sequence<Item> sequence, earlier;
        for (int step = 0; step < 1500; ++step) {
            const int size = static_cast<int>(plain.size());
            const int first = round == 0 ? size : round == 1 ? 0 : random(0, size);
            const int last =
                round < 2 ? first : std::min(size, first + (random(0, 50) == 0 ? random(0, size) : random(0, 3)));
            std::vector<Item> middle(static_cast<size_t>(round < 2            ? 7
                                                         : random(0, 40) == 0 ? random(0, 900)
                                                                              : random(0, 4)));
            for (Item& item : middle) {
                item = {random(-1000, 1000)};
            }
            sequence = sequence.Replace(static_cast<size_t>(first), static_cast<size_t>(last), middle);
            plain.erase(plain.begin() + first, plain.begin() + last);
            plain.insert(plain.begin() + first, middle.begin(), middle.end());
            ASSERT_EQ(sequence.Size(), plain.size());
            ASSERT_LE(sequence.Height(), 1.45 * std::log2(static_cast<double>(plain.size()) / 8 + 2));
            if (step % 100 != 0 || plain.empty()) {
                continue;
            }
            const auto expectEqual = [](const Sequence<Item>& s, const std::vector<Item>& v) {
                int32_t least = INT32_MAX, most = INT32_MIN;
                Sequence<Item>::Cursor cursor(s, 0);
                for (const Item& item : v) {
                    ASSERT_TRUE(cursor && cursor->other == item.other);
                    least = std::min(least, item.Left());
                    most = std::max(most, item.Right());
                    cursor.Next();
                }
                ASSERT_FALSE(cursor);
                ASSERT_TRUE(v.empty() || (s.Left() == least && s.Right() == most));
            };
            expectEqual(sequence, plain);
            expectEqual(earlier, earlierPlain);
            earlier = sequence;
            earlierPlain = plain;
        }
    }
}

TEST(Region, RandomOperationsGiveTheAreasOfABitmap) {
    Random random(7);
    std::array<Pair, 5> pairs;
    for (int step = 0; step < 20000; ++step) {
        SCOPED_TRACE(step);
        const Pair a = pairs[static_cast<size_t>(random(0, 4))];
        Pair b = pairs[static_cast<size_t>(random(0, 4))];
        if (random(0, 1) == 0) {
            const IntRect r = random.Rect();
            b = {Region(r), ToMap(r)};
        }
        // Both in the place of a, so that regions with and without a common shift meet.
        b.region.Offset(a.dx - b.dx, a.dy - b.dy);
        ASSERT_EQ(a.region.Contains(b.region), (b.map & ~a.map).none());
        ASSERT_EQ(a.region.HasIntersection(b.region), (a.map & b.map).any());
        const int pick = random(0, 9);
        const auto op = static_cast<RegionOp>(pick < 4 ? pick : pick < 8 ? 1 : 2);
        Pair c{Region::Combine(a.region, b.region, op), Apply(a.map, b.map, op), a.dx, a.dy};
        c.Check();
        if (testing::Test::HasFatalFailure()) {
            return;
        }
        if (random(0, 7) == 0) {
            const int dx = random(-100, 100), dy = random(-100, 100);
            c.region.Offset(dx, dy);
            c.dx += dx;
            c.dy += dy;
            c.Check();
        }
        pairs[static_cast<size_t>(random(0, 4))] = c;
    }
}

/// Far more intervals and bands than a leaf of the run structure holds, grown, thinned and emptied one at a time.
TEST(Region, LongRowsColumnsAndChessboardsGrowAndVanishPieceByPiece) {
    constexpr int kCount = 3000;
    Random random(11);
    for (int shape = 0; shape < 3; ++shape) {
        std::vector<int> order(kCount);
        for (int i = 0; i < kCount; ++i) {
            order[static_cast<size_t>(i)] = i;
        }
        const auto shuffle = [&] {
            for (size_t i = kCount; i > 1; --i) {
                std::swap(order[i - 1], order[static_cast<size_t>(random(0, static_cast<int>(i) - 1))]);
            }
        };
        const auto cell = [&](int i) {
            const int x = shape == 0 ? i : shape == 1 ? 0 : i % 60, y = shape == 0 ? 0 : shape == 1 ? i : i / 60;
            return IntRect{2 * x, 2 * y, 2 * x + 1, 2 * y + 1};
        };
        Region region;
        shuffle();
        for (const int i : order) {
            region = Region::Combine(region, Region(cell(i)), RegionOp::Union);
        }
        Rects rects = RectsOf(region);
        ASSERT_EQ(rects.size(), static_cast<size_t>(kCount));
        for (int i = 0; i < kCount; ++i) {
            ASSERT_EQ(rects[static_cast<size_t>(i)], cell(i));
        }
        const Region whole = region;
        shuffle();
        for (int i = 0; i < kCount; ++i) {
            const Region piece(cell(order[static_cast<size_t>(i)]));
            ASSERT_TRUE(region.Contains(piece) && region.HasIntersection(piece));
            region = Region::Combine(region, piece, i % 2 == 0 ? RegionOp::Difference : RegionOp::ExclusiveOr);
            ASSERT_FALSE(region.HasIntersection(piece));
            ASSERT_TRUE(whole.Contains(region));
            if (i % 500 == 0) {
                ExpectCanonical(region);
            }
        }
        EXPECT_TRUE(region.IsAreaEmpty());
        ExpectCanonical(whole); // untouched by what was made from it
        EXPECT_EQ(RectsOf(whole).size(), static_cast<size_t>(kCount));
    }
}

TEST(Region, CoordinatesAtTheLimitsStopThere) {
    constexpr int32_t kMin = INT32_MIN, kMax = INT32_MAX;
    const Region all({kMin, kMin, kMax, kMax});
    const Region corner({kMax - 4, kMax - 4, kMax, kMax}), other({kMin, kMin, kMin + 4, kMin + 4});
    Region both = Region::Combine(corner, other, RegionOp::Union);
    EXPECT_EQ(both.Bound(), (IntRect{kMin, kMin, kMax, kMax}));
    EXPECT_EQ(RectsOf(both).size(), 2U);
    EXPECT_TRUE(all.Contains(both));
    const Region frame = Region::Combine(all, both, RegionOp::Difference);
    ExpectCanonical(frame);
    EXPECT_FALSE(frame.HasIntersection(both));
    const Region whole = Region::Combine(frame, both, RegionOp::ExclusiveOr);
    EXPECT_EQ(RectsOf(whole), (Rects{{kMin, kMin, kMax, kMax}}));

    // Moved down to the right, the upper left square stays whole and the other one is gone.
    both.Offset(kMax, kMax);
    EXPECT_EQ(RectsOf(both), (Rects{{-1, -1, 3, 3}}));
    Region stairs = Region::Combine(Region({0, 0, 10, 1}), Region({0, 1, 20, 2}), RegionOp::Union);
    stairs.Offset(kMax - 5, 0); // what made the two rows differ is cut off
    EXPECT_EQ(RectsOf(stairs), (Rects{{kMax - 5, 0, kMax, 2}}));
    stairs.Offset(kMin, kMin);
    EXPECT_EQ(stairs.Bound(), (IntRect{-6, kMin, -1, kMin + 2}));
    stairs.Offset(kMin, 0);
    EXPECT_TRUE(stairs.IsAreaEmpty());
    EXPECT_EQ(stairs.Bound(), IntRect{});

    // A run structure moved across the whole range meets one at the other end.
    Region far = Region::Combine(other, Region({kMin + 6, kMin, kMin + 8, kMin + 4}), RegionOp::Union);
    far.Offset(kMax, 0);
    far.Offset(kMax - 7, 0);
    const Region joined = Region::Combine(far, other, RegionOp::Union);
    ExpectCanonical(joined);
    EXPECT_EQ(RectsOf(joined), (Rects{{kMin, kMin, kMin + 4, kMin + 4},
                                      {kMax - 8, kMin, kMax - 4, kMin + 4},
                                      {kMax - 2, kMin, kMax, kMin + 4}}));
    EXPECT_TRUE(joined.Contains(far) && joined.Contains(other) && !far.Contains(other));
}

} // namespace
} // namespace Graphics
