// SPDX-License-Identifier: MIT
#include "GdipCodec.h"

#include <algorithm>

#include "../../PixelTransfer.h"
#include "../../Windows/GdipBitmap.h"
#include "../CodecSupport.h"
#include "GdipDecoder.h"
#include "GlobalStream.h"

namespace Graphics {
namespace {

/// The installed encoder for the MIME type "image/" + `name`.
[[nodiscard]] bool FindEncoder(std::string_view name, CLSID& encoder) {
    UINT count = 0;
    UINT bytes = 0;
    Require(g_gdip.getImageEncodersSize(&count, &bytes) == Gdiplus::Ok);
    HeapArray<uint8_t> block; // the descriptions, followed by their strings
    block.resize(bytes);
    const auto* infos = reinterpret_cast<Gdiplus::ImageCodecInfo*>(block.data());
    Require(bytes / sizeof *infos >= count);
    Require(g_gdip.getImageEncoders(count, bytes, reinterpret_cast<Gdiplus::ImageCodecInfo*>(block.data())) ==
            Gdiplus::Ok);
    std::wstring wanted = L"image/";
    wanted.append(name.begin(), name.end());
    const auto* found = std::find_if(infos, infos + count, [&](const auto& info) { return wanted == info.MimeType; });
    if (found == infos + count) {
        return false;
    }
    encoder = found->Clsid;
    return true;
}

/// The pixels in a form that GDI+ stores unchanged: its conversion from premultiplied to straight colours rounds
/// differently from the engine's, and files must be the same on every platform. `made` owns converted pixels.
[[nodiscard]] PixelView SavedPixels(const SysMemBitmap& image, bool alpha, std::shared_ptr<SysMemBitmap>& made) {
    PixelView pixels = image.View();
    GXPixelFormat format = pixels.format;
    switch (pixels.format) {
    case GXPixelFormatPBGRA32:
    case GXPixelFormatBGRA32:
        format = alpha ? GXPixelFormatBGRA32 : GXPixelFormatBGR24;
        break;
    case GXPixelFormatAlpha8: // coverage becomes white with alpha; grey levels if the format has no alpha
        format = alpha ? GXPixelFormatBGRA32 : GXPixelFormatAlpha8;
        pixels.format = alpha ? GXPixelFormatAlpha8 : GXPixelFormatGray8;
        break;
    case GXPixelFormatAlpha1:
        format = alpha ? GXPixelFormatBGRA32 : GXPixelFormatAlpha1;
        pixels.format = alpha ? GXPixelFormatAlpha1 : GXPixelFormatBlackWhite1;
        break;
    default:
        break;
    }
    if (format == image.Format()) {
        return pixels;
    }
    made = NewImage(static_cast<uint64_t>(pixels.width), static_cast<uint64_t>(pixels.height), format);
    PixelTransfer::Copy(made->View(), pixels);
    return made->View();
}

} // namespace

bool GdipCodec::Recognizes(std::span<const uint8_t>) const noexcept { return true; }

std::unique_ptr<ImageDecoder> GdipCodec::Open(ByteSource& source) const {
    return std::make_unique<GdipDecoder>(source);
}

bool GdipCodec::Writes(std::string_view name) const {
    const GdiplusScope scope = StartForImages();
    CLSID encoder;
    return FindEncoder(name, encoder);
}

void GdipCodec::Save(const SysMemBitmap& image, std::string_view name, ByteSink& sink) const {
    const GdiplusScope scope = StartForImages();
    CLSID encoder;
    Require(FindEncoder(name, encoder));
    std::shared_ptr<SysMemBitmap> made;
    const PixelView pixels = SavedPixels(image, name != "jpeg", made);
    const GdipBitmap bitmap = KeepMessage([&] { return GdipBitmap(pixels, image.DpiX(), image.DpiY()); });
    // Written to memory first, because encoders read back what they wrote.
    GlobalStream file;
    Require(g_gdip.saveImageToStream(bitmap.Get(), file.Get(), &encoder, nullptr) == Gdiplus::Ok);
    file.CopyTo(sink);
}

} // namespace Graphics
