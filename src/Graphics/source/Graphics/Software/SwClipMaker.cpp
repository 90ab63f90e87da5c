// SPDX-License-Identifier: MIT
#include "SwClipMaker.h"

#include <algorithm>

#include "../Geometry/DeviceFeed.h"
#include "../Scan/DeviceFigures.h"
#include "../Scan/Rasterizer.h"

namespace Graphics {

SwClipRef SwClipMaker::Make(Rasterizer& rasterizer, const PathRef& path, const Shape& shape, const Matrix& m,
                            const IntRect& area, const IntRect& visible, const SwClipRef& parent, bool snap) {
    const IntRect inside = shape.Empty() || IsEmpty(visible) ? IntRect{0, 0, 0, 0} : visible;
    const auto figureCount = shape.Figures().size();
    const uint32_t rule = shape.FillRule();
    const auto same = [&](const Key& key) {
        return path.shape != nullptr && key.shape == *path.shape && key.parent.get() == parent.get() &&
               key.figureCount == figureCount && key.fillRule == rule && key.snap == snap && key.visible == inside &&
               SameMatrix(key.transform, m);
    };
    if (const auto found = std::find_if(m_recent.begin(), m_recent.end(), same); found != m_recent.end()) {
        return found->clip;
    }
    SwClipBuilder builder(m_pool, parent.get(), inside);
    if (!IsEmpty(inside)) {
        rasterizer.Begin(ToRect(area), inside, snap);
        FeedFill(shape, m, rasterizer);
        rasterizer.Finish(builder);
    }
    SwClipRef clip = builder.Finish();
    if (path.shape != nullptr) {
        // The oldest go: a few are kept, and of planes that nobody else holds no more than a little.
        constexpr size_t kRecent = 8;
        constexpr size_t kRecentBytes = 1U << 21;
        m_recent.push_back({parent, clip, *path.shape, figureCount, rule, m, inside, snap});
        size_t bytes = 0;
        size_t kept = 1;
        for (; kept < m_recent.size() && kept < kRecent; ++kept) {
            const SwClip& older = *m_recent[m_recent.size() - 1 - kept].clip.get();
            bytes += older.IsShared() ? 0 : older.PlaneBytes();
            if (bytes > kRecentBytes) {
                break;
            }
        }
        m_recent.erase(m_recent.begin(), m_recent.end() - static_cast<ptrdiff_t>(kept));
    }
    return clip;
}

} // namespace Graphics
