// SPDX-License-Identifier: MIT
#include "Printing.h"

#include "FileDialog.h"

#include <cderr.h>
#include <commdlg.h>

#include <algorithm>
#include <cwchar>

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

// False: the user stopped it, where the printer asks for something when it begins.
bool PrintOn(HDC dc, const wchar_t* output, Document& document) {
    DOCINFOW job{};
    job.cbSize = sizeof job;
    const std::wstring name = Wide(document.Name());
    job.lpszDocName = name.c_str();
    job.lpszOutput = output;
    SetLastError(0);
    if (StartDocW(dc, &job) <= 0) {
        const DWORD fault = GetLastError();
        if (fault == ERROR_CANCELLED || fault == ERROR_PRINT_CANCELLED)
            return false;
        throw Gxr::Error(WithSystemReason("the printer takes no document"));
    }
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
    return true;
}

bool PrintInto(HDC dc, const std::wstring& output, Document& document) {
    wchar_t full[MAX_PATH] = {};
    const DWORD length = GetFullPathNameW(output.c_str(), MAX_PATH, full, nullptr);
    if (length == 0 || length >= MAX_PATH)
        throw Gxr::Error(Quoted(output) + " is no name for a file");
    if (!PrintOn(dc, full, document))
        return false;
    // Printing into a folder that is not there goes without an error.
    if (GetFileAttributesW(full) == INVALID_FILE_ATTRIBUTES)
        throw Gxr::Error(WithSystemReason("cannot write " + Quoted(output)));
    return true;
}

// Whether the dialog gave a printer that prints into files.
bool HasFileForPort(HGLOBAL names) {
    const void* const block = names != nullptr ? GlobalLock(names) : nullptr;
    if (block == nullptr)
        return false;
    const wchar_t* const port = static_cast<const wchar_t*>(block) + static_cast<const DEVNAMES*>(block)->wOutputOffset;
    const bool file = std::wcscmp(port, L"FILE:") == 0;
    GlobalUnlock(names);
    return file;
}

} // namespace

bool PrintWithDialog(HWND owner, Document& document) {
    PRINTDLGW dialog{};
    dialog.lStructSize = sizeof dialog;
    dialog.hwndOwner = owner;
    dialog.nCopies = 1;
    // Without the system's own word on a missing printer, which the viewer has, too.
    dialog.Flags = PD_RETURNDC | PD_NOSELECTION | PD_NOPAGENUMS | PD_USEDEVMODECOPIESANDCOLLATE | PD_NOWARNING;
    const bool chosen = PrintDlgW(&dialog) != FALSE;
    const DWORD fault = chosen ? 0 : CommDlgExtendedError();
    const bool intoFile = (dialog.Flags & PD_PRINTTOFILE) != 0 || HasFileForPort(dialog.hDevNames);
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
    if (!intoFile)
        return PrintOn(context.Get(), nullptr, document);
    // Asked here: not every system asks for the name of the file when the printing begins.
    const std::wstring output =
        AskForNewFile(owner, L"PostScript (*.ps)\0*.ps\0Printer files (*.prn)\0*.prn\0All files\0*.*\0", L"ps");
    return !output.empty() && PrintInto(context.Get(), output, document);
}

void PrintToFile(const std::wstring& printer, const std::wstring& output, Document& document) {
    const PrinterContext context(CreateDCW(nullptr, printer.c_str(), nullptr, nullptr));
    if (context.Get() == nullptr)
        throw Gxr::Error("there is no printer " + Quoted(printer));
    PrintInto(context.Get(), output, document);
}

} // namespace Viewer
