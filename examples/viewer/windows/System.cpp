// SPDX-License-Identifier: MIT
#include "System.h"

namespace Viewer {
std::string Narrow(const std::wstring& text) {
    const int length = static_cast<int>(text.size());
    std::string narrow(
        static_cast<size_t>(WideCharToMultiByte(CP_UTF8, 0, text.c_str(), length, nullptr, 0, nullptr, nullptr)), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.c_str(), length, narrow.data(), static_cast<int>(narrow.size()), nullptr,
                        nullptr);
    return narrow;
}

std::wstring Wide(const std::string& text) {
    const int length = static_cast<int>(text.size());
    std::wstring wide(static_cast<size_t>(MultiByteToWideChar(CP_UTF8, 0, text.c_str(), length, nullptr, 0)), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.c_str(), length, wide.data(), static_cast<int>(wide.size()));
    return wide;
}

std::string Quoted(const std::wstring& path) {
    std::string quoted(1, '\'');
    quoted += Narrow(path);
    quoted += '\'';
    return quoted;
}

std::string WithSystemReason(const std::string& what) {
    const DWORD error = GetLastError();
    wchar_t* words = nullptr;
    const DWORD length =
        FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                       nullptr, error, 0, reinterpret_cast<wchar_t*>(&words), 0, nullptr);
    std::wstring reason(words != nullptr ? words : L"", length);
    LocalFree(words);
    while (!reason.empty() && (reason.back() <= L' ' || reason.back() == L'.'))
        reason.pop_back();
    return what + ": " + (reason.empty() ? "error " + std::to_string(error) : Narrow(reason));
}

void Report(HWND owner, const std::string& text, bool unattended) {
    const HANDLE stream = GetStdHandle(STD_ERROR_HANDLE);
    if (stream != nullptr && stream != INVALID_HANDLE_VALUE) {
        const std::string line = "viewer: " + text + "\n";
        DWORD written = 0;
        WriteFile(stream, line.data(), static_cast<DWORD>(line.size()), &written, nullptr);
    }
    if (!unattended)
        MessageBoxW(owner, Wide(text).c_str(), L"Viewer", MB_OK | MB_ICONERROR);
}

} // namespace Viewer
