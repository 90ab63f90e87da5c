// SPDX-License-Identifier: MIT
// The outside of a recording: header, checksum, packing, and the file itself.
#pragma once

#include "Bytes.h"

namespace Gxr {

// The whole file for a body.
Bytes Pack(const Bytes& body);

// The body of a file. Throws Error when it is cut, damaged, of another version or no recording at all.
Bytes Unpack(const uint8_t* file, size_t size);

// Throw Error naming the path.
Bytes ReadFile(const std::string& path);
void WriteFile(const std::string& path, const Bytes& file);

} // namespace Gxr
