// SPDX-License-Identifier: MIT
// The drawing calls of a page in their order, for parts of the page that have to be drawn once more by another back
// end. Whatever a call was given is kept as it was at that time.
#pragma once

#include <functional>
#include <unordered_map>
#include <vector>

#include "../Paint/Brush.h"
#include "../Target/RenderTargetBase.h"

namespace Graphics {

class SysMemBitmap;

/// A path that outlives the call it came with, as it was at that time: a host may go on with its geometry.
class GdipKeptPath {
public:
    explicit GdipKeptPath(const PathRef& path);

    /// Valid as long as this object.
    [[nodiscard]] PathRef Ref() const;

private:
    mutable std::shared_ptr<const Shape> m_shape; // a copy once the geometry has changed
    mutable size_t m_figureCount = 0;
    uint32_t m_fillRule = 0;
    BasicFigure m_figure;
};

class GdipPageList {
public:
    using Call = std::function<void(RenderTargetBase&)>;

    /// `call` is made under `transform` and reaches no pixel outside `box`.
    void Add(const Matrix& transform, const IntRect& box, Call call) {
        m_entries.push_back({transform, box, std::move(call)});
        ++m_drawings;
    }
    /// Calls of Add so far.
    [[nodiscard]] size_t Drawings() const noexcept { return m_drawings; }
    /// A call that concerns all that follow.
    void AddState(const Matrix& transform, Call call);

    /// Makes all calls that concern `part` of the page. The target's (0, 0) is the part's top left pixel.
    void Replay(RenderTargetBase& target, const IntRect& part) const;
    void Clear() noexcept;

    /// What the bitmap shows now. As long as it shows the same, it is the same copy.
    [[nodiscard]] std::shared_ptr<Bitmap> Keep(const Bitmap& bitmap);
    [[nodiscard]] std::shared_ptr<const Brush> Keep(const Brush& brush);

private:
    struct Entry {
        Matrix transform;
        IntRect box;
        Call call;
    };
    std::vector<Entry> m_entries;
    size_t m_drawings = 0;
    std::unordered_map<const SysMemBitmap*, std::shared_ptr<Bitmap>> m_bitmaps;
};

} // namespace Graphics
