// SPDX-License-Identifier: MIT
// The bytes of an image file, in memory or on disk. Decoders read pieces of it, so a file is never loaded as a whole.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>

namespace Graphics {

class ByteSource {
public:
    ByteSource() = default;
    ByteSource(const ByteSource&) = delete;
    ByteSource& operator=(const ByteSource&) = delete;
    virtual ~ByteSource() = default;

    [[nodiscard]] virtual uint64_t Size() const noexcept = 0;
    /// Returns the bytes copied from `offset` on: fewer than `count` at the end or after a system error.
    [[nodiscard]] virtual size_t ReadAt(uint64_t offset, void* dst, size_t count) noexcept = 0;
    /// The file's path; null for bytes in memory.
    [[nodiscard]] virtual const std::filesystem::path* Path() const noexcept { return nullptr; }
};

/// Bytes owned by the caller.
class MemorySource final : public ByteSource {
public:
    MemorySource(const void* data, size_t size) noexcept : m_data(static_cast<const uint8_t*>(data)), m_size(size) {}
    [[nodiscard]] uint64_t Size() const noexcept override { return m_size; }
    [[nodiscard]] size_t ReadAt(uint64_t offset, void* dst, size_t count) noexcept override;

private:
    const uint8_t* m_data;
    size_t m_size;
};

/// A regular file. Throws ImageError if it does not exist or cannot be read.
class FileSource final : public ByteSource {
public:
    explicit FileSource(std::filesystem::path path);
    [[nodiscard]] uint64_t Size() const noexcept override { return m_size; }
    [[nodiscard]] size_t ReadAt(uint64_t offset, void* dst, size_t count) noexcept override;
    [[nodiscard]] const std::filesystem::path* Path() const noexcept override { return &m_path; }

private:
    const std::filesystem::path m_path;
    std::filebuf m_file;
    uint64_t m_size = 0;
    uint64_t m_position = 0;
};

/// Reads a source from front to back.
class ByteCursor {
public:
    explicit ByteCursor(ByteSource& source, uint64_t position = 0) noexcept : m_source(source), m_position(position) {}

    [[nodiscard]] size_t Read(void* dst, size_t count) noexcept {
        const size_t got = m_source.ReadAt(m_position, dst, count);
        m_position += got;
        return got;
    }
    [[nodiscard]] uint64_t Position() const noexcept { return m_position; }
    void Seek(uint64_t position) noexcept { m_position = position; }
    [[nodiscard]] uint64_t Size() const noexcept { return m_source.Size(); }

private:
    ByteSource& m_source;
    uint64_t m_position;
};

} // namespace Graphics
