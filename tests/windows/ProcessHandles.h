// SPDX-License-Identifier: MIT
// Handles that this process has open. Wine leaves GetProcessHandleCount at 0; there they are found in the system's list
// of all handles: entries of 24 bytes behind a count of 8, the owner first.
#pragma once

#include <windows.h>

#include <cstdint>
#include <cstring>
#include <vector>

namespace WindowsSupport {

inline int64_t ProcessHandles() {
    DWORD known = 0;
    if (GetProcessHandleCount(GetCurrentProcess(), &known) != FALSE && known != 0) {
        return known;
    }
    using Query = LONG(WINAPI*)(ULONG, void*, ULONG, ULONG*);
    const FARPROC found = GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtQuerySystemInformation");
    const auto query = reinterpret_cast<Query>(reinterpret_cast<void*>(found));
    constexpr ULONG kAllHandles = 16;
    std::vector<uint8_t> list(size_t{1} << 20);
    ULONG needed = 0;
    while (query(kAllHandles, list.data(), static_cast<ULONG>(list.size()), &needed) < 0) {
        if (list.size() > size_t{64} << 20) {
            return -1;
        }
        list.resize(list.size() * 2);
    }
    const auto word = [&](size_t at) {
        uint32_t value = 0;
        std::memcpy(&value, list.data() + at, sizeof value);
        return value;
    };
    int64_t count = 0;
    for (uint32_t i = 0; i < word(0); ++i) {
        count += word(8 + size_t{24} * i) == GetCurrentProcessId() ? 1 : 0;
    }
    return count;
}

} // namespace WindowsSupport
