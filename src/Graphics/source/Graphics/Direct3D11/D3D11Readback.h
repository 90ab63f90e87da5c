// SPDX-License-Identifier: MIT
// Copies pixels of GPU textures to CPU memory, with one wait for all textures of a call.
#pragma once

#include <span>

#include "../Regions/Region.h"
#include "D3D11Device.h"

namespace Graphics {

class D3D11Readback {
public:
    static constexpr size_t kMostTextures = 2;

    explicit D3D11Readback(D3D11Device& device) noexcept : m_device(device) {}

    /// Waits for the GPU, then calls use(i, rect, bytes, strideBytes) for every rectangle of `region` (in pixels of the
    /// textures) and every texture.
    template <class Use> void Read(std::span<const D3D11Texture* const> textures, const Region& region, Use&& use) {
        for (size_t i = 0; i < textures.size(); ++i) {
            Ask(i, *textures[i], region);
        }
        ++m_device.Counters().readbacks;
        ++m_waits;
        const IntRect bound = region.Bound();
        for (size_t i = 0; i < textures.size(); ++i) {
            const Mapping mapping(m_device, *m_staging[i]->Resource());
            region.EnumRects([&](const IntRect& r) {
                use(i, r,
                    mapping.Bytes() + static_cast<size_t>(r.top - bound.top) * mapping.StrideBytes() +
                        static_cast<size_t>(r.left - bound.left) * m_staging[i]->PixelBytes(),
                    mapping.StrideBytes());
            });
        }
    }

    /// True after so many waits in this paint bracket that its rest is faster drawn in software: waiting costs more
    /// than drawing.
    [[nodiscard]] bool IsExhausted() const noexcept { return m_waits >= kMostWaits; }
    void StartPainting() noexcept { m_waits = 0; }

private:
    static constexpr uint32_t kMostWaits = 8;

    class Mapping {
    public:
        Mapping(D3D11Device& device, ID3D11Resource& resource)
            : m_device(device), m_resource(resource), m_mapped(device.MapResource(resource, D3D11_MAP_READ)) {}
        Mapping(const Mapping&) = delete;
        Mapping& operator=(const Mapping&) = delete;
        ~Mapping() { m_device.Unmap(m_resource); }
        [[nodiscard]] const uint8_t* Bytes() const noexcept { return static_cast<const uint8_t*>(m_mapped.pData); }
        [[nodiscard]] size_t StrideBytes() const noexcept { return m_mapped.RowPitch; }

    private:
        D3D11Device& m_device;
        ID3D11Resource& m_resource;
        D3D11_MAPPED_SUBRESOURCE m_mapped;
    };

    /// Starts the GPU's copy to memory that the CPU reads.
    void Ask(size_t slot, const D3D11Texture& texture, const Region& region);

    D3D11Device& m_device;
    std::shared_ptr<D3D11Texture> m_staging[kMostTextures];
    uint32_t m_waits = 0; // in this paint bracket
};

} // namespace Graphics
