// SPDX-License-Identifier: MIT
// What the user asked for.
#pragma once

#include "PageJob.h"
#include "PageList.h"

#include <optional>
#include <string>
#include <vector>

namespace PdfPage {

struct CommandLine {
    std::vector<std::string> files;
    float dpi = 150.0f;
    Limits limits;
    bool adjust = true;
    bool verbose = false;

    // One page of one file.
    int page = 1;
    std::string picture, peer, record;
    int runs = 0;
    unsigned threads = 1;

    // Many pages.
    std::optional<PageList> pages;
    std::string folder;
    unsigned jobs = 1;
    bool resume = false;

    // Many machines.
    std::string via, worker, root = ".";

    bool ManyPages() const noexcept { return pages || !folder.empty() || !via.empty(); }
    bool Measures() const noexcept { return runs > 0 || !peer.empty() || !record.empty(); }

    // Throws Failure for what makes no sense.
    static CommandLine Parse(const std::vector<std::string>& arguments);
    static const char* Usage() noexcept;
};

} // namespace PdfPage
