// SPDX-License-Identifier: MIT
#include "PageNames.h"

#include "../PageRenderer.h"
#include "Checksum.h"

#include <filesystem>
#include <map>
#include <set>

namespace PdfPage {
namespace {

std::string FullPath(const std::string& file) {
    std::error_code error;
    const std::filesystem::path path = std::filesystem::weakly_canonical(file, error);
    return error ? std::filesystem::path(file).lexically_normal().string() : path.string();
}

} // namespace

PageNames::PageNames(const std::vector<std::string>& files) {
    std::map<std::string, int> users;
    for (const std::string& file : files)
        ++users[m_stems.emplace_back(std::filesystem::path(file).stem().string())];
    std::map<std::string, size_t> taken;
    for (size_t i = 0; i < files.size(); ++i) {
        if (users[m_stems[i]] > 1)
            m_stems[i] += "." + Hexadecimal(Checksum(FullPath(files[i])));
        const auto [other, free] = taken.emplace(m_stems[i], i);
        if (!free)
            throw Failure("the pages of '" + files[other->second] + "' and '" + files[i] +
                          "' would have the same names");
    }
}

std::vector<std::string> WithoutTwins(const std::vector<std::string>& files) {
    std::vector<std::string> once;
    std::set<std::string> seen;
    for (const std::string& file : files)
        if (seen.insert(FullPath(file)).second)
            once.push_back(file);
    return once;
}

} // namespace PdfPage
