// SPDX-License-Identifier: MIT
// The calls by which the back end comes to its first objects, as one table: a test replaces an entry to see what
// happens when the system refuses, or to look at every object that follows from it.
#pragma once

#include <d3d11.h>
#include <dxgi.h>

namespace Graphics {

struct D3D11Calls {
    decltype(&::D3D11CreateDevice) createDevice = &::D3D11CreateDevice;
    decltype(&::CreateDXGIFactory1) createFactory = &::CreateDXGIFactory1;
    decltype(&::LoadLibraryW) loadLibrary = &::LoadLibraryW; // of the shader compiler
    decltype(&::GetProcAddress) getProcAddress = &::GetProcAddress;
};

/// The table in force. Only tests write to it, while nothing draws.
inline D3D11Calls g_d3d11;

} // namespace Graphics
