// SPDX-License-Identifier: MIT
// Bitmap samplers against a plain reading of every pixel, for every format, tiling and interpolation, bit for bit.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>
#include <vector>

#include "Arena.h"
#include "Bitmaps/CacheHolder.h"
#include "Exception.h"
#include "KernelSets.h"
#include "Kernels/PaintKernels.h"
#include "PaintSupport.h"
#include "Scan/DeviceFigures.h"
#include "Sources/SwBitmapColorSource.h"

namespace {

using namespace Graphics;
using namespace PaintSupport;

uint32_t Mix(uint32_t a, uint32_t b, uint32_t w) {
    uint32_t c = 0;
    for (int s = 0; s < 32; s += 8) {
        c |= ((((a >> s) & 255) * (257 - w) >> 8) + (((b >> s) & 255) * w >> 8)) << s;
    }
    return c;
}
uint32_t Scale(uint32_t a, uint32_t f) { return Mix(0, a, f); }

struct Image {
    std::vector<uint8_t> bytes;
    std::vector<uint32_t> palette;
    PixelView view;

    Image(GXPixelFormat format, int32_t width, int32_t height) {
        const int bits[] = {0, 24, 32, 32, 32, 8, 8, 8, 1, 1, 1};
        view.format = format;
        view.width = width;
        view.height = height;
        view.bitOffset = bits[format] == 1 ? g_random() % 8 : 0;
        const auto rowBytes = (static_cast<size_t>(width * bits[format]) + view.bitOffset + 7) / 8;
        view.strideBytes = static_cast<ptrdiff_t>(rowBytes + g_random() % 3);
        bytes.resize(static_cast<size_t>(view.strideBytes) * static_cast<size_t>(height - 1) + rowBytes);
        for (uint8_t& b : bytes) {
            b = static_cast<uint8_t>(g_random());
        }
        if (format == GXPixelFormatPBGRA32) {
            for (int32_t y = 0; y < height; ++y) {
                for (int32_t x = 0; x < width; ++x) {
                    uint8_t* p = &bytes[static_cast<size_t>(y * view.strideBytes + x * 4)];
                    for (int i = 0; i < 3; ++i) {
                        p[i] = std::min(p[i], p[3]);
                    }
                }
            }
        }
        view.data = bytes.data();
        if (g_random() % 2 == 0) { // bottom-up
            view.data += view.strideBytes * (height - 1);
            view.strideBytes = -view.strideBytes;
        }
        if (g_random() % 3 != 0) {
            palette.resize(1 + g_random() % 300);
            for (uint32_t& c : palette) {
                c = static_cast<uint32_t>(g_random());
            }
            view.palette = palette.data();
            view.paletteCount = palette.size();
        }
    }

    uint32_t At(int32_t x, int32_t y, bool mask) const {
        const uint8_t* row = view.data + y * view.strideBytes;
        const uint32_t at = static_cast<uint32_t>(x) + view.bitOffset;
        const uint32_t bit = view.format >= 8 ? (row[at / 8] >> (7 - at % 8)) & 1U : 0;
        const uint8_t* p = row + x * 4;
        const auto word = [](uint32_t a, uint32_t r, uint32_t g, uint32_t b) { return a << 24 | r << 16 | g << 8 | b; };
        const auto premultiplied = [&](uint32_t a, uint32_t r, uint32_t g, uint32_t b) {
            return word(a, r * (a + 1) >> 8, g * (a + 1) >> 8, b * (a + 1) >> 8);
        };
        const auto indexed = [&](uint32_t index, uint32_t grey) {
            if (view.palette == nullptr) {
                return word(255, grey, grey, grey);
            }
            const uint32_t c = index < view.paletteCount ? view.palette[index] : 0xFF000000U;
            return premultiplied(c >> 24, (c >> 16) & 255, (c >> 8) & 255, c & 255);
        };
        if (mask) {
            switch (view.format) {
            case GXPixelFormatPBGRA32:
            case GXPixelFormatBGRA32:
                return p[3] * 0x01010101U;
            case GXPixelFormatAlpha8:
            case GXPixelFormatGray8:
                return row[x] * 0x01010101U;
            case GXPixelFormatAlpha1:
            case GXPixelFormatBlackWhite1:
                return bit * 0xFFFFFFFFU;
            default:
                return 0xFFFFFFFFU;
            }
        }
        switch (view.format) {
        case GXPixelFormatBGR24:
            return word(255, row[x * 3 + 2], row[x * 3 + 1], row[x * 3]);
        case GXPixelFormatPBGRA32:
            return word(p[3], p[2], p[1], p[0]);
        case GXPixelFormatBGRA32:
            return premultiplied(p[3], p[2], p[1], p[0]);
        case GXPixelFormatBGRX32:
            return word(255, p[2], p[1], p[0]);
        case GXPixelFormatAlpha8:
            return word(row[x], row[x], row[x], row[x]);
        case GXPixelFormatIndexed8:
            return indexed(row[x], row[x]);
        case GXPixelFormatGray8:
            return word(255, row[x], row[x], row[x]);
        case GXPixelFormatAlpha1:
            return bit * 0xFFFFFFFFU;
        case GXPixelFormatIndexed1:
            return indexed(bit, bit * 255);
        default:
            return word(255, bit * 255, bit * 255, bit * 255);
        }
    }
};

/// A grid of words, which is all that the oracle samples.
struct Plain {
    int32_t width, height;
    std::vector<uint32_t> words;

    Plain(const Image& image, bool mask) : width(image.view.width), height(image.view.height) {
        for (int32_t y = 0; y < height; ++y) {
            for (int32_t x = 0; x < width; ++x) {
                words.push_back(image.At(x, y, mask));
            }
        }
    }

    /// Means of two neighbours or of one, in one direction; both directions in one rounding.
    void Halve(bool across, bool down) {
        const int32_t w = across ? (width + 1) / 2 : width;
        const int32_t h = down ? (height + 1) / 2 : height;
        std::vector<uint32_t> half;
        for (int32_t y = 0; y < h; ++y) {
            for (int32_t x = 0; x < w; ++x) {
                uint32_t c = 0;
                for (int s = 0; s < 32; s += 8) {
                    uint32_t sum = 0;
                    for (int k = 0; k < 4; ++k) {
                        const int32_t sx = across ? std::min(2 * x + (k & 1), width - 1) : x;
                        const int32_t sy = down ? std::min(2 * y + (k >> 1), height - 1) : y;
                        sum += (words[static_cast<size_t>(sy * width + sx)] >> s) & 255;
                    }
                    c |= (sum + 2) / 4 << s;
                }
                half.push_back(c);
            }
        }
        width = w;
        height = h;
        words = std::move(half);
    }

    static int32_t Tile(int64_t i, int32_t n, uint32_t mode) {
        if (mode == 1) {
            return static_cast<int32_t>(((i % n) + n) % n);
        }
        if (mode == 2) {
            const int64_t a = i < 0 ? -i : i;
            return static_cast<int32_t>((a / n) % 2 == 1 ? n - 1 - a % n : a % n);
        }
        return i <= 0 ? 0 : i >= n ? n - 1 : static_cast<int32_t>(i);
    }
    static int32_t Index(float c) {
        c = std::isnan(c) ? 0.0F : std::clamp(c, -1073741824.0F, 1073741824.0F);
        return static_cast<int32_t>(c) - (c < 0.0F ? 1 : 0);
    }
    static uint32_t Weight(float c) {
        c = std::isnan(c) ? 0.0F : std::clamp(c, -1073741824.0F, 1073741824.0F);
        return (static_cast<uint32_t>((c - static_cast<float>(Index(c))) * 255.0F) & 255U) + 1;
    }
    uint32_t Get(int64_t i, int64_t j, uint32_t modeX, uint32_t modeY) const {
        return words[static_cast<size_t>(Tile(j, height, modeY) * width + Tile(i, width, modeX))];
    }
    uint32_t Linear(float u, float v, uint32_t modeX, uint32_t modeY) const {
        const int64_t i = Index(u), j = Index(v);
        const uint32_t wx = Weight(u), wy = Weight(v);
        const uint32_t top =
            wx == 1 ? Get(i, j, modeX, modeY) : Mix(Get(i, j, modeX, modeY), Get(i + 1, j, modeX, modeY), wx);
        if (wy == 1) {
            return top;
        }
        const uint32_t bottom = wx == 1 ? Get(i, j + 1, modeX, modeY)
                                        : Mix(Get(i, j + 1, modeX, modeY), Get(i + 1, j + 1, modeX, modeY), wx);
        return Mix(top, bottom, wy);
    }
};

Matrix RandomPlacement() {
    switch (g_random() % 6) {
    case 0: // whole pixels
        return {1, 0, 0, 1, std::round(Uniform(-20, 20)), std::round(Uniform(-20, 20))};
    case 1: // scaled up
        return {Uniform(1, 6), 0, 0, Uniform(1, 6), Uniform(-20, 20), Uniform(-20, 20)};
    case 2: // scaled down, perhaps mirrored
        return {Uniform(-1, 1), 0, 0, Uniform(-1, 1), Uniform(-20, 20), Uniform(-20, 20)};
    case 3: // quarter turn
        return {0, 2, -2, 0, Uniform(-20, 20), Uniform(-20, 20)};
    case 4: // parts of a pixel, scale 1
        return {1, 0, 0, 1, Uniform(-20, 20), Uniform(-20, 20)};
    default:
        return {Uniform(-3, 3), Uniform(-3, 3), Uniform(-3, 3), Uniform(-3, 3), Uniform(-90, 90), Uniform(-90, 90)};
    }
}

/// Runs of one row side by side, as a shape's coverage cuts them.
void ExpectRunsEqualFills(SwColorSource& source, int32_t x0, int32_t x1, int32_t y) {
    std::vector<CoverageRun> runs;
    std::vector<uint32_t> plain(static_cast<size_t>(std::max(x1 - x0, 0)));
    for (int32_t x = x0; x < x1;) {
        const auto end = std::min(x1, x + 1 + static_cast<int32_t>(g_random() % 40));
        runs.push_back({x, end, nullptr, 255});
        source.Fill(x, end, y, plain.data() + (x - x0));
        x = end;
    }
    if (!runs.empty()) {
        std::vector<uint32_t> joined(plain.size());
        source.FillRuns(runs, y, joined.data());
        ASSERT_EQ(joined, plain);
    }
}

void ExpectSampled(const Image& image, CacheHolder* derived, uint32_t interpolation, uint32_t modeX, uint32_t modeY,
                   float opacity, const Matrix& placement, bool mask, int rows) {
    Arena arena;
    SwColorSource* source =
        CreateBitmapSource(arena, {image.view, derived, interpolation, modeX, modeY, opacity, placement, mask});
    Matrix m;
    ASSERT_TRUE(Invert(placement, m));
    Plain plain(image, mask);
    double kx = 1.0, ky = 1.0;
    if (interpolation == 2) {
        const double sx = std::sqrt(double(m.m00) * m.m00 + double(m.m01) * m.m01);
        const double sy = std::fabs(double(m.m00) * m.m11 - double(m.m01) * m.m10) / sx;
        const int32_t w = plain.width, h = plain.height;
        const double targetX = std::max(std::ceil(w / sy), 1.0), targetY = std::max(std::ceil(h / sx), 1.0);
        for (;;) {
            const bool across = plain.width > 1 && (plain.width + 1) / 2 > targetX;
            const bool down = plain.height > 1 && (plain.height + 1) / 2 > targetY;
            if (!across && !down) {
                break;
            }
            plain.Halve(across, down);
        }
        kx = double(plain.width) / w;
        ky = double(plain.height) / h;
    }
    const double centre = interpolation == 0 ? 0.0 : 0.5;
    const float m0 = static_cast<float>(m.m00 * kx), m1 = static_cast<float>(m.m01 * ky);
    const float m2 = static_cast<float>(m.m10 * kx), m3 = static_cast<float>(m.m11 * ky);
    const float m4 = static_cast<float>((0.5 * m.m00 + 0.5 * m.m10 + m.m20) * kx - centre);
    const float m5 = static_cast<float>((0.5 * m.m01 + 0.5 * m.m11 + m.m21) * ky - centre);
    const uint32_t factor = mask ? 256 : (static_cast<uint32_t>(opacity * 255.0F) & 255) + 1;
    uint32_t solid = 0;
    const bool isSolid = source->IsSolid(solid);
    int32_t x0 = -30;
    size_t count = 70;
    for (int y = -rows / 2; y < rows / 2; ++y) {
        if (g_random() % 4 == 0) { // spans of a shape: any start, any length
            x0 = static_cast<int32_t>(g_random() % 60) - 30;
            count = g_random() % 80;
        }
        std::vector<uint32_t> out(count + 1, 0x12345678U);
        const auto x1 = static_cast<int32_t>(x0 + static_cast<int32_t>(count));
        source->Fill(x0, x1, y, out.data());
        ASSERT_EQ(out.back(), 0x12345678U);
        ExpectRunsEqualFills(*source, x0, x1, y);
        const uint32_t* direct = source->DirectRow(x0, x1, y);
        const SwDirectBlock block = count != 0 ? source->DirectBlock({x0, y, x1, y + 1}) : SwDirectBlock{};
        float u = m0 * static_cast<float>(x0) + m2 * static_cast<float>(y) + m4;
        float v = m1 * static_cast<float>(x0) + m3 * static_cast<float>(y) + m5;
        for (size_t k = 0; k < count; ++k, u += m0, v += m1) {
            const uint32_t expected =
                Scale(interpolation == 0 ? plain.Get(Plain::Index(u), Plain::Index(v), modeX, modeY)
                                         : plain.Linear(u, v, modeX, modeY),
                      factor);
            ASSERT_EQ(out[k], expected) << "format " << image.view.format << " modes " << interpolation << modeX
                                        << modeY << " mask " << mask << " at " << x0 << " + " << k << ", " << y << " u "
                                        << u << " v " << v << " size " << image.view.width << " x "
                                        << image.view.height;
            ASSERT_TRUE(!isSolid || solid == expected);
            ASSERT_TRUE(!source->IsOpaque() || expected >> 24 == 255);
            ASSERT_TRUE(direct == nullptr || direct[k] == expected);
            if (block.pixels != nullptr) {
                uint32_t word;
                std::memcpy(&word, block.pixels + k * 4, 4);
                ASSERT_EQ(block.hasAlpha ? word : word | 0xFF000000U, expected);
            }
        }
    }
}

TEST(Placement, ASourceMaySpanMoreThanAnInteger) {
    const Matrix m =
        PlaceImage({0, 0, 2, 1}, {INT32_MIN, INT32_MIN, INT32_MAX, 1}, {0, 0, 4294967296.0F, 2147483648.0F});
    EXPECT_EQ(m.m00, 1.0F);
    EXPECT_EQ(m.m20, 2147483648.0F);
    EXPECT_EQ(m.m11, 1.0F);
    EXPECT_EQ(m.m21, 2147483648.0F);
}

TEST(BitmapSampler, EveryFormatTilingAndInterpolationEqualsPlainReading) {
    for (uint32_t format = 1; format <= 10; ++format) {
        for (uint32_t modes = 0; modes < 27; ++modes) {
            for (int round = 0; round < 12; ++round) {
                KernelTable<PaintKernels>::Select(KernelSetOfRound<PaintKernels>(round).kernels);
                // Some large enough for whole vectors inside.
                const uint32_t most = round % 2 == 0 ? 20 : 90;
                const Image image(format, 1 + static_cast<int32_t>(g_random() % most),
                                  1 + static_cast<int32_t>(g_random() % most));
                ExpectSampled(image, nullptr, modes / 9, modes / 3 % 3, modes % 3, round % 3 == 0 ? 0.5F : 1.0F,
                              RandomPlacement(), round % 5 == 4, 16);
                if (HasFatalFailure()) {
                    return;
                }
            }
        }
    }
    KernelTable<PaintKernels>::Select(nullptr);
}

TEST(BitmapSampler, WholePixelPlacementCopiesEveryPixel) {
    Image image(GXPixelFormatPBGRA32, 16, 9);
    image.view.data = image.bytes.data();
    image.view.strideBytes = 64; // aligned rows
    for (const uint32_t interpolation : {0U, 1U, 2U, 9U}) {
        Arena arena;
        SwColorSource* source =
            CreateBitmapSource(arena, {image.view, nullptr, interpolation, 0, 0, 1.0F, {1, 0, 0, 1, -5, 7}, false});
        for (int32_t y = 0; y < 9 && image.bytes.size() >= 64 * 9; ++y) {
            uint32_t out[16];
            source->Fill(-5, 11, y + 7, out);
            for (int32_t x = 0; x < 16; ++x) {
                ASSERT_EQ(out[x], image.At(x, y, false));
            }
            ASSERT_NE(source->DirectRow(-5, 11, y + 7), nullptr);
            EXPECT_EQ(source->DirectRow(-6, 11, y + 7), nullptr);
            EXPECT_EQ(source->DirectRow(-5, 12, y + 7), nullptr);
        }
        EXPECT_EQ(source->DirectBlock({-5, 7, 11, 16}).pixels, image.view.data);
        EXPECT_EQ(source->DirectBlock({-4, 9, 10, 10}).pixels, image.view.data + 2 * 64 + 4);
        for (const IntRect& r : {IntRect{-6, 7, 11, 16}, {-5, 6, 11, 16}, {-5, 7, 12, 16}, {-5, 7, 11, 17}}) {
            EXPECT_EQ(source->DirectBlock(r).pixels, nullptr);
        }
    }
}

TEST(BitmapSampler, ReducedImagesAreKeptWithTheBitmap) {
    Image image(GXPixelFormatBGRA32, 61, 47);
    CacheHolder derived;
    const Matrix small{0.1F, 0, 0, 0.23F, 2, 3};
    ExpectSampled(image, &derived, 2, 0, 0, 1.0F, small, false, 10);
    ExpectSampled(image, &derived, 2, 0, 0, 1.0F, small, true, 10); // a mask has one of its own
    Arena arena;
    uint32_t kept[5];
    uint32_t fresh[5];
    std::fill(image.bytes.begin(), image.bytes.end(), uint8_t{255});
    CreateBitmapSource(arena, {image.view, &derived, 2, 0, 0, 1.0F, small, false})->Fill(2, 7, 5, kept);
    derived.Clear();
    CreateBitmapSource(arena, {image.view, &derived, 2, 0, 0, 1.0F, small, false})->Fill(2, 7, 5, fresh);
    EXPECT_NE(kept[2], fresh[2]);
    EXPECT_EQ(fresh[2], 0xFFFFFFFFU);
}

// Coordinates begin anew at every run, so columns that were made for more runs serve no longer run in their place.
TEST(BitmapSampler, ColumnsBelongToTheirRuns) {
    const Image image(GXPixelFormatPBGRA32, 3000, 2);
    const auto sourceIn = [&](Arena& arena) {
        return CreateBitmapSource(arena,
                                  {image.view, nullptr, 1, 0, 0, 1.0F, Matrix{1.37F, 0, 0, 1, 0.3F, 0.4F}, false});
    };
    for (int32_t more = 1; more < 7; ++more) { // runs of one pixel, then a long one, before and after it is cut
        std::vector<CoverageRun> runs;
        for (int32_t x = 0; x < more; ++x) {
            runs.push_back({x, x + 1, nullptr, 255});
        }
        runs.push_back({more, 2000, nullptr, 255});
        std::vector<CoverageRun> cut = runs;
        cut.push_back({2000, 4000, nullptr, 255});
        runs.back().x1 = 4000;
        Arena arena;
        SwColorSource* const source = sourceIn(arena);
        std::vector<uint32_t> out(4000);
        std::vector<uint32_t> fresh(4000);
        source->FillRuns(cut, 0, out.data());
        source->FillRuns(runs, 0, out.data());
        sourceIn(arena)->FillRuns(runs, 0, fresh.data());
        ASSERT_EQ(out, fresh) << more << " runs before the long one";
    }
}

TEST(BitmapSampler, BearsAnyPlacement) {
    const float odd[] = {0, 1, -1, 1e-30F, 1e30F, 3e38F, -3e38F, kInf, kNaN, 1e9F, 16777216.0F};
    const Image image(GXPixelFormatBGR24, 5, 3);
    for (int round = 0; round < 3000; ++round) {
        const auto pick = [&] { return odd[g_random() % 11]; };
        Arena arena;
        const Matrix placement{pick(), pick(), pick(), pick(), pick(), pick()};
        SwColorSource* source = CreateBitmapSource(
            arena, {image.view, nullptr, static_cast<uint32_t>(g_random() % 3), static_cast<uint32_t>(g_random() % 3),
                    static_cast<uint32_t>(g_random() % 3), pick(), placement, false});
        uint32_t out[20];
        for (const int32_t x : {-2147483647 - 1, -9, 2147483627}) {
            source->Fill(x, x + 20, x, out);
        }
        source->Fill(5, 5, 0, nullptr);
        source->Fill(5, -5, 0, nullptr);
        Matrix m;
        uint32_t color = 1;
        if (!Invert(placement, m)) {
            EXPECT_TRUE(source->IsSolid(color));
            EXPECT_EQ(color, 0U);
        }
    }
}

TEST(BitmapSampler, UnknownFormatIsNotImplemented) {
    Image image(GXPixelFormatBGR24, 2, 2);
    for (const uint32_t format : {0U, 11U, 0xFFFFFFFFU}) {
        image.view.format = format;
        Arena arena;
        EXPECT_THROW(
            static_cast<void>(CreateBitmapSource(arena, {image.view, nullptr, 0, 0, 0, 1.0F, kIdentity, false})),
            Exception);
    }
}

} // namespace
