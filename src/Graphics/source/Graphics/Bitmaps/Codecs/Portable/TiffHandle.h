// SPDX-License-Identifier: MIT
// An open libtiff file over our own bytes. Nothing of libtiff's global state is touched: errors and warnings go to the
// handle.
#pragma once

#include <tiffio.h>

#include "../ImageCodec.h"

namespace Graphics {

class TiffHandle {
public:
    /// Throw ImageError when libtiff refuses.
    explicit TiffHandle(ByteSource& source);
    explicit TiffHandle(ByteSink& sink);
    TiffHandle(const TiffHandle&) = delete;
    TiffHandle& operator=(const TiffHandle&) = delete;
    ~TiffHandle();

    [[nodiscard]] TIFF* Tiff() const noexcept { return m_tiff; }
    /// Whether an error, or a warning that says that pixels are missing, came up since the last call.
    [[nodiscard]] bool TakeFailure() noexcept;

private:
    void Open(const char* mode);

    ByteSource* m_source = nullptr;
    ByteSink* m_sink = nullptr;
    uint64_t m_position = 0;
    TIFF* m_tiff = nullptr;
    bool m_failed = false;
};

} // namespace Graphics
