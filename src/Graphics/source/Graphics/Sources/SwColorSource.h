// SPDX-License-Identifier: MIT
// A span filler: writes premultiplied ARGB words for a stretch of one device row.
#pragma once

#include "../Arena.h"
#include "../Drawing/Ink.h"
#include "../Scan/RasterizationSink.h"
#include "../Types.h"

namespace Graphics {

struct WrittenPixels;

/// Pixels of a rectangle where they lie in memory; null where they do not.
struct SwDirectBlock {
    const uint8_t* pixels = nullptr;
    ptrdiff_t strideBytes = 0;
    bool hasAlpha = false; ///< premultiplied words, aligned; otherwise the fourth byte is to be read as 255
};

class SwColorSource {
public:
    virtual ~SwColorSource() = default;

    /// Writes x1 - x0 pixels of row y; nothing when x0 >= x1.
    virtual void Fill(int32_t x0, int32_t x1, int32_t y, uint32_t* out) = 0;

    /// True when runs side by side had better be asked for together, by FillRuns.
    [[nodiscard]] virtual bool JoinsRuns() const noexcept { return false; }
    /// What Fill writes for each of these runs of row y, the next one beginning where one ends; at least one run.
    virtual void FillRuns(std::span<const CoverageRun> runs, int32_t y, uint32_t* out) {
        for (const CoverageRun& run : runs) {
            Fill(run.x0, run.x1, y, out + (run.x0 - runs.front().x0));
        }
    }

    /// True, with the colour written, when every pixel is the same: the pipeline then never calls Fill.
    [[nodiscard]] virtual bool IsSolid(uint32_t& color) const noexcept {
        static_cast<void>(color);
        return false;
    }

    /// True when every pixel that Fill writes is certain to have alpha 255.
    [[nodiscard]] virtual bool IsOpaque() const noexcept { return false; }

    /// The pixels of columns [x0, x1) of row y where they already lie in memory as opaque or premultiplied words;
    /// null otherwise. Good until another row is asked for. Lets the compositor read a bitmap in place.
    [[nodiscard]] virtual const uint32_t* DirectRow(int32_t x0, int32_t x1, int32_t y) const noexcept {
        static_cast<void>(x0);
        static_cast<void>(x1);
        static_cast<void>(y);
        return nullptr;
    }

    /// The alpha of these pixels where it already lies in memory, a byte each; null otherwise. Lets a mask's rows serve
    /// as coverage.
    [[nodiscard]] virtual const uint8_t* DirectAlpha(int32_t x0, int32_t x1, int32_t y) const noexcept {
        static_cast<void>(x0);
        static_cast<void>(x1);
        static_cast<void>(y);
        return nullptr;
    }

    /// The pixels of a whole rectangle, [left, right) x [top, bottom), not empty, where they lie in memory.
    [[nodiscard]] virtual SwDirectBlock DirectBlock(const IntRect& r) const noexcept {
        static_cast<void>(r);
        return {};
    }

    /// Made in the arena of the draw call; what the ink refers to must outlive it. `bounds` is the device rectangle
    /// that may be asked for (mesh gradients are rendered for it alone); `transform` maps user space to the device.
    [[nodiscard]] static SwColorSource* Create(Arena& arena, const Ink& ink, const Rect& bounds,
                                               const Matrix& transform, const WrittenPixels* written = nullptr);
};

} // namespace Graphics
