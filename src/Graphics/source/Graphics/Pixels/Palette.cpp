// SPDX-License-Identifier: MIT
#include "Palette.h"

namespace Graphics {
namespace {

[[nodiscard]] std::vector<uint32_t> Copy(const uint32_t* colors, size_t count) {
    std::vector<uint32_t> copy;
    copy.reserve(count); // rejects counts for which computing the end of the source would overflow
    copy.assign(colors, colors + count);
    return copy;
}

} // namespace

Palette::Palette(const uint32_t* colors, size_t count) : m_colors(Copy(colors, count)) {}

} // namespace Graphics
