// SPDX-License-Identifier: MIT
#include "Report.h"

#include "MemoryLimit.h"

#include <cstdio>
#include <cstring>

namespace PdfPage {

Report::Report(bool verbose) : m_verbose(verbose) { GXLogSetSink(1, &Report::Log, this); }

Report::~Report() { GXLogSetSink(1, nullptr, nullptr); }

void Report::Log(void* context, const char* text) {
    auto* self = static_cast<Report*>(context);
    if (std::strstr(text, "Not enough memory"))
        MemoryLimit::NoteRefusal();
    try {
        self->m_lastDiagnostic = text;
    } catch (...) {
    }
}

bool Report::Check(GXResult result, const char* what) noexcept {
    if (result == GXResultSuccess)
        return true;
    if (m_failures++ == 0)
        m_firstFailure = what;
    if (m_verbose)
        std::fprintf(stderr, "pdfpage: %s gave %u: %s\n", what, result, m_lastDiagnostic.c_str());
    m_lastDiagnostic.clear();
    return false;
}

void Report::Notice(const char* text) noexcept {
    try {
        if (m_notices.insert(text).second)
            std::fprintf(stderr, "pdfpage: %s\n", text);
    } catch (...) {
    }
}

void Report::EndPage() noexcept {
    if (m_failures)
        std::fprintf(stderr, "pdfpage: %u library calls failed, the first was %s%s\n", m_failures, m_firstFailure,
                     m_verbose ? "" : " (--verbose shows why)");
    m_failures = 0;
    m_notices.clear();
}

} // namespace PdfPage
