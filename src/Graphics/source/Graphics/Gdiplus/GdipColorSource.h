// SPDX-License-Identifier: MIT
// The paint of a draw in GDI+: a GDI+ brush made from an ink for one draw.
#pragma once

#include <memory>

#include "../Drawing/RenderTargetBase.h"
#include "GdipStatus.h"

namespace Graphics {

class Bitmap;

/// Makes a back end that draws into a bitmap; it draws what GDI+ cannot.
using BitmapTargetMaker = std::unique_ptr<RenderTargetBase> (*)(std::shared_ptr<Bitmap>);

/// The placement of a draw.
struct GdipPlace {
    Matrix transform; ///< user space to device pixels
    Matrix toPage;    ///< device pixels to page units
    IntRect visible;  ///< the pixels that the draw may reach; not empty
    BitmapTargetMaker makeTarget;
};

class GdipColorSource {
public:
    GdipColorSource() = default;
    GdipColorSource(const GdipColorSource&) = delete;
    GdipColorSource& operator=(const GdipColorSource&) = delete;
    virtual ~GdipColorSource();

    /// Raises if a GDI+ call fails.
    [[nodiscard]] static std::unique_ptr<GdipColorSource> Create(const Ink& ink, const GdipPlace& place);

    /// The brush, owned by this object.
    [[nodiscard]] Gdiplus::GpBrush* Get() const noexcept { return m_brush; }
    /// Raises the error that occurred while the brush was made, if any.
    void Check() { m_status.Check("Graphics::GdipColorSource::Create"); }

protected:
    void CreateSolid(uint32_t argb);
    /// False if there is no texture.
    bool TakeTexture(Gdiplus::GpStatus status, Gdiplus::GpTexture* texture);
    /// Sets the map from image pixels to page units.
    void PlaceTexture(const Matrix& transform, Gdiplus::GpWrapMode mode);

    GdipStatus m_status;

private:
    Gdiplus::GpBrush* m_brush = nullptr;
};

} // namespace Graphics
