// SPDX-License-Identifier: MIT
// Image files in memory, one kind for each build. Every frame up to the eighth is loaded and its pixels are read.
#include <cstdint>
#include <cstring>
#include <exception>
#include <string_view>

#include "Bitmaps/Codecs/ImageCodec.h"
#include "Bitmaps/PixelTransfer.h"

using namespace Graphics;

namespace {

/// Images above this are only slow: the codecs' own limits are those of the bitmaps.
constexpr uint64_t kMostPixels = 1U << 20;

/// Written so that the reads are not left out.
volatile uint32_t g_sum = 0;

/// Whether the file begins as its kind does: another kind's size would not be looked at.
bool IsOfKind(const uint8_t* data, size_t size) {
    constexpr struct {
        const char* kind;
        std::string_view begin;
    } kKinds[] = {{"png", "\x89PNG"}, {"jpeg", "\xFF\xD8"}, {"tiff", "II"},
                  {"tiff", "MM"},     {"gif", "GIF"},       {"bmp", "BM"}};
    for (const auto& k : kKinds) {
        if (std::strcmp(GX_FUZZ_KIND, k.kind) == 0 && size >= k.begin.size() &&
            std::memcmp(data, k.begin.data(), k.begin.size()) == 0) {
            return true;
        }
    }
    return false;
}

/// The size that the file claims; 0 where it lies too deep.
uint64_t ClaimedPixels(const uint8_t* data, size_t size) {
    const auto big = [&](size_t at) {
        return static_cast<uint64_t>(data[at]) << 24 | static_cast<uint64_t>(data[at + 1]) << 16 |
               static_cast<uint64_t>(data[at + 2]) << 8 | data[at + 3];
    };
    const auto little = [&](size_t at) { return __builtin_bswap32(static_cast<uint32_t>(big(at))); };
    if (std::strcmp(GX_FUZZ_KIND, "png") == 0 && size > 24) {
        return big(16) * big(20);
    }
    if (std::strcmp(GX_FUZZ_KIND, "gif") == 0 && size > 10) {
        return static_cast<uint64_t>(data[6] | data[7] << 8) * static_cast<uint64_t>(data[8] | data[9] << 8);
    }
    if (std::strcmp(GX_FUZZ_KIND, "bmp") == 0 && size > 26 && little(14) > 12) {
        return static_cast<uint64_t>(little(18)) * (little(22) >> 31 != 0 ? 0U - little(22) : little(22));
    }
    if (std::strcmp(GX_FUZZ_KIND, "jpeg") == 0) {
        for (size_t i = 2; i + 9 < size; ++i) {
            if (data[i] == 0xFF && data[i + 1] >= 0xC0 && data[i + 1] <= 0xC2) {
                return (big(i + 5) >> 16) * (big(i + 5) & 0xFFFF);
            }
        }
    }
    return 0;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (!IsOfKind(data, size) || ClaimedPixels(data, size) > kMostPixels) {
        return 0;
    }
    MemorySource source(data, size);
    for (const ImageCodec* codec : PlatformCodecs()) {
        if (!codec->Recognizes({data, size < ImageCodec::kHeadBytes ? size : ImageCodec::kHeadBytes})) {
            continue;
        }
        try {
            const uint32_t count = codec->Open(source)->CountFrames();
            for (uint32_t frame = 0; frame < count && frame < 8; ++frame) {
                const auto image = codec->Open(source)->Load(frame);
                const PixelView view = image->View();
                uint32_t sum = 0;
                for (int32_t y = 0; y < view.height; ++y) {
                    for (ptrdiff_t i = 0; i < view.strideBytes; ++i) {
                        sum += view.data[y * view.strideBytes + i];
                    }
                }
                g_sum = sum;
            }
        } catch (const std::exception&) { // refused
        }
        break;
    }
    return 0;
}
