// SPDX-License-Identifier: MIT
// A file in a block of global memory, as the stream that GDI+ reads and writes.
#pragma once

#include "../../../Windows/GdipCalls.h"
#include "../ByteSink.h"
#include "../ByteSource.h"

namespace Graphics {

class GlobalStream {
public:
    /// An empty stream to be written. Throws ImageError.
    GlobalStream();
    /// A copy of the source's bytes. Throws ImageError, also if there are none.
    explicit GlobalStream(ByteSource& source);
    GlobalStream(const GlobalStream&) = delete;
    GlobalStream& operator=(const GlobalStream&) = delete;
    ~GlobalStream();

    [[nodiscard]] IStream* Get() const noexcept { return m_stream; }
    /// Copies everything written so far. Throws ImageError.
    void CopyTo(ByteSink& sink) const;

private:
    void Free() noexcept;

    HGLOBAL m_block = nullptr; // null: the stream owns its block
    IStream* m_stream = nullptr;
};

} // namespace Graphics
