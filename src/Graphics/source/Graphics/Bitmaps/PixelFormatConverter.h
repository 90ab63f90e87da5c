// SPDX-License-Identifier: MIT
// An image in another format, converted row by row when it is read.
#pragma once

#include "BitmapBase.h"

namespace Graphics {

class PixelFormatConverter final : public BitmapSource {
public:
    /// Raises "Unsupported pixel format." for an invalid number. A pair that cannot be converted raises only on
    /// reading.
    PixelFormatConverter(std::shared_ptr<const BitmapBase> base, GXPixelFormat format);

    [[nodiscard]] GXPixelFormat Format() const noexcept override { return m_format; }
    [[nodiscard]] Size GetSize() const noexcept override { return m_base->GetSize(); }
    [[nodiscard]] float DpiX() const noexcept override { return m_base->DpiX(); }
    [[nodiscard]] float DpiY() const noexcept override { return m_base->DpiY(); }
    /// The base's palette if the format is unchanged; converted pixels have none.
    [[nodiscard]] std::shared_ptr<const Palette> GetPalette() const override;
    /// One-bit rows start at the first bit. Raises "Bad format conversion".
    void CopyToMemory(const IntRect* rect, const GXBitmapData& destination) const override;

private:
    const std::shared_ptr<const BitmapBase> m_base;
    const GXPixelFormat m_format;
};

} // namespace Graphics
