// SPDX-License-Identifier: MIT
// A folder that is held open: names in it stay in it, whatever happens to the path that led there.
#pragma once

#include "Descriptor.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace PdfPage {

class Folder {
public:
    // Each throws Failure with the path and the reason.
    static Folder Open(const std::string& path);
    static Folder Make(const std::string& path); // and the folders above it

    // A path below this folder, taken apart and walked name by name: nothing leaves the folder. A path that is
    // absolute, contains "..", or leads through or to a symbolic link throws Failure.
    static std::vector<std::string> Parts(const std::string& path);
    Folder Beneath(const std::vector<std::string>& parts, bool make) const;
    Descriptor OpenFileBeneath(const std::string& path) const;

    int Get() const noexcept { return m_folder.Get(); }

    // Size of a regular file; nothing when there is none.
    std::optional<uint64_t> Size(const std::string& name) const;
    bool Has(const std::string& name) const { return Size(name).has_value(); }
    void Remove(const std::string& name) const noexcept;

    // Small files, whole. Append and Replace are on the disk when they return true.
    std::string Read(const std::string& name) const;
    bool Append(const std::string& name, const std::string& text) const;
    bool Replace(const std::string& name, const std::string& text) const;

private:
    explicit Folder(Descriptor folder) : m_folder(std::move(folder)) {}
    bool Write(const std::string& name, const std::string& text, int flags) const;

    Descriptor m_folder;
};

} // namespace PdfPage
