// SPDX-License-Identifier: MIT
// Outlines as GDI stores them, made by hand: lines, quadratics and cubics, and records that lie.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <sstream>
#include <vector>

#include "Text/GlyphRecords.h"

using namespace Graphics;

namespace {

class Script {
public:
    void BeginFigure(const Point& p) { Put("M", p); }
    void EndFigure() { m_text << "E "; }
    void EndFigureClose() { m_text << "Z "; }
    void LineTo(const Point& p) { Put("L", p); }
    void CubicTo(const Point& a, const Point& b, const Point& c) {
        Put("C", a);
        Put("", b);
        Put("", c);
    }
    [[nodiscard]] std::string Text() const { return m_text.str(); }

private:
    void Put(const char* letter, const Point& p) { m_text << letter << p.x << "," << p.y << " "; }
    std::ostringstream m_text;
};

/// Writes records, each polygon's length as soon as it is known.
class Records {
public:
    Records& Polygon(double x, double y, uint32_t type = 24) {
        m_start = bytes.size();
        Number(0, 4);
        Number(type, 4);
        Fixed(x);
        Fixed(y);
        SetLength();
        return *this;
    }
    Records& Curve(uint32_t type, const std::vector<double>& numbers) {
        Number(type, 2);
        Number(static_cast<uint32_t>(numbers.size() / 2), 2);
        for (const double v : numbers) {
            Fixed(v);
        }
        SetLength();
        return *this;
    }
    [[nodiscard]] std::string Sent() const {
        Geometry outline;
        AddGlyphRecords(bytes, outline);
        Script script;
        outline.ReplayFigures(script);
        return script.Text();
    }

    std::vector<uint8_t> bytes;

private:
    void Number(uint32_t v, size_t count) {
        for (size_t i = 0; i < count; ++i) {
            bytes.push_back(static_cast<uint8_t>(v >> 8 * i));
        }
    }
    void Fixed(double v) { Number(static_cast<uint32_t>(static_cast<int32_t>(v * 65536.0)), 4); }
    void SetLength() {
        const size_t length = bytes.size() - m_start;
        for (size_t i = 0; i < 4; ++i) {
            bytes[m_start + i] = static_cast<uint8_t>(length >> (8 * i));
        }
    }
    size_t m_start = 0;
};

TEST(GlyphRecords, FiguresOfLinesAreClosedAndNumbersHaveSignAndFraction) {
    EXPECT_EQ(Records().Sent(), "");
    EXPECT_EQ(Records().Polygon(1, 2).Sent(), "M1,2 Z ");
    EXPECT_EQ(Records()
                  .Polygon(-1.5, 0.25)
                  .Curve(1, {3, -4.75, -32768, 32767.5})
                  .Curve(1, {})
                  .Polygon(7, 8)
                  .Curve(1, {9, 10})
                  .Sent(),
              "M-1.5,0.25 L3,-4.75 L-32768,32767.5 Z M7,8 L9,10 Z ");
}

TEST(GlyphRecords, QuadraticsMeetHalfWayBetweenTheirControls) {
    EXPECT_EQ(Records().Polygon(0, 0).Curve(2, {4, 0, 4, 4}).Sent(), "M0,0 C4,0 4,4 4,4 Z ");
    EXPECT_EQ(Records().Polygon(0, 0).Curve(2, {2, 1, 5, 3, 9, -2, 1, 1}).Curve(1, {0, 5}).Sent(),
              "M0,0 C2,1 3.5,2 3.5,2 C5,3 7,0.5 7,0.5 C9,-2 1,1 1,1 L0,5 Z ");
    EXPECT_EQ(Records().Polygon(0, 0).Curve(2, {3, 3}).Sent(), "M0,0 Z ") << "an end without a control";
}

TEST(GlyphRecords, CubicsLeaveOutTheLastThreePoints) {
    const auto sent = [](size_t points) {
        std::vector<double> numbers;
        for (size_t i = 0; i < points; ++i) {
            numbers.insert(numbers.end(), {static_cast<double>(i), 1.0});
        }
        return Records().Polygon(0, 0).Curve(3, numbers).Sent();
    };
    const std::string first = "M0,0 C0,1 1,1 2,1 ";
    for (const size_t points : {0, 1, 2, 3}) {
        EXPECT_EQ(sent(points), "M0,0 Z ") << points;
    }
    for (const size_t points : {4, 5, 6}) {
        EXPECT_EQ(sent(points), first + "Z ") << points;
    }
    EXPECT_EQ(sent(7), first + "C3,1 4,1 5,1 Z ");
    EXPECT_EQ(sent(9), first + "C3,1 4,1 5,1 Z ");
}

TEST(GlyphRecords, StrangeOnesAreSteppedOver) {
    EXPECT_EQ(Records().Polygon(0, 0).Curve(9, {1, 1, 2, 2}).Curve(1, {3, 3}).Sent(), "M0,0 L3,3 Z ");
    EXPECT_EQ(Records().Polygon(5, 5, 23).Curve(1, {6, 6}).Polygon(0, 0).Curve(1, {3, 3}).Sent(), "M0,0 L3,3 Z ");
    for (const uint8_t length : {0, 4, 15, 25, 255}) {
        Records lie;
        lie.Polygon(0, 0).Curve(1, {1, 1}).Polygon(2, 2);
        lie.bytes[28] = length; // of the second polygon, which has 16 bytes
        EXPECT_EQ(lie.Sent(), "M0,0 L1,1 Z ") << int{length};
    }
    Records many;
    many.Polygon(0, 0).Curve(1, {1, 1}).Curve(1, {2, 2});
    many.bytes[30] = 2; // points of the second curve, which has one
    EXPECT_EQ(many.Sent(), "M0,0 L1,1 Z ");
}

TEST(GlyphRecords, NothingIsReadBehindAnyEnd) {
    // Each length in a block of its own, so that the sanitizers watch its end; then random bytes.
    Records whole;
    whole.Polygon(0, 0).Curve(1, {1, 1}).Curve(2, {2, 2, 3, 3}).Polygon(1, 0).Curve(3, {1, 1, 2, 2, 3, 3, 4, 4});
    const std::string all = whole.Sent();
    for (size_t n = 0; n < whole.bytes.size(); ++n) {
        Records cut;
        cut.bytes.assign(whole.bytes.begin(), whole.bytes.begin() + static_cast<ptrdiff_t>(n));
        const std::string sent = cut.Sent();
        EXPECT_EQ(all.substr(0, sent.size()), sent) << n;
    }
    std::mt19937 random(11);
    for (int round = 0; round < 3000; ++round) {
        Records damaged;
        damaged.bytes = std::vector<uint8_t>(whole.bytes.begin(), whole.bytes.end());
        for (int k = 0; k < 3; ++k) {
            damaged.bytes[random() % damaged.bytes.size()] =
                static_cast<uint8_t>(random() % 3 == 0 ? 255 : random() % 40);
        }
        const std::string sent = damaged.Sent();
        EXPECT_EQ(std::count(sent.begin(), sent.end(), 'M'), std::count(sent.begin(), sent.end(), 'Z'));
    }
}

} // namespace
