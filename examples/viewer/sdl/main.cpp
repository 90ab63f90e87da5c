// SPDX-License-Identifier: MIT
// Shows PDF files and recorded pages on Linux: SDL for the window, MuPDF as the reader of PDF, and every pixel drawn by
// the library through its exported functions.
#include "Document.h"
#include "PdfPages.h"
#include "Reason.h"
#include "RecordedPages.h"
#include "Session.h"
#include "Window.h"

#include <cstdio>
#include <fstream>
#include <iterator>
#include <thread>

namespace Viewer {
namespace {

// By its first bytes, so that a damaged recording is told to be one.
bool IsRecording(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    unsigned char start[sizeof Gxr::kMagic] = {};
    file.read(reinterpret_cast<char*>(start), sizeof start);
    return std::equal(std::begin(start), std::end(start), std::begin(Gxr::kMagic)) || path.extension() == ".gxr";
}

std::unique_ptr<Pages> OpenFiles(const Options& options) {
    std::vector<std::filesystem::path> files;
    bool recordings = true;
    for (const std::string& file : options.files) {
        files.push_back(Document::Path(file));
        recordings = recordings && IsRecording(files.back());
    }
    const unsigned threads = options.threads > 0 ? options.threads : std::max(1U, std::thread::hardware_concurrency());
    if (recordings)
        return std::make_unique<RecordedPages>(files, threads);
    if (files.size() > 1)
        throw Gxr::Error("one PDF file at a time; only recordings can be several");
    return std::make_unique<PdfPages>(files.front(), threads);
}

int Run(const std::vector<std::string>& arguments) {
    if (arguments.empty() || arguments[0] == "--help") {
        std::fputs(Usage(Front::Sdl).c_str(), arguments.empty() ? stderr : stdout);
        return arguments.empty() ? 2 : 0;
    }
    try {
        Options options;
        Parse(Front::Sdl, arguments, options);
        if (options.files.empty())
            throw Gxr::Error("no file given");
        ListenToLibrary();
        const Drawer::Open open = [&options] { return OpenFiles(options); };
        if (options.shot.empty())
            return Window(options, open).Run();
        Shoot(options, open);
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "gxviewer: %s\n", failure.what());
        return 1;
    }
}

} // namespace
} // namespace Viewer

int main(int argc, char** argv) { return Viewer::Run({argv + (argc > 0), argv + argc}); }
