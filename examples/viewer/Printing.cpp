// SPDX-License-Identifier: MIT
#include "Printing.h"

#include <cderr.h>
#include <commdlg.h>

#include <algorithm>

namespace Viewer {
namespace {

class PrinterContext {
public:
    explicit PrinterContext(HDC dc) noexcept : m_dc(dc) {}
    PrinterContext(const PrinterContext&) = delete;
    PrinterContext& operator=(const PrinterContext&) = delete;
    ~PrinterContext() { DeleteDC(m_dc); }
    HDC Get() const noexcept { return m_dc; }

private:
    HDC m_dc;
};

// The page as large as the paper allows, at its top, in its middle from left to right.
void DrawOnPaper(HDC dc, Document& document) {
    Gxr::Handle<GXRenderTarget> target;
    if (GXCreateRenderTargetPrintDC(dc, target.Out()) != GXResultSuccess)
        throw Gxr::Error(WithReason("the library cannot draw on the printer"));
    const auto width = static_cast<float>(document.Page().width), height = static_cast<float>(document.Page().height);
    const auto paperWidth = static_cast<float>(GetDeviceCaps(dc, HORZRES));
    const auto paperHeight = static_cast<float>(GetDeviceCaps(dc, VERTRES));
    const float scale = std::min(paperWidth / width, paperHeight / height);
    if (!(scale > 0))
        throw Gxr::Error("the printer's paper has no printable area");
    document.Draw(target.Get(), scale, std::max(0.0f, (paperWidth - width * scale) / 2), 0, nullptr);
}

void PrintOn(HDC dc, const wchar_t* output, Document& document) {
    DOCINFOW job{};
    job.cbSize = sizeof job;
    job.lpszDocName = document.Name().c_str();
    job.lpszOutput = output;
    if (StartDocW(dc, &job) <= 0)
        throw Gxr::Error(WithSystemReason("the printer takes no document"));
    try {
        if (StartPage(dc) <= 0)
            throw Gxr::Error(WithSystemReason("the printer begins no page"));
        DrawOnPaper(dc, document);
        if (EndPage(dc) <= 0)
            throw Gxr::Error(WithSystemReason("the printer does not finish the page"));
    } catch (...) {
        AbortDoc(dc);
        throw;
    }
    if (EndDoc(dc) <= 0)
        throw Gxr::Error(WithSystemReason("the printer does not finish the document"));
}

} // namespace

bool PrintWithDialog(HWND owner, Document& document) {
    PRINTDLGW dialog{};
    dialog.lStructSize = sizeof dialog;
    dialog.hwndOwner = owner;
    dialog.nCopies = 1;
    dialog.Flags = PD_RETURNDC | PD_NOSELECTION | PD_NOPAGENUMS | PD_USEDEVMODECOPIESANDCOLLATE;
    const bool chosen = PrintDlgW(&dialog) != FALSE;
    const DWORD fault = chosen ? 0 : CommDlgExtendedError();
    GlobalFree(dialog.hDevMode);
    GlobalFree(dialog.hDevNames);
    if (fault != 0)
        throw Gxr::Error(fault == PDERR_NODEFAULTPRN || fault == PDERR_NODEVICES
                             ? std::string("there is no printer")
                             : "the print dialog cannot be shown, error " + std::to_string(fault));
    if (!chosen)
        return false;
    const PrinterContext context(dialog.hDC);
    if (context.Get() == nullptr)
        throw Gxr::Error("the printer cannot be used");
    PrintOn(context.Get(), nullptr, document);
    return true;
}

void PrintToFile(const std::wstring& printer, const std::wstring& output, Document& document) {
    const PrinterContext context(CreateDCW(nullptr, printer.c_str(), nullptr, nullptr));
    if (context.Get() == nullptr)
        throw Gxr::Error("there is no printer " + Quoted(printer));
    wchar_t full[MAX_PATH] = {};
    const DWORD length = GetFullPathNameW(output.c_str(), MAX_PATH, full, nullptr);
    if (length == 0 || length >= MAX_PATH)
        throw Gxr::Error(Quoted(output) + " is no name for a file");
    PrintOn(context.Get(), full, document);
    // Printing into a folder that is not there goes without an error.
    if (GetFileAttributesW(full) == INVALID_FILE_ATTRIBUTES)
        throw Gxr::Error(WithSystemReason("cannot write " + Quoted(output)));
}

} // namespace Viewer
