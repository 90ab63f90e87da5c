// SPDX-License-Identifier: MIT
// Layout: a file header of 14 bytes ("BM", size, offset of the pixels); the info header, whose first word is its
// length; bit masks if the header version has no field for them; the palette; the pixels, in rows padded to 4 bytes,
// bottom row first.
#include "BmpReader.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace Graphics {
namespace {

constexpr uint32_t kFileHeader = 14;
constexpr uint32_t kOldestHeader = 12;
constexpr uint32_t kInfoHeader = 40;
constexpr uint32_t kOs2Header = 64;
constexpr uint32_t kNewestHeader = 124;
enum Compression : uint32_t { kPlain = 0, kRle8 = 1, kRle4 = 2, kBitFields = 3, kAlphaBitFields = 6 };

/// Reads single bytes, a block at a time.
class ByteFeed {
public:
    ByteFeed(ByteSource& source, uint64_t offset) noexcept : m_cursor(source, offset) {}
    [[nodiscard]] uint8_t Next() {
        if (m_at == m_count) {
            m_count = m_cursor.Read(m_block, sizeof m_block);
            m_at = 0;
            Require(m_count != 0);
        }
        return m_block[m_at++];
    }

private:
    ByteCursor m_cursor;
    size_t m_at = 0;
    size_t m_count = 0;
    uint8_t m_block[4096];
};

} // namespace

uint8_t BmpReader::Channel::Level(uint32_t pixel) const noexcept {
    const uint32_t value = (pixel & mask) >> shift;
    return levels[bits > 8 ? value >> (bits - 8) : value];
}

BmpReader::BmpReader(ByteSource& source) : m_source(source) { ReadHeaders(); }

void BmpReader::ReadHeaders() {
    uint8_t h[kFileHeader + kNewestHeader] = {};
    const size_t got = m_source.ReadAt(0, h, sizeof h);
    Require(got >= kFileHeader + kOldestHeader);
    m_pixels = Load32(h + 10);
    const uint8_t* info = h + kFileHeader;
    const uint32_t size = Load32(info);
    Require((size == kOldestHeader || (size >= 16 && size <= kNewestHeader)) && got >= kFileHeader + size);
    std::memset(h + kFileHeader + size, 0, sizeof h - kFileHeader - size); // fields missing in a short header are 0

    uint32_t compression = kPlain;
    uint32_t colorCount = 0;
    uint64_t paletteAt = kFileHeader + size;
    if (size == kOldestHeader) {
        m_width = Load16(info + 4);
        m_height = Load16(info + 6);
        Require(Load16(info + 8) == 1);
        m_bits = Load16(info + 10);
    } else {
        m_width = Load32(info + 4);
        const uint32_t height = Load32(info + 8);
        m_topDown = height >> 31 != 0;
        m_height = m_topDown ? 0U - height : height;
        Require(m_width >> 31 == 0 && m_height >> 31 == 0 && Load16(info + 12) == 1);
        m_bits = Load16(info + 14);
        compression = Load32(info + 16);
        m_dotsX = Load32(info + 24);
        m_dotsY = Load32(info + 28);
        colorCount = Load32(info + 32);
    }
    constexpr uint64_t kDepths = 1ULL << 1 | 1ULL << 4 | 1ULL << 8 | 1ULL << 16 | 1ULL << 24 | 1ULL << 32;
    Require(m_width > 0 && m_height > 0 && m_bits <= 32 && (kDepths >> m_bits & 1) != 0);

    // The masks are 555 or 888 unless the file has its own: in a newer header, or behind a header of 40 bytes.
    uint32_t masks[4] = {m_bits == 16 ? 0x7C00U : 0xFF0000U, m_bits == 16 ? 0x3E0U : 0xFF00U,
                         m_bits == 16 ? 0x1FU : 0xFFU, 0};
    switch (compression) {
    case kPlain:
        break;
    case kRle8:
    case kRle4:
        Require(m_bits == (compression == kRle8 ? 8U : 4U) && !m_topDown);
        m_runs = true;
        break;
    case kBitFields:
    case kAlphaBitFields: {
        Require((m_bits == 16 || m_bits == 32) && size >= kInfoHeader && size != kOs2Header);
        m_fields = true;
        const uint32_t own = compression == kAlphaBitFields ? 16 : 12;
        if (size == kInfoHeader) {
            uint8_t behind[16] = {};
            Require(m_source.ReadAt(paletteAt, behind, own) == own);
            std::memcpy(h + kFileHeader + kInfoHeader, behind, own);
            paletteAt += own;
        }
        for (size_t c = 0; c < 4; ++c) {
            masks[c] = Load32(h + kFileHeader + kInfoHeader + 4 * c);
        }
        break;
    }
    default:
        throw ImageError();
    }
    Require(m_pixels >= paletteAt && m_pixels <= m_source.Size());
    if (m_bits <= 8) {
        const uint32_t most = 1U << m_bits;
        m_colorCount = colorCount == 0 || colorCount > most ? most : colorCount;
        ReadPalette(size == kOldestHeader ? 3 : 4, paletteAt);
    } else if (m_bits != 24) {
        SetMasks(masks);
    }
}

void BmpReader::ReadPalette(uint32_t entryBytes, uint64_t offset) {
    m_colorCount = std::min(m_colorCount, static_cast<size_t>((m_pixels - offset) / entryBytes));
    Require(m_colorCount > 0);
    uint8_t entries[256 * 4];
    const size_t bytes = m_colorCount * entryBytes;
    Require(m_source.ReadAt(offset, entries, bytes) == bytes);
    for (size_t i = 0; i < m_colorCount; ++i) {
        const uint8_t* e = entries + i * entryBytes;
        m_colors[i] = 0xFF000000U | static_cast<uint32_t>(e[2]) << 16 | static_cast<uint32_t>(e[1]) << 8 | e[0];
    }
}

void BmpReader::SetMasks(const uint32_t* masks) {
    const uint32_t inside = m_bits == 16 ? 0xFFFFU : 0xFFFFFFFFU;
    constexpr size_t kSlot[4] = {2, 1, 0, 3}; // the file stores the red mask first
    uint32_t used = 0;
    for (size_t c = 0; c < 4; ++c) {
        Channel& channel = m_channels[kSlot[c]];
        const uint32_t mask = masks[c];
        Require((mask & ~inside) == 0 && (mask & used) == 0);
        used |= mask;
        channel.mask = mask;
        channel.shift = mask == 0 ? 0 : static_cast<uint32_t>(std::countr_zero(mask));
        channel.bits = static_cast<uint32_t>(std::popcount(mask));
        Require(mask == 0 || mask >> channel.shift == (channel.bits == 32 ? 0xFFFFFFFFU : (1U << channel.bits) - 1));
        const uint32_t most = (1U << std::min(channel.bits, 8U)) - 1;
        for (uint32_t v = 0; most != 0 && v <= most; ++v) {
            channel.levels[v] = static_cast<uint8_t>((v * 255 + most / 2) / most);
        }
    }
    m_plainWords = m_bits == 32 && m_channels[0].mask == 0xFF && m_channels[1].mask == 0xFF00 &&
                   m_channels[2].mask == 0xFF0000 && (m_channels[3].mask == 0 || m_channels[3].mask == 0xFF000000U);
}

GXPixelFormat BmpReader::Format() const noexcept {
    switch (m_bits) {
    case 1:
        return GXPixelFormatIndexed1;
    case 8:
        return GXPixelFormatIndexed8;
    case 24:
        return GXPixelFormatBGR24;
    case 32: {
        const bool bytes = std::all_of(m_channels, m_channels + 4, [](const Channel& c) { return c.bits == 8; });
        return m_fields && bytes ? GXPixelFormatBGRA32 : GXPixelFormatBGRX32;
    }
    default:
        return GXPixelFormatBGRX32;
    }
}

std::shared_ptr<SysMemBitmap> BmpReader::Load(uint32_t) {
    const uint64_t rowBits = static_cast<uint64_t>(m_width) * m_bits;
    const uint64_t available = m_source.Size() - m_pixels;
    if (m_runs) {
        // Runs may skip nearly all pixels, so a few bytes could claim gigabytes; real files do not.
        const uint64_t pixels = static_cast<uint64_t>(m_width) * m_height;
        Require(pixels <= (1U << 24) || pixels / 1024 <= available);
    } else { // the last row's padding may be missing
        const uint64_t needed = (rowBits + 31) / 32 * 4 * (m_height - 1) + (rowBits + 7) / 8;
        Require(needed <= available);
    }
    std::shared_ptr<SysMemBitmap> image =
        NewImage(m_width, m_height, Format(), DpiFromMetre(m_dotsX), DpiFromMetre(m_dotsY));
    if (m_bits == 1 || m_bits == 8) {
        image->SetPalette(std::make_shared<const Palette>(m_colors, m_colorCount));
    }
    if (m_runs) {
        LoadRuns(*image);
    } else {
        LoadRows(*image);
    }
    return image;
}

uint8_t* BmpReader::RowAt(SysMemBitmap& image, uint32_t fileRow) const noexcept {
    return image.Data() + static_cast<size_t>(image.StrideBytes()) * (m_topDown ? fileRow : m_height - 1 - fileRow);
}

void BmpReader::LoadRows(SysMemBitmap& image) {
    const size_t rowBytes = (static_cast<size_t>(m_width) * m_bits + 7) / 8;
    const size_t stride = (rowBytes + 3) / 4 * 4;
    HeapArray<uint8_t> row;
    row.resize(rowBytes);
    for (uint32_t y = 0; y < m_height; ++y) {
        Require(m_source.ReadAt(m_pixels + static_cast<uint64_t>(stride) * y, row.data(), rowBytes) == rowBytes);
        ConvertRow(RowAt(image, y), row.data());
    }
}

void BmpReader::ConvertRow(uint8_t* dst, const uint8_t* src) const noexcept {
    const auto storeColor = [dst](size_t x, uint32_t color) { std::memcpy(dst + x * 4, &color, 4); };
    switch (m_bits) {
    case 1:
        std::memcpy(dst, src, (m_width + 7) / 8);
        if (m_width % 8 != 0) {
            dst[m_width / 8] &= static_cast<uint8_t>(0xFF00U >> (m_width % 8));
        }
        return;
    case 8:
        std::memcpy(dst, src, m_width);
        return;
    case 24:
        std::memcpy(dst, src, static_cast<size_t>(m_width) * 3);
        return;
    case 4:
        for (size_t x = 0; x < m_width; ++x) {
            const uint32_t index = src[x / 2] >> (x % 2 == 0 ? 4 : 0) & 15U;
            storeColor(x, index < m_colorCount ? m_colors[index] : 0xFF000000U);
        }
        return;
    default:
        break;
    }
    const bool alpha = Format() == GXPixelFormatBGRA32;
    const uint32_t opaque = alpha ? 0U : 0xFF000000U;
    for (size_t x = 0; x < m_width; ++x) {
        const uint32_t pixel = m_bits == 16 ? Load16(src + x * 2) : Load32(src + x * 4);
        if (m_plainWords) {
            storeColor(x, pixel | opaque);
            continue;
        }
        uint32_t color = opaque;
        for (size_t c = 0; c < (alpha ? 4U : 3U); ++c) {
            color |= static_cast<uint32_t>(m_channels[c].Level(pixel)) << 8 * c;
        }
        storeColor(x, color);
    }
}

void BmpReader::LoadRuns(SysMemBitmap& image) {
    // Pairs (count, value). If count is not 0: a run of the value. Otherwise value 0 ends the row, 1 the picture, 2
    // moves right and up by the next two bytes, and a larger value is a number of literal pixels that follow, padded to
    // 16 bits. Skipped pixels have index 0.
    const bool nibbles = m_bits == 4;
    HeapArray<uint8_t> row; // indices of the current row
    row.resize(m_width);
    std::memset(row.data(), 0, m_width);
    uint32_t x = 0;
    uint32_t y = 0;
    const auto flush = [&] {
        uint8_t* dst = RowAt(image, y);
        if (nibbles) {
            for (size_t i = 0; i < m_width; ++i) {
                const uint32_t color = row[i] < m_colorCount ? m_colors[row[i]] : 0xFF000000U;
                std::memcpy(dst + i * 4, &color, 4);
            }
        } else {
            std::memcpy(dst, row.data(), m_width);
        }
        std::memset(row.data(), 0, m_width);
        ++y;
    };
    const auto put = [&](uint32_t index) {
        if (x < m_width) { // some writers pad a row's last run
            row[x++] = static_cast<uint8_t>(index);
        }
    };
    ByteFeed feed(m_source, m_pixels);
    while (true) {
        const uint32_t count = feed.Next();
        const uint32_t value = feed.Next();
        Require(y < m_height || (count == 0 && value == 1));
        if (count != 0) {
            for (uint32_t i = 0; i < count; ++i) {
                put(!nibbles ? value : i % 2 == 0 ? value >> 4 : value & 15U);
            }
        } else if (value == 0) {
            flush();
            x = 0;
        } else if (value == 1) {
            break;
        } else if (value == 2) {
            const uint32_t right = feed.Next();
            const uint32_t up = feed.Next();
            Require(right <= m_width - x && up < m_height - y);
            x += right;
            for (uint32_t i = 0; i < up; ++i) {
                flush();
            }
        } else {
            uint32_t byte = 0;
            for (uint32_t i = 0; i < value; ++i) {
                byte = !nibbles || i % 2 == 0 ? feed.Next() : byte;
                put(!nibbles ? byte : i % 2 == 0 ? byte >> 4 : byte & 15U);
            }
            const uint32_t bytes = nibbles ? (value + 1) / 2 : value;
            if (bytes % 2 != 0) {
                (void)feed.Next();
            }
        }
    }
    while (y < m_height) {
        flush();
    }
}

} // namespace Graphics
