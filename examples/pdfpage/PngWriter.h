// SPDX-License-Identifier: MIT
// Writes opaque pixels as an RGB PNG with little compression, since pages are written by the thousand, and into an open file
// as well, which the library does not.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>

namespace PdfPage {

// `pixels` are rows of B, G, R, X bytes. False when the file can't be written; nothing half written is left behind.
bool WritePng(const std::string& path, const uint8_t* pixels, uint32_t width, uint32_t height, size_t strideBytes,
              float dpi);

// The same to a file that is open for writing and stays open.
bool WritePng(std::FILE* file, const uint8_t* pixels, uint32_t width, uint32_t height, size_t strideBytes, float dpi);

} // namespace PdfPage
