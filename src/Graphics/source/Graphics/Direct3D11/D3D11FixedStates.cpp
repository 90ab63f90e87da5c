// SPDX-License-Identifier: MIT
#include "D3D11FixedStates.h"

#include "D3D11Device.h"

namespace Graphics {
namespace {

struct BlendFactors {
    D3D11_BLEND source, destination, sourceAlpha, destinationAlpha;
    D3D11_BLEND_OP operation;
};

} // namespace

void D3D11FixedStates::Create(D3D11Device& device) {
    static constexpr BlendFactors kFactors[kBlendCount] = {
        {D3D11_BLEND_ONE, D3D11_BLEND_ZERO, D3D11_BLEND_ONE, D3D11_BLEND_ZERO, D3D11_BLEND_OP_ADD},
        {D3D11_BLEND_ONE, D3D11_BLEND_INV_SRC_ALPHA, D3D11_BLEND_ONE, D3D11_BLEND_INV_SRC_ALPHA, D3D11_BLEND_OP_ADD},
        {D3D11_BLEND_ZERO, D3D11_BLEND_INV_SRC_ALPHA, D3D11_BLEND_ZERO, D3D11_BLEND_INV_SRC_ALPHA, D3D11_BLEND_OP_ADD},
        {D3D11_BLEND_ONE, D3D11_BLEND_ONE, D3D11_BLEND_ONE, D3D11_BLEND_ONE, D3D11_BLEND_OP_ADD},
        {D3D11_BLEND_DEST_ALPHA, D3D11_BLEND_ONE, D3D11_BLEND_ZERO, D3D11_BLEND_ONE, D3D11_BLEND_OP_SUBTRACT},
    };
    for (size_t i = 0; i < kBlendCount; ++i) {
        const BlendFactors& f = kFactors[i];
        D3D11_BLEND_DESC desc{};
        desc.RenderTarget[0] = {i != static_cast<size_t>(D3D11Blend::Replace),
                                f.source,
                                f.destination,
                                f.operation,
                                f.sourceAlpha,
                                f.destinationAlpha,
                                D3D11_BLEND_OP_ADD,
                                D3D11_COLOR_WRITE_ENABLE_ALL};
        GX_D3D11_CHECK(device, "D3D11Device::SetDefaultDeviceState",
                       device.Get()->CreateBlendState(&desc, m_blends[i].Out()));
    }
    D3D11_RASTERIZER_DESC raster{};
    raster.FillMode = D3D11_FILL_SOLID;
    raster.CullMode = D3D11_CULL_NONE; // mirrored quadrilaterals are drawn too
    raster.DepthClipEnable = TRUE;
    raster.ScissorEnable = TRUE;
    GX_D3D11_CHECK(device, "D3D11Device::SetDefaultDeviceState",
                   device.Get()->CreateRasterizerState(&raster, m_rasterizer.Out()));
    D3D11_DEPTH_STENCIL_DESC depth{};
    depth.DepthFunc = D3D11_COMPARISON_ALWAYS;
    depth.StencilReadMask = depth.StencilWriteMask = 0xFF;
    depth.FrontFace = {D3D11_STENCIL_OP_KEEP, D3D11_STENCIL_OP_KEEP, D3D11_STENCIL_OP_KEEP, D3D11_COMPARISON_ALWAYS};
    depth.BackFace = depth.FrontFace;
    GX_D3D11_CHECK(device, "D3D11Device::SetDefaultDeviceState",
                   device.Get()->CreateDepthStencilState(&depth, m_depth.Out()));
}

} // namespace Graphics
