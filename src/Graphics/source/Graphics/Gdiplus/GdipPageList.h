// SPDX-License-Identifier: MIT
// The drawing calls of a page in their order, for parts of the page that have to be drawn once more by another back
// end. Whatever a call was given is kept as it was at that time.
#pragma once

#include <functional>
#include <unordered_map>
#include <vector>

#include "../Drawing/RenderTargetBase.h"
#include "../Paint/Brush.h"

namespace Graphics {

class SysMemBitmap;

/// A path that outlives the call it came with. Glyphs are kept one by one, as outlines.
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

/// An ink with what it refers to.
struct GdipKeptInk {
    Ink ink;
    std::shared_ptr<const void> owner; ///< of the bitmap or the gradient; null for a colour
};

class GdipPageList {
public:
    /// Gets the state that the call was made under, moved to where the target shows the page.
    using Call = std::function<void(RenderTargetBase&, const GraphicsState&)>;

    /// `call` is made under `state` and reaches no pixel outside `box`.
    void Add(const GraphicsState& state, const IntRect& box, Call call) {
        m_entries.push_back({state, box, std::move(call)});
        ++m_drawings;
    }
    /// Calls of Add so far.
    [[nodiscard]] size_t Drawings() const noexcept { return m_drawings; }
    /// A call that concerns all that follow: of clips and groups.
    void AddScope(const GraphicsState& state, Call call);
    /// The next AddScope of a call that needs no memory cannot fail.
    void MakeRoom();

    /// Makes all calls that concern `part` of the page. The target's (0, 0) is the part's top left pixel.
    void Replay(RenderTargetBase& target, const IntRect& part) const;
    void Clear() noexcept;

    /// What the bitmap shows now. As long as it shows the same, it is the same copy.
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
