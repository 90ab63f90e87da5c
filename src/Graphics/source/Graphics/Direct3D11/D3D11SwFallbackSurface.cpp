// SPDX-License-Identifier: MIT
#include "D3D11SwFallbackSurface.h"

#include <algorithm>
#include <cstring>

#include "D3D11Half.h"

namespace Graphics {
namespace {

[[nodiscard]] IntRect Moved(const IntRect& r, int32_t dx, int32_t dy) noexcept {
    return {r.left + dx, r.top + dy, r.right + dx, r.bottom + dy};
}

[[nodiscard]] IntRect Hull(const IntRect& a, const IntRect& b) noexcept {
    return IsEmpty(a) ? b
                      : IntRect{std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right),
                                std::max(a.bottom, b.bottom)};
}

[[nodiscard]] Region Without(const Region& a, const Region& b) { return Region::Combine(a, b, RegionOp::Difference); }
[[nodiscard]] Region Both(const Region& a, const Region& b) { return Region::Combine(a, b, RegionOp::Union); }

} // namespace

void D3D11SwFallbackSurface::Open(Kind kind, const IntRect& bounds, bool knockout) noexcept {
    Close();
    m_kind = kind;
    m_bounds = bounds;
    m_knockout = knockout;
    m_onCard = kind == Kind::Surface ? bounds : IntRect{0, 0, 0, 0};
}

void D3D11SwFallbackSurface::Close() noexcept {
    constexpr size_t kKeepPixels = 1U << 18;
    m_valid = Region();
    m_unsent = Region();
    if (m_color.capacity() > kKeepPixels) {
        m_color = HeapArray<uint32_t>();
        m_alpha = HeapArray<uint8_t>();
        m_shape = HeapArray<uint8_t>();
        m_halves = HeapArray<uint16_t>();
    }
}

bool D3D11SwFallbackSurface::Holds(const IntRect& box) const { return HasUnsent(box) && m_valid.Contains(Region(box)); }

bool D3D11SwFallbackSurface::HasUnsent(const IntRect& box) const {
    return !m_unsent.IsAreaEmpty() && m_unsent.HasIntersection(Region(box));
}

void D3D11SwFallbackSurface::Allocate() {
    const size_t count =
        static_cast<size_t>(m_bounds.right - m_bounds.left) * static_cast<size_t>(m_bounds.bottom - m_bounds.top);
    m_color.resize(count);
    if (m_kind != Kind::Surface) {
        m_alpha.resize(count);
        m_shape.resize(count);
    }
}

SwTargetPlanes D3D11SwFallbackSurface::Read(D3D11Context& context, const D3D11Texture* color, const D3D11Texture* shape,
                                            const SwTargetPlanes& below, const IntRect& box) {
    Allocate();
    const Region missing = Without(Region(box), m_valid);
    if (!missing.IsAreaEmpty()) {
        Region drawn = Region::Combine(missing, Region(m_onCard), RegionOp::Intersection);
        if (!drawn.IsAreaEmpty() && color != nullptr) {
            if (context.Readback().IsExhausted()) {
                drawn = Without(Region(m_onCard), m_valid);
            }
            Receive(context, *color, shape, drawn);
            m_valid = Both(m_valid, drawn);
        }
        Without(missing, drawn).EnumRects([&](const IntRect& r) { Start(below, r); });
        m_valid = Both(m_valid, Region(box));
    }
    const auto width = static_cast<ptrdiff_t>(m_bounds.right - m_bounds.left);
    SwTargetPlanes planes;
    planes.origin = {m_bounds.left, m_bounds.top};
    planes.color = reinterpret_cast<uint8_t*>(m_color.data());
    planes.colorStride = width * static_cast<ptrdiff_t>(sizeof(uint32_t));
    if (m_kind != Kind::Surface) {
        planes.alpha = m_alpha.data();
        planes.shape = m_shape.data();
        planes.planeStride = width;
        planes.knockout = m_knockout;
        if (below.color != nullptr) {
            // The bounds of a group lie inside those of what contains it.
            planes.backdrop = below.color + (m_bounds.top - below.origin.y) * below.colorStride +
                              (m_bounds.left - below.origin.x) * static_cast<ptrdiff_t>(sizeof(uint32_t));
            planes.backdropStride = below.colorStride;
        }
    }
    return planes;
}

void D3D11SwFallbackSurface::Receive(D3D11Context& context, const D3D11Texture& color, const D3D11Texture* shape,
                                     const Region& region) {
    context.Batch().Flush();
    Region local = region;
    local.Offset(-m_bounds.left, -m_bounds.top);
    const D3D11Texture* const textures[D3D11Readback::kMostTextures] = {&color, shape};
    const auto& levels = D3D11Half::Levels();
    const auto receiveRow = [&](size_t texture, size_t offset, const uint8_t* bytes, size_t count) {
        uint32_t* words = m_color.data() + offset;
        if (m_kind == Kind::Surface) {
            std::memcpy(words, bytes, count * sizeof(uint32_t));
            ActiveKernels().setOpaque(words, nullptr, count);
            return;
        }
        for (size_t i = 0; i < count; ++i) {
            uint16_t h[4]; // red, green, blue, alpha
            std::memcpy(h, bytes + i * sizeof(h), sizeof(h));
            const uint32_t alpha = levels[h[3]];
            if (texture == 0) {
                words[i] = alpha << 24 | uint32_t{levels[h[0]]} << 16 | uint32_t{levels[h[1]]} << 8 | levels[h[2]];
                m_alpha[offset + i] = static_cast<uint8_t>(alpha);
                m_shape[offset + i] = 255;
            } else {
                m_alpha[offset + i] = static_cast<uint8_t>(alpha);
                m_shape[offset + i] = levels[h[0]];
            }
        }
    };
    context.Readback().Read({textures, shape != nullptr ? 2U : 1U}, local,
                            [&](size_t texture, const IntRect& r, const uint8_t* bytes, size_t strideBytes) {
                                const auto count = static_cast<size_t>(r.right - r.left);
                                for (int32_t y = r.top; y < r.bottom; ++y, bytes += strideBytes) {
                                    receiveRow(texture, Offset(m_bounds.left + r.left, m_bounds.top + y), bytes, count);
                                }
                            });
}

/// Sets the values of a group's pixels before the first draw.
void D3D11SwFallbackSurface::Start(const SwTargetPlanes& below, const IntRect& r) {
    const auto count = static_cast<size_t>(r.right - r.left);
    for (int32_t y = r.top; y < r.bottom; ++y) {
        const size_t offset = Offset(r.left, y);
        if (below.color != nullptr) {
            const uint8_t* row = below.color + (y - below.origin.y) * below.colorStride;
            std::memcpy(m_color.data() + offset, reinterpret_cast<const uint32_t*>(row) + (r.left - below.origin.x),
                        count * sizeof(uint32_t));
        } else {
            std::memset(m_color.data() + offset, 0, count * sizeof(uint32_t));
        }
        if (m_kind != Kind::Surface) {
            std::memset(m_alpha.data() + offset, 0, count);
            // A plain group's result is not divided by shape, so its shape is 255.
            std::memset(m_shape.data() + offset, m_kind == Kind::Plain ? 255 : 0, count);
        }
    }
}

void D3D11SwFallbackSurface::Drawn(const IntRect& box) { m_unsent = Both(m_unsent, Region(box)); }

void D3D11SwFallbackSurface::Send(D3D11Context& context, const D3D11Texture& color, const D3D11Texture* shape) {
    if (m_valid.Contains(Region(m_unsent.Bound()))) {
        m_unsent = Region(m_unsent.Bound()); // one rectangle is sent faster than many
    }
    m_unsent.EnumRects([&](const IntRect& r) {
        ++context.Device().Counters().sends;
        m_onCard = Hull(m_onCard, r);
        if (m_kind != Kind::Surface) {
            SendHalves(context, color, shape, r);
            return;
        }
        context.Device().Update(color, Moved(r, -m_bounds.left, -m_bounds.top), m_color.data() + Offset(r.left, r.top),
                                static_cast<uint32_t>(m_bounds.right - m_bounds.left) * sizeof(uint32_t));
    });
    m_unsent = Region();
}

void D3D11SwFallbackSurface::SendHalves(D3D11Context& context, const D3D11Texture& color, const D3D11Texture* shape,
                                        const IntRect& r) {
    const auto& halves = D3D11Half::OfLevels();
    const auto width = static_cast<size_t>(r.right - r.left);
    m_halves.resize(width * static_cast<size_t>(r.bottom - r.top) * 4);
    const auto send = [&](const D3D11Texture& texture, auto&& pixel) {
        uint16_t* to = m_halves.data();
        for (int32_t y = r.top; y < r.bottom; ++y) {
            const size_t offset = Offset(r.left, y);
            for (size_t i = 0; i < width; ++i, to += 4) {
                pixel(offset + i, to);
            }
        }
        context.Device().Update(texture, Moved(r, -m_bounds.left, -m_bounds.top), m_halves.data(),
                                static_cast<uint32_t>(width * 4 * sizeof(uint16_t)));
    };
    send(color, [&](size_t i, uint16_t* to) {
        const uint32_t word = m_color[i];
        to[0] = halves[word >> 16 & 255U];
        to[1] = halves[word >> 8 & 255U];
        to[2] = halves[word & 255U];
        to[3] = (word >> 24) == 0 ? D3D11Half::kAlmostNothing : halves[word >> 24];
    });
    if (shape != nullptr) {
        send(*shape, [&](size_t i, uint16_t* to) {
            to[0] = to[1] = to[2] = halves[m_shape[i]];
            to[3] = halves[m_alpha[i]];
        });
    }
}

void D3D11SwFallbackSurface::DrawnByCard(const IntRect& box) {
    m_onCard = Hull(m_onCard, box);
    if (!m_valid.IsAreaEmpty()) {
        m_valid = Without(m_valid, Region(box));
    }
}

} // namespace Graphics
