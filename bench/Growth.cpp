// SPDX-License-Identifier: MIT
// gxgrowth: how the cost of a drawing grows with its size, through the C interface. Prints for each kind of size the
// time for one unit and the exponent p of the best fit t = c n^p (least squares of log t over log n): 1 is linear.
#include <GX/GX.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <random>
#include <vector>

namespace {

void Check(GXResult result) {
    if (result != GXResultSuccess) {
        std::fprintf(stderr, "a call failed: %u\n", static_cast<unsigned>(result));
        std::exit(1);
    }
}

/// A target in memory of its own, inside a paint bracket.
class Canvas {
public:
    explicit Canvas(uint32_t side) : m_pixels(size_t{side} * side, 0xFF808080U) {
        const auto length = static_cast<float>(side);
        const GXExtBufLayout layout = {length, length, length * 4, 96, 96};
        Check(GXCreateRenderTargetExtBuf(m_pixels.data(), GXPixelFormatPBGRA32, &layout, &m_target));
        Check(GXRenderTargetBeginPaint(m_target));
        Check(GXRenderTargetSetStrokeAdjustment(m_target, 0));
        Check(GXCreateBrushSolidARGB(0x80204060U, &m_brush));
    }
    ~Canvas() {
        Check(GXRenderTargetEndPaint(m_target));
        Check(GXObjectRelease(m_brush));
        Check(GXObjectRelease(m_target));
    }
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;

    [[nodiscard]] GXRenderTarget Target() const { return m_target; }
    [[nodiscard]] GXBrush Brush() const { return m_brush; }
    void Rect(float x, float y, float width, float height) const {
        const GXRect rect = {x, y, x + width, y + height};
        Check(GXRenderTargetFillRect(m_target, &rect, m_brush));
    }

private:
    std::vector<uint32_t> m_pixels;
    GXRenderTarget m_target = nullptr;
    GXBrush m_brush = nullptr;
};

class Path {
public:
    Path() { Check(GXCreateGeometry(&m_geometry)); }
    ~Path() { Check(GXObjectRelease(m_geometry)); }
    Path(const Path&) = delete;
    Path& operator=(const Path&) = delete;

    void Figure(const std::vector<GXPoint>& points) const {
        Check(GXGeometryBeginFigure(m_geometry, &points[0]));
        for (size_t i = 1; i < points.size(); ++i) {
            Check(GXGeometryLineTo(m_geometry, &points[i]));
        }
        Check(GXGeometryEndFigureClose(m_geometry));
    }
    [[nodiscard]] GXGeometry Get() const { return m_geometry; }

private:
    GXGeometry m_geometry = nullptr;
};

/// The fastest of several runs of `draw`, in seconds.
double Time(const std::function<void()>& draw) {
    double best = 1e30;
    double all = 0;
    for (int run = 0; run < 3 || (all < 0.2 && run < 30); ++run) {
        const auto start = std::chrono::steady_clock::now();
        draw();
        const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        best = std::min(best, seconds);
        all += seconds;
    }
    return best;
}

/// time(n) is the time for size n.
void Report(const char* name, const std::vector<int>& sizes, const std::function<double(int)>& time) {
    double sx = 0;
    double sy = 0;
    double sxx = 0;
    double sxy = 0;
    std::printf("%-34s", name);
    for (const int n : sizes) {
        const double t = time(n);
        const double x = std::log(static_cast<double>(n));
        const double y = std::log(t);
        sx += x;
        sy += y;
        sxx += x * x;
        sxy += x * y;
        std::printf(" %8d: %9.1f", n, t * 1e9 / n);
        std::fflush(stdout);
    }
    const auto count = static_cast<double>(sizes.size());
    std::printf("   %5.2f\n", (count * sxy - sx * sy) / (count * sxx - sx * sx));
}

/// A closed walk of n short steps all over the target.
void Walk(const Path& path, int n, float side) {
    std::mt19937 random(5);
    std::uniform_real_distribution<float> step(-4, 4);
    std::vector<GXPoint> points;
    GXPoint p = {side / 2, side / 2};
    for (int i = 0; i < n; ++i) {
        p.x = std::clamp(p.x + step(random), 0.0F, side);
        p.y = std::clamp(p.y + step(random), 0.0F, side);
        points.push_back(p);
    }
    path.Figure(points);
}

double DrawWalk(int n, GXFillRule rule, bool stroke) {
    const Canvas canvas(1000);
    const Path path;
    Walk(path, n, 1000);
    Check(GXGeometrySetFillRule(path.Get(), rule));
    return Time([&] {
        Check(stroke ? GXRenderTargetStrokeGeometry(canvas.Target(), path.Get(), canvas.Brush(), 1, nullptr)
                     : GXRenderTargetFillGeometry(canvas.Target(), path.Get(), canvas.Brush()));
    });
}

double DrawFigures(int n, bool rectangles) {
    const Canvas canvas(1000);
    const Path path;
    std::mt19937 random(6);
    std::uniform_real_distribution<float> place(0, 990);
    for (int i = 0; i < n; ++i) {
        const float x = place(random);
        const float y = place(random);
        if (rectangles) {
            path.Figure({{x, y}, {x + 7, y}, {x + 7, y + 5}, {x, y + 5}});
        } else {
            path.Figure({{x, y}, {x + 7, y + 2}, {x + 3, y + 6}});
        }
    }
    Check(GXGeometrySetFillRule(path.Get(), GXFillRuleNonZero));
    return Time([&] { Check(GXRenderTargetFillGeometry(canvas.Target(), path.Get(), canvas.Brush())); });
}

double DrawPixels(int n) {
    const auto side = static_cast<uint32_t>(std::lround(std::sqrt(static_cast<double>(n))));
    const Canvas canvas(side);
    const auto length = static_cast<float>(side);
    return Time([&] { canvas.Rect(0.3F, 0.3F, length, length); });
}

double DrawGroups(int n, bool nested) {
    const Canvas canvas(1000);
    GXLayerDesc desc = {};
    desc.opacity = 0.5F;
    const auto open = [&](int i) {
        const auto x = static_cast<float>(i * 37 % 970);
        const auto y = static_cast<float>(i * 53 % 970);
        if (!nested) {
            desc.bounds = {x, y, x + 20, y + 20};
        }
        Check(GXRenderTargetBeginLayer(canvas.Target(), &desc));
        canvas.Rect(nested ? 3 : x + 3, nested ? 3 : y + 3, 9, 9);
    };
    if (nested) {
        desc.bounds = {0, 0, 20, 20};
    }
    return Time([&] {
        for (int i = 0; i < n; ++i) {
            open(i);
            if (!nested) {
                Check(GXRenderTargetEndLayer(canvas.Target()));
            }
        }
        for (int i = 0; nested && i < n; ++i) {
            Check(GXRenderTargetEndLayer(canvas.Target()));
        }
    });
}

double DrawClips(int n, bool nested) {
    const Canvas canvas(1000);
    return Time([&] {
        for (int i = 0; i < n; ++i) {
            const auto x = nested ? 0 : static_cast<float>(i * 37 % 970);
            const GXRect bounds = {x, x, x + 30, x + 30};
            Check(GXRenderTargetPushState(canvas.Target()));
            Check(GXRenderTargetClipEllipse(canvas.Target(), &bounds));
            canvas.Rect(x + 1, x + 1, 27, 27);
            if (!nested) {
                Check(GXRenderTargetPopState(canvas.Target()));
            }
        }
        for (int i = 0; nested && i < n; ++i) {
            Check(GXRenderTargetPopState(canvas.Target()));
        }
    });
}

} // namespace

int main() {
    std::printf("size: nanoseconds for one of them; last the exponent\n");
    const std::vector<int> many = {1000, 10000, 100000, 1000000};
    const std::vector<int> some = {100, 1000, 10000, 100000};
    Report("edges, even-odd", many, [](int n) { return DrawWalk(n, GXFillRuleEvenOdd, false); });
    Report("edges, non-zero", many, [](int n) { return DrawWalk(n, GXFillRuleNonZero, false); });
    Report("edges, stroke of width 1", many, [](int n) { return DrawWalk(n, GXFillRuleNonZero, true); });
    Report("figures, triangles of one path", some, [](int n) { return DrawFigures(n, false); });
    Report("figures, rectangles of one path", some, [](int n) { return DrawFigures(n, true); });
    Report("pixels of a rectangle", {10000, 100000, 1000000, 16000000}, DrawPixels);
    Report("groups, one after the other", some, [](int n) { return DrawGroups(n, false); });
    Report("groups, nested", some, [](int n) { return DrawGroups(n, true); });
    Report("clips, one after the other", some, [](int n) { return DrawClips(n, false); });
    Report("clips, nested", some, [](int n) { return DrawClips(n, true); });
    return 0;
}
