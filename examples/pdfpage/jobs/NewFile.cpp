// SPDX-License-Identifier: MIT
#include "NewFile.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <random>
#include <sys/file.h>

namespace PdfPage {
namespace {

constexpr const char* kBegin = ".pdfpage-";
constexpr const char* kEnd = ".part";

std::string RandomName() {
    static std::random_device random;
    char digits[20];
    std::snprintf(digits, sizeof digits, "%08x%08x", random(), random());
    return kBegin + std::string(digits) + kEnd;
}

} // namespace

NewFile::NewFile(const Folder& folder, const std::string& name) : m_folder(folder), m_name(name) {
    int number = -1;
    do {
        m_temporary = RandomName();
        number = ::openat(folder.Get(), m_temporary.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666);
    } while (number < 0 && errno == EEXIST);
    if (number < 0)
        throw Failure("cannot write '" + name + "': " + std::strerror(errno));
    ::flock(number, LOCK_EX | LOCK_NB);
    m_stream.reset(::fdopen(number, "wb"));
}

NewFile::~NewFile() {
    if (!m_temporary.empty())
        m_folder.Remove(m_temporary);
}

bool NewFile::Publish(bool durable) {
    if (durable && ::fdatasync(::fileno(m_stream.get())) != 0)
        return false;
    if (::renameat(m_folder.Get(), m_temporary.c_str(), m_folder.Get(), m_name.c_str()) != 0)
        return false;
    m_temporary.clear();
    return true;
}

bool NewFile::IsTemporary(const std::string& name) {
    return name.rfind(kBegin, 0) == 0 && name.find('/') == std::string::npos && name.size() > std::strlen(kEnd) &&
           name.compare(name.size() - std::strlen(kEnd), std::string::npos, kEnd) == 0;
}

void NewFile::Sweep(const std::string& folder) {
    std::error_code error;
    for (std::filesystem::directory_iterator at(folder, error), end; !error && at != end; at.increment(error)) {
        if (!IsTemporary(at->path().filename().string()))
            continue;
        const Descriptor file(::open(at->path().c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
        if (file && ::flock(file.Get(), LOCK_EX | LOCK_NB) == 0)
            ::unlink(at->path().c_str());
    }
}

} // namespace PdfPage
