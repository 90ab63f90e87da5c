// SPDX-License-Identifier: MIT
#include "Options.h"

#include "System.h"
#include "View.h"

#include "Format.h"

#include <cwchar>

namespace Viewer {

const char* const kUsage = "usage: viewer [page.gxr] [--hw] [--zoom Z] [--frames N]\n"
                           "       viewer page.gxr --print PRINTER OUTPUT\n"
                           "  --hw         draw with the graphics card where there is one\n"
                           "  --zoom Z     Z window pixels for a pixel of the page, from 1/64 to 64\n"
                           "  --frames N   draw N frames, then quit\n"
                           "  --print      print into a file, without a dialog";

namespace {

double Number(const std::wstring& text, double low, double high) {
    wchar_t* end = nullptr;
    const double value = std::wcstod(text.c_str(), &end);
    if (end == text.c_str() || *end != L'\0' || !(value >= low && value <= high))
        throw Gxr::Error(Quoted(text) + " is no number that fits");
    return value;
}

} // namespace

void Parse(const std::vector<std::wstring>& arguments, Options& options) {
    for (size_t i = 0; i < arguments.size(); ++i) {
        const std::wstring& argument = arguments[i];
        const auto value = [&]() -> const std::wstring& {
            if (++i >= arguments.size() || arguments[i].empty())
                throw Gxr::Error(Narrow(argument) + " needs a value");
            return arguments[i];
        };
        if (argument == L"--hw") {
            options.hardware = true;
        } else if (argument == L"--zoom") {
            options.zoom = static_cast<float>(Number(value(), View::kMinZoom, View::kMaxZoom));
        } else if (argument == L"--frames") {
            options.frames = static_cast<int>(Number(value(), 1, 1000000));
        } else if (argument == L"--print") {
            options.printer = value();
            options.output = value();
        } else if (argument.rfind(L"--", 0) == 0) {
            throw Gxr::Error("unknown option " + Narrow(argument) + "\n" + kUsage);
        } else if (options.file.empty()) {
            options.file = argument;
        } else {
            throw Gxr::Error("one argument too many: " + Narrow(argument) + "\n" + kUsage);
        }
    }
    if (options.Unattended() && options.file.empty())
        throw Gxr::Error(std::string("no file given\n") + kUsage);
}

} // namespace Viewer
