// SPDX-License-Identifier: MIT
// A MuPDF device that hands every call to a Painter.
#pragma once

#include "Painter.h"

namespace PdfPage {

// Null when there is no memory for it. The painter must outlive the device. Close and drop it as any MuPDF device.
fz_device* NewGxDevice(fz_context* ctx, Painter& painter);

} // namespace PdfPage
