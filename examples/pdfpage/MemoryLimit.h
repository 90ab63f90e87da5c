// SPDX-License-Identifier: MIT
// What happens when memory is refused while a page is drawn under a limit. Without a limit MuPDF and the library cope
// as well as they can: a page then lacks the picture that did not fit. Under a limit such a page is a failed page, so
// every road by which a refusal comes (MuPDF's allocator, operator new, the library's heap) leads here.
#pragma once

#include "MuPdf.h"

namespace PdfPage {

class MemoryLimit {
public:
    // From now on `refused` is called at the first refusal, inside the allocator: it only writes what happened and ends
    // the process. It does not return.
    static void Watch(void (*refused)());

    // MuPDF's allocator; null, which is MuPDF's own, while nobody watches.
    static const fz_alloc_context* Allocator();

    // Somebody else was refused memory.
    static void NoteRefusal();
};

} // namespace PdfPage
