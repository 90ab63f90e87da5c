// SPDX-License-Identifier: MIT
// Two shapes from bytes, combined in every way. The first byte tells how coordinates are read: as small integers, which
// coincide all the time, or as any float, near and far. What comes out must be straight, closed and combinable again,
// and the work within what so little input may take: sweeps, stops and pieces of edges are counted, and memory is
// limited by the number of edges, of which curves may make some ten thousand each.
#include <cstdlib>
#include <cstring>

#include "Boolean/Boolean.h"

using namespace Graphics;

namespace {

// Two hundred lines or so, in up to two hundred bands of each axis; eight curves to the ends of the floats.
constexpr uint64_t kMostPieces = 20000000, kMostPoints = 5000000;

class Input {
public:
    Input(const uint8_t* data, size_t size) : m_data(data), m_left(size) {}

    [[nodiscard]] size_t Left() const { return m_left; }
    uint8_t Byte() {
        if (m_left == 0) {
            return 0;
        }
        m_left -= 1;
        return *m_data++;
    }
    float Number(bool any) {
        if (!any) {
            return static_cast<float>(Byte());
        }
        const uint32_t bits = Byte() | Byte() << 8 | Byte() << 16 | static_cast<uint32_t>(Byte()) << 24;
        float value = 0;
        std::memcpy(&value, &bits, sizeof value);
        return value;
    }

private:
    const uint8_t* m_data;
    size_t m_left;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size > 2048) {
        return 0;
    }
    Input input(data, size);
    const bool any = (input.Byte() & 1) != 0;
    Geometry shapes[2];
    for (Geometry& s : shapes) {
        s.SetFillRule(input.Byte() & 1);
    }
    const auto point = [&] {
        const float x = input.Number(any);
        return Point{x, input.Number(any)};
    };
    int curves = 0;
    while (input.Left() > 0) {
        const uint8_t what = input.Byte();
        Geometry& s = shapes[what & 1];
        const Point p = point();
        if (what % 16 < 3) {
            s.BeginFigure(p);
        } else if (what % 16 < 5 && curves < 8) {
            ++curves;
            const Point q = point();
            s.CubicTo(p, q, point());
        } else {
            s.LineTo(p);
        }
    }
    for (Geometry& s : shapes) {
        s.EndFigureClose();
    }
    for (uint32_t mode = 0; mode < 4; ++mode) {
        Geometry out, again;
        CellCombiner::Counts work;
        Boolean::Combine(shapes[0], shapes[1], mode, 0.25F, out, &work);
        const bool cheap = work.sweep.sweeps <= 8 && work.pieces <= kMostPieces && work.sweep.points <= kMostPoints;
        Boolean::Combine(out, out, GXCombineExclusiveOr, 0, again);
        if (!cheap || !out.AllFinite() || !again.Empty()) {
            std::abort();
        }
    }
    return 0;
}
