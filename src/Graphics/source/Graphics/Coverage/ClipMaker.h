// SPDX-License-Identifier: MIT
// Builds the clips of a target. Hosts that save and restore state around every object set the same clip again and
// again; it is built once.
#pragma once

#include <vector>

#include "../Drawing/Path.h"
#include "ClipBuilder.h"

namespace Graphics {

class Rasterizer;

class ClipMaker {
public:
    /// Clips to `path` under `m`, inside `parent` (null: none) and `visible`. `shape` is the path's stored shape, or a
    /// shape made from its figure.
    [[nodiscard]] ClipRef Make(Rasterizer& rasterizer, const Path& path, const Shape& shape, const Matrix& m,
                               const IntRect& area, const IntRect& visible, const ClipRef& parent, bool snap);
    void Forget() noexcept { m_recent.clear(); }
    [[nodiscard]] ClipPool& Pool() noexcept { return m_pool; }

private:
    /// A recently built clip and everything it was made from.
    struct Key {
        ClipRef parent;
        ClipRef clip;
        uint64_t shape; ///< Shape::Identity
        Matrix transform;
        IntRect visible;
        bool snap;
    };

    static constexpr size_t kRecent = 8;
    static constexpr size_t kRecentBytes = size_t{1} << 19;

    /// Bytes of coverage held by the keys from `first` on.
    [[nodiscard]] size_t KeptBytes(size_t first) const noexcept;

    ClipPool m_pool;           // declared before all members that may hold clips
    std::vector<Key> m_recent; // oldest first
};

} // namespace Graphics
