// SPDX-License-Identifier: MIT
// Bitmaps saved and loaded again, in every format and kind of file, and what a failed save leaves behind: nothing.
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <sys/resource.h>

#include "../../ScratchFolder.h"
#include "../ImageSupport.h"
#include "Bitmaps/Codecs/ImageCodec.h"
#include "ProcessHeap.h"

using namespace Graphics;
using namespace ImageSupport;

namespace {

class ImageFiles : public testing::Test {
protected:
    ImageFiles() { std::filesystem::create_directories(m_folder); }
    ~ImageFiles() override { std::filesystem::remove_all(m_folder); }

    [[nodiscard]] std::wstring Path(const char* name) const {
        const std::string start = ScratchFolder().string(), end = name;
        return std::wstring(start.begin(), start.end()) + L"/\u00E4\u03A9\u6587\U0001F58C/" +
               std::wstring(end.begin(), end.end());
    }
    [[nodiscard]] size_t FileCount() const {
        return static_cast<size_t>(std::distance(std::filesystem::directory_iterator(m_folder), {}));
    }
    [[nodiscard]] static std::string SaveRefusal(const Bitmap& bitmap, const std::wstring& path) {
        try {
            ImageFile::Save(bitmap, path.c_str());
            return {};
        } catch (const Exception& e) {
            return e.what();
        }
    }

    // Not ASCII: paths are UTF-8 in the file system.
    const std::filesystem::path m_folder = ScratchFolder() / u8"\u00E4\u03A9\u6587\U0001F58C";
};

std::shared_ptr<Bitmap> RandomBitmap(GXPixelFormat format, size_t colors, bool paletteAlpha, std::mt19937& random) {
    const uint32_t width = 1 + random() % 40, height = 1 + random() % 20;
    auto bitmap = Bitmap::Create({width, height, format, 150.0F, 72.0F});
    const PixelView view = bitmap->View();
    for (int32_t y = 0; y < view.height; ++y) {
        const Bytes row = RandomBytes(static_cast<size_t>(view.strideBytes), random);
        std::memcpy(view.data + y * view.strideBytes, row.data(), row.size());
    }
    if (format == GXPixelFormatPBGRA32) { // colours not above alpha
        auto straight = Bitmap::Create({width, height, GXPixelFormatBGRA32, 96.0F, 96.0F});
        straight->CopyFromMemory(nullptr, {view.data, width * 4, static_cast<uint32_t>(view.strideBytes)});
        bitmap->CopyFromBitmap(nullptr, *straight, nullptr);
    }
    if (colors != 0) {
        std::vector<uint32_t> palette(colors);
        for (uint32_t& c : palette) {
            c = random() | (paletteAlpha ? 0 : 0xFF000000U);
        }
        bitmap->SetPalette(std::make_shared<const Palette>(palette.data(), colors));
    }
    return bitmap;
}

TEST_F(ImageFiles, EveryFormatComesBackAsItWas) {
    std::mt19937 random(1);
    for (const char* name : {"a.png", "a.TIF", "a.tiff", "a.bmp"}) {
        for (uint32_t format = 1; format <= 10; ++format) {
            const bool indexed = format == GXPixelFormatIndexed8 || format == GXPixelFormatIndexed1;
            for (const size_t colors : {0, 1, 2, 77, 256, 300}) {
                for (const bool alpha : {false, true}) {
                    if (!indexed && (colors != 0 || alpha)) {
                        continue;
                    }
                    SCOPED_TRACE(testing::Message() << name << " format " << format << " colours " << colors << alpha);
                    const auto bitmap = RandomBitmap(format, colors, alpha, random);
                    ImageFile::Save(*bitmap, Path(name).c_str());
                    const auto loaded = ImageFile::Load(Path(name).c_str());
                    ASSERT_EQ(Argb(*loaded), Argb(*bitmap));
                    EXPECT_EQ(loaded->DpiX(), 150.0F);
                    EXPECT_EQ(loaded->DpiY(), 72.0F);
                    const bool kept = format == GXPixelFormatBGR24 || format == GXPixelFormatBGRA32 ||
                                      (indexed && (!alpha || name == std::string("a.png")));
                    if (kept) {
                        EXPECT_EQ(loaded->Format(), format);
                    }
                    EXPECT_EQ(FileCount(), 1U);
                }
            }
            std::filesystem::remove(m_folder / name);
        }
    }
}

TEST_F(ImageFiles, JpegKeepsTheLookAndDropsAlpha) {
    for (uint32_t format = 1; format <= 10; ++format) {
        auto bitmap = Bitmap::Create({40, 30, format, 300.0F, 150.0F});
        bitmap->ColorFill(nullptr, {0.2F, 0.6F, 0.9F, 1.0F});
        ImageFile::Save(*bitmap, Path("a.JPG").c_str());
        const auto loaded = ImageFile::Load(Path("a.JPG").c_str());
        EXPECT_EQ(loaded->DpiX(), 300.0F);
        EXPECT_EQ(loaded->DpiY(), 150.0F);
        const std::vector<uint32_t> before = Argb(*bitmap), after = Argb(*loaded);
        for (size_t i = 0; i < before.size(); ++i) {
            for (int shift = 0; shift < 24; shift += 8) {
                ASSERT_NEAR(static_cast<int>(before[i] >> shift & 255), static_cast<int>(after[i] >> shift & 255), 3)
                    << "format " << format;
            }
        }
    }
}

TEST_F(ImageFiles, OtherProgramsAcceptThem) {
    const std::pair<const char*, const char*> tools[] = {
        {"pngcheck -q", "a.png"},
        {"djpeg -outfile /dev/null", "a.jpg"},
        {"tiffinfo -D", "a.tif"},
        {"identify -regard-warnings -verbose", "a.bmp"}}; // verbose: the pixels are read
    std::mt19937 random(4);
    int known = 0;
    for (const auto& [tool, name] : tools) {
        const std::string program(tool, std::string_view(tool).find(' '));
        if (std::system(("command -v " + program + " > /dev/null").c_str()) != 0) {
            continue;
        }
        ++known;
        for (uint32_t format = 1; format <= 10; ++format) {
            const auto bitmap = RandomBitmap(format, format == GXPixelFormatIndexed8 ? 256 : 0, false, random);
            ImageFile::Save(*bitmap, Path(name).c_str());
            std::string command = tool;
            command += " '" + (m_folder / name).string() + "' > /dev/null";
            EXPECT_EQ(std::system(command.c_str()), 0) << command << " format " << format;
        }
    }
    if (known == 0) {
        GTEST_SKIP() << "none of the programs is installed";
    }
}

TEST_F(ImageFiles, RefusedSavesLeaveEverythingAsItWas) {
    std::mt19937 random(2);
    const auto bitmap = RandomBitmap(GXPixelFormatBGRA32, 0, false, random);
    for (const char* name : {"a.xyz", "a", "a.", "a.gif", "a.png/x", "a.jpgg"}) {
        EXPECT_EQ(SaveRefusal(*bitmap, Path(name)), "Failed to save bitmap: Unknown file format") << name;
    }
    EXPECT_EQ(SaveRefusal(*bitmap, Path("none/a.png")), "Failed to save bitmap");
    const wchar_t noText[] = {L'a', static_cast<wchar_t>(0xD800), L'.', L'p', L'n', L'g', 0};
    EXPECT_EQ(SaveRefusal(*bitmap, noText), "Failed to save bitmap");
    std::filesystem::create_directory(m_folder / "folder.png");
    EXPECT_EQ(SaveRefusal(*bitmap, Path("folder.png")), "Failed to save bitmap");
    std::filesystem::remove(m_folder / "folder.png");
    EXPECT_EQ(FileCount(), 0U);

    // A full disk, as the limit of a file's size; what was there before stays.
    auto large = Bitmap::Create({300, 300, GXPixelFormatBGR24, 96.0F, 96.0F});
    const PixelView view = large->View();
    for (int32_t y = 0; y < view.height; ++y) {
        const Bytes row = RandomBytes(900, random);
        std::memcpy(view.data + y * view.strideBytes, row.data(), row.size());
    }
    rlimit old{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &old), 0);
    const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
    for (const char* name : {"a.png", "a.jpg", "a.tif", "a.bmp"}) {
        std::ofstream(m_folder / name) << "before";
        const rlimit small{20000, old.rlim_max};
        ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
        const std::string refusal = SaveRefusal(*large, Path(name));
        ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &old), 0);
        EXPECT_EQ(refusal, "Failed to save bitmap");
        std::string content;
        std::ifstream(m_folder / name) >> content;
        EXPECT_EQ(content, "before");
        EXPECT_EQ(FileCount(), 1U);
        std::filesystem::remove(m_folder / name);
    }
    std::signal(SIGXFSZ, oldHandler);
}

TEST_F(ImageFiles, RefusedMemoryIsAFailedLoadOrSave) {
    std::mt19937 random(3);
    for (const char* name : {"a.png", "a.jpg", "a.tif", "a.bmp"}) {
        const auto bitmap = RandomBitmap(GXPixelFormatBGRA32, 0, false, random);
        for (int64_t n = 0, failures = 1; failures != 0; ++n) {
            failures = 0;
            ProcessHeap::FailAfter(n);
            failures += SaveRefusal(*bitmap, Path(name)).empty() ? 0 : 1;
            ProcessHeap::FailAfter(-1);
            EXPECT_EQ(FileCount(), failures == 0 ? 1U : 0U);
        }
        for (int64_t n = 0, failures = 1; failures != 0; ++n) {
            failures = 0;
            ProcessHeap::FailAfter(n);
            try {
                (void)ImageFile::Load(Path(name).c_str());
            } catch (const Exception& e) {
                EXPECT_STREQ(e.what(), "Failed to load");
                failures = 1;
            }
            ProcessHeap::FailAfter(-1);
        }
        std::filesystem::remove(m_folder / name);
    }
}

TEST(ImageRegressions, FilesThatOnceDidHarmLoadOrAreRefused) {
    // Found by the fuzzers; a name begins with the kind of file.
    size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(GX_TEST_DATA "/images")) {
        std::ifstream file(entry.path(), std::ios::binary);
        const Bytes bytes(std::istreambuf_iterator<char>(file), {});
        const std::string refusal = Refusal(bytes);
        EXPECT_TRUE(refusal.empty() || refusal == "Failed to load") << entry.path();
        ++count;
    }
    EXPECT_GT(count, 0U);
}

} // namespace
