// SPDX-License-Identifier: MIT
// Shows and prints recorded pages on Windows: a window target in software or on the graphics card, a printer target,
// and nothing of the library but its exported functions.
#include "MainWindow.h"
#include "Printing.h"

#include <shellapi.h>

namespace Viewer {
namespace {

std::vector<std::string> Arguments() {
    int count = 0;
    wchar_t** const list = CommandLineToArgvW(GetCommandLineW(), &count);
    if (list == nullptr)
        throw Gxr::Error(WithSystemReason("the command line cannot be read"));
    std::vector<std::string> arguments;
    for (int i = 1; i < count; ++i)
        arguments.push_back(Narrow(list[i]));
    LocalFree(list);
    return arguments;
}

int Run() {
    Options options;
    try {
        Parse(Front::Windows, Arguments(), options);
        ListenToLibrary();
        if (!options.printer.empty()) {
            Document document(Document::Path(options.files.front()));
            PrintToFile(Wide(options.printer), Wide(options.output), document);
            return 0;
        }
        SetProcessDPIAware(); // a pixel of the page is to be a pixel of the screen
        if (options.hardware && GXEnableHWAccelerationForThread() != GXResultSuccess)
            throw Gxr::Error(WithReason("the graphics card cannot be used"));
        MainWindow window(options);
        if (!options.files.empty())
            window.Open(options.files);
        return window.Run();
    } catch (const std::exception& failure) {
        Report(nullptr, failure.what(), options.Unattended());
        return 1;
    }
}

} // namespace
} // namespace Viewer

int WINAPI wWinMain(HINSTANCE, HINSTANCE, wchar_t*, int) { return Viewer::Run(); }
