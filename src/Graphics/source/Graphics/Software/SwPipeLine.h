// SPDX-License-Identifier: MIT
// The pipeline of one draw call from coverage to pixels. For every span of a row:
//
//     shape  = coverage, scaled by the state's shape mask, the call's own shape mask and the clip
//     colour = the colour source, scaled by the opacity mask
//     composite colour through shape onto the target, by blend mode, into a basic target or a group
//
// Assembly chooses the shortest form once: opaque runs are filled or copied, solid colours need no buffer, and spans in
// the full part of a clip skip its mask. Every form gives the same bytes as the steps above.
#pragma once

#include <array>

#include "../Coverage/ClipRegion.h"
#include "../Kernels/RowKernels.h"
#include "../Scan/RasterizationSink.h"
#include "../Sources/SwColorSource.h"

namespace Graphics {

/// The planes that a draw call composites into. Pointers refer to the pixel (origin.x, origin.y); strides are in bytes.
struct SwTargetPlanes {
    IntPoint origin{};
    uint8_t* color = nullptr;
    ptrdiff_t colorStride = 0;
    int32_t rowWithGap = 0; ///< a row of this width may be filled together with the bytes between it and the next
    /// Fourth bytes are undefined before a draw and count as 255; painted pixels have 255.
    bool makesOpaque = false;
    // Inside a transparency group:
    uint8_t* alpha = nullptr; ///< null: a basic target
    uint8_t* shape = nullptr;
    ptrdiff_t planeStride = 0;
    const uint8_t* backdrop = nullptr; ///< null: transparent
    ptrdiff_t backdropStride = 0;
    bool knockout = false;
};

/// The address of the pixel (x, y).
[[nodiscard]] inline uint32_t* PixelAt(const SwTargetPlanes& planes, int32_t x, int32_t y) noexcept {
    return reinterpret_cast<uint32_t*>(planes.color + (y - planes.origin.y) * planes.colorStride) +
           (x - planes.origin.x);
}

/// MakeRowsOpaque, for targets with makesOpaque: sets the fourth bytes in `r` to 255 where `shape` has coverage (null:
/// everywhere). Rows of `shape` are `shapeStride` bytes apart.
void SetRowsOpaque(const RowKernels& kernels, const SwTargetPlanes& planes, const IntRect& r, const uint8_t* shape,
                   ptrdiff_t shapeStride) noexcept;
inline void MakeRowsOpaque(const RowKernels& kernels, const SwTargetPlanes& planes, const IntRect& r,
                           const uint8_t* shape = nullptr, ptrdiff_t shapeStride = 0) noexcept {
    if (planes.makesOpaque) {
        SetRowsOpaque(kernels, planes, r, shape, shapeStride);
    }
}

/// A mask over device pixels: a colour source and the rule that turns its pixels into mask values, or a plane of
/// values.
struct SwMaskInput {
    SwColorSource* source = nullptr;
    uint32_t type = 0;
    const uint8_t* plane = nullptr; ///< starts at planeOrigin
    ptrdiff_t planeStride = 0;
    IntPoint planeOrigin{};
};

/// Row buffers as wide as the target, kept from draw to draw.
struct SwRowBuffers {
    HeapArray<uint8_t> shape;
    HeapArray<uint32_t> color;
};

class SwPipeLine final : public RasterizationSink {
public:
    SwPipeLine(const RowKernels& kernels, SwRowBuffers& buffers, const SwTargetPlanes& target, const IntRect& bounds);

    void SetBlendMode(uint32_t mode) noexcept { m_blendMode = mode; }
    /// At most two. Masks must outlive the pipeline, and their types must be valid (GraphicsState::CheckMasks).
    void AddShapeMask(const SwMaskInput& mask) noexcept { m_shapeMasks[m_shapeMaskCount++] = &mask; }
    void SetOpacityMask(const SwMaskInput& mask) noexcept { m_opacityMask = &mask; }
    void SetClip(const ClipRegion* clip) noexcept { m_clip = IsMasked(clip) ? clip : nullptr; }
    void SetColorSource(SwColorSource& source) noexcept;

    void Row(int32_t y, std::span<CoverageRun> runs) override;
    void Rectangle(int32_t left, int32_t top, int32_t right, int32_t bottom) override;
    [[nodiscard]] bool TakesAnyCuts(const IntRect& r) const override;
    [[nodiscard]] bool IsOneColor(const IntRect& r, SolidRows& rows) const override;
    bool Rows(int32_t y0, int32_t y1, std::span<const CoverageRun> runs) override;

    /// Whether full coverage replaces the pixels below.
    [[nodiscard]] bool Replaces() const noexcept { return IsPlain() && m_isOpaque; }

private:
    [[nodiscard]] uint32_t* Pixels(int32_t x, int32_t y) const noexcept { return PixelAt(m_target, x, y); }
    void MakeOpaque(uint32_t* dst, const uint8_t* shape, size_t count) const {
        if (m_target.makesOpaque) {
            m_kernels.setOpaque(dst, shape, count);
        }
    }
    /// Calls paint(y, pixels, width) for each row, with the next row prefetched.
    template <class Paint> void ForRows(const IntRect& r, Paint&& paint) const;
    /// Normal mode on a basic target, without masks and clip.
    [[nodiscard]] bool IsPlain() const noexcept {
        return m_blendMode == 0 && m_clip == nullptr && m_shapeMaskCount == 0 && m_opacityMask == nullptr &&
               m_target.alpha == nullptr;
    }
    /// Requires Replaces and adjacent runs: colours go straight to the target, from which pixels that are covered in part are
    /// kept and then composited. False, with nothing done, if those are many.
    [[nodiscard]] bool ReplaceRuns(int32_t y, std::span<const CoverageRun> runs);
    /// Requires Replaces: a run of few pixels, of which but one or two are covered as a whole, of `colors` over what was
    /// below. False, with nothing done, for others.
    [[nodiscard]] bool CoverSide(const CoverageRun& run, const uint32_t* below, uint32_t* colors) const noexcept;
    /// Requires IsPlain: one colour over runs inside the bounds.
    void SolidRow(int32_t y, std::span<const CoverageRun> runs) const;
    /// Requires IsPlain: a block of a solid colour, or of pixels available in memory. False, with nothing done, for
    /// others.
    [[nodiscard]] bool PlainBlock(const IntRect& r);
    /// One colour under a shape mask whose values lie in memory, otherwise plain: these are the coverage. False, with
    /// nothing done, for others.
    [[nodiscard]] bool MaskedBlock(const IntRect& r);
    /// SolidRow for rows with the same runs.
    void EqualRows(int32_t y0, int32_t y1, std::span<const CoverageRun> runs);
    void DirectRun(const IntRect& r, const SwDirectBlock& block, const uint8_t* shape);
    /// Paints the span [x0, x1), inside the bounds; if `shape` is null the coverage is `value`.
    void PaintSpan(int32_t y, int32_t x0, int32_t x1, uint8_t* shape, uint8_t value);
    /// PaintSpan through the clip's coverage from x0 on; null: 255.
    void Masked(int32_t y, int32_t x0, int32_t x1, uint8_t* shape, uint8_t value, const uint8_t* clip);
    void Composite(int32_t y, int32_t x0, int32_t x1, const uint8_t* shape);
    /// Normal on a basic target: the solid colour through the opacity mask.
    void MaskedSolid(uint32_t* dst, int32_t y, int32_t x0, int32_t x1);
    [[nodiscard]] const uint32_t* Color(int32_t y, int32_t x0, int32_t x1);
    void ApplyShapeMask(const SwMaskInput& mask, int32_t y, int32_t x0, int32_t x1, uint8_t* shape) const;

    const RowKernels& m_kernels;
    SwRowBuffers& m_buffers;
    const SwTargetPlanes& m_target;
    IntRect m_bounds;
    uint32_t m_blendMode = 0;
    std::array<const SwMaskInput*, 2> m_shapeMasks{};
    size_t m_shapeMaskCount = 0;
    const SwMaskInput* m_opacityMask = nullptr;
    const ClipRegion* m_clip = nullptr;
    SwColorSource* m_source = nullptr;
    uint32_t m_solid = 0;
    bool m_isSolid = false;
    bool m_isOpaque = false;
    bool m_joins = false;
    bool m_isFar;                 ///< the target is larger than the caches
    uint32_t* m_joined = nullptr; ///< colours of the current span, computed together with those of its neighbours
    bool m_solidRowReady = false;
};

} // namespace Graphics
