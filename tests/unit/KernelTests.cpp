// SPDX-License-Identifier: MIT
// Every entry of every kernel table against formulas written out channel by channel, at every count and alignment that
// crosses blocks and tails, between guard bytes.
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "../BlendOracle.h"
#include "KernelSets.h"
#include "Kernels/RowKernels.h"

namespace {

using namespace BlendOracle;
using Graphics::InstructionSet;
using Graphics::KernelTable;
using Graphics::LayerRowPlanes;
using Graphics::RowKernels;

class Source {
public:
    explicit Source(unsigned seed) : m_engine(seed) {}

    int Byte() {
        const unsigned pick = m_engine() % 4U;
        return pick == 0 ? 0 : pick == 1 ? 255 : int(m_engine() % 256U);
    }
    /// Mostly valid premultiplied; sometimes any word.
    uint32_t Pixel() {
        if (m_engine() % 8U == 0) {
            return uint32_t(m_engine());
        }
        const int a = Byte();
        const auto c = [&] { return a == 0 ? 0 : m_engine() % 4U == 0 ? a : int(m_engine() % unsigned(a + 1)); };
        return Join({c(), c(), c(), a});
    }
    /// One kind over a whole row now and then, so that the paths for uniform blocks run.
    void Fill(std::vector<uint8_t>& row) {
        const unsigned kind = m_engine() % 5U;
        for (uint8_t& v : row) {
            v = uint8_t(kind == 0 ? 0 : kind == 1 ? 255 : Byte());
        }
    }
    void Fill(std::vector<uint32_t>& row) {
        const unsigned kind = m_engine() % 5U;
        for (uint32_t& v : row) {
            v = kind == 0 ? WithAlpha(Pixel(), 255) : kind == 1 ? 0 : Pixel();
        }
    }
    unsigned Number(unsigned below) { return unsigned(m_engine() % below); }

private:
    std::mt19937 m_engine;
};

/// A row with guard elements before and after, its first element at any alignment that its type allows.
template <class T> struct Guarded {
    static constexpr size_t kGuard = 24;
    std::vector<T> memory;
    size_t offset;
    std::vector<T> before;

    Guarded(const std::vector<T>& row, size_t shift)
        : memory(row.size() + 2 * kGuard + shift, T(0xA5)), offset(kGuard + shift) {
        std::copy(row.begin(), row.end(), memory.begin() + ptrdiff_t(offset));
        before = memory;
    }
    T* Row() { return memory.data() + offset; }
    /// Compares with `expected` in place of the row and the guards as they were.
    ::testing::AssertionResult Is(const std::vector<T>& expected) {
        std::copy(expected.begin(), expected.end(), before.begin() + ptrdiff_t(offset));
        for (size_t i = 0; i < memory.size(); ++i) {
            if (memory[i] != before[i]) {
                return ::testing::AssertionFailure()
                       << std::hex << "element " << std::dec << ptrdiff_t(i) - ptrdiff_t(offset) << std::hex << " is "
                       << +memory[i] << ", expected " << +before[i];
            }
        }
        return ::testing::AssertionSuccess();
    }
};

class KernelTest : public ::testing::TestWithParam<int> {
protected:
    void SetUp() override {
        m_kernels = KernelTable<RowKernels>::Of(static_cast<InstructionSet>(GetParam()));
        if (m_kernels == nullptr) {
            GTEST_SKIP() << "set " << GetParam() << " is not available";
        }
    }
    /// Rows of every count 0 to 67 at changing alignments, `rounds` times.
    void ForRows(int rounds, const std::function<void(Source&, size_t count, size_t shift)>& test) {
        for (int round = 0; round < rounds; ++round) {
            for (size_t count = 0; count <= 67; ++count) {
                Source random(unsigned(round * 1000) + unsigned(count));
                SCOPED_TRACE("round " + std::to_string(round) + " count " + std::to_string(count));
                test(random, count, (count * 7 + size_t(round)) % 17);
                if (HasFailure()) {
                    return;
                }
            }
        }
    }
    const RowKernels* m_kernels = nullptr;
};

/// Runs an in-place operation on pixels and compares each with f(pixel, index).
template <class Run, class Oracle>
void CheckPixels(const std::vector<uint32_t>& dst, size_t shift, const char* what, Run run, Oracle oracle) {
    Guarded<uint32_t> row(dst, shift);
    run(row.Row());
    std::vector<uint32_t> expected(dst.size());
    for (size_t i = 0; i < dst.size(); ++i) {
        expected[i] = oracle(dst[i], i);
    }
    EXPECT_TRUE(row.Is(expected)) << what;
}

TEST_P(KernelTest, PlainRowsFollowTheirFormulas) {
    ForRows(34, [&](Source& random, size_t n, size_t shift) {
        std::vector<uint32_t> dst(n);
        std::vector<uint8_t> mask(n);
        random.Fill(dst);
        random.Fill(mask);
        Guarded<uint8_t> m(mask, shift / 2);
        const uint32_t color = random.Pixel();
        const uint32_t factor = random.Number(256) + 1;
        const auto& k = *m_kernels;
        CheckPixels(
            dst, shift, "fill32", [&](uint32_t* p) { k.fill32(p, color, n); }, [&](uint32_t, size_t) { return color; });
        CheckPixels(
            dst, shift, "setOpaque", [&](uint32_t* p) { k.setOpaque(p, nullptr, n); },
            [](uint32_t d, size_t) { return WithAlpha(d, 255); });
        CheckPixels(
            dst, shift, "setOpaque under shape", [&](uint32_t* p) { k.setOpaque(p, m.Row(), n); },
            [&](uint32_t d, size_t i) { return mask[i] == 0 ? d : WithAlpha(d, 255); });
        const auto* bytes = reinterpret_cast<const uint8_t*>(dst.data());
        const std::vector<uint8_t> odd(bytes, bytes + 4 * n);
        Guarded<uint8_t> source(odd, shift); // at any address
        CheckPixels(
            std::vector<uint32_t>(n, color), shift, "copyOpaque",
            [&](uint32_t* p) { k.copyOpaque(p, source.Row(), n); },
            [&](uint32_t, size_t i) { return WithAlpha(dst[i], 255); });
        EXPECT_TRUE(source.Is(odd));
        const size_t gap = random.Number(5);
        const size_t rows = n == 0 ? 0 : random.Number(4);
        CheckPixels(
            std::vector<uint32_t>((n + gap) * rows, 3), shift, "fillBlock",
            [&](uint32_t* p) { k.fillBlock(p, ptrdiff_t(n + gap) * 4, color, n, rows); },
            [&](uint32_t d, size_t i) { return i % (n + gap) < n ? color : d; });
        CheckPixels(
            std::vector<uint32_t>((n + gap) * rows, 3), shift, "fillBlock upwards",
            [&](uint32_t* p) {
                if (rows != 0) {
                    k.fillBlock(p + (n + gap) * (rows - 1), -ptrdiff_t(n + gap) * 4, color, n, rows);
                }
            },
            [&](uint32_t d, size_t i) { return i % (n + gap) < n ? color : d; });
        CheckPixels(
            dst, shift, "scaleColor", [&](uint32_t* p) { k.scaleColor(p, m.Row(), n); },
            [&](uint32_t d, size_t i) { return mask[i] < 255 ? Times(d, mask[i] + 1) : d; });
        CheckPixels(
            dst, shift, "scaleColorBy", [&](uint32_t* p) { k.scaleColorBy(p, factor, n); },
            [&](uint32_t d, size_t) { return Times(d, int(factor)); });
        CheckPixels(
            dst, shift, "premultiply", [&](uint32_t* p) { k.premultiply(p, n); },
            [](uint32_t d, size_t) { return WithAlpha(Times(d, Split(d).a + 1), Split(d).a); });
        CheckPixels(
            dst, shift, "replaceSolid", [&](uint32_t* p) { k.replaceSolid(p, color, m.Row(), n); },
            [&](uint32_t d, size_t i) {
                return mask[i] == 0 ? d : mask[i] == 255 ? color : Times(d, 256 - mask[i]) + Times(color, mask[i] + 1);
            });
        CheckPixels(
            dst, shift, "replaceSolid", [&](uint32_t* p) { k.replaceSolid(p, color, nullptr, n); },
            [&](uint32_t, size_t) { return color; });
        CheckPixels(
            dst, shift, "invert", [&](uint32_t* p) { k.invert(p, n); },
            [](uint32_t d, size_t) {
                const Px x = Split(d);
                return Join({std::max(0, x.a - x.b), std::max(0, x.a - x.g), std::max(0, x.a - x.r), x.a});
            });
    });
    // Long rows run the unrolled stores.
    for (size_t n : {255U, 256U, 300U, 1023U}) {
        CheckPixels(
            std::vector<uint32_t>(n, 1), n % 16, "fill32", [&](uint32_t* p) { m_kernels->fill32(p, 7, n); },
            [](uint32_t, size_t) { return 7U; });
    }
}

TEST_P(KernelTest, MasksFollowTheirFormulas) {
    ForRows(34, [&](Source& random, size_t quarter, size_t shift) {
        const size_t n = quarter * 3; // bytes come by whole registers, up to 64
        std::vector<uint32_t> pixels(n);
        std::vector<uint8_t> shape(n);
        std::vector<uint8_t> mask(n);
        random.Fill(pixels);
        random.Fill(shape);
        random.Fill(mask);
        Guarded<uint32_t> p(pixels, shift);
        std::vector<uint8_t> expected(n);
        for (int type = 0; type < 4; ++type) {
            Guarded<uint8_t> values(shape, shift);
            m_kernels->maskValues[type](values.Row(), p.Row(), n);
            std::transform(pixels.begin(), pixels.end(), expected.begin(),
                           [&](uint32_t x) { return uint8_t(MaskOracle(type, x)); });
            EXPECT_TRUE(values.Is(expected)) << "mask type " << type;
        }
        const auto by = [](int s, int m) { return uint8_t(m < 255 ? s * (m + 1) / 256 : s); };
        Guarded<uint8_t> m(mask, 16 - shift % 16);
        Guarded<uint8_t> row(shape, shift);
        m_kernels->scaleShape(row.Row(), m.Row(), n);
        std::transform(shape.begin(), shape.end(), mask.begin(), expected.begin(), by);
        EXPECT_TRUE(row.Is(expected)) << "scaleShape";

        Guarded<uint8_t> self(shape, shift);
        m_kernels->scaleShape(self.Row(), self.Row(), n);
        std::transform(shape.begin(), shape.end(), shape.begin(), expected.begin(), by);
        EXPECT_TRUE(self.Is(expected)) << "scaleShape by itself";
    });
}

TEST_P(KernelTest, CompositesOverABasicTarget) {
    ForRows(17, [&](Source& random, size_t n, size_t shift) {
        std::vector<uint32_t> dst(n);
        std::vector<uint32_t> src(n);
        std::vector<uint8_t> shape(n);
        random.Fill(dst);
        random.Fill(src);
        random.Fill(shape);
        Guarded<uint32_t> s(src, 16 - shift % 16);
        Guarded<uint8_t> f(shape, shift / 2);
        const uint32_t color = random.Pixel();
        for (bool shaped : {false, true}) {
            const uint8_t* shapeRow = shaped ? f.Row() : nullptr;
            const auto at = [&](size_t i) { return shaped ? int(shape[i]) : 255; };
            CheckPixels(
                dst, shift, "normalSolid", [&](uint32_t* p) { m_kernels->normalSolid(p, color, shapeRow, n); },
                [&](uint32_t d, size_t i) { return NormalOracle(d, color, at(i)); });
            CheckPixels(
                dst, shift, "normalVarying", [&](uint32_t* p) { m_kernels->normalVarying(p, s.Row(), shapeRow, n); },
                [&](uint32_t d, size_t i) { return NormalOracle(d, src[i], at(i)); });
            if (shaped) { // rows without gaps: together they are one row
                const size_t rows = 1 + random.Number(3);
                const size_t step = n / rows;
                CheckPixels(
                    dst, shift, "normalSolidBlock",
                    [&](uint32_t* p) {
                        m_kernels->normalSolidBlock(p, ptrdiff_t(step) * 4, color, shapeRow, ptrdiff_t(step), step,
                                                    rows);
                    },
                    [&](uint32_t d, size_t i) { return i < step * rows ? NormalOracle(d, color, at(i)) : d; });
            }
            for (int mode = 0; mode < int(Graphics::kBlendCount); ++mode) {
                SCOPED_TRACE("mode " + std::to_string(mode));
                CheckPixels(
                    dst, shift, "blend", [&](uint32_t* p) { m_kernels->blend[mode](p, s.Row(), shapeRow, n); },
                    [&](uint32_t d, size_t i) { return ModeOracle(mode, d, src[i], at(i)); });
                CheckPixels(
                    dst, shift, "blendSolid", [&](uint32_t* p) { m_kernels->blendSolid[mode](p, color, shapeRow, n); },
                    [&](uint32_t d, size_t i) { return ModeOracle(mode, d, color, at(i)); });
            }
        }
    });
}

TEST_P(KernelTest, RunsOfARowTakeOneColour) {
    ForRows(29, [&](Source& random, size_t n, size_t shift) {
        if (n == 0) {
            return;
        }
        std::vector<uint32_t> dst(n);
        random.Fill(dst);
        std::vector<uint8_t> shape(n);
        std::vector<uint8_t> coverage(n, 0);
        std::vector<Graphics::CoverageRun> runs;
        const auto left = static_cast<int32_t>(random.Number(1000)) - 500;
        for (size_t x = 0; x < n;) {
            const size_t end = std::min(n, x + 1 + random.Number(random.Number(3) == 0 ? 90 : 12));
            Graphics::CoverageRun run{left + int32_t(x), left + int32_t(end), nullptr, 0};
            if (random.Number(2) == 0) {
                run.shape = shape.data() + x;
                for (size_t i = x; i < end; ++i) {
                    shape[i] = coverage[i] = static_cast<uint8_t>(random.Number(3) == 0 ? 0 : random.Number(256));
                }
            } else {
                run.value = static_cast<uint8_t>(random.Number(2) == 0 ? 255 : 1 + random.Number(255));
                std::fill(coverage.begin() + ptrdiff_t(x), coverage.begin() + ptrdiff_t(end), run.value);
            }
            runs.push_back(run);
            x = end + (random.Number(2) == 0 ? 0 : random.Number(20));
        }
        const auto begin = static_cast<size_t>(runs.front().x0 - left);
        const uint32_t color = random.Pixel();
        CheckPixels(
            dst, shift, "solidRuns",
            [&](uint32_t* p) { m_kernels->solidRuns(*m_kernels, p + begin, color, runs.data(), runs.size()); },
            [&](uint32_t d, size_t i) { return NormalOracle(d, color, coverage[i]); });
    });
}

TEST_P(KernelTest, SolidRectanglesHaveOneColourAtEachSide) {
    ForRows(17, [&](Source& random, size_t n, size_t shift) {
        if (n == 0) {
            return;
        }
        const size_t rows = 1 + random.Number(4);
        const size_t step = n + random.Number(3);
        std::vector<uint32_t> dst(step * rows);
        random.Fill(dst);
        uint32_t left = random.Pixel();
        uint32_t inner = random.Pixel();
        uint32_t right = random.Pixel();
        if (random.Number(2) == 0) {
            right = left = inner;
        }
        CheckPixels(
            dst, shift, "solidRectangle",
            [&](uint32_t* p) { m_kernels->solidRectangle(p, ptrdiff_t(step) * 4, left, inner, right, n, rows); },
            [&](uint32_t d, size_t i) {
                const size_t x = i % step;
                const uint32_t c = x == 0 ? left : x + 1 == n ? right : inner;
                if (x >= n) {
                    return d;
                }
                // A colour without alpha still settles what a transparent pixel holds.
                return c >> 24 != 0 ? NormalOracle(d, c, 255) : d >> 24 == 0 ? c : d + c;
            });
    });
}

TEST_P(KernelTest, SampleRectanglesScaleTheColourByColumnsAndRows) {
    ForRows(17, [&](Source& random, size_t n, size_t shift) {
        const uint32_t color = random.Pixel();
        if (n == 0 || color >> 24 == 0) {
            return;
        }
        const auto eighths = [&] { return static_cast<uint32_t>(1 + random.Number(8)); };
        Graphics::SampleFrame frame{eighths(), eighths(), {}};
        frame.right = n == 1 ? frame.left : frame.right;
        std::vector<uint32_t> samples; // sub-scanlines of each row
        for (auto& rows : frame.rows) {
            rows = {eighths(), random.Number(3)};
            samples.insert(samples.end(), rows.count, rows.samples);
        }
        const size_t step = n + random.Number(3);
        std::vector<uint32_t> dst(step * samples.size());
        random.Fill(dst);
        CheckPixels(
            dst, shift, "solidSamples",
            [&](uint32_t* p) { m_kernels->solidSamples(p, ptrdiff_t(step) * 4, color, frame, n); },
            [&](uint32_t d, size_t i) {
                const size_t x = i % step;
                const uint32_t columns = x == 0 ? frame.left : x + 1 == n ? frame.right : 8;
                return x < n ? NormalOracle(d, color, columns * samples[i / step] * 4 - 1) : d;
            });
    });
}

TEST_P(KernelTest, CompositesIntoAGroup) {
    ForRows(12, [&](Source& random, size_t n, size_t shift) {
        std::vector<uint32_t> color(n), backdrop(n), src(n);
        std::vector<uint8_t> alpha(n), groupShape(n), shape(n);
        for (auto* row : {&color, &backdrop, &src}) {
            random.Fill(*row);
        }
        for (auto* row : {&alpha, &groupShape, &shape}) {
            random.Fill(*row);
        }
        Guarded<uint32_t> b(backdrop, shift / 3), s(src, 16 - shift % 16);
        Guarded<uint8_t> f(shape, shift / 2);
        for (int mode = -1; mode < int(Graphics::kBlendCount); ++mode) {
            const bool knockout = random.Number(2) != 0;
            const bool isolated = random.Number(2) != 0;
            const bool shaped = random.Number(4) != 0;
            Guarded<uint32_t> c(color, shift);
            Guarded<uint8_t> a(alpha, shift), g(groupShape, 16 - shift % 16);
            const LayerRowPlanes row{c.Row(), a.Row(), g.Row(), isolated ? nullptr : b.Row(), knockout};
            const auto kernel = mode < 0 ? m_kernels->layerNormal : m_kernels->layerBlend[mode];
            kernel(row, s.Row(), shaped ? f.Row() : nullptr, n);
            std::vector<uint32_t> colors(n);
            std::vector<uint8_t> alphas(n), shapes(n);
            for (size_t i = 0; i < n; ++i) {
                const Group o = LayerOracle(mode, {color[i], alpha[i], groupShape[i]}, isolated ? 0 : backdrop[i],
                                            knockout, src[i], shaped ? shape[i] : 255);
                colors[i] = o.color;
                alphas[i] = uint8_t(o.alpha);
                shapes[i] = uint8_t(o.shape);
            }
            EXPECT_TRUE(c.Is(colors)) << "colour, mode " << mode << " knockout " << knockout << " isolated "
                                      << isolated;
            EXPECT_TRUE(a.Is(alphas)) << "alpha, mode " << mode;
            EXPECT_TRUE(g.Is(shapes)) << "shape, mode " << mode;
        }
        for (const bool isolated : {false, true}) {
            CheckPixels(
                color, shift, isolated ? "isolated result" : "result",
                [&](uint32_t* p) {
                    m_kernels->groupResult(p, alpha.data(), shape.data(), isolated ? nullptr : b.Row(), n);
                },
                [&](uint32_t d, size_t i) {
                    return ResultOracle(d, alpha[i], shape[i], isolated ? nullptr : &backdrop[i]);
                });
        }
    });
}

TEST_P(KernelTest, SeparableModesAreExactForEveryPairOfBytes) {
    // Backdrop byte x against source byte y in all channels, both opaque.
    for (int mode = 0; mode < 12; ++mode) {
        for (uint32_t x = 0; x < 256; ++x) {
            std::vector<uint32_t> dst(256, 0xFF000000U | x * 0x010101U);
            std::vector<uint32_t> src(256);
            for (uint32_t y = 0; y < 256; ++y) {
                src[y] = 0xFF000000U | y * 0x010101U;
            }
            m_kernels->blend[mode](dst.data(), src.data(), nullptr, 256);
            for (int y = 0; y < 256; ++y) {
                const auto v = uint32_t(Function(mode, int(x), y));
                ASSERT_EQ(dst[size_t(y)], 0xFF000000U | v * 0x010101U) << "mode " << mode << " cb " << x << " cs " << y;
            }
        }
    }
}

TEST_P(KernelTest, DivisionByAlphaAndShapeIsExactForEveryPair) {
    // Difference with an opaque white source gives the straight backdrop's inverse, weighted by alpha; all (c, a)
    // pairs.
    for (uint32_t a = 0; a < 256; ++a) {
        std::vector<uint32_t> dst(256), src(256, 0xFFFFFFFFU), group(256);
        for (uint32_t c = 0; c < 256; ++c) {
            dst[c] = group[c] = a << 24 | c << 16 | (255 - c) << 8 | c;
        }
        const std::vector<uint32_t> old = dst;
        m_kernels->blend[10](dst.data(), src.data(), nullptr, 256);
        const std::vector<uint8_t> full(256, uint8_t(a)), shape(256, uint8_t(a));
        m_kernels->groupResult(group.data(), full.data(), shape.data(), nullptr, 256);
        for (size_t c = 0; c < 256; ++c) {
            ASSERT_EQ(dst[c], ModeOracle(10, old[c], 0xFFFFFFFFU, 255)) << "alpha " << a << " channel " << c;
            ASSERT_EQ(group[c], ResultOracle(old[c], int(a), int(a), nullptr)) << "shape " << a << " channel " << c;
        }
    }
}

TEST_P(KernelTest, ColourModesAgreeOnGreysTiesAndExtremes) {
    // Every triple of a few levels against every other: equal channels, greys, and the ends of the range.
    const std::array<uint32_t, 7> levels{0, 1, 64, 127, 128, 254, 255};
    std::vector<uint32_t> colors;
    for (uint32_t r : levels) {
        for (uint32_t g : levels) {
            for (uint32_t b : levels) {
                colors.push_back(0xFF000000U | r << 16 | g << 8 | b);
            }
        }
    }
    for (int mode = 12; mode < 16; ++mode) {
        for (uint32_t d : colors) {
            std::vector<uint32_t> dst(colors.size(), d);
            m_kernels->blend[mode](dst.data(), colors.data(), nullptr, colors.size());
            for (size_t i = 0; i < colors.size(); ++i) {
                ASSERT_EQ(dst[i], ModeOracle(mode, d, colors[i], 255))
                    << std::hex << "mode " << mode << " d " << d << " c " << colors[i];
            }
        }
    }
}

std::string SetName(const ::testing::TestParamInfo<int>& set) {
    return Graphics::NameOf(static_cast<InstructionSet>(set.param));
}
/// The sets of the build; those that the processor lacks are skipped.
std::vector<int> SetsOfBuild() {
#define GX_SET_NUMBER(set, unused) static_cast<int>(InstructionSet::set),
#define GX_NO_SET_NUMBER(set, unused)
    return {GX_EACH_SET(GX_SET_NUMBER, GX_NO_SET_NUMBER, 0)};
}

INSTANTIATE_TEST_SUITE_P(Sets, KernelTest, ::testing::ValuesIn(SetsOfBuild()), SetName);

TEST(KernelSelection, AnySetCanBeMadeActiveAndTheBestComesBack) {
    const RowKernels* const before = &Graphics::ActiveKernels();
    const RowKernels* best = nullptr;
    for (const auto& set : EveryKernelSet<RowKernels>()) {
        KernelTable<RowKernels>::Select(set.kernels);
        EXPECT_EQ(&Graphics::ActiveKernels(), set.kernels);
        EXPECT_NE(set.kernels, best) << set.name;
        best = set.kernels;
    }
    KernelTable<RowKernels>::Select(nullptr);
    EXPECT_EQ(&Graphics::ActiveKernels(), before);
    if (std::getenv("GX_TEST_KERNELS") == nullptr) { // which allows narrower sets only
        EXPECT_EQ(before, best);
    }
}

} // namespace
