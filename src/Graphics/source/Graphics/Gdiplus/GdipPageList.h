// SPDX-License-Identifier: MIT
// The display list of a page: its drawing calls in order, so that another back end can draw parts of the page again.
// The arguments of a call are kept as they were at the time of the call.
#pragma once

#include <functional>
#include <unordered_map>
#include <vector>

#include "../Drawing/RenderTargetBase.h"
#include "../Paint/Brush.h"

namespace Graphics {

class SysMemBitmap;

/// A path that outlives its call. Glyphs are kept as outlines, one by one.
class GdipKeptPath {
public:
    explicit GdipKeptPath(const Path& path);

    /// Valid as long as this object.
    [[nodiscard]] Path Get() const;

private:
    Path::Kind m_kind;
    Shape m_shape;
    BasicFigure m_figure;
};

/// An ink and ownership of what it refers to.
struct GdipKeptInk {
    Ink ink;
    std::shared_ptr<const void> owner; ///< of the bitmap or the gradient; null for a colour
};

class GdipPageList {
public:
    /// Receives the target and the state of the recorded call, translated to the target's part of the page.
    using Call = std::function<void(RenderTargetBase&, const GraphicsState&)>;

    /// Adds a drawing call made under `state` that reaches no pixel outside `box`.
    void Add(const GraphicsState& state, const IntRect& box, Call call) {
        m_entries.push_back({state, box, std::move(call)});
        ++m_drawings;
    }
    /// Number of Add calls so far.
    [[nodiscard]] size_t Drawings() const noexcept { return m_drawings; }
    /// Adds a call that affects all later ones: of clips and groups.
    void AddScope(const GraphicsState& state, Call call);
    /// Reserves memory so that the next AddScope cannot fail if its call needs none.
    void MakeRoom();

    /// Replays the calls that affect `part` of the page. The target's (0, 0) is the part's top left pixel.
    void Replay(RenderTargetBase& target, const IntRect& part) const;
    void Clear() noexcept;

    /// A copy of the bitmap's present content; the same copy as long as the content is the same.
    [[nodiscard]] std::shared_ptr<Bitmap> Keep(const Bitmap& bitmap);
    [[nodiscard]] std::shared_ptr<const Brush> Keep(const Brush& brush);
    [[nodiscard]] GdipKeptInk Keep(const Ink& ink);

private:
    struct Entry {
        GraphicsState state;
        IntRect box;
        Call call;
    };
    std::vector<Entry> m_entries;
    size_t m_drawings = 0;
    std::unordered_map<const SysMemBitmap*, std::shared_ptr<Bitmap>> m_bitmaps;
};

} // namespace Graphics
