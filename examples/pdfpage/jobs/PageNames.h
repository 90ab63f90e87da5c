// SPDX-License-Identifier: MIT
// Where the pages of several files go in one folder.
//
// Page 7 of some/report.pdf is report-7.png. Files of the command that share the name "report" each get the checksum of
// their folder and full name, which depends on nothing else on the command line: report.91ab…-7.png. The last dash sets
// the page apart, so different stems never give the same name.
#pragma once

#include <string>
#include <vector>

namespace PdfPage {

class PageNames {
public:
    // Throws Failure in the one case that is left: a file that is called what another one's checksum makes it.
    explicit PageNames(const std::vector<std::string>& files);

    std::string Of(size_t file, int page) const { return m_stems[file] + "-" + std::to_string(page) + ".png"; }

private:
    std::vector<std::string> m_stems;
};

// The same files, each once, whatever road leads to it.
std::vector<std::string> WithoutTwins(const std::vector<std::string>& files);

} // namespace PdfPage
