// SPDX-License-Identifier: MIT
// The meeting point of MuPDF and C++. MuPDF reports errors by longjmp, which must not cross a frame whose C++ objects
// have destructors: every call that can fail runs inside Try, as a lambda of plain C calls on plain C values.
#pragma once

#include <GX/GX.h>
#include <mupdf/fitz.h>

namespace PdfPage {

// Runs `call`; false when MuPDF raised an error in it (fz_caught_message then has the reason). Never inlined, so that
// the saved registers of setjmp belong to this frame alone.
template <class Call> [[gnu::noinline]] bool Try(fz_context* ctx, Call&& call) {
    fz_try(ctx) { call(); }
    fz_catch(ctx) { return false; }
    return true;
}

inline GXMatrix ToMatrix(const fz_matrix& m) { return {m.a, m.b, m.c, m.d, m.e, m.f}; }

} // namespace PdfPage
