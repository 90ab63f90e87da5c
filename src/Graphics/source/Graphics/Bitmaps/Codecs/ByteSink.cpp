// SPDX-License-Identifier: MIT
#include "ByteSink.h"

#include <algorithm>
#include <random>
#include <string>

#include "ImageCodec.h"

namespace Graphics {

FileSink::FileSink(const std::filesystem::path& path) : m_path(path) {
    std::error_code error;
    if (std::filesystem::is_symlink(m_path, error)) { // the link is kept, and its target is replaced
        m_path = std::filesystem::weakly_canonical(m_path, error);
    }
    const std::filesystem::file_status status = std::filesystem::status(m_path, error);
    if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status)) {
        throw ImageError();
    }
    // A unique name for each save, so that two saves to one path do not collide.
    std::random_device random;
    const uint64_t unique = static_cast<uint64_t>(random()) << 32 | random();
    std::string name = ".";
    name += std::to_string(unique);
    name += ".tmp";
    m_temporary = m_path.parent_path() / name;
    if (std::filesystem::exists(m_temporary, error) ||
        m_file.open(m_temporary, std::ios::out | std::ios::binary | std::ios::trunc) == nullptr) {
        m_temporary.clear();
        throw ImageError();
    }
}

FileSink::~FileSink() {
    if (!m_committed) {
        m_file.close();
        std::error_code error;
        std::filesystem::remove(m_temporary, error);
    }
}

bool FileSink::Write(const void* data, size_t count) noexcept {
    try {
        const auto n = static_cast<std::streamsize>(count);
        if (!m_failed && m_file.sputn(static_cast<const char*>(data), n) == n) {
            m_position += count;
            m_size = std::max(m_size, m_position);
            return true;
        }
    } catch (...) { // reported like any failed write
    }
    m_failed = true;
    return false;
}

bool FileSink::Seek(uint64_t position) noexcept {
    try {
        if (m_file.pubseekpos(static_cast<std::streamoff>(position), std::ios::out) != std::streampos(-1)) {
            m_position = position;
            return true;
        }
    } catch (...) {
    }
    m_failed = true;
    return false;
}

void FileSink::Commit() {
    std::error_code error;
    if (m_failed || m_file.close() == nullptr) {
        throw ImageError();
    }
    const std::filesystem::file_status old = std::filesystem::status(m_path, error);
    if (std::filesystem::exists(old)) { // the new file takes over the permissions of the replaced one
        std::filesystem::permissions(m_temporary, old.permissions(), error);
    }
    std::filesystem::rename(m_temporary, m_path, error);
    if (error) {
        throw ImageError();
    }
    m_committed = true;
}

} // namespace Graphics
