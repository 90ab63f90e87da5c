// SPDX-License-Identifier: MIT
// Compiled as C++17, the oldest dialect that a host may use: the header first, so that it has to stand alone.
#include <GX/GX.h>

#include <type_traits>

static_assert(noexcept(GXObjectRelease(nullptr)), "nothing is thrown across the boundary");
static_assert(std::is_same_v<decltype(GXResultEngineError + 0u), GXResult>, "codes compare with results");
static_assert(std::is_trivial_v<GXStrokeStyle> && std::is_standard_layout_v<GXStrokeStyle>, "records are plain");
static_assert(!std::is_same_v<GXBitmap, GXBrush>, "handles of different kinds do not mix by accident");
