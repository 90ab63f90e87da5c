// SPDX-License-Identifier: MIT
#include "PageRecord.h"

#include "../PageRenderer.h"
#include "NewFile.h"

#include <cerrno>
#include <cstring>
#include <sstream>
#include <unistd.h>

namespace PdfPage {
namespace {

constexpr const char* kKillsWorkers = "kills workers";
constexpr const char* kFailed = "failed";

std::string HostName() {
    char name[256] = "";
    ::gethostname(name, sizeof name - 1);
    return name;
}

} // namespace

PageRecord::PageRecord(const Folder& folder, const PageJob& job)
    : m_folder(folder), m_tries(".pdfpage-" + job.Key() + ".tries"), m_failed(".pdfpage-" + job.Key() + ".failed") {}

std::vector<std::string> PageRecord::TemporaryNames() const {
    std::istringstream lines(m_folder.Read(m_tries));
    std::vector<std::string> names;
    for (std::string line; std::getline(lines, line);)
        names.push_back(line.substr(0, line.find(' ')));
    return names;
}

size_t PageRecord::Tries() const { return TemporaryNames().size(); }

void PageRecord::Begin(const std::string& temporaryName) const {
    for (const std::string& name : TemporaryNames())
        if (NewFile::IsTemporary(name))
            m_folder.Remove(name);
    const std::string line = temporaryName + " " + HostName() + " " + std::to_string(::getpid()) + "\n";
    if (!m_folder.Append(m_tries, line))
        throw Failure("cannot write '" + m_tries + "': " + std::strerror(errno));
}

bool PageRecord::IsMine(const std::string& temporaryName) const {
    const std::vector<std::string> names = TemporaryNames();
    return !names.empty() && names.back() == temporaryName;
}

std::optional<PageRecord::Verdict> PageRecord::Failed() const {
    if (!m_folder.Has(m_failed))
        return std::nullopt;
    const std::string text = m_folder.Read(m_failed);
    const size_t end = std::min(text.find('\n'), text.size());
    return Verdict{text.substr(0, end) == kKillsWorkers, text.substr(std::min(end + 1, text.size()))};
}

void PageRecord::NoteFailed(const Verdict& verdict) const {
    if (!m_folder.Replace(m_failed,
                          std::string(verdict.killsWorkers ? kKillsWorkers : kFailed) + "\n" + verdict.reason))
        throw Failure("cannot write '" + m_failed + "': " + std::strerror(errno));
}

} // namespace PdfPage
