// SPDX-License-Identifier: MIT
// Builds the clips of a target. The same clip again, as hosts that save and restore state around every object ask for,
// is built once.
#pragma once

#include <vector>

#include "../Drawing/Path.h"
#include "ClipBuilder.h"

namespace Graphics {

class Rasterizer;

class ClipMaker {
public:
    /// `path` under `m`, inside `parent` (null: none) and `visible`. `shape` is the path's stored shape, or its figure
    /// put into a shape.
    [[nodiscard]] ClipRef Make(Rasterizer& rasterizer, const Path& path, const Shape& shape, const Matrix& m,
                               const IntRect& area, const IntRect& visible, const ClipRef& parent, bool snap);
    void Forget() noexcept { m_recent.clear(); }
    [[nodiscard]] ClipPool& Pool() noexcept { return m_pool; }

private:
    /// A clip that was built not long ago, with everything it was made from.
    struct Key {
        ClipRef parent;
        ClipRef clip;
        uint64_t shape; ///< its identity
        Matrix transform;
        IntRect visible;
        bool snap;
    };

    static constexpr size_t kRecent = 8;
    static constexpr size_t kRecentBytes = size_t{1} << 19;

    /// Of the coverage that the keys from `first` on hold.
    [[nodiscard]] size_t KeptBytes(size_t first) const noexcept;

    ClipPool m_pool;           // before everything that may hold clips
    std::vector<Key> m_recent; // the oldest first
};

} // namespace Graphics
