// SPDX-License-Identifier: MIT
#include "D3D11SoftwarePlane.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "D3D11Half.h"

namespace Graphics {
namespace {

/// The texel that stands for `i` beyond the ends.
[[nodiscard]] int32_t Addressed(float position, int32_t size, uint8_t extend) noexcept {
    const auto n = static_cast<float>(size);
    if (extend != GXExtendClamp) {
        const float period = extend == GXExtendMirror ? 2.0F * n : n;
        position -= std::floor(position / period) * period;
        position = position >= n && extend == GXExtendMirror ? 2.0F * n - 1.0F - position : position;
    }
    return position > 0.0F ? static_cast<int32_t>(std::min(position, n - 1.0F)) : 0;
}

} // namespace

size_t D3D11SoftwarePlane::PixelBytes(DXGI_FORMAT format) noexcept {
    switch (format) {
    case DXGI_FORMAT_A8_UNORM:
        return 1;
    case DXGI_FORMAT_B8G8R8A8_UNORM:
        return 4;
    case DXGI_FORMAT_R16G16B16A16_FLOAT:
        return 8;
    default:
        return 0;
    }
}

void D3D11SoftwarePlane::Read(D3D11Device& device, const D3D11Texture& texture, const IntRect& part) {
    m_part = part;
    m_pixelBytes = PixelBytes(texture.Format());
    const int32_t width = part.right - part.left;
    const int32_t height = part.bottom - part.top;
    const size_t row = static_cast<size_t>(width) * m_pixelBytes;
    m_bytes.resize(row * static_cast<size_t>(height));
    const auto staging = device.CreateSysMemSurface(width, height, texture.Format());
    device.CopyToCorner(*staging, texture, part);
    const D3D11_MAPPED_SUBRESOURCE mapped = device.MapResource(*staging->Resource(), D3D11_MAP_READ);
    for (int32_t y = 0; y < height; ++y) {
        std::memcpy(m_bytes.data() + static_cast<size_t>(y) * row,
                    static_cast<const uint8_t*>(mapped.pData) + static_cast<size_t>(y) * mapped.RowPitch, row);
    }
    device.Unmap(*staging->Resource());
}

void D3D11SoftwarePlane::Write(D3D11Device& device, const D3D11Texture& texture) const noexcept {
    device.Update(texture, m_part, m_bytes.data(),
                  static_cast<uint32_t>(static_cast<size_t>(m_part.right - m_part.left) * m_pixelBytes));
}

D3D11SoftwarePlane::Float4 D3D11SoftwarePlane::At(int32_t x, int32_t y) const noexcept {
    const uint8_t* p = m_bytes.data() + Offset(x, y);
    if (m_pixelBytes == 8) {
        uint16_t h[4];
        std::memcpy(h, p, sizeof(h));
        return {D3D11Half::ToFloat(h[0]), D3D11Half::ToFloat(h[1]), D3D11Half::ToFloat(h[2]), D3D11Half::ToFloat(h[3])};
    }
    const auto unit = [&](size_t i) { return static_cast<float>(p[i]) * (1.0F / 255.0F); };
    if (m_pixelBytes == 1) {
        return {0.0F, 0.0F, 0.0F, unit(0)};
    }
    return {unit(2), unit(1), unit(0), unit(3)};
}

void D3D11SoftwarePlane::Set(int32_t x, int32_t y, const Float4& value) noexcept {
    uint8_t* p = m_bytes.data() + Offset(x, y);
    if (m_pixelBytes == 8) {
        const uint16_t h[4] = {D3D11Half::FromFloat(value.r), D3D11Half::FromFloat(value.g),
                               D3D11Half::FromFloat(value.b), D3D11Half::FromFloat(value.a)};
        std::memcpy(p, h, sizeof(h));
    } else if (m_pixelBytes == 4) {
        const uint8_t bytes[4] = {D3D11Half::FloatToLevel(value.b), D3D11Half::FloatToLevel(value.g),
                                  D3D11Half::FloatToLevel(value.r), D3D11Half::FloatToLevel(value.a)};
        std::memcpy(p, bytes, sizeof(bytes));
    } else {
        *p = D3D11Half::FloatToLevel(value.a);
    }
}

D3D11SoftwarePlane::Float4 D3D11SoftwarePlane::Sample(float u, float v, const D3D11Sampling& sampling) const noexcept {
    const int32_t width = m_part.right;
    const int32_t height = m_part.bottom;
    const auto texel = [&](float x, float y) {
        return At(Addressed(x, width, sampling.extendX), Addressed(y, height, sampling.extendY));
    };
    const float half = sampling.linear ? 0.5F : 0.0F;
    const float px = u * static_cast<float>(width) - half;
    const float py = v * static_cast<float>(height) - half;
    const float x = std::floor(px);
    const float y = std::floor(py);
    if (!sampling.linear) {
        return texel(x, y);
    }
    const auto mix = [](const Float4& a, const Float4& b, float t) {
        return Float4{a.r + (b.r - a.r) * t, a.g + (b.g - a.g) * t, a.b + (b.b - a.b) * t, a.a + (b.a - a.a) * t};
    };
    return mix(mix(texel(x, y), texel(x + 1.0F, y), px - x), mix(texel(x, y + 1.0F), texel(x + 1.0F, y + 1.0F), px - x),
               py - y);
}

} // namespace Graphics
