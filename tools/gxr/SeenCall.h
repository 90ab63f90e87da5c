// SPDX-License-Identifier: MIT
// What a recording does, for one who only looks on: a call on a target with its arguments by their type, and where the
// page's own surfaces come from. Pointers are good during the call that passes them.
#pragma once

#include "Objects.h"

namespace Gxr {

struct SeenCall {
    Op op = Op::End;
    uint32_t surface = 0;
    // As they stand in the file: numbers, or references to one of two lists.
    uint64_t geometryNumber = 0, bitmapReference = 0, brushReference = 0;
    GXGeometry geometry = nullptr;
    GXBitmap bitmap = nullptr;
    const GXRect* rect = nullptr;
    const GXPoint* points[2] = {};
    const GXMatrix* matrix = nullptr;
    const GXStrokeStyle* style = nullptr;
    const GXLayerDesc* layer = nullptr;
    float numbers[2] = {};
    uint32_t word = 0; // a mode, type or colour

    void Add(const Slot<GXGeometry>& v) {
        geometry = v.Get();
        geometryNumber = v.Reference();
    }
    void Add(const Slot<GXBitmap>& v) {
        bitmap = v.Get();
        bitmapReference = v.Reference();
    }
    void Add(const Slot<GXBrush>& v) { brushReference = v.Reference(); }
    void Add(const Slot<GXGradient>&) {}
    void Add(const Slot<GXFontFace>&) {}
    void Add(const Slot<const uint16_t*>&) {}
    void Add(const Slot<const GXIntRect*>&) {}
    void Add(const Slot<uint8_t>&) {}
    void Add(const Slot<const GXRect*>& v) { rect = v.Get(); }
    void Add(const Slot<const GXPoint*>& v) { points[m_points++] = v.Get(); }
    void Add(const Slot<const GXMatrix*>& v) { matrix = v.Get(); }
    void Add(const Slot<const GXStrokeStyle*>& v) { style = v.Get(); }
    void Add(const Slot<const GXLayerDesc*>& v) { layer = v.Get(); }
    void Add(const Slot<float>& v) { numbers[m_numbers++] = v.Get(); }
    void Add(const Slot<uint32_t>& v) { word = v.Get(); }

private:
    size_t m_points = 0, m_numbers = 0;
};

class CommandWatcher {
public:
    virtual void OnCall(const SeenCall& call) = 0;
    virtual void OnSurface(uint32_t width, uint32_t height) = 0;
    // `options` and `matrix` as for GXCreateBrushBitmap.
    virtual void OnSurfaceBrush(uint32_t surface, const GXBitmapBrushOptions* options, const GXMatrix* matrix) = 0;

protected:
    ~CommandWatcher() = default;
};

} // namespace Gxr
