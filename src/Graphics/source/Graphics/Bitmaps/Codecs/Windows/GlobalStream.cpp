// SPDX-License-Identifier: MIT
#include "GlobalStream.h"

#include "../CodecSupport.h"

namespace Graphics {

GlobalStream::GlobalStream() { Require(g_gdip.createStreamOnHGlobal(nullptr, TRUE, &m_stream) == S_OK); }

GlobalStream::GlobalStream(ByteSource& source) {
    const uint64_t size = source.Size();
    Require(size > 0 && size <= SIZE_MAX);
    m_block = g_gdip.globalAlloc(GMEM_MOVEABLE, static_cast<size_t>(size));
    Require(m_block != nullptr);
    void* bytes = GlobalLock(m_block);
    bool copied = bytes != nullptr;
    if (copied) {
        copied = source.ReadAt(0, bytes, static_cast<size_t>(size)) == size;
        GlobalUnlock(m_block);
    }
    if (!copied || g_gdip.createStreamOnHGlobal(m_block, FALSE, &m_stream) != S_OK) {
        Free();
        throw ImageError();
    }
}

GlobalStream::~GlobalStream() { Free(); }

void GlobalStream::Free() noexcept {
    if (m_stream != nullptr) {
        m_stream->Release();
    }
    if (m_block != nullptr) {
        GlobalFree(m_block);
    }
}

void GlobalStream::CopyTo(ByteSink& sink) const {
    STATSTG about{};
    HGLOBAL block = nullptr;
    Require(m_stream->Stat(&about, STATFLAG_NONAME) == S_OK && GetHGlobalFromStream(m_stream, &block) == S_OK);
    const void* bytes = GlobalLock(block);
    Require(bytes != nullptr);
    const bool written = sink.Write(bytes, static_cast<size_t>(about.cbSize.QuadPart));
    GlobalUnlock(block);
    Require(written);
}

} // namespace Graphics
