// SPDX-License-Identifier: MIT
#include "BitmapBaseView.h"

#include <utility>

#include "../Exception.h"
#include "PixelTransfer.h"

namespace Graphics {

BitmapBaseView::BitmapBaseView(std::shared_ptr<BitmapBase> base, const IntRect& rect)
    : m_base(std::move(base)), m_rect(rect) {
    const PixelView whole = m_base->View();
    m_rect = Clip(&rect, whole.width, whole.height);
    if (IsEmpty(m_rect)) {
        GX_RAISE("Graphics::BitmapBaseView::BitmapBaseView", "Invalid bitmap dimensions");
    }
}

void BitmapBaseView::SetPalette(std::shared_ptr<const Palette> palette) {
    m_base->SetPalette(std::move(palette));
    NotifyChanged();
}

PixelView BitmapBaseView::View() const noexcept { return PixelTransfer::Part(m_base->View(), m_rect); }

} // namespace Graphics
