// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <span>

#include "../Kernels/PaintKernels.h"
#include "../Scan/RasterizationSink.h"

namespace Graphics {

/// Cuts adjacent runs into parts of at most kMostPainted pixels that are computed together: for each run start(x0) gives
/// what is accumulated, step(it, at, n) writes n more terms at `at` of the part, and use(n) takes the part.
template <class Start, class Step, class Use>
void ForRunParts(std::span<const CoverageRun> runs, Start&& start, Step&& step, Use&& use) {
    auto rest = static_cast<size_t>(static_cast<int64_t>(runs.back().x1) - runs.front().x0);
    const auto partOf = [](size_t pixels) { return pixels <= kMostPainted ? pixels : kPaintChunk; };
    size_t part = partOf(rest);
    size_t known = 0;
    for (const CoverageRun& run : runs) {
        auto next = start(run.x0);
        for (auto left = static_cast<size_t>(static_cast<int64_t>(run.x1) - run.x0); left != 0;) {
            const size_t n = std::min(part - known, left);
            step(next, known, n);
            known += n;
            left -= n;
            if (known == part) {
                use(part);
                rest -= part;
                part = partOf(rest);
                known = 0;
            }
        }
    }
}

} // namespace Graphics
