// SPDX-License-Identifier: MIT
// Image files through GDI+: frames, formats that the engine does not have, every refusal of GDI+ with its message, and
// that all is given back.
#include "../ScratchFolder.h"
#include "WindowsSupport.h"

#include "ProcessHeap.h"
#include "Windows/GdipCalls.h"

#include <filesystem>
#include <fstream>
#include <map>

namespace {

using namespace TargetSupport;
using Gdiplus::GpStatus;
using Graphics::g_gdip;
using Graphics::GdipCalls;

constexpr const char* kLoad = "Failed to load";
constexpr const char* kSave = "Failed to save bitmap";
constexpr const char* kStart = "Failed to initialize GDI+";
constexpr const char* kWrap = "Failed to create Gdiplus bitmap of size - width: {3}; height: {2} and format {137224}";

using Bytes = std::vector<uint8_t>;

void Put(Bytes& out, uint32_t v, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        out.push_back(static_cast<uint8_t>(v >> 8 * i));
    }
}

/// Pages of one grey pixel each, uncompressed.
Bytes Tiff(const std::vector<uint8_t>& greys) {
    Bytes out = {'I', 'I', 42, 0, 8, 0, 0, 0};
    for (size_t page = 0; page < greys.size(); ++page) {
        const uint32_t entries[][3] = {{256, 3, 1}, {257, 3, 1}, {258, 3, 8}, {259, 3, 1}, {262, 3, 1},
                                       {273, 4, 0}, {277, 3, 1}, {278, 3, 1}, {279, 4, 1}};
        const auto start = static_cast<uint32_t>(out.size());
        const uint32_t pixelAt = start + 2 + 12 * static_cast<uint32_t>(std::size(entries)) + 4;
        Put(out, static_cast<uint32_t>(std::size(entries)), 2);
        for (const auto& e : entries) {
            Put(out, e[0], 2);
            Put(out, e[1], 2);
            Put(out, 1, 4);
            Put(out, e[0] == 273 ? pixelAt : e[2], 4);
        }
        Put(out, page + 1 < greys.size() ? pixelAt + 4 : 0, 4);
        Put(out, greys[page], 4); // and three bytes that nobody reads
    }
    return out;
}

/// A Windows bitmap of two pixels a row and two rows, bottom row first; `masks`: red, green, blue, alpha.
Bytes Bmp(uint32_t bits, const std::vector<uint32_t>& masks, const std::vector<uint32_t>& palette,
          const Bytes& pixels) {
    const uint32_t header = masks.size() == 4 ? 108 : 40;
    const auto at = static_cast<uint32_t>(14 + header + palette.size() * 4);
    Bytes out = {'B', 'M'};
    Put(out, at + static_cast<uint32_t>(pixels.size()), 4);
    Put(out, 0, 4);
    Put(out, at, 4);
    const uint32_t fields[] = {header, 2, 2, 1 | bits << 16, masks.empty() ? 0U : 3U, 0, 11811, 5906};
    for (const uint32_t field : fields) {
        Put(out, field, 4);
    }
    Put(out, static_cast<uint32_t>(palette.size()), 4);
    Put(out, 0, 4);
    for (const uint32_t mask : masks) {
        Put(out, mask, 4);
    }
    out.resize(14 + header);
    for (const uint32_t color : palette) {
        Put(out, color, 4);
    }
    out.insert(out.end(), pixels.begin(), pixels.end());
    return out;
}

/// Streams and blocks that are alive, and GDI+ sessions and images.
std::map<std::string, int> g_alive;

class GdipFiles : public ::testing::Test {
public:
    void SetUp() override {
        std::ofstream(tiff, std::ios::binary)
            .write(reinterpret_cast<const char*>(pages.data()), static_cast<std::streamsize>(pages.size()));
        Count();
    }
    void TearDown() override {
        g_gdip = GdipCalls();
        std::filesystem::remove(tiff);
        std::filesystem::remove(png);
    }

    /// What is opened is counted until it is closed.
    static void Count() {
        g_alive.clear();
        g_gdip = GdipCalls();
        g_gdip.startup = [](ULONG_PTR* token, const Gdiplus::GdiplusStartupInput* in,
                            Gdiplus::GdiplusStartupOutput* o) {
            const GpStatus status = Gdiplus::GdiplusStartup(token, in, o);
            g_alive["session"] += status == Gdiplus::Ok;
            return status;
        };
        g_gdip.shutdown = [](ULONG_PTR token) {
            EXPECT_EQ(g_alive["image"], 0);
            --g_alive["session"];
            Gdiplus::GdiplusShutdown(token);
        };
        g_gdip.createBitmapFromFile = [](const WCHAR* path, Gdiplus::GpBitmap** out) {
            const GpStatus status = Graphics::GdipFlat::GdipCreateBitmapFromFile(path, out);
            g_alive["image"] += status == Gdiplus::Ok;
            return status;
        };
        g_gdip.createBitmapFromStream = [](IStream* stream, Gdiplus::GpBitmap** out) {
            const GpStatus status = Graphics::GdipFlat::GdipCreateBitmapFromStream(stream, out);
            g_alive["image"] += status == Gdiplus::Ok;
            return status;
        };
        g_gdip.createBitmapFromScan0 = [](INT w, INT h, INT stride, Gdiplus::PixelFormat format, BYTE* pixels,
                                          Gdiplus::GpBitmap** out) {
            const GpStatus status = Graphics::GdipFlat::GdipCreateBitmapFromScan0(w, h, stride, format, pixels, out);
            g_alive["image"] += status == Gdiplus::Ok;
            return status;
        };
        g_gdip.disposeImage = [](Gdiplus::GpImage* image) {
            --g_alive["image"];
            return Graphics::GdipFlat::GdipDisposeImage(image);
        };
        g_gdip.createStreamOnHGlobal = [](HGLOBAL block, BOOL frees, IStream** out) -> HRESULT {
            EXPECT_EQ(frees != FALSE, block == nullptr); // one side frees it
            g_block = block;
            return ::CreateStreamOnHGlobal(block, frees, out);
        };
    }

    GXResult FromFile() {
        Owned<GXBitmap> bitmap;
        const GXResult result = GXCreateBitmapFromFile(tiff.c_str(), bitmap.Out());
        EXPECT_EQ(bitmap != nullptr, result == GXResultSuccess);
        return result;
    }
    GXResult Frame() {
        Owned<GXBitmap> bitmap;
        return GXCreateBitmapFromFileFrame(tiff.c_str(), 2, nullptr, bitmap.Out());
    }
    GXResult FromMemory() {
        Owned<GXBitmap> bitmap;
        return GXCreateBitmapFromMemory(pages.data(), pages.size(), bitmap.Out());
    }
    GXResult Save() {
        const GXResult result = GXBitmapSaveToFile(small, png.c_str());
        EXPECT_EQ(std::filesystem::remove(png), result == GXResultSuccess);
        return result;
    }

    const Bytes pages = Tiff({10, 20, 30});
    const std::filesystem::path tiff = ScratchFolder() / "pages.tif";
    const std::filesystem::path png = ScratchFolder() / "saved.png";
    const std::filesystem::path bmp = ScratchFolder() / "picture.bmp";
    const Owned<GXBitmap> small = MakeBitmap(3, 2, GXPixelFormatBGR24);
    const LastMessage message;
    static inline HGLOBAL g_block = nullptr;
};

TEST_F(GdipFiles, FramesAreThePagesOfAFile) {
    for (uint32_t frame = 0; frame < 3; ++frame) {
        Owned<GXBitmap> page;
        uint32_t count = 0;
        ASSERT_EQ(GXCreateBitmapFromFileFrame(tiff.c_str(), frame, &count, page.Out()), GXResultSuccess);
        EXPECT_EQ(count, 3U);
        const Owned<GXBitmap> color = MakeBitmap(1, 1, GXPixelFormatBGRA32);
        ASSERT_EQ(GXBitmapCopyFromBitmap(color, nullptr, page, nullptr), GXResultSuccess);
        uint32_t argb = 0;
        const GXBitmapData data{&argb, 4, 4};
        ASSERT_EQ(GXBitmapCopyToMemory(color, nullptr, &data), GXResultSuccess);
        EXPECT_EQ(argb, 0xFF000000U | 0x0A0A0AU * (frame + 1));
    }
    GXBitmap none = nullptr;
    uint32_t count = 0;
    EXPECT_EQ(GXCreateBitmapFromFileFrame(tiff.c_str(), 3, &count, &none), GXResultEngineError);
    EXPECT_EQ(message.Text(), "Failed to load. Frame index is out of range.");
    EXPECT_EQ(count, 3U);
}

/// Windows bitmaps are files like all others; what GDI+ gives is the result.
TEST_F(GdipFiles, WindowsBitmapsGoThroughGdiplus) {
    const struct {
        Bytes file;
        GXPixelFormat format;
        uint32_t colors[4]; ///< rows from the top
    } cases[] = {
        {Bmp(1, {}, {0x112233, 0xDDEEFF}, {0x40, 0, 0, 0, 0x80, 0, 0, 0}),
         GXPixelFormatIndexed1,
         {0xFFDDEEFF, 0xFF112233, 0xFF112233, 0xFFDDEEFF}},
        {Bmp(4, {}, {0x112233, 0xDDEEFF, 0x445566}, {0x21, 0, 0, 0, 0x02, 0, 0, 0}),
         GXPixelFormatBGRX32,
         {0xFF112233, 0xFF445566, 0xFF445566, 0xFFDDEEFF}},
        {Bmp(8, {}, {0x112233, 0xDDEEFF, 0x445566}, {2, 1, 0, 0, 0, 2, 0, 0}),
         GXPixelFormatIndexed8,
         {0xFF112233, 0xFF445566, 0xFF445566, 0xFFDDEEFF}},
        {Bmp(24, {}, {}, {1, 2, 3, 4, 5, 6, 0, 0, 7, 8, 9, 10, 11, 12, 0, 0}),
         GXPixelFormatBGR24,
         {0xFF090807, 0xFF0C0B0A, 0xFF030201, 0xFF060504}},
        {Bmp(32, {}, {}, {1, 2, 3, 40, 4, 5, 6, 50, 7, 8, 9, 60, 10, 11, 12, 70}),
         GXPixelFormatBGRX32,
         {0xFF090807, 0xFF0C0B0A, 0xFF030201, 0xFF060504}},
        // A mask of alpha does not make the file one with alpha.
        {Bmp(32, {0xFF0000, 0xFF00, 0xFF, 0xFF000000}, {}, {1, 2, 3, 40, 4, 5, 6, 50, 7, 8, 9, 60, 10, 11, 12, 70}),
         GXPixelFormatBGRX32,
         {0xFF090807, 0xFF0C0B0A, 0xFF030201, 0xFF060504}},
    };
    for (const auto& c : cases) {
        const size_t index = static_cast<size_t>(&c - cases);
        std::ofstream(bmp, std::ios::binary)
            .write(reinterpret_cast<const char*>(c.file.data()), static_cast<std::streamsize>(c.file.size()));
        for (const bool fromFile : {true, false}) {
            Owned<GXBitmap> loaded;
            ASSERT_EQ(fromFile ? GXCreateBitmapFromFile(bmp.c_str(), loaded.Out())
                               : GXCreateBitmapFromMemory(c.file.data(), c.file.size(), loaded.Out()),
                      GXResultSuccess)
                << index;
            GXPixelFormat format = 0;
            float dpi = 0.0F;
            ASSERT_EQ(GXBitmapGetPixelFormat(loaded, &format), GXResultSuccess);
            ASSERT_EQ(GXBitmapGetDpiX(loaded, &dpi), GXResultSuccess);
            EXPECT_EQ(format, c.format) << index;
            EXPECT_NEAR(dpi, 300.0F, 0.1F) << index;
            const Owned<GXBitmap> straight = MakeBitmap(2, 2, GXPixelFormatBGRA32);
            ASSERT_EQ(GXBitmapCopyFromBitmap(straight, nullptr, loaded, nullptr), GXResultSuccess);
            uint32_t colors[4] = {};
            const GXBitmapData data{colors, 8, 8};
            ASSERT_EQ(GXBitmapCopyToMemory(straight, nullptr, &data), GXResultSuccess);
            for (size_t i = 0; i < 4; ++i) {
                EXPECT_EQ(colors[i], c.colors[i]) << index << " " << i;
            }
        }
    }
    GXBitmap none = nullptr;
    g_gdip.startup = [](ULONG_PTR*, const Gdiplus::GdiplusStartupInput*, Gdiplus::GdiplusStartupOutput*) {
        return Gdiplus::GenericError;
    };
    EXPECT_EQ(GXCreateBitmapFromFile(bmp.c_str(), &none), GXResultEngineError);
    EXPECT_EQ(message.Text(), kStart);
    EXPECT_EQ(GXBitmapSaveToFile(small, bmp.c_str()), GXResultEngineError);
    EXPECT_EQ(message.Text(), kStart);
    std::filesystem::remove(bmp);
}

TEST_F(GdipFiles, EveryRefusalHasItsMessageAndLosesNothing) {
    using Fixture = GdipFiles;
    using Work = GXResult (Fixture::*)();
    struct Case {
        const char* call;
        void (*refuse)();
        std::vector<Work> works;
        const char* message;
    };
    using Image = Gdiplus::GpImage;
#define REFUSE(entry, ...) #entry, [] { g_gdip.entry = [](__VA_ARGS__) { return Gdiplus::GenericError; }; }
    const std::vector<Work> loads = {&Fixture::FromFile, &Fixture::Frame, &Fixture::FromMemory};
    const Case cases[] = {
        {REFUSE(startup, ULONG_PTR*, const Gdiplus::GdiplusStartupInput*, Gdiplus::GdiplusStartupOutput*),
         {&Fixture::FromFile, &Fixture::Frame, &Fixture::FromMemory, &Fixture::Save},
         kStart},
        {REFUSE(createBitmapFromFile, const WCHAR*, Gdiplus::GpBitmap**), {&Fixture::FromFile, &Fixture::Frame}, kLoad},
        {REFUSE(createBitmapFromStream, IStream*, Gdiplus::GpBitmap**), {&Fixture::FromMemory}, kLoad},
        {"createStreamOnHGlobal (load)",
         [] { g_gdip.createStreamOnHGlobal = [](HGLOBAL, BOOL, IStream**) -> HRESULT { return E_OUTOFMEMORY; }; },
         {&Fixture::FromMemory},
         kLoad},
        {"globalAlloc",
         [] { g_gdip.globalAlloc = [](UINT, SIZE_T) -> HGLOBAL { return nullptr; }; },
         {&Fixture::FromMemory},
         kLoad},
        {REFUSE(imageGetFrameDimensionsCount, Image*, UINT*), {&Fixture::Frame}, kLoad},
        {REFUSE(imageGetFrameDimensionsList, Image*, GUID*, UINT), {&Fixture::Frame}, kLoad},
        {REFUSE(imageGetFrameCount, Image*, const GUID*, UINT*), {&Fixture::Frame}, kLoad},
        {REFUSE(imageSelectActiveFrame, Image*, const GUID*, UINT), {&Fixture::Frame}, kLoad},
        {REFUSE(getImageWidth, Image*, UINT*), loads, kLoad},
        {REFUSE(getImageHeight, Image*, UINT*), loads, kLoad},
        {REFUSE(getImageHorizontalResolution, Image*, float*), loads, kLoad},
        {REFUSE(getImageVerticalResolution, Image*, float*), loads, kLoad},
        {REFUSE(getImagePixelFormat, Image*, Gdiplus::PixelFormat*), loads, kLoad},
        {REFUSE(getImagePaletteSize, Image*, INT*), loads, kLoad},
        {REFUSE(getImagePalette, Image*, Gdiplus::ColorPalette*, INT), loads, kLoad},
        {REFUSE(bitmapLockBits, Gdiplus::GpBitmap*, const Gdiplus::GpRect*, UINT, Gdiplus::PixelFormat,
                Gdiplus::BitmapData*),
         loads, kLoad},
        {REFUSE(getImageEncodersSize, UINT*, UINT*), {&Fixture::Save}, kSave},
        {REFUSE(getImageEncoders, UINT, UINT, Gdiplus::ImageCodecInfo*), {&Fixture::Save}, kSave},
        {REFUSE(createBitmapFromScan0, INT, INT, INT, Gdiplus::PixelFormat, BYTE*, Gdiplus::GpBitmap**),
         {&Fixture::Save},
         kWrap},
        {REFUSE(bitmapSetResolution, Gdiplus::GpBitmap*, float, float), {&Fixture::Save}, kWrap},
        {REFUSE(saveImageToStream, Image*, IStream*, const CLSID*, const Gdiplus::EncoderParameters*),
         {&Fixture::Save},
         kSave},
        {"createStreamOnHGlobal (save)",
         [] { g_gdip.createStreamOnHGlobal = [](HGLOBAL, BOOL, IStream**) -> HRESULT { return E_OUTOFMEMORY; }; },
         {&Fixture::Save},
         kSave},
    };
#undef REFUSE
    for (const Case& c : cases) {
        for (const Work work : c.works) {
            Count();
            c.refuse();
            EXPECT_EQ((this->*work)(), GXResultEngineError) << c.call;
            EXPECT_EQ(message.Text(), c.message) << c.call;
            EXPECT_EQ(g_alive["image"], 0) << c.call;
            EXPECT_EQ(g_alive["session"], 0) << c.call;
            Count();
            EXPECT_EQ((this->*work)(), GXResultSuccess) << "after " << c.call;
        }
    }
}

TEST_F(GdipFiles, RefusedMemoryIsTheSameMessageAndLosesNothing) {
    using Work = GXResult (GdipFiles::*)();
    for (const Work work : {&GdipFiles::FromFile, &GdipFiles::Frame, &GdipFiles::FromMemory, &GdipFiles::Save}) {
        int failures = 0;
        for (int64_t n = 0;; ++n) {
            Count();
            Graphics::ProcessHeap::FailAfter(n);
            const GXResult result = (this->*work)();
            Graphics::ProcessHeap::FailAfter(-1);
            EXPECT_EQ(g_alive["image"], 0);
            EXPECT_EQ(g_alive["session"], 0);
            if (result == GXResultSuccess) {
                break;
            }
            ++failures;
            EXPECT_EQ(message.Text(), work == &GdipFiles::Save ? kSave : kLoad);
            ASSERT_LT(n, 100);
        }
        EXPECT_GT(failures, 0);
    }
}

TEST_F(GdipFiles, TheBlockOfAFileInMemoryIsFreed) {
    ASSERT_EQ(FromMemory(), GXResultSuccess);
    const HGLOBAL block = g_block;
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(GlobalFlags(block), static_cast<UINT>(GMEM_INVALID_HANDLE));
}

TEST_F(GdipFiles, DamagedFilesAreRefusedAndLoseNothing) {
    GXBitmap none = nullptr;
    for (size_t n = 1; n < 100; n += 7) { // shorter than the first page
        EXPECT_EQ(GXCreateBitmapFromMemory(pages.data(), n, &none), GXResultEngineError) << n;
        EXPECT_EQ(message.Text(), kLoad);
        EXPECT_EQ(g_alive["image"], 0) << n;
    }
    Bytes huge = Tiff({1});
    huge[18] = huge[19] = huge[30] = huge[31] = 0xFF; // width and height
    EXPECT_EQ(GXCreateBitmapFromMemory(huge.data(), huge.size(), &none), GXResultEngineError);
    EXPECT_EQ(message.Text(), kLoad);
    EXPECT_EQ(none, nullptr);
    EXPECT_EQ(g_alive["session"], 0);
}

} // namespace
