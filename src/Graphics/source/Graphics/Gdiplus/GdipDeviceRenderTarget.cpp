// SPDX-License-Identifier: MIT
#include "GdipDeviceRenderTarget.h"

#include "../Windows/GdiplusScope.h"
#include "../Windows/SwBitmapInfo.h"

namespace Graphics {
namespace {

/// While this object lives, GDI may draw into the context of a GDI+ graphics object.
class BorrowedContext {
public:
    explicit BorrowedContext(GdipGraphics& graphics) : m_graphics(graphics), m_dc(graphics.AcquireContext()) {}
    BorrowedContext(const BorrowedContext&) = delete;
    BorrowedContext& operator=(const BorrowedContext&) = delete;
    ~BorrowedContext() {
        if (m_dc != nullptr) {
            try {
                m_graphics.ReleaseContext(m_dc);
            } catch (const Exception&) {
                // Another exception is already being thrown.
            }
        }
    }
    [[nodiscard]] HDC Get() const noexcept { return m_dc; }
    void Release() { m_graphics.ReleaseContext(std::exchange(m_dc, nullptr)); }

private:
    GdipGraphics& m_graphics;
    HDC m_dc;
};

} // namespace

GdipDeviceRenderTarget::GdipDeviceRenderTarget(HDC dc, BitmapTargetMaker makeTarget)
    : GdipRenderTarget(DeviceOf(dc), makeTarget), m_dc(dc) {}

GdipDevice GdipDeviceRenderTarget::DeviceOf(HDC dc) {
    GdiplusScope::BringUp();
    const auto caps = [dc](int index) { return g_system.getDeviceCaps(dc, index); };
    GdipDevice device;
    device.area = {0, 0, caps(HORZRES), caps(VERTRES)};
    device.dpiX = static_cast<float>(caps(LOGPIXELSX));
    device.dpiY = static_cast<float>(caps(LOGPIXELSY));
    device.blends = (caps(SHADEBLENDCAPS) & SB_PIXEL_ALPHA) != 0;
    if (g_system.getObjectType(dc) == 0 || IsEmpty(device.area) || !(device.dpiX > 0.0F && device.dpiY > 0.0F)) {
        GX_RAISE("Graphics::GdipDeviceRenderTarget::GdipDeviceRenderTarget", "The DC does not exist");
    }
    return device;
}

std::unique_ptr<GdipGraphics> GdipDeviceRenderTarget::Open() {
    SetDevice(DeviceOf(m_dc)); // a host may change the paper orientation between two pages
    if (!m_devicePixels.emplace(m_dc)) {
        GX_RAISE("Graphics::GdipDeviceRenderTarget::Open", "The DC does not exist");
    }
    return std::make_unique<GdipGraphics>(m_dc);
}

void GdipDeviceRenderTarget::Place(GdipGraphics& graphics, const PixelView& pixels, const IntPoint& origin,
                                   const std::vector<IntRect>& rects) {
    BorrowedContext context(graphics);
    for (const IntRect& rect : rects) {
        const int width = rect.right - rect.left;
        const int height = rect.bottom - rect.top;
        // A bitmap of just these rows, because drivers disagree on the origin of a part.
        SwBitmapInfo info(static_cast<int32_t>(pixels.strideBytes / 4), height, 32);
        const uint8_t* rows = pixels.data + (rect.top - origin.y) * pixels.strideBytes;
        const int done = g_system.stretchDIBits(context.Get(), rect.left, rect.top, width, height, rect.left - origin.x,
                                                0, width, height, rows, info.Get(), DIB_RGB_COLORS, SRCCOPY);
        const RECT to{rect.left, rect.top, rect.right, rect.bottom};
        // Copying nothing is no failure if the host's clip excludes the rectangle.
        if (static_cast<DWORD>(done) == GDI_ERROR || (done == 0 && RectVisible(context.Get(), &to) != FALSE)) {
            GX_RAISE("Graphics::GdipDeviceRenderTarget::Place", "StretchDIBits is failed.");
        }
    }
    context.Release();
}

} // namespace Graphics
