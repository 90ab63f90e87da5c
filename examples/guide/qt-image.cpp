// SPDX-License-Identifier: MIT
// Draws into the memory of a QImage, between two drawings of QPainter's: one buffer, no copy.
#include "Guide.h"

#include <QImage>
#include <QPainter>

int main() {
    // Format_ARGB32_Premultiplied is GXPixelFormatPBGRA32, Format_RGB32 GXPixelFormatBGRX32.
    QImage image(240, 140, QImage::Format_ARGB32_Premultiplied);
    image.fill(QColor(255, 241, 201));
    {
        QPainter painter(&image);
        for (int y = 0; y < 7; ++y)
            painter.fillRect(0, 20 * y, 240, 10, QColor(168, 218, 220));
    } // QPainter writes at once, but one at a time paints

    // bits() gives memory that this image does not share with copies of it.
    const GXExtBufLayout layout = {static_cast<float>(image.width()), static_cast<float>(image.height()),
                                   static_cast<float>(image.bytesPerLine()), 96, 96};
    Owned<GXRenderTarget> target;
    CHECK(GXCreateRenderTargetExtBuf(image.bits(), GXPixelFormatPBGRA32, &layout, target.Out()));
    CHECK(GXRenderTargetBeginPaint(target));
    const GXRect oval = {50, 25, 190, 115};
    const auto blue = Solid(0xFF1D3557), red = Solid(0xFFE63946);
    const GXStrokeStyle dots = {.cap = GXLineCapRound, .miterLimit = 10, .dashes = {0, 14}, .dashCount = 2};
    CHECK(GXRenderTargetStrokeEllipse(target, &oval, blue, 22, nullptr));
    CHECK(GXRenderTargetStrokeEllipse(target, &oval, red, 8, &dots));
    CHECK(GXRenderTargetEndPaint(target));

    QPainter painter(&image);
    painter.fillRect(100, 50, 40, 40, QColor(29, 53, 87, 160));
    painter.end();
    return image.save("qt-image.png") ? 0 : 1;
}
