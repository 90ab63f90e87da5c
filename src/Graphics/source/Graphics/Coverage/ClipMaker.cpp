// SPDX-License-Identifier: MIT
#include "ClipMaker.h"

#include <algorithm>
#include <array>

#include "../Geometry/DeviceFeed.h"
#include "../Scan/DeviceFigures.h"
#include "../Scan/Rasterizer.h"

namespace Graphics {

ClipRef ClipMaker::Make(Rasterizer& rasterizer, const Path& path, const Shape& shape, const Matrix& m,
                        const IntRect& area, const IntRect& visible, const ClipRef& parent, bool snap) {
    const IntRect inside = shape.Empty() || IsEmpty(visible) ? IntRect{0, 0, 0, 0} : visible;
    const uint64_t identity = path.Stored() != nullptr ? shape.Identity() : 0; // 0 is no shape's identity
    const auto same = [&](const Key& key) {
        return key.shape == identity && key.parent.get() == parent.get() && key.snap == snap && key.visible == inside &&
               SameMatrix(key.transform, m);
    };
    if (const auto found = std::find_if(m_recent.begin(), m_recent.end(), same); found != m_recent.end()) {
        return found->clip;
    }
    ClipBuilder builder(m_pool, parent.get(), inside);
    if (!IsEmpty(inside)) {
        rasterizer.Begin(ToRect(area), inside, snap);
        FeedFill(shape, m, rasterizer);
        rasterizer.Finish(builder);
    }
    ClipRef clip = builder.Finish();
    if (identity != 0) {
        // Drops the oldest keys: only a few are kept, and little coverage unless the newest has more.
        m_recent.push_back({parent, clip, identity, m, inside, snap});
        size_t first = m_recent.size() - std::min(m_recent.size(), kRecent);
        while (first + 1 < m_recent.size() && KeptBytes(first) > kRecentBytes) {
            ++first;
        }
        m_recent.erase(m_recent.begin(), m_recent.begin() + static_cast<ptrdiff_t>(first));
    }
    return clip;
}

size_t ClipMaker::KeptBytes(size_t first) const noexcept {
    std::array<const ClipCoverage*, kRecent * 2> seen;
    auto end = seen.begin();
    size_t bytes = 0;
    for (size_t i = first; i < m_recent.size(); ++i) {
        for (const ClipRegion* clip : {m_recent[i].parent.get(), m_recent[i].clip.get()}) {
            const ClipCoverage* const coverage = clip == nullptr ? nullptr : clip->m_coverage;
            if (coverage != nullptr && std::find(seen.begin(), end, coverage) == end) {
                *end++ = coverage;
                bytes += coverage->m_block.capacity();
            }
        }
    }
    return bytes;
}

} // namespace Graphics
