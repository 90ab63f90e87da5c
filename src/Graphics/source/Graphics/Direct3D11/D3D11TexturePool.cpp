// SPDX-License-Identifier: MIT
#include "D3D11TexturePool.h"

#include <algorithm>

namespace Graphics {
namespace {

constexpr int32_t kStep = 64;
constexpr uint64_t kKeepBytes = uint64_t{96} << 20;

[[nodiscard]] int32_t RoundUp(int32_t size, int32_t most) noexcept {
    return std::max(size, std::min((size + kStep - 1) / kStep * kStep, most));
}

} // namespace

std::shared_ptr<D3D11Texture> D3D11TexturePool::Take(int32_t width, int32_t height, DXGI_FORMAT format,
                                                     bool drawnInto) {
    const int32_t w = RoundUp(width, m_device.MaxTextureSize());
    const int32_t h = RoundUp(height, m_device.MaxTextureSize());
    const auto serves = [&](const std::shared_ptr<D3D11Texture>& t) {
        return t.use_count() == 1 && t->Format() == format && (t->Target() != nullptr) == drawnInto &&
               t->Width() == w && t->Height() == h;
    };
    if (const auto found = std::find_if(m_textures.begin(), m_textures.end(), serves); found != m_textures.end()) {
        std::rotate(found, found + 1, m_textures.end());
        return m_textures.back();
    }
    uint64_t bytes = 0;
    for (auto t = m_textures.end(); t != m_textures.begin();) {
        --t;
        bytes += (*t)->ByteSize();
        if (bytes > kKeepBytes && t->use_count() == 1) {
            bytes -= (*t)->ByteSize();
            t = m_textures.erase(t);
        }
    }
    m_textures.push_back(drawnInto ? m_device.CreateRenderTexture(w, h, format)
                                   : m_device.CreateVidMemTexture(w, h, format, nullptr, 0));
    return m_textures.back();
}

} // namespace Graphics
