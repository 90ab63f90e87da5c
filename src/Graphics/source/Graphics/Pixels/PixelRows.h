// SPDX-License-Identifier: MIT
// The scalar row converters that the vector sets use for overlapping rows. Declarations only: a definition here would
// be compiled with one set's flags, and the linker might use it for all.
#pragma once

#include "PixelConversion.h"

namespace Graphics::PixelRows {

void AddAlpha24(uint8_t* dst, uint32_t, const uint8_t* src, uint32_t, size_t count); // B G R -> B G R 255
void UnpremultiplyDropAlpha(uint8_t* dst, uint32_t, const uint8_t* src, uint32_t, size_t count);
void Unpremultiply(uint8_t* dst, uint32_t, const uint8_t* src, uint32_t, size_t count);
void UnpremultiplyOpaque(uint8_t* dst, uint32_t, const uint8_t* src, uint32_t, size_t count); // fourth byte 255
void Premultiply(uint8_t* dst, uint32_t, const uint8_t* src, uint32_t, size_t count);
void SetAlpha(uint8_t* dst, uint32_t, const uint8_t* src, uint32_t, size_t count); // fourth byte 255
void TakeAlpha(uint8_t* dst, uint32_t, const uint8_t* src, uint32_t, size_t count);
void DropAlpha(uint8_t* dst, uint32_t, const uint8_t* src, uint32_t, size_t count);
void Grey32(uint8_t* dst, uint32_t, const uint8_t* src, uint32_t, size_t count);
void ByteToAll(uint8_t* dst, uint32_t, const uint8_t* src, uint32_t, size_t count);   // v -> v v v v
void ByteToWhite(uint8_t* dst, uint32_t, const uint8_t* src, uint32_t, size_t count); // v -> 255 255 255 v
void ByteToGrey(uint8_t* dst, uint32_t, const uint8_t* src, uint32_t, size_t count);  // v -> v v v 255

} // namespace Graphics::PixelRows
