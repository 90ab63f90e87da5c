// SPDX-License-Identifier: MIT
// MuPDF paths and stroke states as library geometries and stroke styles.
#pragma once

#include "Handle.h"
#include "MuPdf.h"
#include "Report.h"

namespace PdfPage {

// Adds the path to `geometry`, its points through `matrix` when one is given; with `skipDots` without the figures all
// of whose points are one. False when the library refused a point.
bool AppendPath(fz_context* ctx, const fz_path* path, const fz_matrix* matrix, GXGeometry geometry,
                bool skipDots = false);

Handle<GXGeometry> PathGeometry(fz_context* ctx, Report& report, const fz_path* path, bool evenOdd,
                                bool skipDots = false);
// For a stroke. A figure without extent is a dot under round caps alone (ISO 32000-1, 8.5.3.2); the library draws a
// square under square caps, too.
Handle<GXGeometry> PathToStroke(fz_context* ctx, Report& report, const fz_path* path, const fz_stroke_state& stroke);
Handle<GXGeometry> RectGeometry(Report& report, const fz_rect& rect);

// The library takes this many dash lengths; longer patterns are cut up here.
inline constexpr int kMaxDashes = 15;

// Caps, joins, miter limit and, when they fit, the dashes; dash lengths are multiplied by `scale`.
GXStrokeStyle StrokeStyle(const fz_stroke_state& stroke, float scale);

bool HasDashes(const fz_stroke_state& stroke);

// The dashes of `path` as open figures: flattened within `tolerance`, the pattern starts at its phase for each figure.
// Null when the pattern would give more pieces than anyone can see.
Handle<GXGeometry> CutIntoDashes(fz_context* ctx, Report& report, const fz_path* path, const fz_stroke_state& stroke,
                                 float tolerance);

} // namespace PdfPage
