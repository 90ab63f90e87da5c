// SPDX-License-Identifier: MIT
// GDI+ has nothing like a mesh of triangles: this source is transparent. The render target has meshes drawn by the
// software renderer instead.
#pragma once

#include "GdipGradientColorSource.h"

namespace Graphics {

class GdipTriMeshGradientColorSource final : public GdipGradientColorSource {
public:
    GdipTriMeshGradientColorSource() { CreateSolid(0); }
};

} // namespace Graphics
