// SPDX-License-Identifier: MIT
// A small drawing that makes every kind of call that a recording can hold, on a target of its own, with or without a
// recorder: what the tests of recordings record, cut, damage and draw with every set of kernels.
#pragma once

#include "Calls.h"
#include "Handle.h"

#include <vector>

namespace RecordingTests {

using Gxr::Handle;

inline constexpr uint32_t kSide = 64;

// The pixels of a bitmap, rows without padding.
std::vector<uint8_t> Pixels(GXBitmap bitmap);

// Draws with `calls`, which note for their recorder if they have one. Fails the running test when a call fails.
Handle<GXBitmap> DrawScenario(const Gxr::Calls& calls);

// The scenario as a file.
Gxr::Bytes RecordScenario();

} // namespace RecordingTests
