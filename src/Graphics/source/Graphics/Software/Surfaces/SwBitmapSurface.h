// SPDX-License-Identifier: MIT
// A surface on the pixels of a bitmap, which it keeps alive.
#pragma once

#include <memory>

#include "SwSurface.h"

namespace Graphics {

class Bitmap;

class SwBitmapSurface final : public SwSurface {
public:
    explicit SwBitmapSurface(std::shared_ptr<Bitmap> bitmap) noexcept : m_bitmap(std::move(bitmap)) {}
    [[nodiscard]] Size GetSize() const override;
    [[nodiscard]] GXPixelFormat GetPixelFormat() const override;
    [[nodiscard]] PixelView BeginPaint() override;
    void EndPaint() override;
    void Abandon() override { EndPaint(); }

private:
    std::shared_ptr<Bitmap> m_bitmap;
};

} // namespace Graphics
