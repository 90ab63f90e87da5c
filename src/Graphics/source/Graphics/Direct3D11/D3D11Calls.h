// SPDX-License-Identifier: MIT
// The system calls that create the back end's first objects, as a table: a test replaces an entry to simulate a
// refusal, or to intercept every object created later.
#pragma once

#include <d3d11.h>
#include <dxgi.h>

namespace Graphics {

struct D3D11Calls {
    decltype(&::D3D11CreateDevice) createDevice = &::D3D11CreateDevice;
    decltype(&::CreateDXGIFactory1) createFactory = &::CreateDXGIFactory1;
    decltype(&::LoadLibraryW) loadLibrary = &::LoadLibraryW; // loads the shader compiler
    decltype(&::GetProcAddress) getProcAddress = &::GetProcAddress;
};

/// The active table. Only tests change it, while nothing draws.
inline D3D11Calls g_d3d11;

} // namespace Graphics
