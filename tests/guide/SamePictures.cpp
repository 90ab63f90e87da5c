// SPDX-License-Identifier: MIT
// same_pictures EXPECTED ACTUAL: two image files of the same size with the same pixels, whatever their formats.
#include <GX/GX.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <vector>

namespace {

struct Picture {
    GXSize size{};
    std::vector<uint8_t> pixels; // blue, green, red, alpha; not premultiplied
};

bool Read(const char* file, Picture& picture) {
    GXBitmap loaded = nullptr, plain = nullptr;
    bool good = GXCreateBitmapFromFile(std::filesystem::path(file).wstring().c_str(), &loaded) == GXResultSuccess &&
                GXBitmapGetSize(loaded, &picture.size) == GXResultSuccess;
    const GXBitmapDesc desc = {picture.size.width, picture.size.height, GXPixelFormatBGRA32, 96.0f, 96.0f};
    good = good && GXCreateBitmap(&desc, &plain) == GXResultSuccess &&
           GXBitmapCopyFromBitmap(plain, nullptr, loaded, nullptr) == GXResultSuccess;
    if (good) {
        picture.pixels.resize(size_t{4} * desc.width * desc.height);
        const GXBitmapData rows = {picture.pixels.data(), 4 * desc.width, 4 * desc.width};
        good = GXBitmapCopyToMemory(plain, nullptr, &rows) == GXResultSuccess;
    }
    for (void* const object : {static_cast<void*>(loaded), static_cast<void*>(plain)})
        GXObjectRelease(object);
    if (!good)
        std::fprintf(stderr, "%s cannot be read\n", file);
    return good;
}

} // namespace

int main(int argc, char** argv) {
    Picture expected, actual;
    if (argc != 3 || !Read(argv[1], expected) || !Read(argv[2], actual))
        return 2;
    if (std::memcmp(&expected.size, &actual.size, sizeof(GXSize)) != 0) {
        std::fprintf(stderr, "%s has %u x %u pixels, not %u x %u\n", argv[2], actual.size.width, actual.size.height,
                     expected.size.width, expected.size.height);
        return 1;
    }
    size_t differ = 0, first = 0;
    for (size_t i = expected.pixels.size(); i-- > 0;) {
        if (expected.pixels[i] != actual.pixels[i]) {
            ++differ;
            first = i;
        }
    }
    if (differ != 0) {
        const size_t width = expected.size.width;
        std::fprintf(stderr, "%s: %zu bytes differ from %s, the first at pixel (%zu, %zu): %u, not %u\n", argv[2],
                     differ, argv[1], first / 4 % width, first / 4 / width, actual.pixels[first],
                     expected.pixels[first]);
        return 1;
    }
    return 0;
}
