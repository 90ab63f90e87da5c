// SPDX-License-Identifier: MIT
#include "ByteSource.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "ImageCodec.h"

namespace Graphics {

size_t MemorySource::ReadAt(uint64_t offset, void* dst, size_t count) noexcept {
    if (offset >= m_size) {
        return 0;
    }
    const size_t n = std::min(count, m_size - static_cast<size_t>(offset));
    if (n != 0) {
        std::memcpy(dst, m_data + offset, n);
    }
    return n;
}

FileSource::FileSource(std::filesystem::path path) : m_path(std::move(path)) {
    // Pipes and devices have no size and may never end.
    std::error_code error;
    if (!std::filesystem::is_regular_file(m_path, error)) {
        throw ImageError();
    }
    m_size = std::filesystem::file_size(m_path, error);
    if (error || m_file.open(m_path, std::ios::in | std::ios::binary) == nullptr) {
        throw ImageError();
    }
}

size_t FileSource::ReadAt(uint64_t offset, void* dst, size_t count) noexcept {
    if (offset >= m_size || count == 0) {
        return 0;
    }
    const auto n = static_cast<std::streamsize>(std::min<uint64_t>(count, m_size - offset));
    try {
        if (offset != m_position) { // a seek drops the buffer
            m_position = UINT64_MAX;
            if (m_file.pubseekpos(static_cast<std::streamoff>(offset), std::ios::in) == std::streampos(-1)) {
                return 0;
            }
        }
        const std::streamsize got = m_file.sgetn(static_cast<char*>(dst), n);
        m_position = got < 0 ? UINT64_MAX : offset + static_cast<uint64_t>(got);
        return got < 0 ? 0 : static_cast<size_t>(got);
    } catch (...) {
        m_position = UINT64_MAX;
        return 0;
    }
}

} // namespace Graphics
