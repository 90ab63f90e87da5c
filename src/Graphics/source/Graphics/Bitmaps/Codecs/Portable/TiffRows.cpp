// SPDX-License-Identifier: MIT
// If the bitmap's format has the file's layout, samples are copied. Otherwise rows are converted through arrays of
// 8-bit levels, one for each channel.
#include "TiffRows.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include <tiffio.h>

#include "../../../Pixels/PixelConversion.h"

namespace Graphics {
namespace {

template <class T> [[nodiscard]] T LoadNative(const uint8_t* p) noexcept {
    T value;
    std::memcpy(&value, p, sizeof value);
    return value;
}

/// A float of 16 bits: sign, five bits of exponent, ten of fraction.
[[nodiscard]] double FromHalf(uint16_t half) noexcept {
    const int exponent = half >> 10 & 31;
    const double fraction = half & 1023;
    const double value = exponent == 0    ? std::ldexp(fraction, -24)
                         : exponent == 31 ? (fraction == 0 ? HUGE_VAL : NAN)
                                          : std::ldexp(fraction + 1024, exponent - 25);
    return (half & 0x8000) != 0 ? -value : value;
}

/// Reads `bits` bits from bit `at` on, most significant first.
[[nodiscard]] uint32_t BitsAt(const uint8_t* row, uint64_t at, uint32_t bits) noexcept {
    uint64_t value = 0;
    const uint64_t last = (at + bits - 1) / 8;
    for (uint64_t i = at / 8; i <= last; ++i) {
        value = value << 8 | row[i];
    }
    value >>= (last + 1) * 8 - (at + bits);
    return static_cast<uint32_t>(value & ((1ULL << bits) - 1));
}

} // namespace

double TiffRows::Level(const uint8_t* sample) const noexcept {
    const double value = m_page.kind == TiffSamples::Half    ? FromHalf(LoadNative<uint16_t>(sample))
                         : m_page.kind == TiffSamples::Float ? static_cast<double>(LoadNative<float>(sample))
                                                             : LoadNative<double>(sample);
    return value > 0 ? std::min(value, 1.0) * 255.0 + 0.5 : 0.5; // NaN is 0
}

template <class Out>
void TiffRows::Unpack(Out* out, const uint8_t* row, size_t count, uint32_t channel, bool asNumber) const noexcept {
    const size_t step = m_page.planes ? 1 : m_page.samples;
    const size_t first = m_page.planes ? 0 : channel;
    const uint64_t most = (1ULL << m_page.bits % 64) - 1;
    const uint32_t sign = m_page.hasSign ? 1U << (m_page.bits - 1) : 0U;
    const auto store = [&](size_t i, uint32_t value) {
        value ^= sign;
        out[i] = static_cast<Out>(asNumber ? value : (value * uint64_t{255} + most / 2) / most);
    };
    for (size_t i = 0; i < count; ++i) {
        const size_t at = first + i * step;
        switch (m_page.kind) {
        case TiffSamples::Bytes:
            out[i] = static_cast<Out>(row[at] ^ sign);
            break;
        case TiffSamples::Words:
            store(i, m_page.bits == 16 ? LoadNative<uint16_t>(row + at * 2) : LoadNative<uint32_t>(row + at * 4));
            break;
        case TiffSamples::Bits:
            store(i, BitsAt(row, static_cast<uint64_t>(at) * m_page.bits, m_page.bits));
            break;
        default:
            out[i] = static_cast<Out>(Level(row + at * (m_page.bits / 8)));
            break;
        }
    }
}

void TiffRows::Convert(uint8_t* dst, const uint8_t* row, size_t planeBytes, uint32_t count) {
    if (m_page.format == GXPixelFormatIndexed1) {
        std::memcpy(dst, row, (count + 7) / 8);
        if (count % 8 != 0) {
            dst[count / 8] &= static_cast<uint8_t>(0xFF00U >> (count % 8));
        }
        return;
    }
    if (m_page.format == GXPixelFormatIndexed8) {
        Unpack(dst, row, count, 0, true);
        return;
    }
    const size_t dstStep = m_page.format == GXPixelFormatBGR24 ? 3 : 4;
    if (m_page.kind == TiffSamples::Bytes && m_page.colors == 3 && m_page.samples == dstStep && !m_page.planes &&
        !m_page.associated && m_page.format != GXPixelFormatBGRX32) {
        for (const uint8_t* end = row + count * dstStep; row != end; row += dstStep, dst += dstStep) {
            dst[0] = row[2];
            dst[1] = row[1];
            dst[2] = row[0];
            if (dstStep == 4) {
                dst[3] = row[3];
            }
        }
        return;
    }
    if (m_page.photometric == PHOTOMETRIC_PALETTE) {
        m_indices.resize(count);
        Unpack(m_indices.data(), row, count, 0, true);
        for (size_t i = 0; i < count; ++i, dst += 4) {
            const uint32_t index = m_indices[i];
            for (size_t c = 0; c < 3; ++c) {
                dst[c] = static_cast<uint8_t>(m_page.map[2 - c][index] >> 8);
            }
            dst[3] = 255;
        }
        return;
    }
    const bool alpha = m_page.format == GXPixelFormatBGRA32;
    const uint32_t channels = m_page.colors + (alpha ? 1U : 0U);
    for (uint32_t c = 0; c < channels; ++c) {
        m_levels[c].resize(count);
        Unpack(m_levels[c].data(), row + (m_page.planes ? planeBytes * c : 0), count, c, false);
    }
    const uint8_t invert = m_page.photometric == PHOTOMETRIC_MINISWHITE ? 255 : 0;
    uint8_t* to = dst;
    for (size_t i = 0; i < count; ++i, to += dstStep) {
        for (uint32_t c = 0; c < 3; ++c) {
            const uint8_t level = m_levels[m_page.colors == 1 ? 0 : 2 - c][i];
            if (m_page.colors == 4) { // ink separations: 0 is no ink
                const uint32_t white = (255U - level) * (255U - m_levels[3][i]);
                to[c] = static_cast<uint8_t>((white + 127) / 255);
            } else {
                to[c] = level ^ invert;
            }
        }
        if (dstStep == 4) {
            to[3] = alpha ? m_levels[m_page.colors][i] : 255;
        }
    }
    if (alpha && m_page.associated) {
        PixelConversion::Find(GXPixelFormatPBGRA32, GXPixelFormatBGRA32)(dst, 0, dst, 0, count);
    }
}

} // namespace Graphics
