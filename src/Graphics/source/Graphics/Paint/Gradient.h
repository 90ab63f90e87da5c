// SPDX-License-Identifier: MIT
// The three gradients: along an axis, between two circles, over a triangle mesh. Built once, then shared as const.
#pragma once

#include <vector>

#include "../Types.h"
#include "GradientStopCollection.h"

namespace Graphics {

inline constexpr uint32_t kGradientLinear = 0;
inline constexpr uint32_t kGradientRadial = 1;
inline constexpr uint32_t kGradientTriMesh = 2;

class Gradient {
public:
    virtual ~Gradient() = default;
    [[nodiscard]] virtual uint32_t Kind() const noexcept = 0;
};

/// The common part of linear and radial gradients; `start` and `end` are the ends of the axis or the circles' centres.
class TwoPointGradientBase : public Gradient {
public:
    Color background{0.0F, 0.0F, 0.0F, 1.0F}; ///< straight; used only with `hasBackground`
    bool hasBackground = false;
    GradientStopCollection stops;
    Point start{0.0F, 0.0F};
    Point end{0.0F, 0.0F};
    bool extendStart = false; ///< the colour at 0 extends to t < 0
    bool extendEnd = false;   ///< the colour at 1 extends to t > 1
};

class LinearGradient final : public TwoPointGradientBase {
public:
    [[nodiscard]] uint32_t Kind() const noexcept override { return kGradientLinear; }
};

class RadialGradient final : public TwoPointGradientBase {
public:
    [[nodiscard]] uint32_t Kind() const noexcept override { return kGradientRadial; }

    float startRadius = 0.0F;
    float endRadius = 0.0F;
};

/// Every three vertices form a triangle; one or two left over at the end are ignored.
class TriMeshGradient final : public Gradient {
public:
    [[nodiscard]] uint32_t Kind() const noexcept override { return kGradientTriMesh; }

    std::vector<GXTriMeshVertex> vertices; ///< straight ARGB colours
    Color background{0.0F, 0.0F, 0.0F,
                     0.0F}; ///< stored for the host, which paints the area outside the triangles itself
};

} // namespace Graphics
