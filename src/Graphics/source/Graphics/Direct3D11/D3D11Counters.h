// SPDX-License-Identifier: MIT
// Counts of operations done and objects held, for tests and benchmarks.
#pragma once

#include <atomic>
#include <cstdint>

namespace Graphics {

/// Counters of one context.
struct D3D11Counters {
    uint64_t batches = 0; ///< not counting empty ones
    uint64_t drawCalls = 0;
    uint64_t vertexMaps = 0;
    uint64_t compilations = 0;  ///< attempts, for vertex and pixel shaders
    uint64_t fallbackDraws = 0; ///< drawing calls through the software pipeline
    uint64_t readbacks = 0;     ///< waits of the CPU for the GPU to copy pixels of a target
    uint64_t readbackPixels = 0;
    uint64_t sends = 0; ///< rectangles drawn in software and uploaded
    uint64_t backdropCopies = 0;
    uint64_t uploads = 0;         ///< of bitmaps
    uint64_t softwareSources = 0; ///< uploads of colours computed in software
    uint64_t coverages = 0;       ///< uploads of clips and of coverage in knockout groups
    uint64_t recoveries = 0;
};

/// Counts the living objects of a class in the whole process; 0 when all were released.
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
