// SPDX-License-Identifier: MIT
// Exports that make gradients.
#include <stdexcept>

#include "Guard.h"
#include "Handles.h"
#include "Paint/Gradient.h"

using namespace Graphics;

namespace {

/// Sets the fields common to both descriptions.
template <class Desc> void SetCommon(TwoPointGradientBase& gradient, const Desc& desc) {
    gradient.stops.Add(desc.stops, desc.stopCount);
    gradient.extendStart = desc.extendStart != 0;
    gradient.extendEnd = desc.extendEnd != 0;
    if (desc.background != 0) {
        gradient.background = UnpackColor(desc.background);
        gradient.hasBackground = true;
    }
}

template <class Desc> bool IsUsable(const Desc* desc, const GXGradient* out) noexcept {
    return !AnyNull(desc, out) && (desc->stops != nullptr || desc->stopCount == 0);
}

} // namespace

GX_API GXResult GXCreateGradientLinear(const GXLinearGradientDesc* desc, GXGradient* out) GX_NOEXCEPT {
    if (!IsUsable(desc, out)) {
        return GXResultInvalidArgument;
    }
    return Create(out, [&] {
        auto gradient = std::make_shared<LinearGradient>();
        gradient->start = desc->start;
        gradient->end = desc->end;
        SetCommon(*gradient, *desc);
        return gradient;
    });
}

GX_API GXResult GXCreateGradientRadial(const GXRadialGradientDesc* desc, GXGradient* out) GX_NOEXCEPT {
    if (!IsUsable(desc, out)) {
        return GXResultInvalidArgument;
    }
    return Create(out, [&] {
        auto gradient = std::make_shared<RadialGradient>();
        gradient->start = desc->startCenter;
        gradient->startRadius = desc->startRadius;
        gradient->end = desc->endCenter;
        gradient->endRadius = desc->endRadius;
        SetCommon(*gradient, *desc);
        return gradient;
    });
}

GX_API GXResult GXCreateGradientTriMesh(const GXTriMeshVertex* vertices, size_t count, uint32_t backgroundArgb,
                                        GXGradient* out) GX_NOEXCEPT {
    if (AnyNull(vertices, out) || count == 0) {
        return GXResultInvalidArgument;
    }
    return Create(out, [&] {
        auto gradient = std::make_shared<TriMeshGradient>();
        if (count > gradient->vertices.max_size()) {
            throw std::length_error("GXCreateGradientTriMesh");
        }
        gradient->vertices.assign(vertices, vertices + count);
        if (backgroundArgb != 0) {
            gradient->background = UnpackColor(backgroundArgb);
        }
        return gradient;
    });
}
