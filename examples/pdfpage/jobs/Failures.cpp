// SPDX-License-Identifier: MIT
#include "Failures.h"

#include "PageList.h"

namespace PdfPage {
namespace {

// A folder full of damaged files has as many reasons as files; the line stays readable.
constexpr size_t kMaxReasons = 40;

std::string Counted(size_t n, const char* what) { return std::to_string(n) + " " + what + (n == 1 ? "" : "s"); }

} // namespace

void Failures::AddPage(const std::string& reason, const std::string& file, int page) {
    m_reasons[reason][file].push_back(page);
    ++m_pages;
}

void Failures::AddFile(const std::string& reason, const std::string& file) {
    m_reasons[reason][file];
    ++m_files;
}

std::string Failures::Line(size_t allPages, size_t allFiles) const {
    const bool alone = allFiles == 1 && (allPages == 1 || m_pages == 0);
    std::string line;
    if (!alone) {
        if (m_pages > 0)
            line = std::to_string(m_pages) + " of " + Counted(allPages, "page");
        if (m_files > 0)
            line += (line.empty() ? "" : " and ") + std::to_string(m_files) + " of " + Counted(allFiles, "file");
        line += " failed: ";
    }
    size_t written = 0;
    for (const auto& [reason, files] : m_reasons) {
        if (written == kMaxReasons) {
            line += "; and " + std::to_string(m_reasons.size() - written) + " other reasons";
            break;
        }
        line += (written++ ? "; " : "") + reason;
        if (alone)
            continue;
        const char* before = ": ";
        for (const auto& [file, pages] : files) {
            if (pages.empty() && reason.find(file) != std::string::npos)
                continue;
            line += before + file + (pages.empty() ? "" : " " + PageText(pages));
            before = ", ";
        }
    }
    return line;
}

} // namespace PdfPage
