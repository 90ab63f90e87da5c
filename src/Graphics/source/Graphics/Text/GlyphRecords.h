// SPDX-License-Identifier: MIT
// The outline of a glyph in GDI's form: polygons of TrueType records, numbers in 16.16 fixed point.
// Platform-independent, so that every platform can test it with made-up records.
#pragma once

#include <span>

#include "../Geometry/Geometry.h"

namespace Graphics {

/// Adds each polygon as a closed figure. If a record is truncated or has a wrong length, the records before it are
/// added; nothing outside the span is read.
void AddGlyphRecords(std::span<const uint8_t> records, Geometry& out);

} // namespace Graphics
