// SPDX-License-Identifier: MIT
// What fills a path in GDI+: a brush of its own, made from one of the engine's for one draw.
#pragma once

#include <memory>

#include "../Drawing/RenderTargetBase.h"
#include "GdipStatus.h"

namespace Graphics {

class Bitmap;

/// A back end that draws into a bitmap: whatever GDI+ has no counterpart for is drawn by it.
using BitmapTargetMaker = std::unique_ptr<RenderTargetBase> (*)(std::shared_ptr<Bitmap>);

/// Where a draw takes place.
struct GdipPlace {
    Matrix transform; ///< user space to device pixels
    Matrix toPage;    ///< device pixels to page units
    IntRect visible;  ///< the pixels that may be reached; not empty
    BitmapTargetMaker makeTarget;
};

class GdipColorSource {
public:
    GdipColorSource() = default;
    GdipColorSource(const GdipColorSource&) = delete;
    GdipColorSource& operator=(const GdipColorSource&) = delete;
    virtual ~GdipColorSource();

    /// Raises when a call of GDI+ failed.
    [[nodiscard]] static std::unique_ptr<GdipColorSource> Create(const Ink& ink, const GdipPlace& place);

    /// The brush, owned by this object.
    [[nodiscard]] Gdiplus::GpBrush* Get() const noexcept { return m_brush; }
    /// Raises what went wrong while the brush was made.
    void Check() { m_status.Check("Graphics::GdipColorSource::Create"); }

protected:
    void CreateSolid(uint32_t argb);
    /// False when there is no texture.
    bool TakeTexture(Gdiplus::GpStatus status, Gdiplus::GpTexture* texture);
    /// Image pixels to page units.
    void PlaceTexture(const Matrix& transform, Gdiplus::GpWrapMode mode);

    GdipStatus m_status;

private:
    Gdiplus::GpBrush* m_brush = nullptr;
};

} // namespace Graphics
