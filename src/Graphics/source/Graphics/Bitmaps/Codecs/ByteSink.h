// SPDX-License-Identifier: MIT
// Where the bytes of a saved image go: a new file beside the wanted one, which takes its place once it is complete. A
// save that fails leaves no trace, and whatever was there before.
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

    /// False when not all could be written.
    [[nodiscard]] virtual bool Write(const void* data, size_t count) noexcept = 0;
    /// From the front; later writes go there.
    [[nodiscard]] virtual bool Seek(uint64_t position) noexcept = 0;
    [[nodiscard]] virtual uint64_t Position() const noexcept = 0;
    [[nodiscard]] virtual uint64_t Size() const noexcept = 0;
};

class FileSink final : public ByteSink {
public:
    /// Throws ImageError when no file can be made there.
    explicit FileSink(const std::filesystem::path& path);
    ~FileSink() override;

    [[nodiscard]] bool Write(const void* data, size_t count) noexcept override;
    [[nodiscard]] bool Seek(uint64_t position) noexcept override;
    [[nodiscard]] uint64_t Position() const noexcept override { return m_position; }
    [[nodiscard]] uint64_t Size() const noexcept override { return m_size; }

    /// Puts the file in its place. Throws ImageError when any write failed.
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
