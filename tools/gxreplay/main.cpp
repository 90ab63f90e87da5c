// SPDX-License-Identifier: MIT
// Draws recorded pages: to a PNG, for a checksum, or for the time that drawing takes.
#include "PageChecksum.h"
#include "PictureFile.h"
#include "Recording.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace Gxr {
namespace {

constexpr const char* kUsage = "usage: gxreplay page.gxr [out.png] [--repeat N] [--scale S] [--checksum] [--verbose]\n"
                               "  --repeat N   draw N times more and print times: of making the objects, and of\n"
                               "               drawing alone (median and minimum)\n"
                               "  --scale S    the page S times as large\n"
                               "  --checksum   print the checksum of the pixels\n"
                               "  --verbose    print what the library has to say\n";

struct Options {
    std::string file, picture;
    int repeat = 0;
    float scale = 1.0f;
    bool checksum = false;
};

double Number(const char* text, double low, double high) {
    char* end = nullptr;
    const double value = std::strtod(text, &end);
    if (end == text || *end != '\0' || !(value >= low && value <= high))
        throw Error(std::string("'") + text + "' is no number that fits");
    return value;
}

Options Parse(int argc, char** argv) {
    Options options;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        const auto value = [&]() -> const char* {
            if (++i >= argc)
                throw Error(argument + " needs a value");
            return argv[i];
        };
        if (argument == "--repeat")
            options.repeat = static_cast<int>(Number(value(), 1, 100000));
        else if (argument == "--scale")
            options.scale = static_cast<float>(Number(value(), 0.001, 1000));
        else if (argument == "--checksum")
            options.checksum = true;
        else if (argument == "--verbose")
            GXLogSetSink(
                1, [](void*, const char* text) { std::fprintf(stderr, "%s\n", text); }, nullptr);
        else if (argument.rfind("--", 0) == 0)
            throw Error("unknown option " + argument);
        else if (options.file.empty())
            options.file = argument;
        else if (options.picture.empty())
            options.picture = argument;
        else
            throw Error("one argument too many: " + argument);
    }
    if (options.file.empty())
        throw Error("no file given");
    return options;
}

class Stopwatch {
public:
    double Milliseconds() const {
        return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - m_start).count();
    }

private:
    std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
};

void Replay(const Options& options) {
    const Recording recording = Recording::FromFile(options.file);
    const Handle<GXBitmap> bitmap = NewPageBitmap(recording.Page(), options.scale);
    Handle<GXRenderTarget> target;
    if (GXCreateRenderTargetBitmap(bitmap.Get(), target.Out()) != GXResultSuccess)
        throw Error("the library cannot draw into a bitmap of the page's format");

    const Stopwatch making;
    Player player(recording);
    const double objects = making.Milliseconds();
    const Stopwatch drawing;
    player.Play(target.Get(), options.scale);
    const double first = drawing.Milliseconds();
    if (options.repeat > 0) {
        std::vector<double> times(static_cast<size_t>(options.repeat));
        for (double& time : times) {
            const Stopwatch watch;
            player.Play(target.Get(), options.scale);
            time = watch.Milliseconds();
        }
        std::sort(times.begin(), times.end());
        const size_t n = times.size();
        const double median = n % 2 != 0 ? times[n / 2] : (times[n / 2 - 1] + times[n / 2]) / 2;
        std::printf("objects %.2f ms, first drawing %.2f ms, then drawing alone: median %.2f ms, minimum %.2f ms\n",
                    objects, first, median, times.front());
    }
    if (options.checksum) {
        GXSize size{};
        GXBitmapData data{};
        if (GXBitmapGetSize(bitmap.Get(), &size) != GXResultSuccess ||
            GXBitmapLock(bitmap.Get(), nullptr, GXLockRead, &data) != GXResultSuccess)
            throw Error("the picture cannot be read back");
        const uint64_t sum =
            PixelChecksum(data.data, data.stride, RowBytes(recording.Page().format, size.width), size.height);
        std::printf("%016llx\n", static_cast<unsigned long long>(sum));
        GXBitmapUnlock(bitmap.Get());
    }
    if (!options.picture.empty() && !WritePicture(bitmap.Get(), options.picture))
        throw Error("cannot write '" + options.picture + "'");
}

int Run(int argc, char** argv) {
    if (argc < 2 || std::strcmp(argv[1], "--help") == 0) {
        std::fputs(kUsage, argc < 2 ? stderr : stdout);
        return argc < 2 ? 2 : 0;
    }
    try {
        Replay(Parse(argc, argv));
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "gxreplay: %s\n", failure.what());
        return 1;
    }
}

} // namespace
} // namespace Gxr

int main(int argc, char** argv) { return Gxr::Run(argc, argv); }
