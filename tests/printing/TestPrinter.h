// SPDX-License-Identifier: MIT
// A PostScript printer of Wine whose port is a file, for the tests that print. It stays in Wine's prefix: tests that
// use it lock it (RESOURCE_LOCK printer).
#pragma once

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
#include <winspool.h>

#include <algorithm>
#include <string>

namespace TestPrinter {

constexpr const wchar_t* kName = L"Graphics Test Printer";

// Of a path of the machine that Wine runs on, too.
inline std::wstring PathOf(const std::string& path) {
    std::wstring wide(path.begin(), path.end());
    std::replace(wide.begin(), wide.end(), L'/', L'\\');
    return path.rfind('/', 0) == 0 ? L"Z:" + wide : wide;
}

// Makes the printer where it is not there yet. False, with the system's last error, when that cannot be.
inline bool Install(const std::wstring& ppd) {
    std::wstring driver = L"wineps.drv", description = ppd, name = kName, environment = L"Windows x64";
    DRIVER_INFO_3W info{};
    info.cVersion = 3;
    info.pName = name.data();
    info.pEnvironment = environment.data();
    info.pDriverPath = driver.data();
    info.pDataFile = description.data();
    info.pConfigFile = driver.data();
    if (AddPrinterDriverExW(nullptr, 3, reinterpret_cast<BYTE*>(&info), APD_COPY_NEW_FILES | APD_COPY_FROM_DIRECTORY) ==
            FALSE &&
        GetLastError() != ERROR_PRINTER_DRIVER_ALREADY_INSTALLED)
        return false;
    std::wstring port = L"FILE:", processor = L"WinPrint", type = L"RAW";
    PRINTER_INFO_2W printer{};
    printer.pPrinterName = name.data();
    printer.pPortName = port.data();
    printer.pDriverName = name.data();
    printer.pPrintProcessor = processor.data();
    printer.pDatatype = type.data();
    const HANDLE added = AddPrinterW(nullptr, 2, reinterpret_cast<BYTE*>(&printer));
    if (added == nullptr)
        return GetLastError() == ERROR_PRINTER_ALREADY_EXISTS;
    ClosePrinter(added);
    return true;
}

} // namespace TestPrinter
