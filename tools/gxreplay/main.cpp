// SPDX-License-Identifier: MIT
// Draws recorded pages: to a PNG, for a checksum, or for the time that drawing takes.
#include "BandedPlayer.h"
#include "PageChecksum.h"
#include "Recording.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>

namespace Gxr {
namespace {

constexpr const char* kUsage =
    "usage: gxreplay page.gxr [out.png] [--repeat N] [--scale S] [--threads N [--even]] [--checksum]\n"
    "       [--verbose]\n"
    "  --repeat N   draw N times more and print times: of making the objects, and of\n"
    "               drawing alone (median and minimum)\n"
    "  --scale S    the page S times as large\n"
    "  --threads N  on N threads, a band of rows each time; --repeat then also prints the\n"
    "               processor time of the threads and what they gain\n"
    "  --even       with bands of equal height instead of equal cost, to compare\n"
    "  --checksum   print the checksum of the pixels\n"
    "  --verbose    print what the library has to say\n";

struct Options {
    std::string file, picture;
    int repeat = 0;
    float scale = 1.0f;
    unsigned threads = 0; // 0: drawn as a whole
    bool even = false;
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
        else if (argument == "--threads")
            options.threads = static_cast<unsigned>(Number(value(), 1, 1024));
        else if (argument == "--even")
            options.even = true;
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
    if (options.even && options.threads == 0)
        throw Error("--even goes with --threads");
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

double Median(std::vector<double>& times) {
    std::sort(times.begin(), times.end());
    const size_t n = times.size();
    return n % 2 != 0 ? times[n / 2] : (times[n / 2 - 1] + times[n / 2]) / 2;
}

// Draws once and, where asked for, again and again. `draw` is the work, `after` looks at what it did.
template <class Draw, class After> void DrawAll(const Options& options, double objects, Draw&& draw, After&& after) {
    const Stopwatch drawing;
    draw();
    const double first = drawing.Milliseconds();
    after(true);
    if (options.repeat == 0)
        return;
    std::vector<double> times(static_cast<size_t>(options.repeat));
    for (double& time : times) {
        const Stopwatch watch;
        draw();
        time = watch.Milliseconds();
        after(false);
    }
    const double median = Median(times);
    std::printf("objects %.2f ms, first drawing %.2f ms, then drawing alone: median %.2f ms, minimum %.2f ms\n",
                objects, first, median, times.front());
}

// Processor time of a drawing: of all threads together and of the one that took longest.
struct ThreadTimes {
    std::vector<double> sums, longest;

    void Add(const std::vector<BandedPlayer::Drawn>& bands) {
        std::vector<double> threads;
        for (const BandedPlayer::Drawn& band : bands) {
            threads.resize(std::max(threads.size(), size_t{band.thread} + 1));
            threads[band.thread] += band.milliseconds;
        }
        double sum = 0;
        for (const double time : threads)
            sum += time;
        sums.push_back(sum);
        longest.push_back(*std::max_element(threads.begin(), threads.end()));
    }
    void Print(const char* what) {
        if (!sums.empty())
            std::printf("%s: processor time %.2f ms, of the longest thread %.2f ms\n", what, Median(sums),
                        Median(longest));
    }
};

void DrawInBands(const Options& options, const Recording& recording, GXBitmap bitmap) {
    const Stopwatch making;
    BandedPlayer player(recording, options.threads, options.even ? BandedPlayer::Cut::Height : BandedPlayer::Cut::Cost);
    ThreadTimes first, others;
    DrawAll(
        options, making.Milliseconds(), [&] { player.Play(bitmap, options.scale); },
        [&](bool isFirst) { (isFirst ? first : others).Add(player.Bands()); });
    if (options.repeat > 0) {
        first.Print("first drawing");
        others.Print("the others   ");
    }
}

void DrawWhole(const Options& options, const Recording& recording, GXBitmap bitmap) {
    Handle<GXRenderTarget> target;
    if (GXCreateRenderTargetBitmap(bitmap, target.Out()) != GXResultSuccess)
        throw Error("the library cannot draw into a bitmap of the page's format");
    const Stopwatch making;
    Player player(recording);
    DrawAll(
        options, making.Milliseconds(), [&] { player.Play(target.Get(), options.scale); }, [](bool) {});
}

void Replay(const Options& options) {
    const Recording recording = Recording::FromFile(options.file);
    const Handle<GXBitmap> bitmap = NewPageBitmap(recording.Page(), options.scale);
    if (options.threads > 0)
        DrawInBands(options, recording, bitmap.Get());
    else
        DrawWhole(options, recording, bitmap.Get());
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
    const std::wstring picture = std::filesystem::path(options.picture).wstring();
    if (!picture.empty() && GXBitmapSaveToFile(bitmap.Get(), picture.c_str()) != GXResultSuccess)
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
