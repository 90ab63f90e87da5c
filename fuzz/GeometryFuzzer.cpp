// SPDX-License-Identifier: MIT
// Paths of any floats at all, bit by bit from the input: filled, stroked, dashed, clipped to, widened, combined and
// hit. What the rasterizer gets of a stroke is counted: it is bounded by the target and the number of segments.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "Exception.h"
#include "GX/GX.h"
#include "Geometry/DeviceFeed.h"
#include "Geometry/Geometry.h"
#include "Handles.h"

namespace {

constexpr float kWidth = 16;
constexpr float kHeight = 48;
/// Eight times the periods that the samples of the target can tell apart, of 15 dashes each.
constexpr size_t kMostPoints = 400000;

/// Takes an outline in the pixels of the target.
class Counter {
public:
    void SetFillRule(uint32_t) {}
    void BeginFigure(const GXPoint& p) { LineTo(p); }
    void EndFigure() {}
    void EndFigureClose() {}
    void LineTo(const GXPoint& p) {
        ++points;
        inBand = inBand && p.x >= -Graphics::kDeviceBand && p.x <= Graphics::kDeviceBand &&
                 p.y >= -Graphics::kDeviceBand && p.y <= Graphics::kDeviceBand;
    }
    void CubicTo(const GXPoint&, const GXPoint&, const GXPoint& p) { LineTo(p); }

    size_t points = 0;
    bool inBand = true;
};

class Bytes {
public:
    Bytes(const uint8_t* data, size_t size) noexcept : m_next(data), m_end(data + size) {}

    template <class T> T Take() noexcept {
        T value{};
        const auto left = static_cast<size_t>(m_end - m_next);
        const size_t count = left < sizeof(T) ? left : sizeof(T);
        std::memcpy(&value, m_next, count);
        m_next += count;
        return value;
    }
    GXPoint Point() noexcept {
        const auto x = Take<float>();
        return {x, Take<float>()};
    }
    [[nodiscard]] bool Done() const noexcept { return m_next == m_end; }

private:
    const uint8_t* m_next;
    const uint8_t* m_end;
};

void Check(GXResult result) {
    if (result > GXResultInvalidArgument && result != GXResultEngineError) {
        std::abort();
    }
}

/// What would be sent of the shape's stroke.
void CountStroke(const Graphics::Shape& shape, const GXMatrix& matrix, const GXStrokeStyle& style, float width,
                 bool adjust) {
    size_t segments = 0;
    for (const Graphics::Figure& figure : shape.Figures()) {
        segments += figure.SegmentCount() + 1;
    }
    Graphics::PenStorage storage;
    Counter counter;
    try {
        Graphics::FeedStroke(shape, matrix, Graphics::StrokeStyle(&style), width, adjust, storage,
                             {0, 0, kWidth, kHeight}, counter);
    } catch (const Graphics::Exception&) { // a bad pattern
    }
    if (counter.points > kMostPoints * (segments + 1) || !counter.inBand) {
        std::abort();
    }
}

void Build(GXGeometry geometry, Bytes& bytes) {
    for (uint32_t n = bytes.Take<uint8_t>() % 24U; n > 0 && !bytes.Done(); --n) {
        const auto kind = bytes.Take<uint8_t>();
        const GXPoint a = bytes.Point();
        if (kind < 100) {
            Check(GXGeometryLineTo(geometry, &a));
        } else if (kind < 160) {
            const GXPoint b = bytes.Point();
            const GXPoint c = bytes.Point();
            Check(GXGeometryCubicCurveTo(geometry, &a, &b, &c));
        } else if (kind < 210) {
            Check(GXGeometryBeginFigure(geometry, &a));
        } else {
            Check(kind < 235 ? GXGeometryEndFigureClose(geometry) : GXGeometryEndFigure(geometry));
        }
    }
    Check(GXGeometryEndFigureClose(geometry));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static std::vector<uint8_t> memory(64 * 48);
    Bytes bytes(data, size);
    GXGeometry shapes[2] = {};
    for (GXGeometry& shape : shapes) {
        Check(GXCreateGeometry(&shape));
        Check(GXGeometrySetFillRule(shape, bytes.Take<uint8_t>() % 2U));
        Build(shape, bytes);
    }
    const auto flags = bytes.Take<uint8_t>();
    GXStrokeStyle style{flags % 3U, flags / 3U % 3U, bytes.Take<float>(), 0, bytes.Take<float>(), {}, flags / 9U % 4U};
    for (uint64_t i = 0; i < style.dashCount; ++i) {
        style.dashes[i] = bytes.Take<float>();
    }
    const auto width = bytes.Take<float>();
    const auto matrix = bytes.Take<GXMatrix>();
    CountStroke(*shapes[0]->object, flags < 128 ? Graphics::kIdentity : matrix, style, width, flags % 2U != 0);
    const GXExtBufLayout layout{static_cast<uint32_t>(kWidth), static_cast<uint32_t>(kHeight), 64, 96, 96};
    GXRenderTarget target = nullptr;
    GXBrush brush = nullptr;
    Check(GXCreateRenderTargetExtBuf(memory.data(), GXPixelFormatPBGRA32, &layout, &target));
    Check(GXCreateBrushSolidARGB(0x80FF4020, &brush));
    Check(GXRenderTargetSetStrokeAdjustment(target, flags % 2U));
    Check(GXRenderTargetSetCTM(target, flags < 128 ? nullptr : &matrix));
    Check(GXRenderTargetBeginPaint(target));
    Check(GXRenderTargetFillGeometry(target, shapes[0], brush));
    Check(GXRenderTargetFillTextGeometry(target, shapes[1], brush));
    Check(GXRenderTargetStrokeGeometry(target, shapes[0], brush, width, &style));
    Check(GXRenderTargetClipGeometry(target, shapes[1]));
    Check(GXRenderTargetStrokeGeometry(target, shapes[1], brush, 0.0F, nullptr));
    Check(GXRenderTargetEndPaint(target));

    // Here nothing is out of sight, so that all dashes would be made.
    style.dashCount = 0;
    const auto tolerance = bytes.Take<float>();
    const GXPoint point = bytes.Point();
    uint8_t hit = 0;
    Check(GXGeometryHitTest(shapes[0], &point, &matrix, tolerance, &hit));
    GXGeometry widened = nullptr;
    GXGeometry combined = nullptr;
    Check(GXGeometryWiden(shapes[0], width, &style, &widened));
    Check(GXGeometryCombine(shapes[0], shapes[1], flags % 4U, tolerance, &combined));
    for (void* object : {static_cast<void*>(shapes[0]), static_cast<void*>(shapes[1]), static_cast<void*>(target),
                         static_cast<void*>(brush), static_cast<void*>(widened), static_cast<void*>(combined)}) {
        static_cast<void>(GXObjectRelease(object));
    }
    return 0;
}
