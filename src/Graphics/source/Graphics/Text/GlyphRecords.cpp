// SPDX-License-Identifier: MIT
// A polygon is a header of 16 bytes (its length with all its curves, the type 24, the start) and curves one after the
// other; a curve is a header of 4 bytes (its type, the count of points) and its points of 8 bytes. A number is 4 bytes:
// the fraction in 1/65536, then the whole part. Everything is little-endian, as on every machine that GDI runs on.
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

void SendQuadratics(const Points& points, GeometrySink& sink) {
    // Controls, and at last a point on the curve; half-way between two controls lies another one.
    for (size_t i = 0; i + 1 < points.count; ++i) {
        const Point control = points[i];
        Point end = points[i + 1];
        if (i + 2 < points.count) {
            end = {(control.x + end.x) * 0.5F, (control.y + end.y) * 0.5F};
        }
        sink.CubicTo(control, end, end); // not the exact cubic of the quadratic: the same curve on every platform
    }
}

void SendCubics(const Points& points, GeometrySink& sink) {
    // The last three points of a record are not sent; the bytes of pages depend on it.
    for (size_t i = 0; i + 3 < points.count; i += 3) {
        sink.CubicTo(points[i], points[i + 1], points[i + 2]);
    }
}

/// The curves of one polygon.
void SendCurves(std::span<const uint8_t> records, GeometrySink& sink) {
    while (records.size() >= kCurveHeader) {
        const Points points{records.data() + kCurveHeader, Read16(records.data() + 2)};
        const size_t length = kCurveHeader + points.count * kPointBytes;
        if (length > records.size()) {
            return;
        }
        switch (Read16(records.data())) {
        case kLines:
            for (size_t i = 0; i < points.count; ++i) {
                sink.LineTo(points[i]);
            }
            break;
        case kQuadratics:
            SendQuadratics(points, sink);
            break;
        case kCubics:
            SendCubics(points, sink);
            break;
        default:
            break;
        }
        records = records.subspan(length);
    }
}

} // namespace

void SendGlyphRecords(std::span<const uint8_t> records, GeometrySink& sink) {
    while (records.size() >= kPolygonHeader) {
        const size_t length = Read32(records.data());
        if (length < kPolygonHeader || length > records.size()) {
            return;
        }
        if (Read32(records.data() + 4) == kPolygonType) {
            sink.BeginFigure(ReadPoint(records.data() + kPolygonStart));
            SendCurves(records.subspan(kPolygonHeader, length - kPolygonHeader), sink);
            sink.EndFigureClose();
        }
        records = records.subspan(length);
    }
}

} // namespace Graphics
