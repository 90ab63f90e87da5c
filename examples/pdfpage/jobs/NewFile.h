// SPDX-License-Identifier: MIT
// A file that appears complete or not at all: written under a temporary name in its own folder, then renamed. Temporary
// names are ".pdfpage-<random>.part"; while one is in use it is locked, so that what a killed program left behind is
// told from what another one is writing.
#pragma once

#include "../PageRenderer.h"
#include "Folder.h"

#include <string>

namespace PdfPage {

class NewFile {
public:
    // Throws Failure when the temporary file can't be made. The folder outlives this object.
    NewFile(const Folder& folder, const std::string& name);
    // Removes the temporary file unless it was published.
    ~NewFile();
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    std::FILE* Stream() const noexcept { return m_stream.get(); }
    const std::string& TemporaryName() const noexcept { return m_temporary; }

    // Gives the file its name, in place of what has it; flushed to the disk first when `durable`. False with errno set
    // when that fails; ENOENT then says that somebody took the temporary file away.
    bool Publish(bool durable);

    // A name as they are given, not a path.
    static bool IsTemporary(const std::string& name);

    // Removes the temporary files of programs that no longer run.
    static void Sweep(const std::string& folder);

private:
    const Folder& m_folder;
    std::string m_name, m_temporary;
    FilePointer m_stream;
};

} // namespace PdfPage
