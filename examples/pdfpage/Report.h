// SPDX-License-Identifier: MIT
// What the user gets told: failed library calls are counted and summed up in one line a page, each notice comes once a
// page, and --verbose adds every diagnostic.
#pragma once

#include <GX/GX.h>

#include <set>
#include <string>

namespace PdfPage {

class Report {
public:
    explicit Report(bool verbose);
    ~Report();
    Report(const Report&) = delete;
    Report& operator=(const Report&) = delete;

    bool Verbose() const noexcept { return m_verbose; }

    // True on success. A failure is counted; `what` names the call.
    bool Check(GXResult result, const char* what) noexcept;

    // One line on stderr, once a page for each text.
    void Notice(const char* text) noexcept;

    // Prints the sum of the failures and starts afresh.
    void EndPage() noexcept;

private:
    static void Log(void* context, const char* text);

    bool m_verbose;
    unsigned m_failures = 0;
    const char* m_firstFailure = nullptr;
    std::set<std::string> m_notices;
    std::string m_lastDiagnostic;
};

} // namespace PdfPage
