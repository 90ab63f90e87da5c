// SPDX-License-Identifier: MIT
// Maps device pixels back into an image and reads it there, nearest or bilinear, tiled in either direction.
#pragma once

#include <memory>

#include "../Kernels/PaintKernels.h"
#include "PixelReader.h"
#include "SwColorSource.h"

namespace Graphics {

/// What a sampler draws and how. The map gives u = m0 x + m2 y + m4, v = m1 x + m3 y + m5 for device pixel (x, y), in
/// pixels of the image; for bilinear sampling half a pixel is already taken off, so that whole coordinates are centres.
struct SwSamplerSetup {
    int32_t width;
    int32_t height;
    float m0, m1, m2, m3, m4, m5;
    uint32_t tilingX; ///< 0 clamp, 1 repeat, 2 mirror
    uint32_t tilingY;
    uint32_t opacityFactor; ///< 1 to 256
    bool linear;
    bool opaque; ///< every pixel of the image has alpha 255 and the opacity leaves it
};

/// Three ways with one result, chosen once: whole-pixel placement at scale 1 copies rows; a map without rotation keeps
/// a table of columns and, bilinear, the two source rows already blended across; anything else goes point by point.
class SwBitmapSampler final : public SwColorSource {
public:
    /// `keep` is held as long as the sampler.
    SwBitmapSampler(Arena& arena, const PixelReader& reader, const SwSamplerSetup& setup,
                    std::shared_ptr<const void> keep);

    void Fill(int32_t x0, int32_t x1, int32_t y, uint32_t* out) override;
    [[nodiscard]] bool JoinsRuns() const noexcept override;
    void FillRuns(std::span<const CoverageRun> runs, int32_t y, uint32_t* out) override;
    [[nodiscard]] bool IsSolid(uint32_t& color) const noexcept override;
    [[nodiscard]] bool IsOpaque() const noexcept override { return m_setup.opaque; }
    [[nodiscard]] const uint32_t* DirectRow(int32_t x0, int32_t x1, int32_t y) const noexcept override;
    [[nodiscard]] const uint8_t* DirectAlpha(int32_t x0, int32_t x1, int32_t y) const noexcept override;
    [[nodiscard]] SwDirectBlock DirectBlock(const IntRect& r) const noexcept override;

private:
    /// A source row at the table's columns; `row` is -1 while nothing is kept.
    struct KeptRow {
        int32_t row = -1;
        uint32_t* pixels = nullptr;
    };

    [[nodiscard]] bool IsCopied(int32_t x0, int32_t x1, int32_t y) const noexcept;
    /// Where the bitmap's own bytes are the pixels [x0, x1) of row y; null where they are not.
    [[nodiscard]] const uint8_t* CopiedRow(int32_t x0, int32_t x1, int32_t y, ptrdiff_t pixelBytes) const noexcept;
    [[nodiscard]] int32_t TiledRow(int32_t y) const noexcept;
    void FillCopied(int32_t x0, size_t count, int32_t y, uint32_t* out) const noexcept;
    void FillUpright(int32_t x0, size_t count, int32_t y, uint32_t* out);
    void FillPoints(std::span<const CoverageRun> runs, int32_t y, uint32_t* out) const noexcept;
    void ReadPoints(const float* u, const float* v, size_t count, uint32_t* out) const noexcept;
    void PickPoints(const float* u, const float* v, size_t count, uint32_t* out) const noexcept;
    void BlendPoints(const float* u, const float* v, size_t count, uint32_t* out) const noexcept;
    void BuildColumns(int32_t x0, size_t count);
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

    // Of the last upright span: its columns and weights.
    int32_t m_tableX = 0;
    size_t m_tableCount = 0;
    size_t m_tableCapacity = 0;
    int32_t* m_first = nullptr;
    int32_t* m_second = nullptr;
    uint32_t* m_weights = nullptr;
    uint32_t* m_other = nullptr; ///< the second neighbours of the row being blended
    KeptRow m_kept[2];
};

} // namespace Graphics
