// SPDX-License-Identifier: MIT
// Owns one reference to a library object.
#pragma once

#include "../../tools/gxr/Handle.h"

namespace PdfPage {

using Gxr::Handle;

} // namespace PdfPage
