// SPDX-License-Identifier: MIT
// Turns the coverage of one path into a clip, limited by another clip and a box.
#pragma once

#include "../Scan/RasterizationSink.h"
#include "ClipRegion.h"

namespace Graphics {

class ClipBuilder final : public RasterizationSink {
public:
    /// `parent` may be null. A pool serves one builder at a time.
    ClipBuilder(ClipPool& pool, const ClipRegion* parent, const IntRect& visible);

    void Row(int32_t y, std::span<CoverageRun> runs) override;
    void Rectangle(int32_t left, int32_t top, int32_t right, int32_t bottom) override;

    /// Call once, after the rasterizer has finished.
    [[nodiscard]] ClipRef Finish();

private:
    void StartMask();
    /// Multiplies the current row by the parent's coverage; the row starts at the first column of `extents`.
    [[nodiscard]] ClipRow Combine(int32_t y, const ClipRow& extents, uint8_t* row) const noexcept;

    ClipPool& m_pool;
    ClipRegion* m_clip;
    ClipRef m_owner;
    const ClipRegion* m_parent;
    IntRect m_visible;
    bool m_hasRows = false;
};

} // namespace Graphics
