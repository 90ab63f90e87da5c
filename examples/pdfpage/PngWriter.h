// SPDX-License-Identifier: MIT
// Writes opaque pixels as an RGB PNG. The gallery uses it, too.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>

namespace PdfPage {

// `pixels` are rows of B, G, R, X bytes; `level` is zlib's, from 1 (fast) to 9 (small). False when the file can't be
// written; nothing half written is left behind.
bool WritePng(const std::string& path, const uint8_t* pixels, uint32_t width, uint32_t height, size_t strideBytes,
              float dpi, int level = 3);

// The same to a file that is open for writing and stays open.
bool WritePng(std::FILE* file, const uint8_t* pixels, uint32_t width, uint32_t height, size_t strideBytes, float dpi,
              int level = 3);

} // namespace PdfPage
