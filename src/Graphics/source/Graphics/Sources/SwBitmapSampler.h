// SPDX-License-Identifier: MIT
// Maps device pixels to an image and samples it there, nearest or bilinear, tiled in either direction.
#pragma once

#include <memory>

#include "../Kernels/PaintKernels.h"
#include "PixelReader.h"
#include "SwColorSource.h"

namespace Graphics {

/// What a sampler draws and how. The map gives u = m0 x + m2 y + m4, v = m1 x + m3 y + m5 in image pixels for device
/// pixel (x, y). For bilinear sampling half a pixel is already subtracted, so that integer coordinates are pixel
/// centres.
struct SwSamplerSetup {
    int32_t width;
    int32_t height;
    float m0, m1, m2, m3, m4, m5;
    uint32_t tilingX; ///< 0 clamp, 1 repeat, 2 mirror
    uint32_t tilingY;
    uint32_t opacityFactor; ///< 1 to 256
    bool linear;
    bool opaque; ///< every image pixel has alpha 255, and so has the result
};

/// Three routes with the same result, chosen once. Whole-pixel placement at scale 1 copies rows. A map without rotation
/// keeps a table of columns and, if bilinear, the last two source rows sampled across. All others sample point by
/// point.
class SwBitmapSampler final : public SwColorSource {
public:
    /// The sampler owns `keep`.
    SwBitmapSampler(Arena& arena, const PixelReader& reader, const SwSamplerSetup& setup,
                    std::shared_ptr<const void> keep);

    void Fill(int32_t x0, int32_t x1, int32_t y, uint32_t* out) override;
    [[nodiscard]] bool JoinsRuns() const noexcept override;
    void FillRuns(std::span<const CoverageRun> runs, int32_t y, uint32_t* out) override;
    [[nodiscard]] bool IsSolid(uint32_t& color) const noexcept override;
    [[nodiscard]] bool IsOpaque() const noexcept override { return m_setup.opaque; }
    [[nodiscard]] const uint32_t* DirectRow(int32_t x0, int32_t x1, int32_t y) const noexcept override;
    [[nodiscard]] const uint8_t* DirectAlpha(int32_t x0, int32_t x1, int32_t y) const noexcept override;
    [[nodiscard]] const uint8_t* DirectAlphaBlock(const IntRect& r, ptrdiff_t& strideBytes) const noexcept override;
    [[nodiscard]] SwDirectBlock DirectBlock(const IntRect& r) const noexcept override;

private:
    /// A source row sampled at the table's columns; `row` is -1 if empty.
    struct KeptRow {
        int32_t row = -1;
        uint32_t* pixels = nullptr;
    };

    [[nodiscard]] bool IsCopied(int32_t x0, int32_t x1, int32_t y) const noexcept;
    /// The bitmap's bytes of the pixels [x0, x1) of row y, if they can be used unchanged; otherwise null.
    [[nodiscard]] const uint8_t* CopiedRow(int32_t x0, int32_t x1, int32_t y, ptrdiff_t pixelBytes) const noexcept;
    /// The bitmap's bytes of the pixels in `r`, from row to row as the bitmap's rows lie; null under the same conditions,
    /// or where rows are tiled.
    [[nodiscard]] const uint8_t* CopiedBlock(const IntRect& r, ptrdiff_t pixelBytes) const noexcept;
    [[nodiscard]] int32_t TiledRow(int32_t y) const noexcept;
    void FillCopied(int32_t x0, size_t count, int32_t y, uint32_t* out) const noexcept;
    void FillUpright(std::span<const CoverageRun> runs, int32_t y, uint32_t* out);
    void FillPoints(std::span<const CoverageRun> runs, int32_t y, uint32_t* out) const noexcept;
    void ReadPoints(const float* u, const float* v, size_t count, uint32_t* out) const noexcept;
    void PickPoints(const float* u, const float* v, size_t count, uint32_t* out) const noexcept;
    void BlendPoints(const float* u, const float* v, size_t count, uint32_t* out) const noexcept;
    [[nodiscard]] bool HasColumns(std::span<const CoverageRun> runs) const noexcept;
    void BuildColumns(std::span<const CoverageRun> runs);
    const uint32_t* BlendedRow(int32_t row, int32_t keepRow);

    Arena& m_arena;
    const PaintKernels& m_kernels;
    PixelReader m_reader;
    SwSamplerSetup m_setup;
    std::shared_ptr<const void> m_keep;
    bool m_copies = false;  ///< scale 1, whole-pixel translation
    bool m_upright = false; ///< u depends on x alone, v on y alone
    int32_t m_shiftX = 0;
    int32_t m_shiftY = 0;

    // Columns and weights of the last upright runs. Of more runs than there are places for none is known again: shapes of
    // so many differ from row to row.
    int32_t m_tableStarts[4] = {};
    size_t m_tableRuns = 0;
    size_t m_tableCount = 0;
    size_t m_tableCapacity = 0;
    int32_t* m_first = nullptr;
    int32_t* m_second = nullptr;
    uint32_t* m_weights = nullptr;
    uint32_t* m_other = nullptr; ///< the second neighbours of the row being mixed
    KeptRow m_kept[2];
};

} // namespace Graphics
