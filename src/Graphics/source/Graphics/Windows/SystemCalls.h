// SPDX-License-Identifier: MIT
// The Windows functions used for windows, device contexts, native bitmaps and text, as a table: a test replaces an
// entry to simulate a refusal.
#pragma once

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

namespace Graphics {

struct SystemCalls {
    decltype(&::IsWindow) isWindow = &::IsWindow;
    decltype(&::IsIconic) isIconic = &::IsIconic;
    decltype(&::GetClientRect) getClientRect = &::GetClientRect;
    decltype(&::GetDC) getDC = &::GetDC;
    decltype(&::ReleaseDC) releaseDC = &::ReleaseDC;
    decltype(&::CreateICW) createIC = &::CreateICW;
    decltype(&::CreateCompatibleDC) createCompatibleDC = &::CreateCompatibleDC;
    decltype(&::DeleteDC) deleteDC = &::DeleteDC;
    decltype(&::GetDeviceCaps) getDeviceCaps = &::GetDeviceCaps;
    decltype(&::GetObjectType) getObjectType = &::GetObjectType;
    decltype(&::GetObjectW) getObject = &::GetObjectW;
    decltype(&::CreateFontW) createFont = &::CreateFontW;
    decltype(&::SetGraphicsMode) setGraphicsMode = &::SetGraphicsMode;
    decltype(&::GetGlyphIndicesW) getGlyphIndices = &::GetGlyphIndicesW;
    decltype(&::GetGlyphOutlineW) getGlyphOutline = &::GetGlyphOutlineW;
    decltype(&::GetCharWidthI) getCharWidthI = &::GetCharWidthI;
    decltype(&::SaveDC) saveDC = &::SaveDC;
    decltype(&::CreateDIBSection) createDIBSection = &::CreateDIBSection;
    decltype(&::CreateCompatibleBitmap) createCompatibleBitmap = &::CreateCompatibleBitmap;
    decltype(&::SelectObject) selectObject = &::SelectObject;
    decltype(&::DeleteObject) deleteObject = &::DeleteObject;
    decltype(&::BitBlt) bitBlt = &::BitBlt;
    decltype(&::StretchBlt) stretchBlt = &::StretchBlt;
    decltype(&::GetDIBits) getDIBits = &::GetDIBits;
    decltype(&::SetDIBitsToDevice) setDIBitsToDevice = &::SetDIBitsToDevice;
    decltype(&::StretchDIBits) stretchDIBits = &::StretchDIBits;
};

/// The active table. Only tests change it, while nothing draws.
inline SystemCalls g_system;

} // namespace Graphics
