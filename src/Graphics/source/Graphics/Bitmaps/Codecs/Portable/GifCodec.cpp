// SPDX-License-Identifier: MIT
// The frames of an animation are composed as a viewer shows them: on the logical screen, over what earlier frames left
// there after their disposal. The background is transparent.
#include "FreeCodecs.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include <gif_lib.h>

#include "../CodecSupport.h"

namespace Graphics {
namespace {

/// A code has at least 3 bits and yields at most 4096 pixels.
constexpr uint64_t kPixelsPerByte = 4096 * 8 / 3 + 1;

/// Properties of a frame that are known before its pixels are unpacked.
struct Frame {
    int32_t left = 0, top = 0, width = 0, height = 0;
    int transparent = NO_TRANSPARENT_COLOR;
    int disposal = DISPOSAL_UNSPECIFIED;
};

struct Closer {
    void operator()(GifFileType* gif) const noexcept { DGifCloseFile(gif, nullptr); }
};

/// Iterates over the records of a file.
class GifWalk {
public:
    explicit GifWalk(ByteSource& source) : m_cursor(source) {
        int error = 0;
        m_gif.reset(DGifOpen(this, Read, &error));
        Require(m_gif != nullptr);
    }

    [[nodiscard]] GifFileType& Gif() const noexcept { return *m_gif; }

    /// Advances to the pixels of the next frame; false at the end of the file.
    [[nodiscard]] bool Next(Frame& frame) {
        GraphicsControlBlock control{};
        control.TransparentColor = NO_TRANSPARENT_COLOR;
        while (true) {
            GifRecordType type = UNDEFINED_RECORD_TYPE;
            Check(DGifGetRecordType(m_gif.get(), &type));
            if (type == TERMINATE_RECORD_TYPE) {
                return false;
            }
            if (type == EXTENSION_RECORD_TYPE) {
                int code = 0;
                GifByteType* block = nullptr;
                Check(DGifGetExtension(m_gif.get(), &code, &block));
                if (code == GRAPHICS_EXT_FUNC_CODE && block != nullptr) {
                    Check(DGifExtensionToGCB(block[0], block + 1, &control));
                }
                while (block != nullptr) {
                    Check(DGifGetExtensionNext(m_gif.get(), &block));
                }
            } else if (type == IMAGE_DESC_RECORD_TYPE) {
                Check(DGifGetImageHeader(m_gif.get()));
                const GifImageDesc& desc = m_gif->Image;
                frame = {desc.Left, desc.Top, desc.Width, desc.Height, control.TransparentColor, control.DisposalMode};
                Require(frame.width > 0 && frame.height > 0);
                return true;
            } else {
                throw ImageError();
            }
        }
    }

    void SkipPixels() {
        int size = 0;
        GifByteType* block = nullptr;
        Check(DGifGetCode(m_gif.get(), &size, &block));
        while (block != nullptr) {
            Check(DGifGetCodeNext(m_gif.get(), &block));
        }
    }

    /// Reads the indices of the frame, with rows in the order of the picture.
    void ReadPixels(const Frame& frame, HeapArray<uint8_t>& indices) {
        // A file too short for the frame is refused first.
        const auto width = static_cast<size_t>(frame.width);
        Require(static_cast<uint64_t>(width) * static_cast<uint64_t>(frame.height) / kPixelsPerByte <= m_cursor.Size());
        indices.resize(width * static_cast<size_t>(frame.height));
        const auto line = [&](int32_t y) {
            Check(DGifGetLine(m_gif.get(), indices.data() + width * static_cast<size_t>(y), frame.width));
        };
        if (m_gif->Image.Interlace) {
            constexpr int32_t kFirst[4] = {0, 4, 2, 1};
            constexpr int32_t kStep[4] = {8, 8, 4, 2};
            for (size_t pass = 0; pass < 4; ++pass) {
                for (int32_t y = kFirst[pass]; y < frame.height; y += kStep[pass]) {
                    line(y);
                }
            }
        } else {
            for (int32_t y = 0; y < frame.height; ++y) {
                line(y);
            }
        }
    }

    /// The frame's colours; the transparent one has alpha 0.
    [[nodiscard]] std::vector<uint32_t> Colors(const Frame& frame) const {
        const ColorMapObject* map = m_gif->Image.ColorMap != nullptr ? m_gif->Image.ColorMap : m_gif->SColorMap;
        Require(map != nullptr && map->ColorCount > 0 && map->ColorCount <= 256);
        std::vector<uint32_t> colors(static_cast<size_t>(map->ColorCount));
        for (size_t i = 0; i < colors.size(); ++i) {
            const GifColorType& c = map->Colors[i];
            const uint32_t alpha = static_cast<int>(i) == frame.transparent ? 0 : 0xFF000000U;
            colors[i] = alpha | static_cast<uint32_t>(c.Red) << 16 | static_cast<uint32_t>(c.Green) << 8 | c.Blue;
        }
        return colors;
    }

private:
    static void Check(int result) { Require(result != GIF_ERROR); }

    static int Read(GifFileType* gif, GifByteType* dst, int count) {
        auto* self = static_cast<GifWalk*>(gif->UserData);
        return static_cast<int>(self->m_cursor.Read(dst, static_cast<size_t>(count < 0 ? 0 : count)));
    }

    ByteCursor m_cursor;
    std::unique_ptr<GifFileType, Closer> m_gif;
};

class GifDecoder final : public ImageDecoder {
public:
    explicit GifDecoder(ByteSource& source) : m_source(source) {
        // Walks through the whole file without unpacking, to count the frames and to check that nothing is missing.
        GifWalk walk(source);
        m_width = walk.Gif().SWidth;
        m_height = walk.Gif().SHeight;
        Frame frame;
        while (walk.Next(frame)) {
            if (m_frames.empty()) { // a screen too small for its first picture is enlarged to it
                m_width = std::max(m_width, frame.width);
                m_height = std::max(m_height, frame.height);
            }
            m_frames.push_back(frame);
            walk.SkipPixels();
        }
        // Rejects a huge screen that the file has too few bytes to fill, before memory is allocated.
        const uint64_t pixels = static_cast<uint64_t>(m_width) * static_cast<uint64_t>(m_height);
        Require(!m_frames.empty() && (pixels <= (1U << 24) || pixels / kPixelsPerByte <= source.Size()));
    }

    [[nodiscard]] uint32_t CountFrames() override { return static_cast<uint32_t>(m_frames.size()); }

    [[nodiscard]] std::shared_ptr<SysMemBitmap> Load(uint32_t wanted) override {
        size_t first = wanted;
        // If a covering frame is removed again by its disposal, earlier frames reappear.
        while (first > 0 &&
               !(Covers(m_frames[first]) && (first == wanted || m_frames[first].disposal != DISPOSE_PREVIOUS))) {
            --first;
        }
        GifWalk walk(m_source);
        Frame frame;
        HeapArray<uint8_t> indices;
        for (size_t i = 0; i < first; ++i) {
            Require(walk.Next(frame));
            walk.SkipPixels();
        }
        Require(walk.Next(frame));
        if (first == wanted && FillsScreen(frame)) {
            return Single(walk, frame, indices);
        }
        return Composed(walk, frame, first, wanted, indices);
    }

private:
    [[nodiscard]] bool FillsScreen(const Frame& f) const noexcept {
        return f.left == 0 && f.top == 0 && f.width >= m_width && f.height >= m_height;
    }
    /// Whether the frame hides all earlier frames.
    [[nodiscard]] bool Covers(const Frame& f) const noexcept {
        return FillsScreen(f) && f.transparent == NO_TRANSPARENT_COLOR;
    }

    /// A frame that is the whole picture keeps its own indices and palette.
    [[nodiscard]] std::shared_ptr<SysMemBitmap> Single(GifWalk& walk, const Frame& frame, HeapArray<uint8_t>& indices) {
        const std::vector<uint32_t> colors = walk.Colors(frame);
        walk.ReadPixels(frame, indices);
        std::shared_ptr<SysMemBitmap> image = Screen(GXPixelFormatIndexed8);
        image->SetPalette(std::make_shared<const Palette>(colors.data(), colors.size()));
        for (int32_t y = 0; y < m_height; ++y) {
            std::memcpy(image->Data() + static_cast<size_t>(image->StrideBytes()) * static_cast<size_t>(y),
                        indices.data() + static_cast<size_t>(frame.width) * static_cast<size_t>(y),
                        static_cast<size_t>(m_width));
        }
        return image;
    }

    [[nodiscard]] std::shared_ptr<SysMemBitmap> Composed(GifWalk& walk, Frame frame, size_t first, size_t wanted,
                                                         HeapArray<uint8_t>& indices) {
        std::shared_ptr<SysMemBitmap> screen = Screen(GXPixelFormatBGRA32);
        screen->Zero();
        HeapArray<uint32_t> saved;
        std::vector<uint32_t> colors;
        for (size_t i = first;; ++i) {
            const IntRect area = Intersect({frame.left, frame.top, frame.left + frame.width, frame.top + frame.height},
                                           {0, 0, m_width, m_height});
            colors = walk.Colors(frame);
            walk.ReadPixels(frame, indices);
            if (frame.disposal == DISPOSE_PREVIOUS && i != wanted) {
                Exchange(*screen, area, saved, false);
            }
            Paint(*screen, area, frame, colors, indices);
            if (i == wanted) {
                break;
            }
            if (frame.disposal == DISPOSE_PREVIOUS) {
                Exchange(*screen, area, saved, true);
            } else if (frame.disposal == DISPOSE_BACKGROUND) {
                for (int32_t y = area.top; y < area.bottom && area.left < area.right; ++y) {
                    std::fill(Pixel(*screen, area.left, y), Pixel(*screen, area.right, y), 0U);
                }
            }
            Require(walk.Next(frame));
        }
        std::shared_ptr<SysMemBitmap> indexed = ToIndexed(*screen, colors);
        return indexed != nullptr ? indexed : screen;
    }

    [[nodiscard]] std::shared_ptr<SysMemBitmap> Screen(GXPixelFormat format) const {
        return NewImage(static_cast<uint64_t>(m_width), static_cast<uint64_t>(m_height), format);
    }

    [[nodiscard]] static uint32_t* Pixel(const SysMemBitmap& image, int32_t x, int32_t y) noexcept {
        return reinterpret_cast<uint32_t*>(image.Data() +
                                           static_cast<size_t>(image.StrideBytes()) * static_cast<size_t>(y)) +
               x;
    }

    static void Paint(const SysMemBitmap& screen, const IntRect& area, const Frame& frame,
                      const std::vector<uint32_t>& colors, const HeapArray<uint8_t>& indices) noexcept {
        for (int32_t y = area.top; y < area.bottom; ++y) {
            const uint8_t* row = indices.data() + static_cast<size_t>(y - frame.top) * static_cast<size_t>(frame.width);
            for (int32_t x = area.left; x < area.right; ++x) {
                const uint8_t index = row[x - frame.left];
                if (index != frame.transparent) {
                    *Pixel(screen, x, y) = index < colors.size() ? colors[index] : 0xFF000000U;
                }
            }
        }
    }

    /// Saves the area's pixels, or restores them if `back`.
    static void Exchange(const SysMemBitmap& screen, const IntRect& area, HeapArray<uint32_t>& saved, bool back) {
        if (IsEmpty(area)) {
            return;
        }
        const auto width = static_cast<size_t>(area.right - area.left);
        saved.resize(width * static_cast<size_t>(area.bottom - area.top));
        uint32_t* kept = saved.data();
        for (int32_t y = area.top; y < area.bottom; ++y, kept += width) {
            uint32_t* row = Pixel(screen, area.left, y);
            std::memcpy(back ? row : kept, back ? kept : row, width * 4);
        }
    }

    /// The picture with a palette: the frame's colours first, then others as they occur; null if 256 are not enough.
    [[nodiscard]] std::shared_ptr<SysMemBitmap> ToIndexed(const SysMemBitmap& screen,
                                                          std::vector<uint32_t> colors) const {
        // A hash table with open addressing; at most 257 of its 1024 places are taken.
        struct Place {
            uint32_t color;
            int32_t index;
        };
        Place places[1024];
        std::fill(places, places + 1024, Place{0, -1});
        const auto find = [&places](uint32_t color) -> Place& {
            uint32_t at = color * 2654435761U >> 22;
            while (places[at].index >= 0 && places[at].color != color) {
                at = (at + 1) & 1023U;
            }
            return places[at];
        };
        for (size_t i = 0; i < colors.size(); ++i) {
            Place& place = find(colors[i]);
            if (place.index < 0) {
                place = {colors[i], static_cast<int32_t>(i)};
            }
        }
        std::shared_ptr<SysMemBitmap> image = Screen(GXPixelFormatIndexed8);
        Place last = {0, -1};
        for (int32_t y = 0; y < m_height; ++y) {
            uint8_t* row = image->Data() + static_cast<size_t>(image->StrideBytes()) * static_cast<size_t>(y);
            const uint32_t* from = Pixel(screen, 0, y);
            for (int32_t x = 0; x < m_width; ++x) {
                const uint32_t color = from[x];
                if (color != last.color || last.index < 0) {
                    Place& place = find(color);
                    if (place.index < 0) {
                        if (colors.size() == 256) {
                            return nullptr;
                        }
                        place = {color, static_cast<int32_t>(colors.size())};
                        colors.push_back(color);
                    }
                    last = place;
                }
                row[x] = static_cast<uint8_t>(last.index);
            }
        }
        image->SetPalette(std::make_shared<const Palette>(colors.data(), colors.size()));
        return image;
    }

    ByteSource& m_source;
    int32_t m_width = 0;
    int32_t m_height = 0;
    std::vector<Frame> m_frames;
};

class GifCodec final : public ImageCodec {
public:
    [[nodiscard]] bool Recognizes(std::span<const uint8_t> head) const noexcept override {
        return head.size() >= 6 &&
               (std::memcmp(head.data(), "GIF87a", 6) == 0 || std::memcmp(head.data(), "GIF89a", 6) == 0);
    }

    [[nodiscard]] std::unique_ptr<ImageDecoder> Open(ByteSource& source) const override {
        return std::make_unique<GifDecoder>(source);
    }

    [[nodiscard]] bool Writes(std::string_view) const noexcept override { return false; }

    void Save(const SysMemBitmap&, std::string_view, ByteSink&) const override { throw ImageError(); }
};

const GifCodec g_codec;

} // namespace

const ImageCodec& GifFiles() noexcept { return g_codec; }

} // namespace Graphics
