// SPDX-License-Identifier: MIT
#include "RectangleScanner.h"

#include <algorithm>

namespace Graphics {

/// Makes one run per coverage: the pixels at the sides, and those between.
void RectangleScanner::CutAnywhere() noexcept {
    const int32_t left = m_samples.From() >> 3;
    const int32_t right = (m_samples.To() + 7) >> 3;
    const int32_t fullLeft = std::min((m_samples.From() + 7) >> 3, right);
    const int32_t fullRight = std::max(m_samples.To() >> 3, fullLeft);
    m_cutCount = 0;
    const auto cut = [&](int32_t x0, int32_t x1) {
        if (x0 < x1) {
            m_cuts[m_cutCount++] = {x0, x1, false};
        }
    };
    cut(left, fullLeft);
    cut(fullLeft, fullRight);
    cut(fullRight, right);
}

/// Splits as the band scanner does: the blocks are those that contain the edges' pixels, counted from the frame's left;
/// the right edge may stand in the pixel after the last.
void RectangleScanner::CutAsBands() noexcept {
    const int32_t origin = m_samples.FrameLeft();
    const int32_t end = m_samples.FrameRight();
    const auto blockOf = [=](int32_t sub) { return origin + ((sub >> 3) - origin) / kBlock * kBlock; };
    const int32_t firstBlock = blockOf(m_samples.From());
    const int32_t lastBlock = m_samples.SeesRightEdge() ? blockOf(m_samples.To()) : end;
    const int32_t firstEnd = std::min(firstBlock + kBlock, end);
    const int32_t lastEnd = std::min(lastBlock + kBlock, end);
    const int32_t gapEnd = std::min(lastBlock, end);
    m_cutCount = 0;
    if (gapEnd - firstEnd <= kBlock) { // a short gap does not pay for a run
        m_cuts[m_cutCount++] = {firstBlock, std::max(firstEnd, lastEnd), true};
        return;
    }
    m_cuts[m_cutCount++] = {firstBlock, firstEnd, true};
    m_cuts[m_cutCount++] = {firstEnd, gapEnd, false};
    if (gapEnd < lastEnd) {
        m_cuts[m_cutCount++] = {gapEnd, lastEnd, true};
    }
}

void RectangleScanner::SendRows(RasterizationSink& sink, int32_t y0, int32_t y1, int32_t subRows) {
    std::array<CoverageRun, 3> runs{};
    uint8_t* shape = m_shape.data();
    for (size_t i = 0; i < m_cutCount; ++i) {
        const Cut& cut = m_cuts[i];
        runs[i] = {cut.x0, cut.x1, nullptr, ShapeOfSamples(m_samples.Columns(cut.x0) * subRows)};
        if (cut.shaped) {
            runs[i].shape = shape;
            for (int32_t x = cut.x0; x < cut.x1; ++x) {
                *shape++ = ShapeOfSamples(m_samples.Columns(x) * subRows);
            }
        }
    }
    if (sink.Rows(y0, y1, {runs.data(), m_cutCount})) {
        return;
    }
    for (int32_t y = y0; y < y1; ++y) {
        // Copied because a sink may change the bytes.
        std::array<uint8_t, kMostShape> bytes = m_shape;
        std::array<CoverageRun, 3> row = runs;
        for (CoverageRun& run : row) {
            run.shape = run.shape == nullptr ? nullptr : bytes.data() + (run.shape - m_shape.data());
        }
        sink.Row(y, {row.data(), m_cutCount});
    }
}

void RectangleScanner::Send(RasterizationSink& sink) {
    if (m_samples.Empty()) {
        return;
    }
    const IntRect pixels = m_samples.Pixels();
    if (!sink.TakesAnyCuts(pixels)) {
        CutAsBands();
    } else if (m_samples.OnPixels()) {
        sink.Rectangle(pixels.left, pixels.top, pixels.right, pixels.bottom);
        return;
    } else {
        CutAnywhere();
    }
    m_samples.ForRows([&](int32_t y0, int32_t y1, int32_t subRows) { SendRows(sink, y0, y1, subRows); });
}

} // namespace Graphics
