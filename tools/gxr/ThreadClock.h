// SPDX-License-Identifier: MIT
// Processor time of the calling thread, which other programs do not lengthen.
#pragma once

#include <ctime>

namespace Gxr {

// 0 where it cannot be known.
inline double ThreadMilliseconds() noexcept {
    timespec now{};
    if (clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now) != 0)
        return 0.0;
    return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) * 1e-6;
}

} // namespace Gxr
