// SPDX-License-Identifier: MIT
// Decoded images as library bitmaps, kept by image for the document up to a budget.
#pragma once

#include "Handle.h"
#include "MuPdf.h"
#include "Report.h"

#include <cstddef>
#include <unordered_map>

namespace PdfPage {

class Images {
public:
    explicit Images(fz_context* ctx) : m_ctx(ctx) {}
    ~Images() { Clear(); }
    Images(const Images&) = delete;
    Images& operator=(const Images&) = delete;

    // Colour images come as BGR24, with a colour key as PBGRA32, masks as Alpha8 (255 paints). Null on failure.
    GXBitmap Bitmap(Report& report, fz_image* image, fz_color_params params);

    // Forgets all bitmaps once they are beyond the budget. Only between pages.
    void Trim();

    // How to sample an image that fills the unit square under `matrix`.
    static uint32_t Interpolation(const fz_image& image, GXBitmap bitmap, const fz_matrix& matrix);

private:
    void Clear();

    fz_context* m_ctx;
    std::unordered_map<fz_image*, Handle<GXBitmap>> m_bitmaps;
    size_t m_bytes = 0;
};

} // namespace PdfPage
