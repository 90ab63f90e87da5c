// SPDX-License-Identifier: MIT
#include "CodecSupport.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

#include "../../Pixels/PixelFormat.h"
#include "../PixelTransfer.h"

namespace Graphics {
namespace {

constexpr double kMetresPerInch = 0.0254;

[[nodiscard]] bool IsGreyRamp(const PixelView& view) noexcept {
    for (size_t i = 0; i < view.paletteCount; ++i) {
        if (view.palette[i] != (0xFF000000U | static_cast<uint32_t>(i) * 0x010101U)) {
            return false;
        }
    }
    return view.paletteCount == 256;
}

} // namespace

float SaneDpi(double dpi) noexcept { return dpi >= 0.01 && dpi <= 1e6 ? static_cast<float>(dpi) : kDefaultDpi; }

std::shared_ptr<SysMemBitmap> NewImage(uint64_t width, uint64_t height, GXPixelFormat format, double dpiX,
                                       double dpiY) {
    // The limits of PixelBuffer, tested here so that a file that exceeds them counts as one that cannot be loaded.
    const auto bits = static_cast<uint64_t>(BitsPerPixel(format));
    Require(width > 0 && height > 0 && width <= 2147483640U / bits);
    const uint64_t stride = ((width * bits + 7) / 8 + 15) / 16 * 16;
    Require(height <= 2147483647U / stride);
    return std::make_shared<SysMemBitmap>(static_cast<int32_t>(width), static_cast<int32_t>(height), format,
                                          SaneDpi(dpiX), SaneDpi(dpiY));
}

double DpiFromMetre(uint32_t dotsPerMetre) noexcept {
    const double exact = dotsPerMetre * kMetresPerInch;
    for (const double parts : {1.0, 10.0, 100.0}) {
        const double round = std::round(exact * parts) / parts;
        if (std::round(round / kMetresPerInch) == dotsPerMetre) {
            return round;
        }
    }
    return exact;
}

uint32_t DotsPerMetre(float dpi) noexcept {
    return static_cast<uint32_t>(std::max(1.0, std::round(SaneDpi(dpi) / kMetresPerInch)));
}

std::shared_ptr<const Palette> GreyPalette(bool inverted) {
    std::array<uint32_t, 256> colors;
    for (uint32_t i = 0; i < 256; ++i) {
        colors[i] = 0xFF000000U | (inverted ? 255 - i : i) * 0x010101U;
    }
    return std::make_shared<const Palette>(colors.data(), colors.size());
}

std::shared_ptr<const Palette> BitPalette(bool inverted) {
    const uint32_t colors[3] = {0xFF000000U, 0xFFFFFFFFU, 0xFF000000U};
    return std::make_shared<const Palette>(colors + (inverted ? 1 : 0), 2);
}

SavedRows::SavedRows(const SysMemBitmap& image, bool alpha, bool palettes, bool paletteAlpha)
    : m_view(image.View()), m_format(GXPixelFormatBGR24), m_kind(SavedKind::Rgb) {
    const auto use = [this](SavedKind kind, GXPixelFormat format) {
        m_kind = kind;
        m_format = format;
    };
    switch (m_view.format) {
    case GXPixelFormatPBGRA32:
    case GXPixelFormatBGRA32:
        if (alpha) {
            use(SavedKind::Rgba, GXPixelFormatBGRA32);
        }
        break;
    case GXPixelFormatAlpha8: // coverage becomes white with alpha; grey levels if the format has no alpha
    case GXPixelFormatAlpha1:
        if (alpha) {
            use(SavedKind::Rgba, GXPixelFormatBGRA32);
        } else {
            use(SavedKind::Grey8, m_view.format == GXPixelFormatAlpha8 ? GXPixelFormatAlpha8 : GXPixelFormatGray8);
        }
        break;
    case GXPixelFormatGray8:
        use(SavedKind::Grey8, GXPixelFormatGray8);
        break;
    case GXPixelFormatBlackWhite1:
        if (palettes) {
            use(SavedKind::Palette1, GXPixelFormatBlackWhite1);
        } else {
            use(SavedKind::Grey8, GXPixelFormatGray8);
        }
        break;
    case GXPixelFormatIndexed8:
    case GXPixelFormatIndexed1: {
        const bool oneBit = m_view.format == GXPixelFormatIndexed1;
        if (!oneBit && (m_view.palette == nullptr || IsGreyRamp(m_view))) {
            use(SavedKind::Grey8, GXPixelFormatIndexed8);
            break;
        }
        const bool hasAlpha =
            m_view.palette != nullptr && std::any_of(m_view.palette, m_view.palette + m_view.paletteCount,
                                                     [](uint32_t c) { return c >> 24 != 255; });
        if (palettes && (paletteAlpha || !hasAlpha)) {
            use(oneBit ? SavedKind::Palette1 : SavedKind::Palette8, m_view.format);
            m_colorsHaveAlpha = hasAlpha;
        } else if (hasAlpha && alpha) {
            use(SavedKind::Rgba, GXPixelFormatBGRA32);
        }
        break;
    }
    default: // BGR24 and BGRX32
        break;
    }
    const size_t count = m_kind == SavedKind::Palette1 ? 2 : 256;
    std::fill(m_colors, m_colors + count, 0xFF000000U);
    if (m_kind == SavedKind::Palette1) {
        m_colors[1] = m_view.palette == nullptr ? 0xFFFFFFFFU : 0xFF000000U;
    }
    if (m_view.palette != nullptr) {
        std::copy(m_view.palette, m_view.palette + std::min(count, m_view.paletteCount), m_colors);
    }
    m_rowBytes = Graphics::RowBytes(m_format, m_view.width);
    m_row.resize(m_rowBytes);
}

int SavedRows::BlackAndWhite() const noexcept {
    if (m_colors[0] == 0xFF000000U && m_colors[1] == 0xFFFFFFFFU) {
        return 0;
    }
    return m_colors[0] == 0xFFFFFFFFU && m_colors[1] == 0xFF000000U ? 1 : -1;
}

uint8_t* SavedRows::Row(uint32_t y) {
    if (BitsPerPixel(m_format) == 1) {
        std::memset(m_row.data(), 0, m_rowBytes);
    }
    PixelView row = m_view;
    row.data = m_row.data();
    row.strideBytes = static_cast<ptrdiff_t>(m_rowBytes);
    row.height = 1;
    row.format = m_format;
    const auto at = static_cast<int32_t>(y);
    PixelTransfer::Copy(row, PixelTransfer::Part(m_view, {0, at, m_view.width, at + 1}));
    return m_row.data();
}

uint8_t* SavedRows::RowRgb(uint32_t y) {
    uint8_t* row = Row(y);
    if (m_kind == SavedKind::Rgb || m_kind == SavedKind::Rgba) {
        const size_t step = m_kind == SavedKind::Rgb ? 3 : 4;
        for (size_t i = 0; i + step <= m_rowBytes; i += step) {
            std::swap(row[i], row[i + 2]);
        }
    }
    return row;
}

} // namespace Graphics
