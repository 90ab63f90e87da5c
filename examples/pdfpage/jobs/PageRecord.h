// SPDX-License-Identifier: MIT
// What is known of a page beside its picture, in two small files in the folder of the picture:
//
//   .pdfpage-<key>.tries    a line for each worker that began the page: its temporary file, its host, its process. A
//                           worker that comes to an end with the page, whichever end, removes the file; so a line that
//                           is left belongs to a worker that died, or still runs.
//   .pdfpage-<key>.failed   why there is no picture.
//
// The key stands for the whole job, so a page that is asked for in another way begins afresh.
#pragma once

#include "Folder.h"
#include "PageJob.h"

#include <optional>

namespace PdfPage {

class PageRecord {
public:
    static constexpr size_t kMostTries = 3;

    struct Verdict {
        bool killsWorkers = false; // it is not to be tried again
        std::string reason;
    };

    // The folder outlives this object.
    PageRecord(const Folder& folder, const PageJob& job);

    size_t Tries() const;
    // Notes a try, on the disk, and clears up after those before. Throws Failure when it can't be noted.
    void Begin(const std::string& temporaryName) const;
    // Whether the last try is still the one of this temporary file: another worker took over otherwise.
    bool IsMine(const std::string& temporaryName) const;
    void ForgetTries() const { m_folder.Remove(m_tries); }

    std::optional<Verdict> Failed() const;
    // Throws Failure when it can't be noted.
    void NoteFailed(const Verdict& verdict) const;
    void ForgetFailed() const { m_folder.Remove(m_failed); }

private:
    std::vector<std::string> TemporaryNames() const;

    const Folder& m_folder;
    std::string m_tries, m_failed;
};

} // namespace PdfPage
