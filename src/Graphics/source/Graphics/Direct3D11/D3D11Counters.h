// SPDX-License-Identifier: MIT
// What the back end has done and what it still holds, for tests and benchmarks.
#pragma once

#include <atomic>
#include <cstdint>

namespace Graphics {

/// Of one context.
struct D3D11Counters {
    uint64_t batches = 0; ///< that had anything to draw
    uint64_t drawCalls = 0;
    uint64_t vertexMaps = 0;
    uint64_t compilations = 0;  ///< tried, of vertex and pixel shaders
    uint64_t fallbackDraws = 0; ///< drawing calls that went through the software's pipeline
    uint64_t readbacks = 0;     ///< times that the processor waited for the card to get pixels of a target
    uint64_t readbackPixels = 0;
    uint64_t sends = 0; ///< rectangles that the software drew, brought to the card
    uint64_t backdropCopies = 0;
    uint64_t uploads = 0;         ///< of bitmaps
    uint64_t softwareSources = 0; ///< uploads of colours that the software computed
    uint64_t coverages = 0;       ///< uploads of clips and of what is drawn in knockout groups
    uint64_t recoveries = 0;
};

/// Counts the objects of a class that are alive, in the whole process; 0 when everything was given back.
template <class Owner> class D3D11LiveCount {
public:
    D3D11LiveCount() noexcept { s_count.fetch_add(1, std::memory_order_relaxed); }
    D3D11LiveCount(const D3D11LiveCount&) noexcept : D3D11LiveCount() {}
    D3D11LiveCount& operator=(const D3D11LiveCount&) noexcept = default;
    ~D3D11LiveCount() { s_count.fetch_sub(1, std::memory_order_relaxed); }

    [[nodiscard]] static int64_t Now() noexcept { return s_count.load(std::memory_order_relaxed); }

private:
    inline static std::atomic<int64_t> s_count{0};
};

} // namespace Graphics
