// SPDX-License-Identifier: MIT
// Arguments for calls, good and bad ones. The choices come from outside: a random number generator, or the bytes of a
// fuzzer.
#pragma once

#include <array>
#include <cstdint>
#include <limits>

#include "GX/GX.h"

class CallChoice {
public:
    virtual ~CallChoice() = default;
    /// A number below n > 0.
    virtual uint32_t Below(uint32_t n) = 0;
};

class CallNumbers {
protected:
    explicit CallNumbers(CallChoice& choice) : m_choice(choice) {}

    uint32_t Below(uint32_t n) { return m_choice.Below(n); }
    uint8_t Flag() { return static_cast<uint8_t>(Below(2)); }
    uint32_t Color() { return Below(256) << 24 | Below(256) << 16 | Below(256) << 8 | Below(256); }
    int32_t Whole() {
        constexpr int32_t kFar[] = {INT32_MIN, INT32_MAX, INT32_MIN + 1, 1 << 30};
        return Below(16) == 0 ? kFar[Below(4)] : static_cast<int32_t>(Below(40)) - 12;
    }
    float Number() {
        constexpr float kInfinity = std::numeric_limits<float>::infinity();
        const float special[] = {0.0F,    -0.0F,     1e9F,       -1e9F,
                                 3.4e38F, kInfinity, -kInfinity, std::numeric_limits<float>::quiet_NaN(),
                                 1e-30F,  0.5F,      32535.5F,   -70000.0F};
        return Below(10) == 0 ? special[Below(12)] : static_cast<float>(static_cast<int32_t>(Below(400)) - 100) / 8.0F;
    }
    GXPoint Point() {
        const float x = Number();
        return {x, Number()};
    }
    GXRect Rect() {
        const GXPoint a = Point();
        const GXPoint b = Point();
        return {a.x, a.y, b.x, b.y};
    }
    GXIntRect IntRect() {
        GXIntRect r;
        r.left = Whole();
        r.top = Whole();
        r.right = Whole();
        r.bottom = Whole();
        return r;
    }
    GXMatrix Matrix() {
        if (Below(2) == 0) { // a place and a size
            return {0.25F * static_cast<float>(Below(12)), 0, 0, 1, Number(), Number()};
        }
        const GXRect r = Rect();
        return {r.left, r.top, r.right, r.bottom, Number(), Number()};
    }
    GXStrokeStyle Style() {
        GXStrokeStyle style{Below(4), Below(4), Number(), 0, 0, {}, 0};
        if (Below(6) == 0) {
            style.dashPhase = Number();
            style.dashCount = Below(18);
            for (float& dash : style.dashes) {
                dash = Below(8) == 0 ? Number() : static_cast<float>(Below(40)) / 8.0F;
            }
        }
        return style;
    }
    std::array<uint16_t, 6> Text() {
        std::array<uint16_t, 6> text{};
        for (size_t i = Below(6); i > 0; --i) {
            text[i - 1] = static_cast<uint16_t>(Below(8) == 0 ? 1 + Below(65535) : 32 + Below(96));
        }
        return text;
    }

private:
    CallChoice& m_choice;
};
