// SPDX-License-Identifier: MIT
// GDI+ has no triangle meshes: this source is transparent, and the render target leaves meshes to the software
// renderer.
#pragma once

#include "GdipGradientColorSource.h"

namespace Graphics {

class GdipTriMeshGradientColorSource final : public GdipGradientColorSource {
public:
    GdipTriMeshGradientColorSource() { CreateSolid(0); }
};

} // namespace Graphics
