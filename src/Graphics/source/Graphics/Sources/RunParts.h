// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <span>

#include "../Kernels/PaintKernels.h"
#include "../Scan/RasterizationSink.h"

namespace Graphics {

/// Cuts adjacent runs into parts, so that as many pixels as a chunk holds are computed together: for each run start(x0) gives
/// what is accumulated, step(it, at, n) writes n more terms at `at` of the chunk, and use(n) takes the chunk.
template <class Start, class Step, class Use>
void ForRunParts(std::span<const CoverageRun> runs, Start&& start, Step&& step, Use&& use) {
    size_t known = 0;
    for (const CoverageRun& run : runs) {
        auto next = start(run.x0);
        for (auto left = static_cast<size_t>(static_cast<int64_t>(run.x1) - run.x0); left != 0;) {
            const size_t n = std::min(kPaintChunk - known, left);
            step(next, known, n);
            known += n;
            left -= n;
            if (known == kPaintChunk) {
                use(known);
                known = 0;
            }
        }
    }
    if (known != 0) {
        use(known);
    }
}

} // namespace Graphics
