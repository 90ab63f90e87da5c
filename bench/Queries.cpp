// SPDX-License-Identifier: MIT
// gxqueries: what regions and hit tests cost, through the C interface. Prints one line a case; best of three runs.
#include <GX/GX.h>

#include <chrono>
#include <cmath>
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

void Report(const char* name, size_t count, const std::function<void()>& work) {
    double best = 1e30;
    for (int run = 0; run < 3; ++run) {
        const auto start = std::chrono::steady_clock::now();
        work();
        best = std::min(best, std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
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
                Report(name, static_cast<size_t>(count), [&] {
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
            Report(name, static_cast<size_t>(count), [&] {
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

} // namespace

int main() {
    Regions();
    return 0;
}
