// SPDX-License-Identifier: MIT
// gxcombine: GXGeometryCombine beside the Clipper library on the same two sets of polygons, in one process and on one
// thread. Prints the processor times of one combination (median of the runs, the engines taking turns) and their ratio,
// and the relative difference of the areas as a proof that both did the same work.
#include <GX/GX.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <random>
#include <string>
#include <vector>

#ifdef BENCH_HAS_CLIPPER
#include <polyclipping/clipper.hpp>
#endif

namespace {

using Polygon = std::vector<GXPoint>;
using Polygons = std::vector<Polygon>;

constexpr double kGrid = 16384; // Clipper's steps per unit, of a plane of 1000 units

void Check(GXResult result) {
    if (result != GXResultSuccess) {
        std::fprintf(stderr, "a call failed with %u\n", static_cast<unsigned>(result));
        std::exit(1);
    }
}

/// Processor time, so that what else the machine does counts less.
double Now() { return static_cast<double>(std::clock()) / CLOCKS_PER_SEC; }

class Random {
public:
    explicit Random(uint32_t seed) : m_bits(seed) {}
    float operator()(float low, float high) {
        return low + (high - low) * static_cast<float>(m_bits() >> 8) / 16777216.0F;
    }

private:
    std::mt19937 m_bits;
};

/// One star with `edges` edges; the more of them, the shorter its rays, so that each crosses a few others.
Polygons Star(int edges, uint32_t seed) {
    Random random(seed);
    Polygon p;
    const float cx = random(480, 520), cy = random(480, 520);
    const float depth = std::min(150.0F, 150000.0F / static_cast<float>(edges));
    for (int i = 0; i < edges; ++i) {
        const float angle = 6.2831853F * static_cast<float>(i) / static_cast<float>(edges);
        const float radius = 400 + (i % 2 != 0 ? random(-depth, 0) : random(0, depth));
        p.push_back({cx + radius * std::cos(angle), cy + radius * std::sin(angle)});
    }
    return {p};
}

/// Many small octagons whose size keeps the number of overlaps of each the same.
Polygons Confetti(int edges, uint32_t seed) {
    Random random(seed);
    Polygons all;
    const int count = edges / 8;
    const float size = 900 / std::sqrt(static_cast<float>(count));
    for (int i = 0; i < count; ++i) {
        Polygon p;
        const float cx = random(50, 950), cy = random(50, 950), turn = random(0, 1);
        for (int k = 0; k < 8; ++k) {
            const float angle = 0.78539816F * (static_cast<float>(k) + turn);
            p.push_back({cx + size * std::cos(angle), cy + size * std::sin(angle)});
        }
        all.push_back(p);
    }
    return all;
}

/// A coast: a circle roughened by halving, as maps are.
Polygons Coast(int edges, uint32_t seed) {
    Random random(seed);
    std::vector<float> radii = {random(300, 400), random(300, 400), random(300, 400), random(300, 400)};
    for (float rough = 60; radii.size() < static_cast<size_t>(edges); rough *= 0.55F) {
        std::vector<float> finer;
        for (size_t i = 0; i < radii.size(); ++i) {
            finer.push_back(radii[i]);
            finer.push_back((radii[i] + radii[(i + 1) % radii.size()]) / 2 + random(-rough, rough));
        }
        radii = finer;
    }
    Polygon p;
    for (size_t i = 0; i < radii.size(); ++i) {
        const float angle = 6.2831853F * static_cast<float>(i) / static_cast<float>(radii.size());
        p.push_back({500 + radii[i] * std::cos(angle), 500 + radii[i] * std::sin(angle)});
    }
    return {p};
}

/// One ring through random points: nearly a quarter of all pairs of edges cross.
Polygons Chords(int edges, uint32_t seed) {
    Random random(seed);
    Polygon p;
    for (int i = 0; i < edges; ++i) {
        p.push_back({random(0, 1000), random(0, 1000)});
    }
    return {p};
}

/// Buildings of 5 to 30 m at random in a square of 2 km, at coordinates as maps have them: a float is 3 cm there.
Polygons Buildings(int edges, uint32_t seed) {
    Random random(seed);
    Polygons all;
    for (int i = 0; i < edges / 4; ++i) {
        const float x = 5e5F + random(0, 2000), y = 5e5F + random(0, 2000), turn = random(0, 3.1415926F);
        const float w = random(5, 30), h = random(5, 30), c = std::cos(turn), s = std::sin(turn);
        all.push_back({{x, y}, {x + w * c, y + w * s}, {x + w * c - h * s, y + w * s + h * c}, {x - h * s, y + h * c}});
    }
    return all;
}

/// Thin triangles inside each other, all across one long edge of the other operand.
Polygons Slivers(int edges, uint32_t seed) {
    const int count = 2 * edges / 3;
    const auto most = static_cast<float>(count);
    if (seed == 1) {
        return {{{0, -10}, {10, 5 * most}, {-50 * most, 5 * most}}};
    }
    Polygons all;
    for (int i = 0; i < count; ++i) {
        const auto d = static_cast<float>(i);
        all.push_back({{d - most, d}, {most - d, 4 * most - 3 * d}, {d - most + 0.5F, d}});
    }
    return all;
}

/// Spokes through one point, and now and then a level line across all of them: places in the list at even distances
/// tell nothing of the rest.
Polygons Spokes(int edges, uint32_t seed) {
    Polygons all;
    const int count = edges / 3;
    for (int i = 0; i < count; ++i) {
        const float angle = 3.1415926F * static_cast<float>(i) / static_cast<float>(count);
        const float x = std::round(4e6F * std::cos(angle)), y = std::round(4e6F * std::sin(angle));
        const float at = 900000 + static_cast<float>(i);
        all.push_back(seed == 1 && i % std::max(1, count / 8) == 0 ? Polygon{{-4e6F, at}, {4e6F, at + 1}, {-4e6F, at}}
                                                                   : Polygon{{x, y}, {-x, -y}, {x, y}});
    }
    return all;
}

/// Small octagons, and one box as far away as a wrong point of a file is.
Polygons FarSpeck(int edges, uint32_t seed) {
    Polygons all = Confetti(edges, seed);
    all.push_back({{1e8F, 1e8F}, {1.0001e8F, 1e8F}, {1.0001e8F, 1.0001e8F}, {1e8F, 1.0001e8F}});
    return all;
}

/// Boxes on a coarse grid: borders coincide.
Polygons Boxes(int edges, uint32_t seed) {
    Random random(seed);
    Polygons all;
    const float cells = std::sqrt(static_cast<float>(edges) / 4);
    for (int i = 0; i < edges / 4; ++i) {
        const float l = std::floor(random(0, cells)), t = std::floor(random(0, cells));
        const float r = l + std::floor(random(1, 4)), b = t + std::floor(random(1, 4));
        all.push_back({{l, t}, {r, t}, {r, b}, {l, b}});
    }
    return all;
}

GXGeometry MakeGeometry(const Polygons& polygons) {
    GXGeometry geometry = nullptr;
    Check(GXCreateGeometry(&geometry));
    for (const Polygon& p : polygons) {
        Check(GXGeometryBeginFigure(geometry, &p[0]));
        for (size_t i = 1; i < p.size(); ++i) {
            Check(GXGeometryLineTo(geometry, &p[i]));
        }
        Check(GXGeometryEndFigureClose(geometry));
    }
    return geometry;
}

struct AreaSum {
    double area = 0, x0 = 0, y0 = 0, x = 0, y = 0;
    void To(const GXPoint& p) {
        area += (x - x0) * (p.y - y0) - (p.x - x0) * (y - y0);
        x = p.x;
        y = p.y;
    }
};

double AreaOf(GXGeometry geometry) {
    AreaSum sum;
    GXGeometrySinkCallbacks sink{};
    sink.context = &sum;
    sink.BeginFigure = [](void* context, const GXPoint* p) {
        auto& s = *static_cast<AreaSum*>(context);
        s.x0 = s.x = p->x;
        s.y0 = s.y = p->y;
    };
    sink.LineTo = [](void* context, const GXPoint* p) { static_cast<AreaSum*>(context)->To(*p); };
    Check(GXGeometrySendToSink(geometry, &sink));
    return sum.area / 2;
}

/// The times of one call, and what it gave.
struct Outcome {
    std::vector<double> seconds;
    double area = 0;
    [[nodiscard]] double Median() {
        const auto middle = seconds.begin() + static_cast<std::ptrdiff_t>(seconds.size() / 2);
        std::nth_element(seconds.begin(), middle, seconds.end());
        return *middle;
    }
};

void RunOurs(GXGeometry a, GXGeometry b, uint32_t mode, Outcome& outcome) {
    GXGeometry result = nullptr;
    const double begin = Now();
    Check(GXGeometryCombine(a, b, mode, 0.25F, &result));
    outcome.seconds.push_back(Now() - begin);
    outcome.area = AreaOf(result);
    Check(GXObjectRelease(result));
}

#ifdef BENCH_HAS_CLIPPER
ClipperLib::Paths MakePaths(const Polygons& polygons) {
    ClipperLib::Paths paths;
    for (const Polygon& p : polygons) {
        ClipperLib::Path path;
        for (const GXPoint& q : p) {
            path.push_back({std::llround(q.x * kGrid), std::llround(q.y * kGrid)});
        }
        paths.push_back(path);
    }
    return paths;
}

void RunClipper(const ClipperLib::Paths& a, const ClipperLib::Paths& b, uint32_t mode, Outcome& outcome) {
    using namespace ClipperLib;
    constexpr ClipType kTypes[] = {ctIntersection, ctUnion, ctXor, ctDifference};
    Paths result;
    const double begin = Now();
    Clipper clipper;
    clipper.AddPaths(a, ptSubject, true);
    clipper.AddPaths(b, ptClip, true);
    clipper.Execute(kTypes[mode], result, pftNonZero, pftNonZero);
    outcome.seconds.push_back(Now() - begin);
    outcome.area = 0;
    for (const Path& path : result) {
        outcome.area += Area(path);
    }
    outcome.area /= kGrid * kGrid;
}
#endif

struct Scene {
    const char* name;
    Polygons (*make)(int edges, uint32_t seed);
    std::vector<int> sizes;
};

} // namespace

int main(int argc, char** argv) {
    const int runs = argc > 1 ? std::max(1, std::atoi(argv[1])) : 5;
    const char* filter = argc > 2 ? argv[2] : "";
    const std::vector<Scene> scenes = {
        {"star", Star, {1000, 10000, 100000}},          {"confetti", Confetti, {1000, 10000, 100000}},
        {"coast", Coast, {1024, 16384, 131072}},        {"boxes", Boxes, {1000, 10000, 100000}},
        {"chords", Chords, {100, 300, 1000}},           {"corner_map", Buildings, {96000, 480000}},
        {"corner_slivers", Slivers, {30000, 300000}},   {"corner_spokes", Spokes, {12000}},
        {"corner_far", FarSpeck, {1000, 10000, 100000}}};
    const char* const modes[] = {"intersection", "union", "xor", "difference"};
    std::printf("%-14s %7s %-13s %12s %12s %7s %10s\n", "scene", "edges", "mode", "ms", "Clipper ms", "x", "diff");
    for (const Scene& scene : scenes) {
        if (std::strstr(scene.name, filter) == nullptr) {
            continue;
        }
        for (const int edges : scene.sizes) {
            const Polygons a = scene.make(edges / 2, 1), b = scene.make(edges / 2, 2);
            GXGeometry first = MakeGeometry(a), second = MakeGeometry(b);
            for (uint32_t mode = 0; mode < 4; ++mode) {
                Outcome ours, theirs;
#ifdef BENCH_HAS_CLIPPER
                const ClipperLib::Paths pathsA = MakePaths(a), pathsB = MakePaths(b);
#endif
                for (int i = 0; i < runs; ++i) {
                    RunOurs(first, second, mode, ours);
#ifdef BENCH_HAS_CLIPPER
                    RunClipper(pathsA, pathsB, mode, theirs);
#endif
                }
                std::printf("%-14s %7d %-13s %12.3f", scene.name, edges, modes[mode], ours.Median() * 1e3);
                if (!theirs.seconds.empty()) {
                    std::printf(" %12.3f %7.2f %10.1e", theirs.Median() * 1e3, theirs.Median() / ours.Median(),
                                std::fabs(ours.area - theirs.area) / std::max(1.0, std::fabs(theirs.area)));
                }
                std::printf("\n");
                std::fflush(stdout);
            }
            Check(GXObjectRelease(first));
            Check(GXObjectRelease(second));
        }
    }
    return 0;
}
