// SPDX-License-Identifier: MIT
// A Direct3D 11 of the tests' own, put in the place of the system's: every call that can fail may be told to, every
// object is counted, and what would be undefined with a driver is a failure of the test: a draw without a buffer,
// vertices written over while they are in use, objects of another device, a second swap chain on one window.
//
// Memory is real: textures, copies and maps hold what was put there. A draw does not rasterize; it writes a pattern,
// into the pixels of its scissor, that depends on everything the draw was given. So two frames present the same picture
// when the same draws came with the same shaders, constants, vertices and uploads.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

namespace FakeDirect3D {

/// What a call answers: out of memory, or that the device is removed, for one of the reasons.
enum class Fault { OutOfMemory, Hung, Reset, DriverError, Removed };

/// In force from here on; everything is as new.
void Install();
/// The system's again.
void Uninstall();

/// Calls that can fail are counted from 0 on; number `n` fails. After DEVICE_REMOVED its device does nothing any more.
/// A negative `n`: none fails.
void FailAt(int64_t n, Fault fault);
/// The name of the call that failed; empty: none did.
[[nodiscard]] std::string FailedCall();
/// Removes the present devices, between calls.
void Remove(Fault reason);
/// From here on no device can be made, or can again.
void RefuseDevices(bool refuse);

/// Objects that are alive; an open map counts as one.
[[nodiscard]] int64_t Objects();
[[nodiscard]] int64_t Draws();
/// The picture that was presented last; empty when there was none since the last call.
[[nodiscard]] std::vector<uint32_t> TakePresented();

} // namespace FakeDirect3D
