// SPDX-License-Identifier: MIT
// What goes wrong: the result of each call, and what the log says.
#include "Guide.h"

#include <string>

namespace {

// A text has two lines: where the library noticed, and what was wrong. It is valid during the call only.
void Remember(void* context, const char* text) {
    const std::string whole = text;
    *static_cast<std::string*>(context) = whole.substr(whole.rfind('\n') + 1);
}

std::string reason;

void Tell(const char* what, GXResult result) {
    const size_t start = reason.find_first_not_of('\t');
    std::printf("%-42s %u  %s\n", what, static_cast<unsigned>(result),
                start == std::string::npos ? "" : reason.c_str() + start);
    reason.clear();
}

} // namespace

int main() {
    CHECK(GXLogSetSink(1, Remember, &reason));
    Page page(100, 100);
    GXBitmap bitmap = nullptr;
    GXRenderTarget target = nullptr;
    GXGeometry shape = nullptr;
    GXPoint point = {1, 1};
    const GXRect box = {0, 0, 10, 10};
    const auto black = Solid(0xFF000000);
    CHECK(GXCreateGeometry(&shape));

    // A null pointer is noticed before anything is done: nothing is logged.
    Tell("fill nothing", GXRenderTargetFillRect(page, nullptr, black));
    // A question without an answer leaves the output as it was.
    Tell("current point of an empty geometry", GXGeometryGetCurrentPoint(shape, &point));
    // What the library refuses, it explains.
    const GXBitmapDesc flat = {100, 0, GXPixelFormatBGRX32, 96, 96};
    Tell("a bitmap without height", GXCreateBitmap(&flat, &bitmap));
    const GXBitmapDesc vast = {40000, 40000, GXPixelFormatBGRX32, 96, 96};
    Tell("a bitmap of six gigabytes", GXCreateBitmap(&vast, &bitmap));
    Tell("a picture that is not there", GXCreateBitmapFromFile(L"no-such-file.png", &bitmap));
    const GXBitmapDesc grey = {8, 8, GXPixelFormatGray8, 96, 96};
    CHECK(GXCreateBitmap(&grey, &bitmap));
    CHECK(GXCreateRenderTargetBitmap(bitmap, &target));
    Tell("paint on grey pixels", GXRenderTargetBeginPaint(target));
    Tell("draw before painting begins", GXRenderTargetFillRect(target, &box, black));
    Tell("pop what was never pushed", GXRenderTargetPopState(page));
    const GXStrokeStyle dashes = {.dashes = {4, -1}, .dashCount = 2};
    Tell("a dash of negative length", GXRenderTargetStrokeRect(page, &box, black, 1, &dashes));
    // None of it has left anything half done.
    Tell("and drawing goes on", GXRenderTargetFillRect(page, &box, black));

    CHECK(GXObjectRelease(shape));
    CHECK(GXObjectRelease(target));
    CHECK(GXObjectRelease(bitmap));
    CHECK(GXLogSetSink(1, nullptr, nullptr)); // before what it writes to goes
}
