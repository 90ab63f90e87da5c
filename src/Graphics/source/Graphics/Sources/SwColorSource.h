// SPDX-License-Identifier: MIT
// A colour source: writes premultiplied ARGB words for a span of one device row.
#pragma once

#include "../Arena.h"
#include "../Drawing/Ink.h"
#include "../Scan/RasterizationSink.h"
#include "../Types.h"

namespace Graphics {

struct WrittenPixels;

/// The pixels of a rectangle if they lie in memory; otherwise null.
struct SwDirectBlock {
    const uint8_t* pixels = nullptr;
    ptrdiff_t strideBytes = 0;
    bool hasAlpha = false; ///< premultiplied words, aligned; otherwise the fourth byte must be read as 255
};

class SwColorSource {
public:
    virtual ~SwColorSource() = default;

    /// Writes x1 - x0 pixels of row y; nothing if x0 >= x1.
    virtual void Fill(int32_t x0, int32_t x1, int32_t y, uint32_t* out) = 0;

    /// True if requesting adjacent runs together, by FillRuns, is faster.
    [[nodiscard]] virtual bool JoinsRuns() const noexcept { return false; }
    /// Writes what Fill writes for each of these runs of row y, at least one, each beginning where the one before ends.
    virtual void FillRuns(std::span<const CoverageRun> runs, int32_t y, uint32_t* out) {
        for (const CoverageRun& run : runs) {
            Fill(run.x0, run.x1, y, out + (run.x0 - runs.front().x0));
        }
    }

    /// True, with the colour written, if every pixel is the same: the pipeline then does not call Fill.
    [[nodiscard]] virtual bool IsSolid(uint32_t& color) const noexcept {
        static_cast<void>(color);
        return false;
    }

    /// True if every pixel that Fill writes certainly has alpha 255.
    [[nodiscard]] virtual bool IsOpaque() const noexcept { return false; }

    /// The pixels of columns [x0, x1) of row y if they already lie in memory as opaque or premultiplied words;
    /// otherwise null. Valid until another row is requested. Lets the compositor read a bitmap in place.
    [[nodiscard]] virtual const uint32_t* DirectRow(int32_t x0, int32_t x1, int32_t y) const noexcept {
        static_cast<void>(x0);
        static_cast<void>(x1);
        static_cast<void>(y);
        return nullptr;
    }

    /// The alpha of these pixels if it already lies in memory, one byte each; otherwise null. Lets rows of a mask serve
    /// as coverage.
    [[nodiscard]] virtual const uint8_t* DirectAlpha(int32_t x0, int32_t x1, int32_t y) const noexcept {
        static_cast<void>(x0);
        static_cast<void>(x1);
        static_cast<void>(y);
        return nullptr;
    }

    /// DirectAlpha for a non-empty rectangle: the bytes of its first row, and the distance from row to row.
    [[nodiscard]] virtual const uint8_t* DirectAlphaBlock(const IntRect& r, ptrdiff_t& strideBytes) const noexcept {
        static_cast<void>(r);
        static_cast<void>(strideBytes);
        return nullptr;
    }

    /// The pixels of the non-empty rectangle [left, right) x [top, bottom), if they lie in memory.
    [[nodiscard]] virtual SwDirectBlock DirectBlock(const IntRect& r) const noexcept {
        static_cast<void>(r);
        return {};
    }

    /// Allocates the source in the draw call's arena; what the ink refers to must outlive it. `bounds` is the device
    /// rectangle that may be requested (meshes are rendered for it alone); `transform` maps user space to the device.
    [[nodiscard]] static SwColorSource* Create(Arena& arena, const Ink& ink, const Rect& bounds,
                                               const Matrix& transform, const WrittenPixels* written = nullptr);
};

} // namespace Graphics
