// SPDX-License-Identifier: MIT
// What the tests of drawing share: owned handles, the last diagnostic message, a small target with its pixels.
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "GX/GX.h"

namespace TargetSupport {

template <class T> class Owned {
public:
    Owned() = default;
    explicit Owned(T handle) : m_handle(handle) {}
    Owned(const Owned&) = delete;
    Owned& operator=(const Owned&) = delete;
    Owned(Owned&& o) noexcept : m_handle(std::exchange(o.m_handle, nullptr)) {}
    Owned& operator=(Owned&& o) noexcept {
        std::swap(m_handle, o.m_handle);
        return *this;
    }
    ~Owned() {
        if (m_handle != nullptr) {
            GXObjectRelease(m_handle);
        }
    }
    operator T() const { return m_handle; }
    T* Out() { return &m_handle; }

private:
    T m_handle = nullptr;
};

/// Collects diagnostic lines while it lives; Text() is the plain message of the last one.
class LastMessage {
public:
    LastMessage() {
        GXLogSetSink(
            7, [](void* self, const char* text) { static_cast<LastMessage*>(self)->m_text = text; }, this);
    }
    ~LastMessage() { GXLogSetSink(7, nullptr, nullptr); }
    [[nodiscard]] const std::string& Whole() const { return m_text; }
    [[nodiscard]] std::string Text() const {
        const size_t at = m_text.find(":\n\t");
        return at == std::string::npos ? m_text : m_text.substr(at + 3);
    }

private:
    std::string m_text;
};

inline Owned<GXBrush> Solid(uint32_t argb) {
    Owned<GXBrush> brush;
    EXPECT_EQ(GXCreateBrushSolidARGB(argb, brush.Out()), GXResultSuccess);
    return brush;
}

inline Owned<GXGeometry> RectangleGeometry(float l, float t, float r, float b) {
    Owned<GXGeometry> geometry;
    const GXRect rect{l, t, r, b};
    EXPECT_EQ(GXCreateGeometry(geometry.Out()), GXResultSuccess);
    EXPECT_EQ(GXGeometryRectangle(geometry, &rect), GXResultSuccess);
    return geometry;
}

inline Owned<GXBitmap> MakeBitmap(uint32_t width, uint32_t height, GXPixelFormat format) {
    Owned<GXBitmap> bitmap;
    const GXBitmapDesc desc{width, height, format, 96.0F, 96.0F};
    EXPECT_EQ(GXCreateBitmap(&desc, bitmap.Out()), GXResultSuccess);
    EXPECT_EQ(GXBitmapColorFill(bitmap, nullptr, 0), GXResultSuccess);
    return bitmap;
}

/// A painting target over a bitmap.
struct Canvas {
    explicit Canvas(uint32_t w, uint32_t h, GXPixelFormat format = GXPixelFormatPBGRA32)
        : width(w), height(h), bitmap(MakeBitmap(w, h, format)) {
        EXPECT_EQ(GXCreateRenderTargetBitmap(bitmap, target.Out()), GXResultSuccess);
        EXPECT_EQ(GXRenderTargetBeginPaint(target), GXResultSuccess);
    }
    [[nodiscard]] std::vector<uint32_t> Pixels() const {
        std::vector<uint32_t> pixels(static_cast<size_t>(width) * height);
        const GXBitmapData data{pixels.data(), width * 4, width * 4};
        EXPECT_EQ(GXBitmapCopyToMemory(bitmap, nullptr, &data), GXResultSuccess);
        return pixels;
    }
    [[nodiscard]] uint32_t At(uint32_t x, uint32_t y) const { return Pixels()[static_cast<size_t>(y) * width + x]; }

    uint32_t width, height;
    Owned<GXBitmap> bitmap;
    Owned<GXRenderTarget> target;
};

} // namespace TargetSupport
