// SPDX-License-Identifier: MIT
#include "FileDialog.h"

#include "Format.h"

#include <commdlg.h>

#include <iterator>

namespace Viewer {
namespace {

std::wstring Ask(BOOL(WINAPI* show)(OPENFILENAMEW*), HWND owner, const wchar_t* kinds, const wchar_t* ending,
                 DWORD flags) {
    wchar_t path[4096] = L"";
    OPENFILENAMEW dialog{};
    dialog.lStructSize = sizeof dialog;
    dialog.hwndOwner = owner;
    dialog.lpstrFilter = kinds;
    dialog.lpstrFile = path;
    dialog.nMaxFile = static_cast<DWORD>(std::size(path));
    dialog.lpstrDefExt = ending;
    dialog.Flags = flags | OFN_HIDEREADONLY | OFN_NOCHANGEDIR;
    if (show(&dialog) != FALSE)
        return path;
    if (const DWORD fault = CommDlgExtendedError(); fault != 0)
        throw Gxr::Error("the dialog for files cannot be shown, error " + std::to_string(fault));
    return {};
}

} // namespace

std::wstring AskForFile(HWND owner, const wchar_t* kinds) {
    return Ask(GetOpenFileNameW, owner, kinds, nullptr, OFN_FILEMUSTEXIST);
}

std::wstring AskForNewFile(HWND owner, const wchar_t* kinds, const wchar_t* ending) {
    return Ask(GetSaveFileNameW, owner, kinds, ending, OFN_PATHMUSTEXIST | OFN_OVERWRITEPROMPT);
}

} // namespace Viewer
