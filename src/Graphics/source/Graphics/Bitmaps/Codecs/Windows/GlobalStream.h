// SPDX-License-Identifier: MIT
// A file in a block of global memory, in the form in which GDI+ reads and writes one.
#pragma once

#include "../../../Windows/GdipCalls.h"
#include "../ByteSink.h"
#include "../ByteSource.h"

namespace Graphics {

class GlobalStream {
public:
    /// Empty, to be written. Throws ImageError.
    GlobalStream();
    /// A copy of the source's bytes. Throws ImageError, also where there are none.
    explicit GlobalStream(ByteSource& source);
    GlobalStream(const GlobalStream&) = delete;
    GlobalStream& operator=(const GlobalStream&) = delete;
    ~GlobalStream();

    [[nodiscard]] IStream* Get() const noexcept { return m_stream; }
    /// All that was written. Throws ImageError.
    void CopyTo(ByteSink& sink) const;

private:
    void Free() noexcept;

    HGLOBAL m_block = nullptr; // null: the stream has one of its own
    IStream* m_stream = nullptr;
};

} // namespace Graphics
