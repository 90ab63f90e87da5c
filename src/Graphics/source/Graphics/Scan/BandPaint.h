// SPDX-License-Identifier: MIT
// Sweeps rows of a band and paints them in one colour on the way, without bytes and runs in memory. Part of the band loops.
#pragma once

#include "../Kernels/RowSolid.h"
#include "../Pixels/PixelMath.h"
#include "BandBytes.h"
#include "BandPlanes.h"
#include "BandSweep.h"
#include "SolidRows.h"

namespace Graphics::GX_SIMD_NAMESPACE {
namespace {

#if GX_SIMD_BYTES == 64
GX_INLINE inline EightShapes ShapesOf(const Counts& counts) noexcept { return ShapeWords(counts.parts[0]); }
#else
GX_INLINE inline EightShapes ShapesOf(const Counts& counts) noexcept {
    EightShapes shapes;
    counts.StoreShapes(shapes.bytes);
    return shapes;
}
#endif
GX_INLINE inline EightShapes ShapesOf(const Bytes::Shapes& shapes) noexcept { return ShapesOf(shapes.bytes); }

/// What SweepRow does, with pixels for runs.
template <class Windings, bool kOpaque> class RowPainter {
public:
    RowPainter(const BandFrame& frame, const SolidRows& to, const RowKernels& kernels) noexcept
        : m_frame(frame), m_to(to), m_kernels(kernels), m_block(to.color) {}

    GX_INLINE void Paint(uint8_t* cells, uint64_t* bits, uint32_t* dst) const noexcept {
        typename Windings::Sums sums(m_frame);
        const auto gap = [&](int32_t from, int32_t to) GX_INLINE { Gap(dst, from, to, sums.Inside()); };
        const auto block = [&](int32_t from, uint32_t pixels) GX_INLINE {
            const EightShapes shapes = ShapesOf(sums.Block(cells, static_cast<size_t>(from), pixels));
            if (from < m_frame.width) {
                if (m_to.ahead != 0) {
                    __builtin_prefetch(reinterpret_cast<uint8_t*>(dst + from) + m_to.ahead, 1);
                }
                m_block.Paint(dst + from, shapes, static_cast<size_t>(m_frame.width - from));
            }
        };
        ForPieces<Windings>(m_frame, bits, gap, block);
    }

private:
    /// Pixels [from, to), of which each has `count` samples inside.
    GX_INLINE void Gap(uint32_t* dst, int32_t from, int32_t to, uint32_t count) const noexcept {
        if (count == 0) {
            return;
        }
        const auto n = static_cast<size_t>(to - from);
        if (n <= 8) { // as a block: fewer branches, and gaps of one block are frequent
            m_block.Paint(dst + from, ShapesTimes(static_cast<uint8_t>(count * 4 - 1)), n);
            return;
        }
        if (n >= SolidRows::kPrefetchRun) {
            m_kernels.prefetch(reinterpret_cast<uint32_t*>(reinterpret_cast<uint8_t*>(dst + from) + m_to.strideBytes),
                               n);
        }
        ConstantRun(m_kernels, dst + from, ScalePixel(m_to.color, count * 4), n);
    }

    const BandFrame& m_frame;
    const SolidRows& m_to;
    const RowKernels& m_kernels;
    SolidBlock<kOpaque> m_block;
};

template <class Windings, bool kOpaque>
void PaintRowsOf(const BandFrame& frame, size_t rows, const SolidRows& to, const RowKernels& kernels) {
    const RowPainter<Windings, kOpaque> painter(frame, to, kernels);
    uint8_t* cells = frame.cells;
    uint64_t* bits = frame.bits;
    auto* dst = reinterpret_cast<uint8_t*>(to.pixels);
    for (; rows != 0; --rows, cells += frame.rowBytes, bits += frame.bitWords, dst += to.strideBytes) {
        painter.Paint(cells, bits, reinterpret_cast<uint32_t*>(dst));
    }
}

template <class Windings>
void PaintRows(const BandFrame& frame, size_t rows, const SolidRows& to, const RowKernels& kernels) {
    to.color >> 24 == 255 ? PaintRowsOf<Windings, true>(frame, rows, to, kernels)
                          : PaintRowsOf<Windings, false>(frame, rows, to, kernels);
}

} // namespace
} // namespace Graphics::GX_SIMD_NAMESPACE
