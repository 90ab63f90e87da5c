// SPDX-License-Identifier: MIT
// Upright images drawn smaller than they are, reduced to the pixels of the page: each is the mean of what the image has
// there, by area, and what the image leaves free of a pixel at its edge is transparent. The library's own reduction,
// which serves every matrix, halves an image and takes samples of the half, which blurs by up to a pixel.
#pragma once

#include "Handle.h"
#include "MuPdf.h"
#include "Report.h"

namespace PdfPage {

struct Reduced {
    Handle<GXBitmap> bitmap; // Alpha8 for a mask, else premultiplied BGRA
    fz_irect box{};          // where it lies, in page pixels
};

// Whether Reduce takes the image: its sides stay upright, and both get shorter.
bool IsReduced(GXBitmap image, const fz_matrix& matrix);

// The part of the image that lies in `visible`; without a bitmap when there is none. The unit square under `matrix` is
// the image, its first row at y = 0; formats are those of Images.
Reduced Reduce(Report& report, GXBitmap image, const fz_matrix& matrix, const fz_rect& visible);

} // namespace PdfPage
