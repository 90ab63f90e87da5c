// SPDX-License-Identifier: MIT
// The state shared by all fonts of the process: the FreeType library and the fontconfig configuration. Created at first
// use; destroyed at unload, or with the last font that the host still holds then.
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

/// A font file, and the transformation of its outlines that yields the requested font.
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
    /// The one lock around every use of FreeType and fontconfig. It is never destroyed.
    [[nodiscard]] static std::mutex& Lock() noexcept;

    FontLibrary();
    FontLibrary(const FontLibrary&) = delete;
    FontLibrary& operator=(const FontLibrary&) = delete;
    ~FontLibrary();

    /// The installed font closest to the request; an empty name selects the default font. Raises "No font found".
    [[nodiscard]] FontMatch Match(const std::string& family, bool bold, bool italic);
    [[nodiscard]] FT_Library FreeType() const noexcept { return m_freeType; }
    /// Whether FreeType was refused memory since the last call. FreeType continues without optional data, and the
    /// result would look like another font.
    [[nodiscard]] bool WasRefused() noexcept { return std::exchange(m_refused, false); }

private:
    FT_MemoryRec_ m_memory;
    bool m_refused = false;
    FT_Library m_freeType = nullptr;
    FcConfig* m_config = nullptr;
};

} // namespace Graphics
