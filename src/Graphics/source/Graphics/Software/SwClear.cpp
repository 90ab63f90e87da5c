// SPDX-License-Identifier: MIT
#include "SwClear.h"

#include <algorithm>

namespace Graphics {
namespace {

[[nodiscard]] uint32_t Scale(uint32_t v, uint32_t factor) noexcept { return v * factor >> 8; }

/// Row y of a plane of words; `base` is the address of the planes' origin.
template <class Base>
[[nodiscard]] auto* WordsAt(Base* base, ptrdiff_t stride, const SwTargetPlanes& planes, int32_t x, int32_t y) noexcept {
    using Word = std::conditional_t<std::is_const_v<Base>, const uint32_t, uint32_t>;
    return reinterpret_cast<Word*>(base + (y - planes.origin.y) * stride) + (x - planes.origin.x);
}

/// Calls part(y, x0, x1, coverage) for the columns of each row that the clip covers; a null coverage means full.
template <class Part> void ForParts(const IntRect& region, const ClipRegion* clip, Part&& part) {
    for (int32_t y = region.top; y < region.bottom; ++y) {
        if (IsMasked(clip)) {
            clip->ForParts(y, region.left, region.right,
                           [&](int32_t x0, int32_t x1, const uint8_t* coverage) { part(y, x0, x1, coverage); });
        } else {
            part(y, region.left, region.right, static_cast<const uint8_t*>(nullptr));
        }
    }
}

void ClearSurface(const RowKernels& kernels, const SwTargetPlanes& planes, const IntRect& region,
                  const ClipRegion* clip, uint32_t color) {
    const auto width = static_cast<size_t>(region.right - region.left);
    const auto words = [&](int32_t x, int32_t y) { return WordsAt(planes.color, planes.colorStride, planes, x, y); };
    const bool oneRow = static_cast<ptrdiff_t>(width * sizeof(uint32_t)) == planes.colorStride ||
                        (region.left == planes.origin.x && region.right - region.left == planes.rowWithGap);
    if (!IsMasked(clip) && oneRow && region.top < region.bottom) {
        const size_t perRow = static_cast<size_t>(planes.colorStride) / sizeof(uint32_t);
        kernels.fill32(words(region.left, region.top), color,
                       perRow * static_cast<size_t>(region.bottom - region.top - 1) + width);
        return;
    }
    ForParts(region, clip, [&](int32_t y, int32_t x0, int32_t x1, const uint8_t* coverage) {
        const auto count = static_cast<size_t>(x1 - x0);
        if (coverage == nullptr) {
            kernels.fill32(words(x0, y), color, count);
            return;
        }
        if (planes.makesOpaque) {
            kernels.setOpaque(words(x0, y), coverage, count);
        }
        kernels.replaceSolid(words(x0, y), color, coverage, count);
    });
}

/// Clears one pixel of a group, of which the part `share` (255: all) is replaced.
void ClearGroupPixel(uint32_t& pixel, uint8_t& groupAlpha, uint8_t& groupShape, uint32_t backdrop, uint32_t color,
                     uint32_t share) {
    const uint32_t alpha = color >> 24;
    const auto mix = [share](uint32_t from, uint32_t to) {
        return share == 255 ? to : Scale(from, 256 - share) + Scale(to, share + 1);
    };
    uint32_t result = 0;
    for (int shift = 0; shift < 24; shift += 8) {
        const uint32_t over = ((color >> shift) & 255U) + Scale((backdrop >> shift) & 255U, 256 - alpha);
        result |= std::min(mix((pixel >> shift) & 255U, over), 255U) << shift;
    }
    groupAlpha = static_cast<uint8_t>(mix(groupAlpha, alpha));
    groupShape = static_cast<uint8_t>(mix(groupShape, 255));
    // The alpha of the colour plane is the union of the group's and the backdrop's, as after a draw.
    const uint32_t group = groupAlpha;
    const uint32_t below = backdrop >> 24;
    pixel = result | (group + below - (group * (below + 1) >> 8)) << 24;
}

void ClearGroup(const SwTargetPlanes& planes, const IntRect& region, const ClipRegion* clip, uint32_t color) {
    ForParts(region, clip, [&](int32_t y, int32_t x0, int32_t x1, const uint8_t* coverage) {
        uint32_t* pixels = WordsAt(planes.color, planes.colorStride, planes, x0, y);
        const uint32_t* backdrop =
            planes.backdrop == nullptr ? nullptr : WordsAt(planes.backdrop, planes.backdropStride, planes, x0, y);
        const ptrdiff_t offset = (y - planes.origin.y) * planes.planeStride + (x0 - planes.origin.x);
        for (int32_t i = 0; i < x1 - x0; ++i) {
            ClearGroupPixel(pixels[i], planes.alpha[offset + i], planes.shape[offset + i],
                            backdrop == nullptr ? 0 : backdrop[i], color, coverage == nullptr ? 255 : coverage[i]);
        }
    });
}

} // namespace

void ClearPlanes(const RowKernels& kernels, const SwTargetPlanes& planes, const IntRect& region, const ClipRegion* clip,
                 uint32_t color) {
    if (planes.alpha == nullptr) {
        ClearSurface(kernels, planes, region, clip, color);
    } else {
        ClearGroup(planes, region, clip, color);
    }
}

} // namespace Graphics
