// SPDX-License-Identifier: MIT
// The interface between image files and the code that reads and writes them: one codec for each kind of file, or one
// for all kinds if the platform provides it as one.
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

/// Thrown by a codec that cannot read or write a file, for whatever reason. ImageFile turns it into the engine error.
class ImageError final : public std::runtime_error {
public:
    ImageError() : std::runtime_error("image file") {}
};

/// Carries an engine error that must reach the host unchanged, past ImageFile's single message.
struct RaisedImageError {
    std::exception_ptr error;
};

/// Returns make(); engine errors thrown by it keep their message.
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
    /// The number of leading bytes by which a file's kind is recognised.
    static constexpr size_t kHeadBytes = 16;

    ImageCodec() = default;
    ImageCodec(const ImageCodec&) = delete;
    ImageCodec& operator=(const ImageCodec&) = delete;
    virtual ~ImageCodec() = default;

    /// Whether a file that begins with these bytes (fewer than kHeadBytes if the file is shorter) is of this kind.
    [[nodiscard]] virtual bool Recognizes(std::span<const uint8_t> head) const noexcept = 0;
    /// Reads the headers. `source` must outlive the decoder.
    [[nodiscard]] virtual std::unique_ptr<ImageDecoder> Open(ByteSource& source) const = 0;

    /// Whether the codec writes files of the MIME type "image/" + `name`, in lower case.
    [[nodiscard]] virtual bool Writes(std::string_view name) const = 0;
    virtual void Save(const SysMemBitmap& image, std::string_view name, ByteSink& sink) const = 0;
};

/// The codecs of the build's platform, in the order in which they are tried.
[[nodiscard]] std::span<const ImageCodec* const> PlatformCodecs() noexcept;

} // namespace Graphics
