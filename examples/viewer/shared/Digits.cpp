// SPDX-License-Identifier: MIT
#include "Digits.h"

#include "Format.h"
#include "Handle.h"

#include <string>

namespace Viewer {
namespace {

// A digit is a line through points of this grid; `-` takes the pen off the paper.
//
//     0 1 2
//     3 4 5
//     6 7 8
constexpr const char* kLines[] = {"02860",  "17",     "025368", "0286-35",  "035-28",
                                  "203586", "206853", "027",    "02860-35", "530286"};
constexpr float kColumn = 2.5f, kRow = 5.0f, kAdvance = 9.0f, kPen = 1.0f; // pixels

void Check(GXResult result) {
    if (result != GXResultSuccess)
        throw Gxr::Error("a number cannot be drawn");
}

void AddDigit(GXGeometry geometry, const char* line, float left, float top) {
    bool open = false;
    for (const char* at = line; *at != '\0'; ++at) {
        if (*at == '-') {
            Check(GXGeometryEndFigure(geometry));
            open = false;
            continue;
        }
        const int place = *at - '0';
        const GXPoint point{left + kColumn * static_cast<float>(place % 3), top + kRow * static_cast<float>(place / 3)};
        Check(open ? GXGeometryLineTo(geometry, &point) : GXGeometryBeginFigure(geometry, &point));
        open = true;
    }
    Check(GXGeometryEndFigure(geometry));
}

} // namespace

void DrawNumber(GXRenderTarget target, int number, int center, int top, uint32_t argb) {
    const std::string digits = std::to_string(number);
    Gxr::Handle<GXGeometry> geometry;
    Gxr::Handle<GXBrush> brush;
    Check(GXCreateGeometry(geometry.Out()));
    Check(GXCreateBrushSolidARGB(argb, brush.Out()));
    float left = static_cast<float>(center) - (kAdvance * static_cast<float>(digits.size()) - kAdvance / 2) / 2;
    for (const char digit : digits) {
        if (digit >= '0' && digit <= '9')
            AddDigit(geometry.Get(), kLines[digit - '0'], left, static_cast<float>(top));
        left += kAdvance;
    }
    Check(GXRenderTargetStrokeGeometry(target, geometry.Get(), brush.Get(), kPen, nullptr));
}

} // namespace Viewer
