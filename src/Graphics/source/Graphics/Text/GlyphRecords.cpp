// SPDX-License-Identifier: MIT
// A polygon is a header of 16 bytes (its total length, the type 24, the start) followed by curves. A curve is a header
// of 4 bytes (its type, the number of points) followed by points of 8 bytes. A number has 4 bytes: the fraction in
// 1/65536, then the integer part. All are little-endian, as on every machine that runs GDI.
#include "GlyphRecords.h"

namespace Graphics {
namespace {

constexpr size_t kPolygonHeader = 16;
constexpr size_t kPolygonStart = 8;
constexpr size_t kCurveHeader = 4;
constexpr size_t kPointBytes = 8;
constexpr uint32_t kPolygonType = 24;

enum CurveType : uint32_t { kLines = 1, kQuadratics = 2, kCubics = 3 };

[[nodiscard]] uint32_t Read16(const uint8_t* p) noexcept { return p[0] | static_cast<uint32_t>(p[1]) << 8; }
[[nodiscard]] uint32_t Read32(const uint8_t* p) noexcept { return Read16(p) | Read16(p + 2) << 16; }

[[nodiscard]] float ReadFixed(const uint8_t* p) noexcept {
    return static_cast<float>(static_cast<double>(static_cast<int16_t>(Read16(p + 2))) + Read16(p) / 65536.0);
}

[[nodiscard]] Point ReadPoint(const uint8_t* p) noexcept { return {ReadFixed(p), ReadFixed(p + 4)}; }

/// The points of one curve record.
struct Points {
    const uint8_t* data;
    size_t count;

    [[nodiscard]] Point operator[](size_t i) const noexcept { return ReadPoint(data + i * kPointBytes); }
};

void AddQuadratics(const Points& points, Geometry& out) {
    // Control points, then one point on the curve; between two control points lies an implied point, half-way.
    for (size_t i = 0; i + 1 < points.count; ++i) {
        const Point control = points[i];
        Point end = points[i + 1];
        if (i + 2 < points.count) {
            end = {(control.x + end.x) * 0.5F, (control.y + end.y) * 0.5F};
        }
        out.CubicTo(control, end, end); // not the exact cubic of the quadratic, but the same curve on every platform
    }
}

void AddCubics(const Points& points, Geometry& out) {
    // The last three points of a record are not sent; page bytes depend on this.
    for (size_t i = 0; i + 3 < points.count; i += 3) {
        out.CubicTo(points[i], points[i + 1], points[i + 2]);
    }
}

/// The curves of one polygon.
void AddCurves(std::span<const uint8_t> records, Geometry& out) {
    while (records.size() >= kCurveHeader) {
        const Points points{records.data() + kCurveHeader, Read16(records.data() + 2)};
        const size_t length = kCurveHeader + points.count * kPointBytes;
        if (length > records.size()) {
            return;
        }
        switch (Read16(records.data())) {
        case kLines:
            for (size_t i = 0; i < points.count; ++i) {
                out.LineTo(points[i]);
            }
            break;
        case kQuadratics:
            AddQuadratics(points, out);
            break;
        case kCubics:
            AddCubics(points, out);
            break;
        default:
            break;
        }
        records = records.subspan(length);
    }
}

} // namespace

void AddGlyphRecords(std::span<const uint8_t> records, Geometry& out) {
    while (records.size() >= kPolygonHeader) {
        const size_t length = Read32(records.data());
        if (length < kPolygonHeader || length > records.size()) {
            return;
        }
        if (Read32(records.data() + 4) == kPolygonType) {
            out.BeginFigure(ReadPoint(records.data() + kPolygonStart));
            AddCurves(records.subspan(kPolygonHeader, length - kPolygonHeader), out);
            out.EndFigureClose();
        }
        records = records.subspan(length);
    }
}

} // namespace Graphics
