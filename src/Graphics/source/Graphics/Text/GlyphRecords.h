// SPDX-License-Identifier: MIT
// The outline of a glyph as GDI stores it: polygons of TrueType records, numbers in 16.16 fixed point. Plain code, so
// that every platform can test it on made-up records.
#pragma once

#include <span>

#include "../Geometry/Geometry.h"

namespace Graphics {

/// Adds each polygon as a closed figure. Of records that are cut off or lie about their length, what comes before is
/// added, and nothing outside the span is read.
void AddGlyphRecords(std::span<const uint8_t> records, Geometry& out);

} // namespace Graphics
