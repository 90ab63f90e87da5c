// SPDX-License-Identifier: MIT
// gxkernels: each row kernel in every instruction set of the processor, for rows of 1 to 64 pixels. A set should be at
// least level with the next narrower one for every length. Prints, for each kernel and pair of sets, the narrower one's
// time divided by the wider one's: the geometric mean over the lengths, and the lowest with its length.
//
// Rows lie one behind the other, as the spans of a picture do, and lengths change between calls by at most one, so that
// branches on the length are predicted about as well as in a drawing.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "Kernels/RowKernels.h"

namespace {

using namespace Graphics;

constexpr size_t kMost = 64;
constexpr size_t kRows = 100;
constexpr size_t kPasses = 10; ///< over all rows, the first ones to let the processor turn on what wide vectors need
constexpr int kRuns = 9;

/// The rows that kernels work on. Pixels are premultiplied; coverage is mostly partial.
struct Rows {
    std::vector<uint32_t> dst, src, backdrop;
    std::vector<uint8_t> shape, alpha, groupShape;

    Rows() {
        std::mt19937 random(9);
        const size_t size = kRows * (kMost + 1) + 64;
        const auto pixel = [&](bool opaque) {
            const uint32_t a = opaque ? 255 : random() % 256;
            uint32_t p = a << 24;
            for (unsigned shift = 0; shift < 24; shift += 8) {
                p |= (random() % (a + 1)) << shift;
            }
            return p;
        };
        for (size_t i = 0; i < size; ++i) {
            dst.push_back(pixel(true));
            src.push_back(pixel(false));
            backdrop.push_back(pixel(false));
            shape.push_back(static_cast<uint8_t>(random()));
            alpha.push_back(static_cast<uint8_t>(random()));
            groupShape.push_back(static_cast<uint8_t>(random() | 1U));
        }
    }
};

struct Kernel {
    std::string name;
    std::function<void(const RowKernels&, Rows&, size_t at, size_t count)> call;
};

std::vector<Kernel> EveryKernel() {
    constexpr uint32_t kHalf = 0x80204060U;
    std::vector<Kernel> kernels = {
        {"fill32", [](auto& k, Rows& r, size_t i, size_t n) { k.fill32(&r.dst[i], 0xFF102030U, n); }},
        {"normalSolid", [](auto& k, Rows& r, size_t i, size_t n) { k.normalSolid(&r.dst[i], kHalf, nullptr, n); }},
        {"normalSolid, shape",
         [](auto& k, Rows& r, size_t i, size_t n) { k.normalSolid(&r.dst[i], kHalf, &r.shape[i], n); }},
        {"normalVarying",
         [](auto& k, Rows& r, size_t i, size_t n) { k.normalVarying(&r.dst[i], &r.src[i], nullptr, n); }},
        {"normalVarying, shape",
         [](auto& k, Rows& r, size_t i, size_t n) { k.normalVarying(&r.dst[i], &r.src[i], &r.shape[i], n); }},
        {"layerNormal",
         [](auto& k, Rows& r, size_t i, size_t n) {
             k.layerNormal({&r.dst[i], &r.alpha[i], &r.groupShape[i], &r.backdrop[i], false}, &r.src[i], &r.shape[i],
                           n);
         }},
        {"groupResult", [](auto& k, Rows& r, size_t i,
                           size_t n) { k.groupResult(&r.dst[i], &r.alpha[i], &r.groupShape[i], &r.backdrop[i], n); }},
        {"maskValues, luminosity",
         [](auto& k, Rows& r, size_t i, size_t n) { k.maskValues[2](&r.shape[i], &r.src[i], n); }},
        {"scaleShape", [](auto& k, Rows& r, size_t i, size_t n) { k.scaleShape(&r.groupShape[i], &r.shape[i], n); }},
        {"scaleColor", [](auto& k, Rows& r, size_t i, size_t n) { k.scaleColor(&r.dst[i], &r.shape[i], n); }},
        {"premultiply", [](auto& k, Rows& r, size_t i, size_t n) { k.premultiply(&r.dst[i], n); }},
        {"replaceSolid",
         [](auto& k, Rows& r, size_t i, size_t n) { k.replaceSolid(&r.dst[i], kHalf, &r.shape[i], n); }},
        {"invert", [](auto& k, Rows& r, size_t i, size_t n) { k.invert(&r.dst[i], n); }},
    };
    for (size_t mode = 1; mode < 16; ++mode) {
        const std::string number = std::to_string(mode);
        kernels.push_back({"blend " + number, [mode](auto& k, Rows& r, size_t i, size_t n) {
                               k.blend[mode](&r.dst[i], &r.src[i], nullptr, n);
                           }});
        kernels.push_back({"blendSolid " + number, [mode](auto& k, Rows& r, size_t i, size_t n) {
                               k.blendSolid[mode](&r.dst[i], kHalf, &r.shape[i], n);
                           }});
        kernels.push_back(
            {"layerBlend " + number, [mode](auto& k, Rows& r, size_t i, size_t n) {
                 k.layerBlend[mode]({&r.dst[i], &r.alpha[i], &r.groupShape[i], nullptr, false}, &r.src[i], nullptr, n);
             }});
    }
    return kernels;
}

/// Nanoseconds of a row of about `count` pixels: the best of the later passes. Vectors of 64 bytes take tens of microseconds
/// until they have their full speed.
double Time(const Kernel& kernel, const RowKernels& set, const Rows& fresh, size_t count) {
    Rows rows = fresh;
    double best = 1e30;
    for (size_t pass = 0; pass < kPasses; ++pass) {
        const auto start = std::chrono::steady_clock::now();
        size_t at = 0;
        for (size_t i = 0; i < kRows; ++i) {
            kernel.call(set, rows, at, count);
            at += count;
        }
        const double time = std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - start).count();
        best = pass < kPasses / 2 ? best : std::min(best, time / kRows);
    }
    return best;
}

} // namespace

int main(int argc, char** argv) {
    std::vector<InstructionSet> sets;
    for (int i = 0; i < kInstructionSetCount; ++i) {
        if (KernelTable<RowKernels>::Of(static_cast<InstructionSet>(i)) != nullptr) {
            sets.push_back(static_cast<InstructionSet>(i));
        }
    }
    const Rows fresh;
    std::printf("%-24s", "narrower / wider");
    for (size_t s = 1; s < sets.size(); ++s) {
        std::printf("  %7s / %-8s   ", NameOf(sets[s - 1]), NameOf(sets[s]));
    }
    std::printf("\n%-24s", "");
    for (size_t s = 1; s < sets.size(); ++s) {
        std::printf("   mean  lowest at    ");
    }
    std::printf("\n");
    for (const Kernel& kernel : EveryKernel()) {
        if (argc > 1 && kernel.name.find(argv[1]) == std::string::npos) {
            continue;
        }
        std::vector<std::vector<double>> times(sets.size(), std::vector<double>(kMost + 1, 1e30));
        for (int run = 0; run < kRuns; ++run) {
            for (size_t s = 0; s < sets.size(); ++s) {
                const RowKernels& set = *KernelTable<RowKernels>::Of(sets[s]);
                for (size_t count = 1; count <= kMost; ++count) {
                    times[s][count] = std::min(times[s][count], Time(kernel, set, fresh, count));
                }
            }
        }
        std::printf("%-24s", kernel.name.c_str());
        for (size_t s = 1; s < sets.size(); ++s) {
            double logs = 0;
            size_t lowest = 1;
            const auto ratio = [&](size_t count) { return times[s - 1][count] / times[s][count]; };
            for (size_t count = 1; count <= kMost; ++count) {
                logs += std::log(ratio(count));
                lowest = ratio(count) < ratio(lowest) ? count : lowest;
            }
            std::printf(" %6.2f  %6.2f %2zu     ", std::exp(logs / kMost), ratio(lowest), lowest);
        }
        std::printf("\n");
        std::fflush(stdout);
    }
    return 0;
}
