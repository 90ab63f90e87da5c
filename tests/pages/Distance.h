// SPDX-License-Identifier: MIT
// How far two pictures of the same page are apart. Edges and enlarged images of two good renderers differ in many
// pixels, lighter here and darker there; what is lost or too much stands out where the signed differences of a block
// are added up, since those of an edge cancel.
#pragma once

#include "Picture.h"

#include <algorithm>
#include <cmath>
#include <ostream>

struct Distance {
    double mean = 0.0; // absolute difference of the worst channel
    int strays = 0;    // pixels with a channel that differs by more than kStray levels
    int lighter = 0;   // blocks with a channel that is lighter in the mean, by more than kBlockLevels
    int darker = 0;
    double worst = 0.0; // the largest such mean
};

inline std::ostream& operator<<(std::ostream& out, const Distance& d) {
    return out << "{" << d.mean << ", " << d.strays << ", " << d.lighter << ", " << d.darker << ", " << d.worst << "}";
}

constexpr int kStray = 96;
/// A black line of one pixel across a block is a mean of 32 levels, one of a quarter of a pixel 8.
constexpr uint32_t kBlockSide = 8;
constexpr double kBlockLevels = 8.0;

// Both pictures have one size.
inline Distance Measure(const Picture& actual, const Picture& expected) {
    Distance distance;
    double sums[3] = {0.0, 0.0, 0.0};
    for (uint32_t top = 0; top < actual.height; top += kBlockSide) {
        for (uint32_t left = 0; left < actual.width; left += kBlockSide) {
            double block[3] = {0.0, 0.0, 0.0};
            for (uint32_t y = top; y < std::min(top + kBlockSide, actual.height); ++y) {
                for (uint32_t x = left; x < std::min(left + kBlockSide, actual.width); ++x) {
                    const size_t pixel = (size_t{y} * actual.width + x) * 3;
                    int most = 0;
                    for (size_t c = 0; c < 3; ++c) {
                        const int d = int{actual.rgb[pixel + c]} - int{expected.rgb[pixel + c]};
                        block[c] += d;
                        sums[c] += std::abs(d);
                        most = std::max(most, std::abs(d));
                    }
                    distance.strays += most > kStray;
                }
            }
            const double lighter = *std::max_element(block, block + 3) / (kBlockSide * kBlockSide);
            const double darker = -*std::min_element(block, block + 3) / (kBlockSide * kBlockSide);
            distance.lighter += lighter > kBlockLevels;
            distance.darker += darker > kBlockLevels;
            distance.worst = std::max({distance.worst, lighter, darker});
        }
    }
    distance.mean = *std::max_element(sums, sums + 3) / (static_cast<double>(actual.width) * actual.height);
    return distance;
}
