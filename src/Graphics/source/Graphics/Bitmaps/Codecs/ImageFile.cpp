// SPDX-License-Identifier: MIT
// All failures inside codecs (a damaged file, the system, memory) are turned into one message here.
#include "ImageFile.h"

#include <string>

#include "../../Exception.h"
#include "../../Utf8.h"
#include "ImageCodec.h"

namespace Graphics {
namespace {

[[nodiscard]] std::unique_ptr<ImageDecoder> Open(ByteSource& source) {
    uint8_t head[ImageCodec::kHeadBytes];
    const size_t size = source.ReadAt(0, head, sizeof head);
    for (const ImageCodec* codec : PlatformCodecs()) {
        if (codec->Recognizes({head, size})) {
            return codec->Open(source);
        }
    }
    throw ImageError();
}

/// A path in the file system's encoding, independent of the locale. Throws ImageError for invalid text.
[[nodiscard]] std::filesystem::path ToPath(const wchar_t* path) {
    std::u8string text;
    while (*path != 0) {
        const uint32_t c = NextCodePoint(path);
        if (c > 0x10FFFF || IsSurrogate(c)) {
            throw ImageError();
        }
        AppendUtf8(text, c);
    }
    return text;
}

/// Runs the work of a load or save; failures without a message of their own are raised with this one.
template <class Work> auto Attempt(const char* function, const char* message, Work&& work) {
    try {
        return work();
    } catch (const RaisedImageError& raised) {
        std::rethrow_exception(raised.error);
    } catch (const std::exception&) {
        GX_RAISE(function, message);
    }
}

/// The codec's name: the path's extension in lower case; empty if there is no dot.
[[nodiscard]] std::string CodecName(const std::wstring& path) {
    const size_t dot = path.rfind(L'.');
    std::string name;
    if (dot != std::wstring::npos) {
        for (const wchar_t c : path.substr(dot + 1)) {
            const bool upper = c >= L'A' && c <= L'Z';
            name += c > 0 && c < 128 ? static_cast<char>(upper ? c + 32 : c) : '?';
        }
    }
    return name == "jpg" ? "jpeg" : name == "tif" ? "tiff" : name;
}

} // namespace

std::shared_ptr<Bitmap> ImageFile::Load(const wchar_t* path) {
    return Attempt("Graphics::Bitmap::LoadFromFile", "Failed to load", [&] {
        FileSource source(ToPath(path));
        return std::make_shared<Bitmap>(Open(source)->Load(0));
    });
}

std::shared_ptr<Bitmap> ImageFile::LoadFrame(const wchar_t* path, uint32_t frame, uint32_t* frameCount) {
    constexpr const char* kFunction = "Graphics::Bitmap::LoadFromFileEx";
    std::shared_ptr<SysMemBitmap> image = Attempt(kFunction, "Failed to load", [&] {
        FileSource source(ToPath(path));
        const std::unique_ptr<ImageDecoder> decoder = Open(source);
        const uint32_t count = decoder->CountFrames();
        if (frameCount != nullptr) {
            *frameCount = count;
        }
        return frame < count ? decoder->Load(frame) : nullptr;
    });
    if (image == nullptr) {
        GX_RAISE(kFunction, "Failed to load. Frame index is out of range.");
    }
    return std::make_shared<Bitmap>(std::move(image));
}

std::shared_ptr<Bitmap> ImageFile::LoadFromMemory(const void* data, size_t size) {
    return Attempt("Graphics::Bitmap::LoadFromMemory", "Failed to load", [&] {
        MemorySource source(data, size);
        return std::make_shared<Bitmap>(Open(source)->Load(0));
    });
}

void ImageFile::Save(const Bitmap& bitmap, const wchar_t* path) {
    constexpr const char* kFunction = "Graphics::Bitmap::SaveToFile";
    if (bitmap.GetSize().width == 0 || bitmap.GetSize().height == 0) {
        GX_RAISE(kFunction, "Failed to save bitmap: Zero size");
    }
    const std::string name = CodecName(path);
    constexpr const char* kMessage = "Failed to save bitmap";
    const ImageCodec* writer = Attempt(kFunction, kMessage, [&] {
        const ImageCodec* found = nullptr;
        for (const ImageCodec* codec : PlatformCodecs()) {
            found = found == nullptr && codec->Writes(name) ? codec : found;
        }
        return found;
    });
    if (writer == nullptr) {
        GX_RAISE(kFunction, "Failed to save bitmap: Unknown file format");
    }
    Attempt(kFunction, kMessage, [&] {
        FileSink sink(ToPath(path));
        writer->Save(*bitmap.Image(), name, sink);
        sink.Commit();
    });
}

} // namespace Graphics
