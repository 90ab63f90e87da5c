// SPDX-License-Identifier: MIT
// Pages without adjustment: lines, images and dots stand where the file has them, in their true size.
#include "Program.h"
#include "TestFiles.h"

#include <utility>

namespace {

constexpr int kSide = 64;

PdfPage::Picture Draw(const std::string& content, bool adjust, const std::vector<std::string>& objects = {},
                      const std::string& resources = "") {
    const std::string file = TestPath(".pdf").string();
    WritePage(file, kSide, content, resources, "", objects);
    return DrawFile(file, adjust);
}

int Level(const PdfPage::Picture& picture, int x, int y) {
    return picture.pixels[static_cast<size_t>(y) * picture.StrideBytes() + 4 * static_cast<size_t>(x)];
}

// Of black on white: in pixels.
double Painted(const PdfPage::Picture& picture) {
    double sum = 0;
    for (int y = 0; y < kSide; ++y)
        for (int x = 0; x < kSide; ++x)
            sum += 255 - Level(picture, x, y);
    return sum / 255;
}

TEST(WithoutAdjustment, LinesThinnerThanAPixelAreDrawnAsTheyAre) {
    for (const double width : {0.125, 0.25, 0.5}) {
        // Upright, where each edge is off by half a sample at most, and slanted, where samples even out.
        const std::string pen = std::to_string(width) + " w ";
        EXPECT_NEAR(40 * width, Painted(Draw(pen + "20.3 10 m 20.3 50 l S", false)), 40 * 0.0626) << width;
        EXPECT_NEAR(50 * width, Painted(Draw(pen + "7.1 9.3 m 56.08 19.35 l S", false)), 50 * 0.12 * width) << width;
    }
    // The thinnest line is a pixel of the page, or of one with eight times the resolution; under any matrix, and as a
    // clip.
    for (const char* const line : {"0 w 20.3 10 m 20.3 50 l S", "q 5 0 0 5 0 0 cm 0 w 4.06 2 m 4.06 10 l S Q"}) {
        EXPECT_NEAR(40, Painted(Draw(line, true)), 0.5) << line;
        EXPECT_NEAR(5, Painted(Draw(line, false)), 0.5) << line;
    }
}

TEST(WithoutAdjustment, FillsAndImagesKeepTheirEdges) {
    EXPECT_NEAR(8.0 * 8.0, Painted(Draw("20.25 20.25 8 8 re f", false)), 0.5);
    const std::string image = "<</Type/XObject/Subtype/Image/Width 1/Height 1/BitsPerComponent 8/ColorSpace/DeviceGray"
                              "/Length 1>>stream\n" +
                              std::string(1, '\0') + "\nendstream";
    const std::string place = "q 8 0 0 8 20.25 20.25 cm /X Do Q", resources = "/XObject<</X 5 0 R>>";
    EXPECT_NEAR(9.0 * 9.0, Painted(Draw(place, true, {image}, resources)), 0.5) << "widened to whole pixels";
    EXPECT_NEAR(8.0 * 8.0, Painted(Draw(place, false, {image}, resources)), 0.5);
}

// An image of 64 by 64 random levels, drawn over 20.5 by 13 points from (10.25, 30.75), in all ways upright: each pixel
// is the mean of what the image has there.
TEST(WithoutAdjustment, ReducedImagesAreMeansByArea) {
    constexpr int kPixels = 64;
    std::string levels;
    for (unsigned i = 0, seed = 7; i < kPixels * kPixels; ++i, seed = seed * 1103515245u + 12345u)
        levels += static_cast<char>(seed >> 16);
    const std::string head = "<</Type/XObject/Subtype/Image/Width 64/Height 64/BitsPerComponent 8/Length 4096";
    const std::string gray = head + "/ColorSpace/DeviceGray>>stream\n" + levels + "\nendstream";
    const std::string masked =
        head + "/ColorSpace/DeviceGray/SMask 5 0 R>>stream\n" + std::string(4096, '\0') + "\nendstream";
    const double left = 10.25, top = kSide - 30.75 - 13, width = 20.5, height = 13;
    struct Way {
        const char* matrix;
        bool turned, mirroredX, mirroredY;
    };
    const Way ways[] = {{"20.5 0 0 13 10.25 30.75", false, false, false},
                        {"-20.5 0 0 13 30.75 30.75", false, true, false},
                        {"20.5 0 0 -13 10.25 43.75", false, false, true},
                        {"0 13 20.5 0 10.25 30.75", true, false, false}};
    for (const Way& way : ways)
        for (const bool asMask : {false, true}) {
            const PdfPage::Picture picture = Draw(std::string("q ") + way.matrix + " cm /X Do Q", false, {gray, masked},
                                                  asMask ? "/XObject<</X 6 0 R>>" : "/XObject<</X 5 0 R>>");
            for (int y = static_cast<int>(top) + 1; y < static_cast<int>(top + height) - 1; ++y)
                for (int x = static_cast<int>(left) + 1; x < static_cast<int>(left + width) - 1; ++x) {
                    // The page pixel in the unit square, y down, cut into 64 by 64 parts.
                    double sum = 0;
                    for (int j = 0; j < 64; ++j)
                        for (int i = 0; i < 64; ++i) {
                            double u = (x + (i + 0.5) / 64 - left) / width, v = (y + (j + 0.5) / 64 - top) / height;
                            if (way.turned)
                                u = std::exchange(v, 1 - u), u = 1 - u;
                            u = way.mirroredX ? 1 - u : u;
                            v = way.mirroredY ? 1 - v : v;
                            sum += static_cast<uint8_t>(
                                levels[static_cast<size_t>(v * 64) * 64 + static_cast<size_t>(u * 64)]);
                        }
                    const double mean = sum / 4096;
                    ASSERT_NEAR(asMask ? 255 - mean : mean, Level(picture, x, y), 2.0)
                        << way.matrix << (asMask ? " as a mask" : "") << " at " << x << ", " << y;
                }
        }
}

// A figure without extent has no direction: S paints it under round caps alone (ISO 32000-1, 8.5.3.2).
TEST(WithoutAdjustment, FiguresWithoutExtentAreDotsUnderRoundCapsAlone) {
    for (const char* const figure : {"30 30 m 30 30 l S", "30 30 m 30 30 l h S", "30 30 m 30 30 30 30 30 30 c h S"}) {
        EXPECT_NEAR(3.14159 * 25, Painted(Draw(std::string("10 w 1 J ") + figure, false)), 3) << figure;
        EXPECT_EQ(0, Painted(Draw(std::string("10 w 2 J ") + figure, false))) << figure;
        EXPECT_EQ(0, Painted(Draw(std::string("10 w 0 J ") + figure, false))) << figure;
    }
    // What else the path has is drawn.
    EXPECT_NEAR(10 * 30, Painted(Draw("10 w 2 J 10 10 m 10 10 l 10 30 m 10 30 l 30 30 l S", false)), 1);
}

} // namespace
