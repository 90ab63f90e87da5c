// SPDX-License-Identifier: MIT
// The table of blend modes that the graphics card computes as the software does, measured: the shaders' formulas in
// floats, rounded to levels, against the software's kernels.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <random>

#include "../ShaderModel.h"
#include "Direct3D11/Shaders/D3D11CardModes.h"
#include "Kernels/RowKernels.h"
#include "Pixels/PixelMath.h"

using namespace Graphics;

namespace {

/// The distance of red, green and blue on one random opaque pixel.
[[nodiscard]] int Distance(std::mt19937& random, uint32_t mode, bool opaque, bool covered) {
    const uint32_t backdrop = random() | 0xFF000000U;
    const uint32_t source = PremultiplyPixel(opaque ? random() | 0xFF000000U : random());
    const auto coverage = static_cast<uint8_t>(covered ? 255 : random() % 256);
    uint32_t software = backdrop;
    const RowKernels& kernels = ActiveKernels();
    (mode == 0 ? kernels.normalVarying : kernels.blend[mode])(&software, &source, &coverage, 1);

    ShaderModel::Inputs in{};
    in.source = ShaderModel::Unit(source);
    in.shape = static_cast<float>(coverage) / 255.0F;
    in.backdrop = ShaderModel::Unit(backdrop);
    const ShaderModel::Float4 card = ShaderModel::Compose(D3D11Fragment::BasicComposition, mode, in).color;
    const auto distance = [software](float v, int shift) {
        const int level = static_cast<int>(std::clamp(v, 0.0F, 1.0F) * 255.0F + 0.5F);
        return std::abs(level - static_cast<int>(software >> shift & 255U));
    };
    return std::max({distance(card.r, 16), distance(card.g, 8), distance(card.b, 0)});
}

} // namespace

TEST(CardModes, AreThoseThatLookLikeTheSoftwares) {
    constexpr int kPixels = 100000;
    for (uint32_t mode = 0; mode < 16; ++mode) {
        int largest = 0;
        int most = 0; // more than two levels away, of kPixels
        for (const bool opaque : {true, false}) {
            for (const bool covered : {true, false}) {
                std::mt19937 random(mode);
                int distant = 0;
                for (int i = 0; i < kPixels; ++i) {
                    const int d = Distance(random, mode, opaque, covered);
                    largest = std::max(largest, d);
                    distant += d > 2 ? 1 : 0;
                }
                most = std::max(most, distant);
            }
        }
        // Four truncated products are four levels at most.
        const bool alike = largest <= 4 && most <= kPixels / 40;
        EXPECT_EQ(alike, CardBlendsAsSoftware(mode)) << mode << " largest " << largest << " distant " << most;
    }
}
