// SPDX-License-Identifier: MIT
// What the tests of the Direct3D 11 back end share: a device, a surface without a window whose pixels can be read, and
// a drawing done on both back ends and compared.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Bitmaps/Bitmap.h"
#include "Direct3D11/D3D11RenderTarget.h"
#include "Paint/Brush.h"
#include "Target/RenderTarget.h"

namespace Graphics {

/// A texture of a fixed size.
class TextureSurface final : public D3D11Surface {
public:
    TextureSurface(int32_t width, int32_t height) noexcept : m_width(width), m_height(height) {}

    [[nodiscard]] Size GetSize() const override {
        return {static_cast<uint32_t>(m_width), static_cast<uint32_t>(m_height)};
    }
    [[nodiscard]] std::shared_ptr<D3D11Texture> BeginPaint(D3D11Context& context) override;
    void EndPaint(D3D11Context& context) override { static_cast<void>(context); }

    /// Rows of ARGB words.
    [[nodiscard]] std::vector<uint32_t> Read(D3D11Context& context) const;

private:
    int32_t m_width;
    int32_t m_height;
    uint32_t m_generation = 0;
    std::shared_ptr<D3D11Texture> m_pixels;
};

/// How far two pictures are apart, by the largest difference of a pixel's red, green and blue.
struct Difference {
    double mean = 0.0;
    int largest = 0;
    double above16 = 0.0; ///< share of the pixels, 0 to 1
    int x = 0, y = 0;     ///< of the largest one
};
[[nodiscard]] Difference Compare(const std::vector<uint32_t>& a, const std::vector<uint32_t>& b, int32_t width);

using Drawing = std::function<void(RenderTarget&)>;

/// Skips, with the reason, where there is no shader compiler or no device.
class HardwareTest : public testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    [[nodiscard]] static std::shared_ptr<D3D11Context> Context() { return s_context; }
    [[nodiscard]] static std::vector<uint32_t> OnHardware(int32_t width, int32_t height, const Drawing& draw);
    /// The same with every draw on the card, those as well that look different from the software's.
    [[nodiscard]] static std::vector<uint32_t> OnCardAlone(int32_t width, int32_t height, const Drawing& draw);
    [[nodiscard]] static std::vector<uint32_t> InSoftware(int32_t width, int32_t height, const Drawing& draw);
    [[nodiscard]] static Difference Both(int32_t width, int32_t height, const Drawing& draw);
    [[nodiscard]] static std::vector<uint32_t> On(const std::shared_ptr<D3D11Context>& context, int32_t width,
                                                  int32_t height, const Drawing& draw);

private:
    static std::shared_ptr<D3D11Context> s_context;
};

} // namespace Graphics
