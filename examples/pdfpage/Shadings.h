// SPDX-License-Identifier: MIT
// Shadings as library gradients: axial and radial ones by their 256 function samples, all others as triangles.
// The library's radial gradient is right where one circle lies inside the other. Circles that cross or lie beside one
// another, and circles of equal size, sweep out a surface here: rings of triangles in the order of the parameter.
#pragma once

#include "Handle.h"
#include "MuPdf.h"
#include "Report.h"

#include "../../tools/gxr/Calls.h"

#include <unordered_map>

namespace PdfPage {

class Shadings {
public:
    Shadings(fz_context* ctx, const Gxr::Calls& calls) : m_ctx(ctx), m_calls(calls) {}
    ~Shadings() { Clear(); }
    Shadings(const Shadings&) = delete;
    Shadings& operator=(const Shadings&) = delete;

    // A gradient in the space that it has to be drawn in: under `matrix` (shade->matrix × ctm) for axial and radial
    // shadings, in page pixels (`devicePixels` true) for the others, which are cut into triangles for this matrix
    // inside `visible`.
    struct Result {
        GXGradient gradient = nullptr;
        bool devicePixels = false;
        // An axial or radial gradient: the library takes its colour at the left upper corner of a pixel. Triangles are
        // sampled in its middle.
        bool sampledAtCorners = false;
        // What to paint first, together with the gradient, which leaves it free; 0 where the gradient has it itself.
        uint32_t background = 0;
        Handle<GXGradient> owned; // a mesh is made for each use
    };
    Result Gradient(Report& report, fz_shade* shade, const fz_matrix& matrix, const fz_rect& visible,
                    fz_color_params params);

    // Forgets all gradients, so that they are made anew.
    void Clear();

private:
    Handle<GXGradient> AlongLine(Report& report, const fz_shade& shade, fz_color_params params);
    Handle<GXGradient> Cone(Report& report, const fz_shade& shade, const fz_matrix& matrix, const fz_rect& visible,
                            fz_color_params params);
    Handle<GXGradient> Mesh(Report& report, fz_shade* shade, const fz_matrix& matrix, const fz_rect& visible,
                            fz_color_params params);

    fz_context* m_ctx;
    const Gxr::Calls& m_calls;
    std::unordered_map<fz_shade*, Handle<GXGradient>> m_gradients; // the shades are kept
};

} // namespace PdfPage
