// SPDX-License-Identifier: MIT
#include "GdipFlattener.h"

#include "../Bitmaps/Bitmap.h"

namespace Graphics {
namespace {

/// The software renderer's limit for coordinates of a picture.
constexpr int32_t kFarthest = 32000;

/// Above this number of rectangles their bounding box is copied in one piece, with the same result.
constexpr size_t kMostRects = 256;

[[nodiscard]] IntRect Join(const IntRect& a, const IntRect& b) noexcept {
    return IsEmpty(a) ? b
                      : IntRect{std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right),
                                std::max(a.bottom, b.bottom)};
}

} // namespace

void GdipFlattener::Run(const Region& region, const Place& place, int64_t bandPixels) const {
    std::vector<IntRect> all; // from the top down
    region.EnumRects([&](const IntRect& rect) { all.push_back(rect); });
    const IntRect bound = region.Bound();
    for (int32_t left = bound.left; left < bound.right; left += kFarthest) {
        RunColumns(all, {left, bound.top, std::min(bound.right, left + kFarthest), bound.bottom}, place, bandPixels);
    }
}

void GdipFlattener::RunColumns(const std::vector<IntRect>& all, const IntRect& bound, const Place& place,
                               int64_t bandPixels) const {
    const int64_t rows = std::clamp<int64_t>(bandPixels / (bound.right - bound.left), 1, kFarthest);
    std::vector<IntRect> rects;
    size_t first = 0; // rectangles before it end above the band
    for (int32_t top = bound.top; top < bound.bottom;) {
        const auto bottom = static_cast<int32_t>(std::min<int64_t>(bound.bottom, top + rows));
        rects.clear();
        IntRect box{};
        while (first < all.size() && all[first].bottom <= top) {
            ++first;
        }
        for (size_t i = first; i < all.size() && all[i].top < bottom; ++i) {
            const IntRect part = Intersect(all[i], {bound.left, top, bound.right, bottom});
            if (!IsEmpty(part)) {
                rects.push_back(part);
                box = Join(box, part);
            }
        }
        top = bottom;
        if (rects.empty()) {
            continue;
        }
        if (rects.size() > kMostRects) {
            rects.assign(1, box);
        }
        const std::shared_ptr<Bitmap> band =
            Bitmap::Create({static_cast<uint32_t>(box.right - box.left), static_cast<uint32_t>(box.bottom - box.top),
                            GXPixelFormatBGRX32, 96.0F, 96.0F});
        band->ColorFill(nullptr, {1.0F, 1.0F, 1.0F, 1.0F});
        const std::unique_ptr<RenderTargetBase> target = m_makeTarget(band);
        target->BeginPaint();
        m_page.Replay(*target, box);
        target->EndPaint();
        place(band->View(), {box.left, box.top}, rects);
    }
}

} // namespace Graphics
