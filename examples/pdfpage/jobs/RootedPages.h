// SPDX-License-Identifier: MIT
// Draws jobs whose paths are below a root folder, as a worker among several that may die: what is known of a page lies
// beside its picture (PageRecord), and a job may come twice, or to two workers at once.
#pragma once

#include "Folder.h"
#include "PageJob.h"

#include <functional>
#include <string>

namespace PdfPage {

class RootedPages {
public:
    // The limits hold for every page, beside its own. Throws Failure when there is no such root.
    RootedPages(const std::string& root, const Limits& limits, bool verbose);

    // Settled: there is a picture, a record of why there is none, or another worker at work. Otherwise the page killed
    // its process, and is for another worker to try.
    enum class Result { Settled, GiveBack };

    // `alive` is called at least every second. Throws Failure for a job that names no place below the root, and when
    // the outcome can't be recorded.
    Result Draw(const PageJob& job, const std::function<void()>& alive) const;

private:
    const Folder m_root;
    const Limits m_limits;
    const bool m_verbose;
};

} // namespace PdfPage
