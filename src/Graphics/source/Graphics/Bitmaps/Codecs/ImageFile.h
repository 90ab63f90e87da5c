// SPDX-License-Identifier: MIT
// Loads bitmaps from image files, on disk or in memory, and saves them.
#pragma once

#include <memory>

#include "../Bitmap.h"

namespace Graphics {

class ImageFile {
public:
    /// The first frame. Raises "Failed to load".
    [[nodiscard]] static std::shared_ptr<Bitmap> Load(const wchar_t* path);

    /// `frameCount` may be null; it is written as soon as the count is known, even if loading then fails. Raises
    /// "Failed to load" and "Failed to load. Frame index is out of range."
    [[nodiscard]] static std::shared_ptr<Bitmap> LoadFrame(const wchar_t* path, uint32_t frame, uint32_t* frameCount);

    [[nodiscard]] static std::shared_ptr<Bitmap> LoadFromMemory(const void* data, size_t size);

    /// The extension of `path` selects the kind of file. Raises "Failed to save bitmap", "Failed to save bitmap:
    /// Unknown file format" and "Failed to save bitmap: Zero size".
    static void Save(const Bitmap& bitmap, const wchar_t* path);
};

} // namespace Graphics
