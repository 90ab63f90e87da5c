// SPDX-License-Identifier: MIT
// The seam between image files and the code that reads and writes them: one codec for each kind of file, or one for all
// where the platform's are one piece.
#pragma once

#include <exception>
#include <memory>
#include <span>
#include <stdexcept>
#include <string_view>

#include "../../Exception.h"
#include "../SysMemBitmap.h"
#include "ByteSink.h"
#include "ByteSource.h"

namespace Graphics {

/// What a codec throws when a file cannot be read or written, for whatever reason. Becomes the engine error in
/// ImageFile.
class ImageError final : public std::runtime_error {
public:
    ImageError() : std::runtime_error("image file") {}
};

/// An engine error that was raised already and goes on to the host as it is, where others become the one message.
struct RaisedImageError {
    std::exception_ptr error;
};

/// What `make` makes; engine errors keep their message.
template <class Make> auto KeepMessage(Make&& make) {
    try {
        return make();
    } catch (const Exception&) {
        throw RaisedImageError{std::current_exception()};
    }
}

/// An open image file.
class ImageDecoder {
public:
    ImageDecoder() = default;
    ImageDecoder(const ImageDecoder&) = delete;
    ImageDecoder& operator=(const ImageDecoder&) = delete;
    virtual ~ImageDecoder() = default;

    /// At least 1. Called at most once, before Load.
    [[nodiscard]] virtual uint32_t CountFrames() { return 1; }
    /// `frame` is 0 or below the count. Called at most once.
    [[nodiscard]] virtual std::shared_ptr<SysMemBitmap> Load(uint32_t frame) = 0;
};

class ImageCodec {
public:
    /// The first bytes of a file by which its kind is known.
    static constexpr size_t kHeadBytes = 16;

    ImageCodec() = default;
    ImageCodec(const ImageCodec&) = delete;
    ImageCodec& operator=(const ImageCodec&) = delete;
    virtual ~ImageCodec() = default;

    /// Whether a file that begins with these bytes (fewer than kHeadBytes when it is shorter) is of this kind.
    [[nodiscard]] virtual bool Recognizes(std::span<const uint8_t> head) const noexcept = 0;
    /// Reads the headers. `source` outlives the decoder.
    [[nodiscard]] virtual std::unique_ptr<ImageDecoder> Open(ByteSource& source) const = 0;

    /// Whether files are written for the MIME type "image/" + `name`; lower case.
    [[nodiscard]] virtual bool Writes(std::string_view name) const = 0;
    virtual void Save(const SysMemBitmap& image, std::string_view name, ByteSink& sink) const = 0;
};

/// The codecs of the build's platform, in the order in which they are asked.
[[nodiscard]] std::span<const ImageCodec* const> PlatformCodecs() noexcept;

} // namespace Graphics
