// SPDX-License-Identifier: MIT
// A libtiff file on the engine's byte sources and sinks. Errors and warnings go to the handle; libtiff's global state
// is not used.
#pragma once

#include <tiffio.h>

#include "../ImageCodec.h"

namespace Graphics {

class TiffHandle {
public:
    /// Both throw ImageError if libtiff refuses.
    explicit TiffHandle(ByteSource& source);
    explicit TiffHandle(ByteSink& sink);
    TiffHandle(const TiffHandle&) = delete;
    TiffHandle& operator=(const TiffHandle&) = delete;
    ~TiffHandle();

    [[nodiscard]] TIFF* Tiff() const noexcept { return m_tiff; }
    /// Whether an error, or a warning about missing pixels, has occurred since the last call.
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
