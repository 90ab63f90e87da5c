// SPDX-License-Identifier: MIT
// What the programs of the guide share: a check of results, an owner of handles, a page to draw on. Units are pixels.
#pragma once

#include <GX/GX.h>

#include <cstdio>
#include <cstdlib>
#include <utility>

#define CHECK(call) Guide::Check((call), #call)

namespace Guide {

inline void Check(GXResult result, const char* call) {
    if (result != GXResultSuccess) {
        std::fprintf(stderr, "%s: result %u\n", call, static_cast<unsigned>(result));
        std::exit(1);
    }
}

/// Owns one handle: what a creation function writes through Out() is released at the end, or before the next one.
template <class Handle> class Owned {
public:
    Owned() = default;
    Owned(Owned&& other) noexcept : m_handle(std::exchange(other.m_handle, nullptr)) {}
    ~Owned() { Release(); }
    Handle* Out() {
        Release();
        return &m_handle;
    }
    operator Handle() const { return m_handle; }

private:
    void Release() {
        if (m_handle != nullptr)
            GXObjectRelease(std::exchange(m_handle, nullptr));
    }

    Handle m_handle = nullptr;
};

inline Owned<GXBrush> Solid(uint32_t argb) {
    Owned<GXBrush> brush;
    CHECK(GXCreateBrushSolidARGB(argb, brush.Out()));
    return brush;
}

inline Owned<GXBitmap> MakeBitmap(uint32_t width, uint32_t height, GXPixelFormat format) {
    const GXBitmapDesc desc = {width, height, format, 96.0f, 96.0f};
    Owned<GXBitmap> bitmap;
    CHECK(GXCreateBitmap(&desc, bitmap.Out()));
    return bitmap;
}

/// A bitmap with its target, painting begun. Stands for its target in calls.
class Page {
public:
    Page(uint32_t width, uint32_t height, uint32_t paper = 0xFFFFFFFFu, GXPixelFormat format = GXPixelFormatBGRX32)
        : m_bitmap(MakeBitmap(width, height, format)) {
        CHECK(GXCreateRenderTargetBitmap(m_bitmap, m_target.Out()));
        CHECK(GXRenderTargetBeginPaint(m_target));
        CHECK(GXRenderTargetClear(m_target, paper));
    }
    operator GXRenderTarget() const { return m_target; }
    GXBitmap Finish() {
        CHECK(GXRenderTargetEndPaint(m_target));
        return m_bitmap;
    }
    void Save(const wchar_t* file) { CHECK(GXBitmapSaveToFile(Finish(), file)); }

private:
    Owned<GXBitmap> m_bitmap;
    Owned<GXRenderTarget> m_target;
};

} // namespace Guide

using Guide::Owned;
using Guide::Page;
using Guide::Solid;
