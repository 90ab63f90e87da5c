// SPDX-License-Identifier: MIT
#include "HardwareTest.h"

#include <algorithm>
#include <cstdlib>

#include "Exception.h"
#include "Software/Surfaces/SwBitmapSurface.h"
#include "Software/SwRenderTarget.h"

namespace Graphics {

std::shared_ptr<D3D11Texture> TextureSurface::BeginPaint(D3D11Context& context) {
    if (m_pixels == nullptr || m_generation != context.Generation()) {
        m_pixels = context.Device().CreateRenderTexture(m_width, m_height, DXGI_FORMAT_B8G8R8A8_UNORM);
        context.Device().ColorFill(*m_pixels, {0.0F, 0.0F, 0.0F, 1.0F});
        m_generation = context.Generation();
    }
    return m_pixels;
}

std::vector<uint32_t> TextureSurface::Read(D3D11Context& context) const {
    D3D11Device& device = context.Device();
    const auto staging = device.CreateSysMemSurface(m_width, m_height, DXGI_FORMAT_B8G8R8A8_UNORM);
    device.CopyWhole(*staging->Resource(), *m_pixels);
    const D3D11_MAPPED_SUBRESOURCE mapped = device.MapResource(*staging->Resource(), D3D11_MAP_READ);
    std::vector<uint32_t> out;
    for (int32_t y = 0; y < m_height; ++y) {
        const auto* row = reinterpret_cast<const uint32_t*>(static_cast<const uint8_t*>(mapped.pData) +
                                                            static_cast<size_t>(y) * mapped.RowPitch);
        out.insert(out.end(), row, row + m_width);
    }
    device.Unmap(*staging->Resource());
    return out;
}

Difference Compare(const std::vector<uint32_t>& a, const std::vector<uint32_t>& b, int32_t width) {
    EXPECT_EQ(a.size(), b.size());
    Difference out;
    double sum = 0.0;
    size_t distant = 0;
    for (size_t i = 0; i < a.size(); ++i) {
        int pixel = 0;
        for (int shift = 0; shift < 24; shift += 8) {
            const int d = std::abs(static_cast<int>(a[i] >> shift & 255U) - static_cast<int>(b[i] >> shift & 255U));
            sum += d;
            pixel = std::max(pixel, d);
        }
        distant += pixel > 16 ? 1 : 0;
        if (pixel > out.largest) {
            out.largest = pixel;
            out.x = static_cast<int>(i) % width;
            out.y = static_cast<int>(i) / width;
        }
    }
    out.mean = sum / (3.0 * static_cast<double>(a.size()));
    out.above16 = static_cast<double>(distant) / static_cast<double>(a.size());
    return out;
}

std::shared_ptr<D3D11Context> HardwareTest::s_context;

void HardwareTest::SetUp() {
    static std::string s_problem;
    if (s_context == nullptr && s_problem.empty()) {
        try {
            s_context = std::make_shared<D3D11Context>();
        } catch (const Exception& e) {
            s_problem = e.what();
        }
    }
    if (s_context == nullptr) {
        GTEST_SKIP() << "No Direct3D 11 here (" << s_problem
                     << "): needs a display and Microsoft's d3dcompiler_47.dll beside the test";
    }
}

void HardwareTest::TearDown() {
    if (s_context != nullptr) {
        s_context->Batch().Drop();
    }
}

std::vector<uint32_t> HardwareTest::OnHardware(int32_t width, int32_t height, const Drawing& draw) {
    return On(s_context, width, height, draw);
}

std::vector<uint32_t> HardwareTest::OnCardAlone(int32_t width, int32_t height, const Drawing& draw) {
    s_context->DrawAllForTest(true);
    const std::vector<uint32_t> pixels = On(s_context, width, height, draw);
    s_context->DrawAllForTest(false);
    return pixels;
}

std::vector<uint32_t> HardwareTest::On(const std::shared_ptr<D3D11Context>& context, int32_t width, int32_t height,
                                       const Drawing& draw) {
    auto surface = std::make_unique<TextureSurface>(width, height);
    const TextureSurface* reader = surface.get();
    RenderTarget target(std::make_unique<D3D11RenderTarget>(context, std::move(surface)));
    target.BeginPaint();
    draw(target);
    target.EndPaint();
    return reader->Read(*context);
}

std::vector<uint32_t> HardwareTest::InSoftware(int32_t width, int32_t height, const Drawing& draw) {
    auto image = std::make_shared<SysMemBitmap>(width, height, GXPixelFormatBGRX32);
    image->Zero();
    auto bitmap = std::make_shared<Bitmap>(image);
    RenderTarget target(std::make_unique<SwRenderTarget>(std::make_unique<SwBitmapSurface>(bitmap)));
    target.BeginPaint();
    draw(target);
    target.EndPaint();
    std::vector<uint32_t> out;
    for (int32_t y = 0; y < height; ++y) {
        const auto* row =
            reinterpret_cast<const uint32_t*>(image->Data() + static_cast<size_t>(y) * image->StrideBytes());
        out.insert(out.end(), row, row + width);
    }
    return out;
}

Difference HardwareTest::Both(int32_t width, int32_t height, const Drawing& draw) {
    return Compare(OnHardware(width, height, draw), InSoftware(width, height, draw), width);
}

} // namespace Graphics
