// SPDX-License-Identifier: MIT
// Bitmaps from files and from files in memory, and into files.
#pragma once

#include <memory>

#include "../Bitmap.h"

namespace Graphics {

class ImageFile {
public:
    /// The first frame. Raises "Failed to load".
    [[nodiscard]] static std::shared_ptr<Bitmap> Load(const wchar_t* path);

    /// `frameCount` may be null; it is written as soon as the count is known. Raises "Failed to load" and "Failed to
    /// load. Frame index is out of range."
    [[nodiscard]] static std::shared_ptr<Bitmap> LoadFrame(const wchar_t* path, uint32_t frame, uint32_t* frameCount);

    [[nodiscard]] static std::shared_ptr<Bitmap> LoadFromMemory(const void* data, size_t size);

    /// The ending of `path` names the kind of file. Raises "Failed to save bitmap", "Failed to save bitmap: Unknown
    /// file format" and "Failed to save bitmap: Zero size".
    static void Save(const Bitmap& bitmap, const wchar_t* path);
};

} // namespace Graphics
