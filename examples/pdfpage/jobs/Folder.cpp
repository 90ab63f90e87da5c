// SPDX-License-Identifier: MIT
#include "Folder.h"

#include "../PageRenderer.h"
#include "NewFile.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>

namespace PdfPage {
namespace {

constexpr int kFolderFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;

[[noreturn]] void Fail(const char* what, const std::string& path) {
    const int error = errno;
    throw Failure(std::string(what) + " '" + path + "': " + std::strerror(error));
}

std::string Joined(const std::vector<std::string>& parts) {
    std::string path;
    for (const std::string& part : parts)
        path += (path.empty() ? "" : "/") + part;
    return path;
}

} // namespace

Folder Folder::Open(const std::string& path) {
    Descriptor folder(::open(path.c_str(), kFolderFlags));
    if (!folder)
        Fail("cannot open the folder", path);
    return Folder(std::move(folder));
}

Folder Folder::Make(const std::string& path) {
    std::error_code error;
    std::filesystem::create_directories(path, error);
    if (error)
        throw Failure("cannot make the folder '" + path + "': " + error.message());
    return Open(path);
}

std::vector<std::string> Folder::Parts(const std::string& path) {
    const auto refuse = [&] { throw Failure("'" + path + "' leaves the root folder"); };
    if (path.empty() || path[0] == '/' || path.find('\0') != std::string::npos)
        refuse();
    std::vector<std::string> parts;
    for (size_t at = 0; at <= path.size();) {
        const size_t end = std::min(path.find('/', at), path.size());
        const std::string part = path.substr(at, end - at);
        if (part == "..")
            refuse();
        if (!part.empty() && part != ".")
            parts.push_back(part);
        at = end + 1;
    }
    return parts;
}

Folder Folder::Beneath(const std::vector<std::string>& parts, bool make) const {
    Descriptor at(::openat(m_folder.Get(), ".", kFolderFlags));
    for (const std::string& part : parts) {
        if (make && ::mkdirat(at.Get(), part.c_str(), 0777) != 0 && errno != EEXIST)
            Fail("cannot make the folder", Joined(parts));
        Descriptor next(::openat(at.Get(), part.c_str(), kFolderFlags | O_NOFOLLOW));
        if (!next)
            Fail("no way without a symbolic link to the folder", Joined(parts));
        at = std::move(next);
    }
    if (!at)
        Fail("cannot open the folder", Joined(parts));
    return Folder(std::move(at));
}

Descriptor Folder::OpenFileBeneath(const std::string& path) const {
    std::vector<std::string> parts = Parts(path);
    if (parts.empty())
        throw Failure("'" + path + "' is no file");
    const std::string name = parts.back();
    parts.pop_back();
    const Folder folder = Beneath(parts, false);
    // Not waiting: a pipe in the place of a file would wait for its other end.
    Descriptor file(::openat(folder.Get(), name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!file)
        Fail("cannot open", path);
    struct stat status {};
    if (::fstat(file.Get(), &status) != 0 || !S_ISREG(status.st_mode))
        throw Failure("cannot open '" + path + "': it is no regular file");
    return file;
}

std::optional<uint64_t> Folder::Size(const std::string& name) const {
    struct stat status {};
    if (::fstatat(m_folder.Get(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0 || !S_ISREG(status.st_mode))
        return std::nullopt;
    return static_cast<uint64_t>(status.st_size);
}

void Folder::Remove(const std::string& name) const noexcept { ::unlinkat(m_folder.Get(), name.c_str(), 0); }

std::string Folder::Read(const std::string& name) const {
    const Descriptor file(::openat(m_folder.Get(), name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    std::string text;
    char block[4096];
    constexpr size_t kMost = 1u << 20;
    for (ssize_t n; file && text.size() < kMost && (n = ::read(file.Get(), block, sizeof block)) > 0;)
        text.append(block, static_cast<size_t>(n));
    return text;
}

bool Folder::Append(const std::string& name, const std::string& text) const {
    return Write(name, text, O_WRONLY | O_CREAT | O_APPEND | O_NOFOLLOW | O_CLOEXEC);
}

bool Folder::Write(const std::string& name, const std::string& text, int flags) const {
    const Descriptor file(::openat(m_folder.Get(), name.c_str(), flags, 0666));
    return file && ::write(file.Get(), text.data(), text.size()) == static_cast<ssize_t>(text.size()) &&
           ::fdatasync(file.Get()) == 0;
}

bool Folder::Replace(const std::string& name, const std::string& text) const {
    NewFile file(*this, name);
    std::FILE* const stream = file.Stream();
    return std::fwrite(text.data(), 1, text.size(), stream) == text.size() && std::fflush(stream) == 0 &&
           file.Publish(true);
}

} // namespace PdfPage
