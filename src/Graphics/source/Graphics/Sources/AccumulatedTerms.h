// SPDX-License-Identifier: MIT
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

#include "../Kernels/PaintKernels.h"

namespace Graphics {

/// The terms of one coordinate along a row, chunk by chunk. In an upright gradient a coordinate is the same in every row: a
/// piece of a chunk that begins with the term of the row before is not computed again.
class AccumulatedTerms {
public:
    void BeginRow() noexcept { m_chunk = 0; }
    void NextChunk() noexcept { m_chunk = (m_chunk + 1) % kChunks; }

    /// Puts n terms into the chunk at `at`, from `start` on. Returns the one that follows. `step` is the same in every call.
    float Put(const PaintKernels& kernels, float start, float step, size_t at, size_t n) noexcept {
        Chunk& chunk = m_chunks[m_chunk];
        Piece& kept = chunk.kept;
        if (n < kLeastKept) {
            // They may replace some of those kept.
            kept.count = at < kept.at + kept.count && kept.at < at + n ? 0 : kept.count;
            return kernels.accumulate(start, step, chunk.terms + at, n);
        }
        const auto bits = std::bit_cast<uint32_t>(start);
        if (kept.at != at || kept.count != n || kept.start != bits) {
            kept = {at, n, bits, kernels.accumulate(start, step, chunk.terms + at, n)};
        }
        return kept.next;
    }
    [[nodiscard]] const float* Terms() const noexcept { return m_chunks[m_chunk].terms; }

private:
    static constexpr size_t kChunks = 4;     // rows of up to 1024 pixels
    static constexpr size_t kLeastKept = 32; // terms: fewer are computed as fast as compared

    struct Piece {
        size_t at = 0;
        size_t count = 0;
        uint32_t start = 0;
        float next = 0;
    };
    struct Chunk {
        Piece kept;
        alignas(64) float terms[kMostPainted];
    };

    Chunk m_chunks[kChunks];
    size_t m_chunk = 0;
};

} // namespace Graphics
