// SPDX-License-Identifier: MIT
// Objects of every kind for calls, which come and go.
#pragma once

#include <algorithm>
#include <array>
#include <cstring>

#include "CallNumbers.h"

class CallObjects : protected CallNumbers {
public:
    CallObjects(const CallObjects&) = delete;
    CallObjects& operator=(const CallObjects&) = delete;

protected:
    static constexpr uint32_t kSlots = 6;

    explicit CallObjects(CallChoice& choice) : CallNumbers(choice) {
        for (int i = 0; i < 2 * static_cast<int>(kSlots); ++i) {
            MakeObjects();
        }
    }
    ~CallObjects() {
        const auto release = [](auto&... slots) {
            (std::for_each(slots.begin(), slots.end(), [](void* handle) { GXObjectRelease(handle); }), ...);
        };
        release(m_bitmaps, m_palettes, m_gradients, m_brushes, m_geometries, m_regions, m_fonts);
    }

    template <class T> T& Pick(std::array<T, kSlots>& slots) { return slots[Below(kSlots)]; }

    /// Puts what was made in the place of another object, which may live on in its users.
    template <class T> GXResult Keep(std::array<T, kSlots>& slots, GXResult result, T made) {
        if (result == GXResultSuccess) {
            T& slot = Pick(slots);
            GXObjectRelease(slot);
            slot = made;
        }
        return result;
    }

    GXResult MakeObjects() {
        switch (Below(10)) {
        case 0:
        case 1: {
            const GXBitmapDesc desc{Below(40), Below(30), Below(12), 96.0F, Number()};
            GXBitmap made = nullptr;
            GXResult result = GXCreateBitmap(&desc, &made);
            if (result == GXResultSuccess) { // so that no pixel is without a value
                GXBitmapData data;
                result = GXBitmapLock(made, nullptr, GXLockWrite, &data);
                std::memset(data.data, static_cast<int>(Below(256)), static_cast<size_t>(data.stride) * desc.height);
                GXBitmapUnlock(made);
            }
            return Keep(m_bitmaps, result, made);
        }
        case 2: {
            const uint32_t colors[4] = {Color(), Color(), Color(), Color()};
            GXPalette made = nullptr;
            const GXResult result = GXCreatePalette(colors, Below(5), &made);
            return Keep(m_palettes, result, made);
        }
        case 3: {
            GXGradientStop stops[4];
            for (GXGradientStop& stop : stops) {
                stop = {Below(6) == 0 ? Number() : static_cast<float>(Below(9)) / 8.0F, Color()};
            }
            GXGradient made = nullptr;
            GXResult result;
            if (Below(2) == 0) {
                const GXLinearGradientDesc desc{stops, Below(5), Point(), Point(), Flag(), Flag(), Below(2) * Color()};
                result = GXCreateGradientLinear(&desc, &made);
            } else {
                const GXRadialGradientDesc desc{stops,    Below(5), Point(), Number(),          Point(),
                                                Number(), Flag(),   Flag(),  Below(2) * Color()};
                result = GXCreateGradientRadial(&desc, &made);
            }
            return Keep(m_gradients, result, made);
        }
        case 4: {
            GXTriMeshVertex vertices[7];
            for (GXTriMeshVertex& vertex : vertices) {
                vertex = {Number(), Number(), Color()};
            }
            GXGradient made = nullptr;
            const GXResult result = GXCreateGradientTriMesh(vertices, Below(8), Below(2) * Color(), &made);
            return Keep(m_gradients, result, made);
        }
        case 5: {
            GXBrush made = nullptr;
            const GXResult result = GXCreateBrushSolidARGB(Color(), &made);
            return Keep(m_brushes, result, made);
        }
        case 6: {
            const GXMatrix m = Matrix();
            GXBrush made = nullptr;
            const GXResult result =
                GXCreateBrushGradient(Pick(m_gradients), Number(), Below(2) == 0 ? &m : nullptr, &made);
            return Keep(m_brushes, result, made);
        }
        case 7: {
            const GXMatrix m = Matrix();
            const GXBitmapBrushOptions options{Below(4), Below(4), Below(4)};
            GXBrush made = nullptr;
            const GXResult result =
                GXCreateBrushBitmap(Pick(m_bitmaps), Number(), &options, Below(2) == 0 ? &m : nullptr, &made);
            return Keep(m_brushes, result, made);
        }
        case 8: {
            const uint16_t name[] = {'S', 'a', 'n', 's', 0};
            GXFontFace made = nullptr;
            const GXResult result = GXCreateFontFace(name, Below(4), Number(), &made);
            return Keep(m_fonts, result, made);
        }
        default: {
            GXGeometry made = nullptr;
            const GXResult result = GXCreateGeometry(&made);
            return Keep(m_geometries, result, made);
        }
        }
    }

    std::array<GXBitmap, kSlots> m_bitmaps{};
    std::array<GXPalette, kSlots> m_palettes{};
    std::array<GXGradient, kSlots> m_gradients{};
    std::array<GXBrush, kSlots> m_brushes{};
    std::array<GXGeometry, kSlots> m_geometries{};
    std::array<GXRegion, kSlots> m_regions{};
    std::array<GXFontFace, kSlots> m_fonts{};
};
