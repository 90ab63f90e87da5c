// SPDX-License-Identifier: MIT
// Sends the coverage of an upright rectangle off the pixel grid without edges or cells. If the output depends on how
// rows are split into runs (sources that step along a run restart with each run), rows are split as the band scanner
// splits them.
#pragma once

#include <array>

#include "RasterizationSink.h"
#include "SampleRectangle.h"

namespace Graphics {

class RectangleScanner {
public:
    explicit RectangleScanner(const SampleRectangle& samples) noexcept : m_samples(samples) {}

    void Send(RasterizationSink& sink);

private:
    static constexpr int32_t kBlock = 8; // block width of the band scanner, in pixels
    static constexpr size_t kMostShape = 3 * kBlock;

    struct Cut {
        int32_t x0; // pixels
        int32_t x1;
        bool shaped; // false: all pixels have the coverage of the first
    };

    void CutAsBands() noexcept;
    void CutAnywhere() noexcept;
    void SendRows(RasterizationSink& sink, int32_t y0, int32_t y1, int32_t subRows);

    const SampleRectangle& m_samples;
    std::array<Cut, 3> m_cuts{};
    size_t m_cutCount = 0;
    std::array<uint8_t, kMostShape> m_shape{};
};

} // namespace Graphics
