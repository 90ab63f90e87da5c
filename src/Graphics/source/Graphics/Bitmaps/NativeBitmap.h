// SPDX-License-Identifier: MIT
// The platform interface for native bitmap objects (HBITMAP on Windows; other platforms have none).
#pragma once

#include <memory>

namespace Graphics {

class Bitmap;

/// A bitmap with a copy of the pixels of a native one. Raises "Failed to load"; "Not supported on this platform".
[[nodiscard]] std::shared_ptr<Bitmap> BitmapFromNative(void* nativeBitmap);

/// A native bitmap with a copy of the pixels: 32 bits, premultiplied, rows from the top down. The caller deletes it.
/// Raises "CreateDIBSection fail"; "Not supported on this platform".
[[nodiscard]] void* BitmapToNative(const Bitmap& bitmap);

} // namespace Graphics
