// SPDX-License-Identifier: MIT
// The runner: every engine draws every scene into the same memory, in one process and on one thread, and the table
// shows the best of several runs, as time of one draw call for Cairo and as ratios to it for the others.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <limits>
#include <sstream>

#include "BestKnown.h"
#include "Engine.h"

namespace Bench {
namespace {

constexpr double kRunSeconds = 0.01;

struct Options {
    std::vector<std::string> filters;
    std::string images;
    int runs = 7;
    bool list = false;
    bool tabs = false;
};

double Now() { return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count(); }

/// Owns the pixels; the backdrop is opaque and not plain, so that blending has something to work on.
class CanvasMemory {
public:
    explicit CanvasMemory(int size) : m_canvas{nullptr, size, size, (size * 4 + 63) / 64 * 64} {
        m_bytes = static_cast<size_t>(m_canvas.stride) * static_cast<size_t>(size);
        m_canvas.pixels = static_cast<uint32_t*>(std::aligned_alloc(64, m_bytes));
        if (m_canvas.pixels == nullptr) {
            std::fprintf(stderr, "Not enough memory for a canvas\n");
            std::exit(1);
        }
    }
    CanvasMemory(const CanvasMemory&) = delete;
    CanvasMemory& operator=(const CanvasMemory&) = delete;
    ~CanvasMemory() { std::free(m_canvas.pixels); }

    void Reset() const {
        const size_t pixels = m_bytes / 4;
        for (size_t i = 0; i < pixels; ++i) {
            m_canvas.pixels[i] = 0xFF000000u | static_cast<uint32_t>((i * 2654435761u >> 20 & 0x3F3F3F) + 0xA0A0A0);
        }
    }

    [[nodiscard]] const Canvas& Get() const { return m_canvas; }
    [[nodiscard]] size_t Bytes() const { return m_bytes; }

private:
    Canvas m_canvas;
    size_t m_bytes;
};

/// Mean difference of colour bytes.
double Difference(const std::vector<uint32_t>& a, const std::vector<uint32_t>& b) {
    uint64_t sum = 0;
    for (size_t i = 0; i < a.size(); ++i) {
        for (int shift : {0, 8, 16}) {
            sum += static_cast<uint64_t>(
                std::abs(static_cast<int>(a[i] >> shift & 255) - static_cast<int>(b[i] >> shift & 255)));
        }
    }
    return a.empty() ? 0 : static_cast<double>(sum) / (3.0 * static_cast<double>(a.size()));
}

void WritePpm(const std::string& path, const Canvas& canvas) {
    std::ofstream file(path, std::ios::binary);
    file << "P6\n" << canvas.width << ' ' << canvas.height << "\n255\n";
    for (int y = 0; y < canvas.height; ++y) {
        const uint32_t* row = canvas.pixels + static_cast<ptrdiff_t>(y) * (canvas.stride / 4);
        for (int x = 0; x < canvas.width; ++x) {
            const char rgb[] = {static_cast<char>(row[x] >> 16), static_cast<char>(row[x] >> 8),
                                static_cast<char>(row[x])};
            file.write(rgb, 3);
        }
    }
    if (!file) {
        std::fprintf(stderr, "Cannot write %s\n", path.c_str());
    }
}

struct Lane {
    const Engine* engine;
    std::unique_ptr<Drawing> drawing;
    int repeats = 1;
    double best = std::numeric_limits<double>::infinity(); ///< seconds of one draw
    std::vector<uint32_t> pixels;
};

double Time(Drawing& drawing, int repeats) {
    const double start = Now();
    for (int i = 0; i < repeats; ++i) {
        drawing.Draw();
    }
    return Now() - start;
}

std::vector<Lane> Measure(const Scene& scene, const std::vector<const Engine*>& engines, const Options& options) {
    const CanvasMemory memory(scene.canvas);
    std::vector<Lane> lanes;
    for (const Engine* engine : engines) {
        Lane lane;
        lane.engine = engine;
        memory.Reset();
        lane.drawing = engine->prepare(scene, memory.Get());
        if (lane.drawing != nullptr) {
            lane.drawing->Draw();
            lane.drawing->Flush();
            lane.pixels.assign(memory.Get().pixels, memory.Get().pixels + memory.Bytes() / 4);
            if (!options.images.empty()) {
                WritePpm(options.images + "/" + scene.name + "-" + engine->name + ".ppm", memory.Get());
            }
            double seconds = Time(*lane.drawing, 1);
            while (seconds < kRunSeconds) {
                lane.repeats *= seconds < kRunSeconds / 8 ? 4 : 2;
                seconds = Time(*lane.drawing, lane.repeats);
            }
        }
        lanes.push_back(std::move(lane));
    }
    // Engine by engine within a round, so that a disturbance of the machine does not hit one of them alone.
    for (int run = 0; run < options.runs; ++run) {
        for (Lane& lane : lanes) {
            if (lane.drawing != nullptr) {
                const double draws = static_cast<double>(scene.Draws()) * lane.repeats;
                lane.best = std::min(lane.best, Time(*lane.drawing, lane.repeats) / draws);
            }
        }
    }
    return lanes;
}

std::string Number(double value) {
    char text[32] = "-";
    if (value > 0) {
        std::snprintf(text, sizeof text, "%.2f", value);
    }
    return text;
}

/// One cell a column; on a terminal each is as wide as its title asks for.
class Table {
public:
    explicit Table(bool tabs) : m_tabs(tabs) {}

    void Cell(const std::string& text, int width) {
        if (m_tabs) {
            std::printf(m_first ? "%s" : "\t%s", text.c_str());
        } else {
            std::printf(m_first ? "%-*s" : " %*s", width, text.c_str());
        }
        m_first = false;
    }
    void End() {
        std::printf("\n");
        std::fflush(stdout);
        m_first = true;
    }

private:
    bool m_tabs;
    bool m_first = true;
};

constexpr int kNameWidth = 28;
constexpr int kTimeWidth = 10;
constexpr int kRatioWidth = 8;

/// How the scenes stand against the best column.
class Standing {
public:
    void Add(double ratio) {
        ++m_count;
        m_level += ratio >= 1.0 ? 1 : 0;
        m_logs += std::log(ratio);
        m_least = std::min(m_least, ratio);
    }
    void Print(const char* state) const {
        if (m_count != 0) {
            std::printf("adjustment %s: %d of %d scenes level with the best known or ahead, mean %.2f, least %.2f\n",
                        state, m_level, m_count, std::exp(m_logs / m_count), m_least);
        }
    }

private:
    int m_count = 0;
    int m_level = 0;
    double m_logs = 0;
    double m_least = std::numeric_limits<double>::infinity();
};

struct Summary {
    Standing on;
    Standing off;
};

void PrintRow(const std::string& name, const std::vector<Lane>& lanes, bool tabs, Summary& summary) {
    const auto find = [&](const char* engine) -> const Lane* {
        for (const Lane& lane : lanes) {
            if (std::strcmp(lane.engine->name, engine) == 0 && lane.drawing != nullptr) {
                return &lane;
            }
        }
        return nullptr;
    };
    const Lane& ours = lanes[0];
    const Lane& free = lanes[1];
    const Lane* base = find("Cairo");
    const Lane* limit = find(kMemset.name);
    // Without Cairo the ratios are to this library.
    const double reference = base != nullptr ? base->best : ours.best;
    const double best = base != nullptr ? BestRatio(name) : 0.0;
    Table table(tabs);
    table.Cell(name, kNameWidth);
    char time[32];
    std::snprintf(time, sizeof time, "%.3f", ours.best * 1e6);
    table.Cell(time, kTimeWidth);
    table.Cell(Number(reference / ours.best), kRatioWidth);
    table.Cell(Number(reference / free.best), kRatioWidth);
    table.Cell(Number(best), kRatioWidth);
    const auto against = [&](const Lane& lane) { return best > 0 ? reference / lane.best / best : 0.0; };
    table.Cell(Number(against(ours)), kRatioWidth);
    table.Cell(Number(against(free)), kRatioWidth);
    if (best > 0) {
        summary.on.Add(against(ours));
        summary.off.Add(against(free));
    }
    for (size_t i = 2; i < lanes.size(); ++i) {
        if (lanes[i].engine == &kMemset) {
            continue;
        }
        if (&lanes[i] == base) {
            std::snprintf(time, sizeof time, "%.3f", base->best * 1e6);
            table.Cell(time, kTimeWidth);
        } else {
            table.Cell(lanes[i].drawing != nullptr ? Number(reference / lanes[i].best) : "-", kRatioWidth);
        }
    }
    table.Cell(limit != nullptr ? Number(ours.best / limit->best) : "-", kRatioWidth);
    char difference[32] = "-";
    if (base != nullptr) {
        std::snprintf(difference, sizeof difference, "%.3f", Difference(ours.pixels, base->pixels));
    }
    table.Cell(difference, kRatioWidth);
    table.End();
}

void PrintHead(const std::vector<const Engine*>& engines, bool tabs) {
    Table table(tabs);
    table.Cell("scene", kNameWidth);
    table.Cell("us", kTimeWidth);
    for (const char* title : {"x Cairo", "off", "best", "/ best", "off/best"}) {
        table.Cell(title, kRatioWidth);
    }
    for (size_t i = 2; i < engines.size(); ++i) {
        if (engines[i] != &kMemset) {
            const bool isBase = std::strcmp(engines[i]->name, "Cairo") == 0;
            table.Cell(isBase ? "Cairo us" : engines[i]->name, isBase ? kTimeWidth : kRatioWidth);
        }
    }
    table.Cell("/ memset", kRatioWidth);
    table.Cell("diff", kRatioWidth);
    table.End();
}

std::string ProcessorName() {
    std::ifstream file("/proc/cpuinfo");
    for (std::string line; std::getline(file, line);) {
        if (line.rfind("model name", 0) == 0) {
            return line.substr(line.find(':') + 2);
        }
    }
    return "unknown processor";
}

bool Wanted(const std::string& name, const Options& options) {
    return options.filters.empty() ||
           std::any_of(options.filters.begin(), options.filters.end(),
                       [&](const std::string& f) { return name.find(f) != std::string::npos; });
}

[[noreturn]] void Usage() {
    std::fprintf(stderr, "usage: gxbench [--filter part[,part]] [--runs n] [--images folder] [--tabs] [--list]\n");
    std::exit(2);
}

Options Parse(int argc, char** argv) {
    Options options;
    for (int i = 1; i < argc; ++i) {
        const std::string name = argv[i];
        const auto value = [&]() -> std::string { return ++i < argc ? argv[i] : (Usage(), ""); };
        if (name == "--filter") {
            std::istringstream list(value());
            for (std::string part; std::getline(list, part, ',');) {
                options.filters.push_back(part);
            }
        } else if (name == "--runs") {
            options.runs = std::max(1, std::atoi(value().c_str()));
        } else if (name == "--images") {
            options.images = value();
        } else if (name == "--tabs") {
            options.tabs = true;
        } else if (name == "--list") {
            options.list = true;
        } else {
            Usage();
        }
    }
    return options;
}

} // namespace
} // namespace Bench

int main(int argc, char** argv) {
    using namespace Bench;
    const Options options = Parse(argc, argv);
    std::vector<const Engine*> engines = {&kGraphics, &kGraphicsFree};
#if defined(BENCH_HAS_CAIRO)
    engines.push_back(&kCairo);
#endif
#if defined(BENCH_HAS_AGG)
    engines.push_back(&kAgg);
#endif
#if defined(BENCH_HAS_QT)
    engines.push_back(&kQt);
#endif
    engines.push_back(&kMemset);

    if (!options.list) {
        std::printf("%s; compiler %s; best of %d runs; one thread\n", ProcessorName().c_str(), __VERSION__,
                    options.runs);
        PrintHead(engines, options.tabs);
    }
    Summary summary;
    for (const SceneEntry& entry : AllScenes()) {
        if (!Wanted(entry.name, options)) {
            continue;
        }
        if (options.list) {
            std::printf("%s\n", entry.name.c_str());
            continue;
        }
        const Scene scene = entry.make();
        PrintRow(entry.name, Measure(scene, engines, options), options.tabs, summary);
    }
    if (!options.tabs) {
        summary.on.Print("on");
        summary.off.Print("off");
    }
    return 0;
}
