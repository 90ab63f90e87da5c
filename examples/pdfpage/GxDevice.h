// SPDX-License-Identifier: MIT
// A MuPDF device that hands every call to a Painter.
#pragma once

#include "Painter.h"

#include <atomic>

namespace PdfPage {

// Null when there is no memory for it. The painter must outlive the device. Close and drop it as any MuPDF device.
// Once `stop`, where there is one, is set, calls do nothing and `cookie` ends the run.
fz_device* NewGxDevice(fz_context* ctx, Painter& painter, const std::atomic<bool>* stop = nullptr,
                       fz_cookie* cookie = nullptr);

} // namespace PdfPage
