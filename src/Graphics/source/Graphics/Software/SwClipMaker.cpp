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
        constexpr size_t kRecent = 8;
        Key key{parent, clip, *path.shape, figureCount, rule, m, inside, snap};
        if (m_recent.size() < kRecent) {
            m_recent.push_back(std::move(key));
        } else {
            m_recent[m_next++ % kRecent] = std::move(key);
        }
    }
    return clip;
}

} // namespace Graphics
