// SPDX-License-Identifier: MIT
// What all fonts of the process share: the FreeType library and the fontconfig configuration, made at first use, ended
// at unload or with the last font that a host leaves behind.
#pragma once

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_MODULE_H

#include <fontconfig/fontconfig.h>

#include <memory>
#include <mutex>
#include <string>
#include <utility>

namespace Graphics {

/// A font file and what has to be done to its outlines to make it the font that was asked for.
struct FontMatch {
    std::string file;
    int index = 0;
    bool embolden = false;
    double matrix[4] = {1.0, 0.0, 0.0, 1.0}; ///< xx, xy, yx, yy on coordinates with y up
};

class FontLibrary {
public:
    /// Call under the lock. Raises "Not enough memory".
    [[nodiscard]] static std::shared_ptr<FontLibrary> Get();
    /// The one lock around every use of FreeType and fontconfig. It needs no destruction.
    [[nodiscard]] static std::mutex& Lock() noexcept;

    FontLibrary();
    FontLibrary(const FontLibrary&) = delete;
    FontLibrary& operator=(const FontLibrary&) = delete;
    ~FontLibrary();

    /// The installed font that comes nearest; an empty name stands for the default one. Raises "No font found".
    [[nodiscard]] FontMatch Match(const std::string& family, bool bold, bool italic);
    [[nodiscard]] FT_Library FreeType() const noexcept { return m_freeType; }
    /// Whether FreeType was refused memory since the last question. It goes on without what it can do without, which
    /// would make another font of this one.
    [[nodiscard]] bool WasRefused() noexcept { return std::exchange(m_refused, false); }

private:
    FT_MemoryRec_ m_memory;
    bool m_refused = false;
    FT_Library m_freeType = nullptr;
    FcConfig* m_config = nullptr;
};

} // namespace Graphics
