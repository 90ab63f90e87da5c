// SPDX-License-Identifier: MIT
// The destination of a saved image. A file is written beside the wanted one and replaces it when complete; a failed
// save leaves the old file and no other trace.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>

namespace Graphics {

class ByteSink {
public:
    ByteSink() = default;
    ByteSink(const ByteSink&) = delete;
    ByteSink& operator=(const ByteSink&) = delete;
    virtual ~ByteSink() = default;

    /// False if not all bytes could be written.
    [[nodiscard]] virtual bool Write(const void* data, size_t count) noexcept = 0;
    /// Moves the write position, counted from the front.
    [[nodiscard]] virtual bool Seek(uint64_t position) noexcept = 0;
    [[nodiscard]] virtual uint64_t Position() const noexcept = 0;
    [[nodiscard]] virtual uint64_t Size() const noexcept = 0;
};

class FileSink final : public ByteSink {
public:
    /// Throws ImageError if no file can be created there.
    explicit FileSink(const std::filesystem::path& path);
    ~FileSink() override;

    [[nodiscard]] bool Write(const void* data, size_t count) noexcept override;
    [[nodiscard]] bool Seek(uint64_t position) noexcept override;
    [[nodiscard]] uint64_t Position() const noexcept override { return m_position; }
    [[nodiscard]] uint64_t Size() const noexcept override { return m_size; }

    /// Moves the file to its final place. Throws ImageError if a write failed.
    void Commit();

private:
    std::filesystem::path m_path;
    std::filesystem::path m_temporary;
    std::filebuf m_file;
    uint64_t m_position = 0;
    uint64_t m_size = 0;
    bool m_failed = false;
    bool m_committed = false;
};

} // namespace Graphics
