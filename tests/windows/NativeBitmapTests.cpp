// SPDX-License-Identifier: MIT
// Bitmaps of GDI both ways: every format out, every depth and orientation in.
#include "WindowsSupport.h"

#include <random>

namespace {

using namespace TargetSupport;
using namespace WindowsSupport;

std::vector<uint8_t> Bytes(GXBitmap bitmap) {
    GXBitmapData data{};
    GXSize size{};
    EXPECT_EQ(GXBitmapGetSize(bitmap, &size), GXResultSuccess);
    EXPECT_EQ(GXBitmapLock(bitmap, nullptr, GXLockRead, &data), GXResultSuccess);
    std::vector<uint8_t> bytes;
    for (uint32_t y = 0; y < size.height; ++y) {
        const auto* row = static_cast<const uint8_t*>(data.data) + static_cast<size_t>(y) * data.stride;
        bytes.insert(bytes.end(), row, row + data.rowLength);
    }
    EXPECT_EQ(GXBitmapUnlock(bitmap), GXResultSuccess);
    return bytes;
}

GXPixelFormat Format(GXBitmap bitmap) {
    GXPixelFormat format = 0;
    EXPECT_EQ(GXBitmapGetPixelFormat(bitmap, &format), GXResultSuccess);
    return format;
}

struct DeleteBitmap {
    HBITMAP bitmap;
    ~DeleteBitmap() { DeleteObject(bitmap); }
};

TEST(NativeBitmap, EveryFormatGoesOutAsPremultipliedPixels) {
    std::mt19937 random(7);
    const uint32_t colors[] = {0xFF102030U, 0xFFA0B0C0U, 0xFF00FF00U};
    Owned<GXPalette> palette;
    ASSERT_EQ(GXCreatePalette(colors, 3, palette.Out()), GXResultSuccess);
    for (GXPixelFormat format = GXPixelFormatBGR24; format <= GXPixelFormatBlackWhite1; ++format) {
        const uint32_t width = 13;
        const uint32_t height = 5;
        const GXBitmapDesc desc{width, height, format, 300.0F, 72.0F};
        Owned<GXBitmap> bitmap;
        ASSERT_EQ(GXCreateBitmap(&desc, bitmap.Out()), GXResultSuccess);
        if (format == GXPixelFormatIndexed8) {
            ASSERT_EQ(GXBitmapSetPalette(bitmap, palette), GXResultSuccess);
        }
        GXBitmapData data{};
        ASSERT_EQ(GXBitmapLock(bitmap, nullptr, GXLockWrite, &data), GXResultSuccess);
        for (uint32_t y = 0; y < height; ++y) {
            auto* row = static_cast<uint8_t*>(data.data) + static_cast<size_t>(y) * data.stride;
            for (uint32_t x = 0; x < data.rowLength; ++x) {
                row[x] = static_cast<uint8_t>(random());
            }
            for (uint32_t x = 0; format == GXPixelFormatPBGRA32 && x < width; ++x) {
                for (uint32_t c = 0; c < 3; ++c) {
                    row[x * 4 + c] = static_cast<uint8_t>(row[x * 4 + c] * row[x * 4 + 3] / 255);
                }
            }
        }
        ASSERT_EQ(GXBitmapUnlock(bitmap), GXResultSuccess);

        GXNativeBitmap native = nullptr;
        ASSERT_EQ(GXBitmapSaveToHBITMAP(bitmap, &native), GXResultSuccess);
        const DeleteBitmap owner{static_cast<HBITMAP>(native)};
        DIBSECTION section{};
        ASSERT_EQ(GetObjectW(native, sizeof section, &section), static_cast<int>(sizeof section));
        EXPECT_EQ(section.dsBm.bmBitsPixel, 32);
        EXPECT_EQ(section.dsBmih.biXPelsPerMeter, 11811);
        // Every format must become what the library itself makes of it.
        const Owned<GXBitmap> expected = MakeBitmap(width, height, GXPixelFormatPBGRA32);
        ASSERT_EQ(GXBitmapCopyFromBitmap(expected, nullptr, bitmap, nullptr), GXResultSuccess);
        const std::vector<uint8_t> wanted = Bytes(expected);
        EXPECT_EQ(memcmp(section.dsBm.bmBits, wanted.data(), wanted.size()), 0) << "format " << format;

        Owned<GXBitmap> back;
        ASSERT_EQ(GXCreateBitmapFromHBITMAP(native, back.Out()), GXResultSuccess);
        const bool alpha =
            format == GXPixelFormatPBGRA32 || format == GXPixelFormatBGRA32 || format == GXPixelFormatAlpha8;
        EXPECT_EQ(Format(back), alpha ? GXPixelFormat{GXPixelFormatPBGRA32} : GXPixelFormat{GXPixelFormatBGRX32})
            << "format " << format;
        EXPECT_EQ(Bytes(back), wanted) << "format " << format;
        float dpiX = 0.0F, dpiY = 0.0F;
        ASSERT_EQ(GXBitmapGetDpiX(back, &dpiX), GXResultSuccess);
        ASSERT_EQ(GXBitmapGetDpiY(back, &dpiY), GXResultSuccess);
        EXPECT_EQ(dpiX, 300.0F);
        EXPECT_EQ(dpiY, 72.0F);
    }
}

TEST(NativeBitmap, EveryDepthAndOrientationComesIn) {
    std::mt19937 random(11);
    for (int bits : {1, 4, 8, 16, 24, 32}) {
        for (int direction : {1, -1}) {
            struct {
                BITMAPINFOHEADER header{};
                RGBQUAD colors[256]{};
            } info;
            info.header.biSize = sizeof info.header;
            info.header.biWidth = 11;
            info.header.biHeight = 6 * direction;
            info.header.biPlanes = 1;
            info.header.biBitCount = static_cast<WORD>(bits);
            for (RGBQUAD& c : info.colors) {
                const auto v = random();
                c = {static_cast<BYTE>(v), static_cast<BYTE>(v >> 8), static_cast<BYTE>(v >> 16), 0};
            }
            void* pixels = nullptr;
            const HBITMAP native =
                CreateDIBSection(nullptr, reinterpret_cast<BITMAPINFO*>(&info), DIB_RGB_COLORS, &pixels, nullptr, 0);
            ASSERT_NE(native, nullptr);
            const DeleteBitmap owner{native};
            for (int i = 0; i < (11 * bits + 31) / 32 * 4 * 6; ++i) {
                static_cast<uint8_t*>(pixels)[i] = static_cast<uint8_t>(random());
            }
            const HDC dc = CreateCompatibleDC(nullptr);
            const HGDIOBJ before = SelectObject(dc, native);
            std::vector<uint32_t> seen;
            for (int i = 0; i < 66; ++i) {
                const COLORREF c = GetPixel(dc, i % 11, i / 11);
                seen.push_back((c & 255) << 16 | (c & 0xFF00) | c >> 16);
            }
            SelectObject(dc, before);
            DeleteDC(dc);

            Owned<GXBitmap> loaded;
            ASSERT_EQ(GXCreateBitmapFromHBITMAP(native, loaded.Out()), GXResultSuccess);
            const GXPixelFormat expected = bits == 1    ? GXPixelFormatIndexed1
                                           : bits == 8  ? GXPixelFormatIndexed8
                                           : bits == 24 ? GXPixelFormatBGR24
                                                        : GXPixelFormatBGRX32;
            EXPECT_EQ(Format(loaded), expected) << bits;
            const Owned<GXBitmap> plain = MakeBitmap(11, 6, GXPixelFormatBGRX32);
            ASSERT_EQ(GXBitmapCopyFromBitmap(plain, nullptr, loaded, nullptr), GXResultSuccess);
            const std::vector<uint8_t> bytes = Bytes(plain);
            for (size_t i = 0; i < seen.size(); ++i) {
                const uint32_t got = static_cast<uint32_t>(bytes[i * 4 + 2]) << 16 |
                                     static_cast<uint32_t>(bytes[i * 4 + 1]) << 8 | bytes[i * 4];
                ASSERT_EQ(got, seen[i]) << bits << " bits, direction " << direction << ", pixel " << i;
            }
        }
    }
}

TEST(NativeBitmap, TheFourthByteIsAnAlphaOnlyWhereItCanBe) {
    struct Case {
        uint32_t a, b;
        GXPixelFormat format;
    };
    for (const Case& c : {Case{0x00102030, 0x00FFFFFF, GXPixelFormatBGRX32}, // GDI leaves it 0
                          Case{0xFF102030, 0xFFFFFFFF, GXPixelFormatBGRX32}, // opaque either way
                          Case{0xFF102030, 0x00000000, GXPixelFormatBGRX32}, // GDI drew black on an opaque picture
                          Case{0x80102030, 0x00000000, GXPixelFormatPBGRA32},
                          Case{0x80102030, 0x80818080, GXPixelFormatBGRX32}}) { // a colour above its alpha
        GdiPicture picture(2, 1);
        picture.Data()[0] = c.a;
        picture.Data()[1] = c.b;
        Owned<GXBitmap> loaded;
        ASSERT_EQ(GXCreateBitmapFromHBITMAP(picture.Bitmap(), loaded.Out()), GXResultSuccess);
        EXPECT_EQ(Format(loaded), c.format) << std::hex << c.a << " " << c.b;
    }
}

TEST(NativeBitmap, OneOfTheDeviceIsReadAndWhatIsNoneIsRefused) {
    const LastMessage message;
    const uint8_t stripes[] = {0xF0, 0, 0x0F, 0};
    const DeleteBitmap mono{CreateBitmap(8, 2, 1, 1, stripes)};
    Owned<GXBitmap> loaded;
    ASSERT_EQ(GXCreateBitmapFromHBITMAP(mono.bitmap, loaded.Out()), GXResultSuccess);
    EXPECT_EQ(Format(loaded), GXPixelFormat{GXPixelFormatIndexed1});
    EXPECT_EQ(Bytes(loaded), (std::vector<uint8_t>{0xF0, 0x0F}));
    const HDC display = GetDC(nullptr);
    const DeleteBitmap device{CreateCompatibleBitmap(display, 3, 3)};
    const HBRUSH brush = CreateSolidBrush(RGB(9, 8, 7));
    const GXNativeBitmap stranger = brush, nothing = reinterpret_cast<GXNativeBitmap>(0x1234567);
    Owned<GXBitmap> colors;
    ASSERT_EQ(GXCreateBitmapFromHBITMAP(device.bitmap, colors.Out()), GXResultSuccess);
    EXPECT_EQ(Format(colors), GXPixelFormat{GXPixelFormatBGRX32});
    for (GXNativeBitmap bad : {stranger, nothing}) {
        GXBitmap none = nullptr;
        EXPECT_EQ(GXCreateBitmapFromHBITMAP(bad, &none), GXResultEngineError);
        EXPECT_EQ(message.Text(), "Failed to load");
        EXPECT_EQ(none, nullptr);
    }
    DeleteObject(brush);
    ReleaseDC(nullptr, display);
}

} // namespace
