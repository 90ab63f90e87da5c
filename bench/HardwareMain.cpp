// SPDX-License-Identifier: MIT
// gxbench_hardware: every recorded page in a window, by the graphics card and by the software, with what the back end
// did for it. Windows only; it has the library inside, for the counters.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "Direct3D11/D3D11RenderTargetFactory.h"
#include "Handles.h"
#include "Recording.h"
#include "Target/PlatformTargets.h"
#include "Target/RenderTarget.h"

namespace {

using namespace Graphics;

struct Options {
    std::string filter;
    int runs = 5;
};

/// A popup without a frame, as large as the page.
class PageWindow {
public:
    PageWindow(int width, int height)
        : m_window(CreateWindowExW(0, L"STATIC", L"", WS_POPUP | WS_VISIBLE, 0, 0, width, height, nullptr, nullptr,
                                   nullptr, nullptr)) {
        if (m_window == nullptr) {
            throw std::runtime_error("no window: is there a display?");
        }
    }
    PageWindow(const PageWindow&) = delete;
    PageWindow& operator=(const PageWindow&) = delete;
    ~PageWindow() { DestroyWindow(m_window); }
    [[nodiscard]] HWND Get() const noexcept { return m_window; }

private:
    HWND m_window;
};

/// Waits until the card has done everything that it was told.
void WaitForCard(D3D11Device& device) {
    const D3D11_QUERY_DESC desc{D3D11_QUERY_EVENT, 0};
    D3D11Ref<ID3D11Query> query;
    if (FAILED(device.Get()->CreateQuery(&desc, query.Out()))) {
        return;
    }
    device.Context().End(query.get());
    while (device.Context().GetData(query.get(), nullptr, 0, 0) == S_FALSE) {
        Sleep(0);
    }
}

/// Best of the runs after one to warm up, in milliseconds. `between` runs before the clock starts, `end` before it
/// stops.
template <class Between, class End>
[[nodiscard]] double BestTime(const Options& options, const Gxr::Recording& recording, float scale,
                              std::unique_ptr<RenderTargetBase> backEnd, Between&& between, End&& end) {
    Gxr::Handle<GXRenderTarget> target;
    *target.Out() = new GXRenderTargetRec_(std::make_shared<RenderTarget>(std::move(backEnd)));
    Gxr::Player player(recording);
    double best = 1e9;
    for (int run = 0; run <= options.runs; ++run) {
        between(run);
        const auto start = std::chrono::steady_clock::now();
        player.Play(target.Get(), scale);
        end();
        const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
        if (run > 0) {
            best = std::min(best, time.count());
        }
    }
    return best;
}

void Measure(const Options& options, const std::filesystem::path& file, D3D11RenderTargetFactory& factory) {
    const Gxr::Recording recording = Gxr::Recording::FromFile(file.string());
    const Gxr::PageInfo& page = recording.Page();
    const float scale = std::min(1.0F, 1000.0F / static_cast<float>(std::max(page.width, page.height)));
    const auto side = [&](uint32_t n) { return std::max(1, static_cast<int>(static_cast<float>(n) * scale + 0.5F)); };
    const PageWindow window(side(page.width), side(page.height));

    D3D11Counters& now = factory.Context()->Device().Counters();
    const uint64_t compiled = now.compilations;
    D3D11Counters before;
    const double card = BestTime(
        options, recording, scale, factory.CreateWindowTarget(window.Get()), [&](int) { before = now; },
        [&] { WaitForCard(factory.Context()->Device()); });
    const D3D11Counters after = now;
    const double software = BestTime(
        options, recording, scale, CreateWindowTarget(window.Get(), true), [](int) {}, [] {});
    std::printf("%-24s %8.2f %8.2f", file.stem().string().c_str(), card, software);
    const auto column = [](int width, uint64_t n) { std::printf(" %*llu", width, static_cast<unsigned long long>(n)); };
    column(7, after.batches - before.batches);
    column(6, after.drawCalls - before.drawCalls);
    column(6, after.vertexMaps - before.vertexMaps);
    column(8, after.compilations - compiled);
    column(6, after.backdropCopies - before.backdropCopies);
    column(7, after.uploads - before.uploads);
    column(7, after.softwareSources - before.softwareSources);
    column(8, after.coverages - before.coverages);
    column(8, after.fallbackDraws - before.fallbackDraws);
    column(5, after.readbacks - before.readbacks);
    column(8, (after.readbackPixels - before.readbackPixels + 500) / 1000);
    column(5, after.sends - before.sends);
    std::printf("\n");
}

[[nodiscard]] Options Parse(int argc, char** argv) {
    Options options;
    for (int i = 1; i < argc; ++i) {
        const bool last = i + 1 == argc;
        if (!last && std::strcmp(argv[i], "--filter") == 0) {
            options.filter = argv[++i];
        } else if (!last && std::strcmp(argv[i], "--runs") == 0) {
            options.runs = std::clamp(std::atoi(argv[++i]), 1, 10000);
        } else {
            throw std::runtime_error("usage: gxbench_hardware [--filter part] [--runs N]");
        }
    }
    return options;
}

int Run(int argc, char** argv) {
    const Options options = Parse(argc, argv);
    D3D11RenderTargetFactory factory;
    std::printf("%-24s %8s %8s %7s %6s %6s %8s %6s %7s %7s %8s %8s %5s %8s %5s\n", "page", "card ms", "soft ms",
                "batches", "calls", "maps", "compiled", "copies", "uploads", "sources", "coverage", "fallback", "reads",
                "kpixels", "sends");
    std::set<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(GX_RECORDINGS)) {
        if (entry.path().extension() == ".gxr" &&
            entry.path().stem().string().find(options.filter) != std::string::npos) {
            files.insert(entry.path());
        }
    }
    for (const auto& file : files) {
        Measure(options, file, factory);
        std::fflush(stdout);
    }
    return files.empty() ? 1 : 0;
}

} // namespace

int main(int argc, char** argv) {
    try {
        return Run(argc, argv);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "gxbench_hardware: %s\n", failure.what());
        return 1;
    }
}
