// SPDX-License-Identifier: MIT
#include "D3D11SoftwareTextures.h"

#include <algorithm>

namespace Graphics {

D3D11SoftwareTextures::Image D3D11SoftwareTextures::Upload(D3D11Context& context, const IntRect& box,
                                                           DXGI_FORMAT format, const void* pixels,
                                                           uint32_t strideBytes) {
    const int32_t width = box.right - box.left;
    const int32_t height = box.bottom - box.top;
    Image image;
    image.texture = context.Pool().Take(width, height, format, false);
    context.Device().Update(*image.texture, {0, 0, width, height}, pixels, strideBytes);
    const float x = 1.0F / static_cast<float>(image.texture->Width());
    const float y = 1.0F / static_cast<float>(image.texture->Height());
    image.map = {x, 0.0F, 0.0F, y, static_cast<float>(-box.left) * x, static_cast<float>(-box.top) * y};
    return image;
}

D3D11SoftwareTextures::Image D3D11SoftwareTextures::Paint(D3D11Context& context, SwColorSource& source,
                                                          const IntRect& box) {
    const auto width = static_cast<size_t>(box.right - box.left);
    m_words.resize(width * static_cast<size_t>(box.bottom - box.top));
    for (int32_t y = box.top; y < box.bottom; ++y) {
        source.Fill(box.left, box.right, y, m_words.data() + static_cast<size_t>(y - box.top) * width);
    }
    ++context.Device().Counters().softwareSources;
    return Upload(context, box, DXGI_FORMAT_B8G8R8A8_UNORM, m_words.data(),
                  static_cast<uint32_t>(width * sizeof(uint32_t)));
}

D3D11SoftwareTextures::Image D3D11SoftwareTextures::Coverage(D3D11Context& context, const ClipRegion& clip) {
    const IntRect& box = clip.Box();
    const auto width = static_cast<size_t>(box.right - box.left);
    m_values.resize(width * static_cast<size_t>(box.bottom - box.top));
    for (int32_t y = box.top; y < box.bottom; ++y) {
        clip.CopyRow(y, box.left, box.right, m_values.data() + static_cast<size_t>(y - box.top) * width);
    }
    ++context.Device().Counters().coverages;
    return Upload(context, box, DXGI_FORMAT_A8_UNORM, m_values.data(), static_cast<uint32_t>(width));
}

} // namespace Graphics
