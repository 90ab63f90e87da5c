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

/// A path that outlives the call it came with.
class GdipKeptPath {
public:
    explicit GdipKeptPath(const PathRef& path)
        : m_shape(path.shape != nullptr ? *path.shape : nullptr),
          m_figure(path.figure != nullptr ? *path.figure : BasicFigure(BasicFigure::Kind::Rectangle, {})) {}

    [[nodiscard]] PathRef Ref() const noexcept {
        return m_shape != nullptr ? PathRef{&m_shape, nullptr} : PathRef{nullptr, &m_figure};
    }

private:
    std::shared_ptr<const Shape> m_shape;
    BasicFigure m_figure;
};

class GdipPageList {
public:
    using Call = std::function<void(RenderTargetBase&)>;

    /// `call` is made under `transform` and reaches no pixel outside `box`.
    void Add(const Matrix& transform, const IntRect& box, Call call) {
        m_entries.push_back({transform, box, std::move(call)});
    }
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
    std::unordered_map<const SysMemBitmap*, std::shared_ptr<Bitmap>> m_bitmaps;
};

} // namespace Graphics
