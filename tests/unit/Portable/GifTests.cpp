// SPDX-License-Identifier: MIT
// GIF files written by giflib; animations against the picture that a viewer shows.
#include <filesystem>
#include <fstream>

#include <gif_lib.h>

#include "../../ScratchFolder.h"
#include "../ImageSupport.h"

using namespace Graphics;
using namespace ImageSupport;

namespace {

struct Frame {
    int left, top, width, height;
    std::vector<uint32_t> palette; // empty: the file's
    int transparent, disposal;
    Bytes indices;
    bool interlaced = false;
};

ColorMapObject* Map(const std::vector<uint32_t>& palette) {
    ColorMapObject* map = GifMakeMapObject(static_cast<int>(palette.size()), nullptr);
    for (size_t i = 0; i < palette.size(); ++i) {
        map->Colors[i] = {static_cast<GifByteType>(palette[i] >> 16), static_cast<GifByteType>(palette[i] >> 8),
                          static_cast<GifByteType>(palette[i])};
    }
    return map;
}

Bytes Make(int width, int height, const std::vector<uint32_t>& palette, const std::vector<Frame>& frames) {
    Bytes file;
    int error = 0;
    GifFileType* gif = EGifOpen(
        &file,
        [](GifFileType* g, const GifByteType* data, int n) {
            auto* out = static_cast<Bytes*>(g->UserData);
            out->insert(out->end(), data, data + n);
            return n;
        },
        &error);
    EGifSetGifVersion(gif, true);
    ColorMapObject* global = Map(palette);
    EXPECT_EQ(EGifPutScreenDesc(gif, width, height, 8, 0, global), GIF_OK);
    GifFreeMapObject(global);
    for (const Frame& f : frames) {
        const GraphicsControlBlock control{f.disposal, false, 10, f.transparent};
        GifByteType block[4];
        EGifGCBToExtension(&control, block);
        EXPECT_EQ(EGifPutExtension(gif, GRAPHICS_EXT_FUNC_CODE, 4, block), GIF_OK);
        ColorMapObject* local = f.palette.empty() ? nullptr : Map(f.palette);
        GifFreeMapObject(gif->Image.ColorMap); // giflib forgets the last frame's when this one has none
        gif->Image.ColorMap = nullptr;
        EXPECT_EQ(EGifPutImageDesc(gif, f.left, f.top, f.width, f.height, f.interlaced, local), GIF_OK);
        GifFreeMapObject(local);
        Bytes rows = f.indices;
        const int first[4] = {0, 4, 2, 1}, step[4] = {8, 8, 4, 2};
        for (int pass = 0; pass < (f.interlaced ? 4 : 1); ++pass) {
            for (int y = f.interlaced ? first[pass] : 0; y < f.height; y += f.interlaced ? step[pass] : 1) {
                EXPECT_EQ(EGifPutLine(gif, rows.data() + y * f.width, f.width), GIF_OK);
            }
        }
    }
    EXPECT_EQ(EGifCloseFile(gif, &error), GIF_OK);
    return file;
}

class GifFile : public testing::Test {
protected:
    [[nodiscard]] std::wstring Write(const Bytes& file) {
        std::ofstream(m_path, std::ios::binary)
            .write(reinterpret_cast<const char*>(file.data()), static_cast<std::streamsize>(file.size()));
        return m_path.wstring();
    }
    ~GifFile() override { std::filesystem::remove(m_path); }

private:
    std::filesystem::path m_path = ScratchFolder() / "frames.gif";
};

TEST_F(GifFile, SingleFramesKeepIndicesAndPalette) {
    std::mt19937 random(1);
    std::vector<uint32_t> palette(256);
    for (uint32_t& c : palette) {
        c = random() & 0xFFFFFFU;
    }
    for (const bool interlaced : {false, true}) {
        const int width = 37, height = interlaced ? 21 : 5;
        Frame frame{0, 0, width, height, {}, 7, 0, RandomBytes(static_cast<size_t>(width * height), random)};
        frame.interlaced = interlaced;
        const auto bitmap = Load(Make(width, height, palette, {frame}));
        ASSERT_EQ(bitmap->Format(), GXPixelFormatIndexed8);
        ASSERT_EQ(bitmap->GetPalette()->Count(), 256U);
        for (uint32_t i = 0; i < 256; ++i) {
            EXPECT_EQ(bitmap->GetPalette()->Colors()[i], palette[i] | (i == 7 ? 0 : 0xFF000000U));
        }
        for (int y = 0; y < height; ++y) {
            EXPECT_EQ(std::memcmp(bitmap->View().data + y * bitmap->View().strideBytes,
                                  frame.indices.data() + y * width, static_cast<size_t>(width)),
                      0);
        }
    }
}

TEST_F(GifFile, AnimationsAreComposedAsShown) {
    // Random frames inside and partly outside the screen against a plain model of the disposals.
    std::mt19937 random(2);
    for (int round = 0; round < 40; ++round) {
        const int width = 6 + static_cast<int>(random() % 9), height = 5 + static_cast<int>(random() % 7);
        const auto makePalette = [&] {
            std::vector<uint32_t> palette(size_t{1} << (1 + random() % 8));
            for (uint32_t& c : palette) {
                c = 0xFF000000U | random();
            }
            return palette;
        };
        const std::vector<uint32_t> global = makePalette();
        std::vector<Frame> frames;
        for (int k = 0; k < 7; ++k) {
            Frame f{};
            const bool whole = random() % 4 == 0;
            f.left = whole ? 0 : static_cast<int>(random() % 5);
            f.top = whole ? 0 : static_cast<int>(random() % 4);
            f.width = whole ? width : 1 + static_cast<int>(random() % 8);
            f.height = whole ? height : 1 + static_cast<int>(random() % 7);
            if (k == 0) { // a first frame beyond the screen would enlarge it
                f.width = std::min(f.width, width - f.left);
                f.height = std::min(f.height, height - f.top);
            }
            f.palette = random() % 3 == 0 ? makePalette() : std::vector<uint32_t>();
            const size_t count = f.palette.empty() ? global.size() : f.palette.size();
            f.transparent = random() % 2 == 0 ? -1 : static_cast<int>(random() % count);
            f.disposal = static_cast<int>(random() % 4);
            f.interlaced = random() % 2 == 0;
            for (int i = 0; i < f.width * f.height; ++i) {
                f.indices.push_back(static_cast<uint8_t>(random() % count));
            }
            frames.push_back(f);
        }
        const std::wstring path = Write(Make(width, height, global, frames));
        std::vector<uint32_t> screen(static_cast<size_t>(width * height), 0);
        for (uint32_t k = 0; k < frames.size(); ++k) {
            const Frame& f = frames[k];
            const std::vector<uint32_t> before = screen;
            std::vector<size_t> touched;
            for (int y = 0; y < f.height; ++y) {
                for (int x = 0; x < f.width; ++x) {
                    if (x + f.left < width && y + f.top < height) {
                        const size_t at = static_cast<size_t>((y + f.top) * width + x + f.left);
                        touched.push_back(at);
                        const uint8_t index = f.indices[static_cast<size_t>(y * f.width + x)];
                        if (index != f.transparent) {
                            screen[at] = (f.palette.empty() ? global : f.palette)[index];
                        }
                    }
                }
            }
            uint32_t count = 0;
            const auto bitmap = ImageFile::LoadFrame(path.c_str(), k, &count);
            EXPECT_EQ(count, frames.size());
            std::vector<uint32_t> shown = Argb(*bitmap);
            for (size_t i = 0; i < shown.size(); ++i) { // a palette keeps the colour of what is transparent
                shown[i] = shown[i] >> 24 == 0 ? 0 : shown[i];
            }
            ASSERT_EQ(shown, screen) << "round " << round << " frame " << k;
            for (const size_t at : touched) {
                screen[at] = f.disposal == 2 ? 0 : f.disposal == 3 ? before[at] : screen[at];
            }
        }
        uint32_t count = 0;
        EXPECT_THROW((void)ImageFile::LoadFrame(path.c_str(), 7, &count), Exception);
        EXPECT_EQ(count, 7U);
    }
}

TEST_F(GifFile, DamageIsRefused) {
    std::mt19937 random(3);
    const Frame a{0, 0, 9, 8, {}, 3, 1, RandomBytes(72, random)};
    ExpectDamageIsRefused(Make(9, 8, std::vector<uint32_t>(256, 0x123456), {a, a}), 6);
}

} // namespace
