// SPDX-License-Identifier: MIT
// gxqueries: what regions and hit tests cost, through the C interface. Prints one line a case: the best of several
// runs.
#include <GX/GX.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
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

void Report(const char* name, size_t count, int runs, const std::function<void()>& work) {
    double best = 1e30;
    for (int run = 0; run < runs; ++run) {
        const std::clock_t start = std::clock(); // processor time: what else the machine does counts less
        work();
        best = std::min(best, static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC);
    }
    std::printf("%-58s %8.1f ms  %9.1f ns each\n", name, best * 1e3, best * 1e9 / static_cast<double>(count));
}

size_t CountRects(GXRegion region) {
    size_t count = 0;
    Check(GXRegionEnumRects(
        region, [](void* c, const GXIntRect*) { ++*static_cast<size_t*>(c); }, &count));
    return count;
}

/// One by one: every union is a new region, the old one is let go.
GXRegion Grow(const std::vector<GXIntRect>& rects, bool ask) {
    GXRegion region = nullptr, next = nullptr;
    Check(GXCreateRegion(&region));
    for (const GXIntRect& rect : rects) {
        if (ask) {
            uint8_t hit = 0;
            Check(GXRegionHasIntersectionWithRect(region, &rect, &hit));
        }
        Check(GXRegionCombineRect(region, &rect, GXCombineUnion, &next));
        Check(GXObjectRelease(region));
        region = next;
    }
    return region;
}

GXRegion Halves(const std::vector<GXIntRect>& rects, size_t first, size_t last) {
    GXRegion out = nullptr;
    if (last - first == 1) {
        Check(GXCreateRegionFromRect(&rects[first], &out));
        return out;
    }
    GXRegion a = Halves(rects, first, (first + last) / 2), b = Halves(rects, (first + last) / 2, last);
    Check(GXRegionCombine(a, b, GXCombineUnion, &out));
    Check(GXObjectRelease(a));
    Check(GXObjectRelease(b));
    return out;
}

void Regions() {
    std::mt19937 random(3);
    const auto number = [&](int most) { return static_cast<int32_t>(random() % static_cast<uint32_t>(most)); };
    for (const int count : {12500, 25000, 50000, 100000}) {
        const auto make = [&](auto&& rect) {
            std::vector<GXIntRect> rects;
            for (int i = 0; i < count; ++i) {
                rects.push_back(rect(i));
            }
            for (size_t i = rects.size(); i > 1; --i) {
                std::swap(rects[i - 1], rects[random() % i]);
            }
            return rects;
        };
        const int side = static_cast<int>(std::sqrt(count)) + 1;
        const struct {
            const char* name;
            std::vector<GXIntRect> rects;
        } sets[] = {
            {"column", make([](int i) {
                 return GXIntRect{0, 2 * i, 5, 2 * i + 1};
             })},
            {"row", make([](int i) {
                 return GXIntRect{2 * i, 0, 2 * i + 1, 5};
             })},
            {"chessboard", make([&](int i) {
                 return GXIntRect{2 * (i % side), 2 * (i / side), 2 * (i % side) + 1, 2 * (i / side) + 1};
             })},
            {"random 10 x 10", make([&](int) {
                 const int32_t x = number(10 * side), y = number(10 * side);
                 return GXIntRect{x, y, x + 10, y + 10};
             })},
        };
        for (const auto& set : sets) {
            char name[80];
            GXRegion grown = nullptr;
            const auto report = [&](const char* what, bool ask) {
                std::snprintf(name, sizeof name, "%d rectangles, %s, %s", count, set.name, what);
                Report(name, static_cast<size_t>(count), 3, [&] {
                    if (grown != nullptr) {
                        Check(GXObjectRelease(grown));
                    }
                    grown = Grow(set.rects, ask);
                });
            };
            report("single unions", false);
            report("asked before each union", true);
            GXRegion halved = nullptr;
            std::snprintf(name, sizeof name, "%d rectangles, %s, by halves", count, set.name);
            Report(name, static_cast<size_t>(count), 3, [&] {
                if (halved != nullptr) {
                    Check(GXObjectRelease(halved));
                }
                halved = Halves(set.rects, 0, set.rects.size());
            });
            if (CountRects(grown) != CountRects(halved)) {
                std::fprintf(stderr, "two ways, two regions\n");
                std::exit(1);
            }
            Check(GXObjectRelease(grown));
            Check(GXObjectRelease(halved));
        }
    }
}

/// A star of 100 segments (lines, or a wavy ring of curves), asked at points all over its box and, in the second case,
/// far beyond it.
void Hits() {
    const struct {
        const char* name;
        bool curves;
        float spread, tolerance;
    } cases[] = {
        {"100 lines, points in the box", false, 100, 0},
        {"100 lines, tolerance 3", false, 100, 3},
        {"100 curves, points in the box", true, 100, 0},
        {"100 curves, tolerance 3", true, 100, 3},
        {"100 curves, tolerance 3, points all over", true, 1000, 3},
    };
    const GXMatrix turn{0.8F, 0.6F, -0.6F, 0.8F, 3.0F, 4.0F};
    constexpr size_t kCount = 40960;
    std::mt19937 random(9);
    std::uniform_real_distribution<float> unit(-1.0F, 1.0F);
    for (const auto& c : cases) {
        GXGeometry geometry = nullptr;
        Check(GXCreateGeometry(&geometry));
        const auto at = [](int i, int of, float radius) {
            const float angle = 6.2831853F * static_cast<float>(i) / static_cast<float>(of);
            return GXPoint{radius * std::cos(angle), radius * std::sin(angle)};
        };
        const GXPoint start = at(0, 100, 90);
        Check(GXGeometryBeginFigure(geometry, &start));
        for (int i = 1; i <= 100; ++i) {
            const GXPoint c1 = at(3 * i - 2, 300, 100), c2 = at(3 * i - 1, 300, 60);
            const GXPoint end = at(i, 100, c.curves ? 90.0F : i % 2 == 0 ? 90.0F : 50.0F);
            Check(c.curves ? GXGeometryCubicCurveTo(geometry, &c1, &c2, &end) : GXGeometryLineTo(geometry, &end));
        }
        Check(GXGeometryEndFigureClose(geometry));
        std::vector<GXPoint> points(4096);
        for (GXPoint& p : points) {
            p = {unit(random) * c.spread, unit(random) * c.spread};
        }
        for (const GXMatrix* matrix : {static_cast<const GXMatrix*>(nullptr), &turn}) {
            size_t hits = 0;
            char name[80];
            std::snprintf(name, sizeof name, "%s%s", c.name, matrix != nullptr ? ", turned" : "");
            Report(name, kCount, 30, [&] {
                hits = 0;
                for (size_t i = 0; i < kCount; ++i) {
                    uint8_t hit = 0;
                    Check(GXGeometryHitTest(geometry, &points[i & 4095U], matrix, c.tolerance, &hit));
                    hits += hit;
                }
            });
            if (hits == 0 || hits == kCount) {
                std::fprintf(stderr, "the shape is not there\n");
                std::exit(1);
            }
        }
        Check(GXObjectRelease(geometry));
    }
}

} // namespace

int main(int argc, char**) {
    Hits();
    if (argc > 1) {
        return 0; // any argument: hit tests alone
    }
    Regions();
    return 0;
}
