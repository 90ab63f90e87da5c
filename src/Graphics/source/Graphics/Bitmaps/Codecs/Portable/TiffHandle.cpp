// SPDX-License-Identifier: MIT
#include "TiffHandle.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <utility>

namespace Graphics {
namespace {

/// The size limit of a bitmap, and therefore of any part of one.
constexpr tmsize_t kMostBytes = 0x7FFFFFFF;

} // namespace

TiffHandle::TiffHandle(ByteSource& source) : m_source(&source) { Open("rm"); }

TiffHandle::TiffHandle(ByteSink& sink) : m_sink(&sink) { Open("w"); }

TiffHandle::~TiffHandle() { TIFFClose(m_tiff); }

bool TiffHandle::TakeFailure() noexcept { return std::exchange(m_failed, false); }

void TiffHandle::Open(const char* mode) {
    const auto read = [](thandle_t handle, void* dst, tmsize_t count) -> tmsize_t {
        auto* self = static_cast<TiffHandle*>(handle);
        if (self->m_source == nullptr || count < 0) {
            return -1;
        }
        const size_t got = self->m_source->ReadAt(self->m_position, dst, static_cast<size_t>(count));
        self->m_position += got;
        return static_cast<tmsize_t>(got);
    };
    const auto write = [](thandle_t handle, void* data, tmsize_t count) -> tmsize_t {
        auto* self = static_cast<TiffHandle*>(handle);
        const bool good =
            self->m_sink != nullptr && count >= 0 && self->m_sink->Write(data, static_cast<size_t>(count));
        return good ? count : -1;
    };
    const auto seek = [](thandle_t handle, toff_t offset, int whence) -> toff_t {
        auto* self = static_cast<TiffHandle*>(handle);
        const bool reads = self->m_source != nullptr;
        const uint64_t size = reads ? self->m_source->Size() : self->m_sink->Size();
        const uint64_t now = reads ? self->m_position : self->m_sink->Position();
        const uint64_t to = offset + (whence == SEEK_CUR ? now : whence == SEEK_END ? size : 0);
        if (reads) {
            self->m_position = to;
            return to;
        }
        return self->m_sink->Seek(to) ? to : static_cast<toff_t>(-1);
    };
    const auto size = [](thandle_t handle) -> toff_t {
        auto* self = static_cast<TiffHandle*>(handle);
        return self->m_source != nullptr ? self->m_source->Size() : self->m_sink->Size();
    };
    const auto onError = [](TIFF*, void* self, const char*, const char*, va_list) -> int {
        static_cast<TiffHandle*>(self)->m_failed = true;
        return 1;
    };
    const auto onWarning = [](TIFF*, void* self, const char*, const char* format, va_list arguments) -> int {
        char text[256];
        std::vsnprintf(text, sizeof text, format, arguments);
        // Data that end early, including a tag's data, which libtiff then omits; and byte counts that contradict the
        // pixels.
        const auto says = [&text](const char* words) { return std::strstr(text, words) != nullptr; };
        if (says("remature") || says("Corrupt") || says("IO error") ||
            (says("StripByteCounts") && says("ignoring and calculating"))) {
            static_cast<TiffHandle*>(self)->m_failed = true;
        }
        return 1;
    };
    struct FreeOptions {
        void operator()(TIFFOpenOptions* options) const noexcept { TIFFOpenOptionsFree(options); }
    };
    const std::unique_ptr<TIFFOpenOptions, FreeOptions> options(TIFFOpenOptionsAlloc());
    if (options == nullptr) {
        throw ImageError();
    }
    TIFFOpenOptionsSetMaxSingleMemAlloc(options.get(), kMostBytes);
    TIFFOpenOptionsSetErrorHandlerExtR(options.get(), onError, this);
    TIFFOpenOptionsSetWarningHandlerExtR(options.get(), onWarning, this);
    m_tiff = TIFFClientOpenExt(
        "image", mode, this, read, write, seek, [](thandle_t) { return 0; }, size,
        [](thandle_t, void**, toff_t*) { return 0; }, [](thandle_t, void*, toff_t) {}, options.get());
    if (m_tiff == nullptr) {
        throw ImageError();
    }
}

} // namespace Graphics
