// SPDX-License-Identifier: MIT
// A rectangle of another image as an image, without copying.
#pragma once

#include "BitmapBase.h"

namespace Graphics {

class BitmapBaseView final : public BitmapBase {
public:
    /// The rectangle is clipped to `base`. Raises "Invalid bitmap dimensions" if it is then empty.
    BitmapBaseView(std::shared_ptr<BitmapBase> base, const IntRect& rect);

    [[nodiscard]] GXPixelFormat Format() const noexcept override { return m_base->Format(); }
    [[nodiscard]] float DpiX() const noexcept override { return m_base->DpiX(); }
    [[nodiscard]] float DpiY() const noexcept override { return m_base->DpiY(); }
    [[nodiscard]] std::shared_ptr<const Palette> GetPalette() const override { return m_base->GetPalette(); }
    void SetPalette(std::shared_ptr<const Palette> palette) override;
    [[nodiscard]] PixelView View() const noexcept override;

private:
    const std::shared_ptr<BitmapBase> m_base;
    IntRect m_rect;
};

} // namespace Graphics
