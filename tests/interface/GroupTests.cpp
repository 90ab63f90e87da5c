// SPDX-License-Identifier: MIT
// Nested transparency groups of all four kinds, with blend modes, opacities and partial shapes, against a plain model
// that keeps whole planes and follows the formulas pixel by pixel.
#include <algorithm>
#include <memory>
#include <random>

#include "TargetSupport.h"

using namespace TargetSupport;

namespace {

constexpr int kSize = 12;
constexpr int kCount = kSize * kSize;

uint32_t Channel(uint32_t pixel, int shift) { return pixel >> shift & 255U; }

uint32_t Scale(uint32_t pixel, uint32_t factor) {
    uint32_t out = 0;
    for (int shift = 0; shift < 32; shift += 8) {
        out |= (Channel(pixel, shift) * factor >> 8) << shift;
    }
    return out;
}

uint32_t Straight(uint32_t pixel) {
    const uint32_t a = pixel >> 24;
    uint32_t out = a << 24;
    for (int shift = 0; a != 0 && shift < 24; shift += 8) {
        out |= std::min(Channel(pixel, shift), a) * 255 / a << shift;
    }
    return a == 0 ? pixel : out;
}

uint32_t BlendChannel(uint32_t mode, uint32_t cb, uint32_t cs) {
    switch (mode) {
    case GXBlendModeMultiply:
        return (cb + 1) * cs >> 8;
    case GXBlendModeScreen:
        return cs + cb - ((cb + 1) * cs >> 8);
    case GXBlendModeDarken:
        return std::min(cb, cs);
    case GXBlendModeLighten:
        return std::max(cb, cs);
    case GXBlendModeDifference:
        return cb > cs ? cb - cs : cs - cb;
    case GXBlendModeExclusion:
        return cs + cb - 2 * cs * cb / 255;
    default:
        return cs;
    }
}

uint32_t Blend(uint32_t mode, uint32_t backdrop, uint32_t source) {
    const uint32_t b = Straight(backdrop);
    const uint32_t s = Straight(source);
    uint32_t out = 0;
    for (int shift = 0; shift < 24; shift += 8) {
        out |= BlendChannel(mode, Channel(b, shift), Channel(s, shift)) << shift;
    }
    return out;
}

/// Drawing on the target itself.
uint32_t Basic(uint32_t mode, uint32_t d, uint32_t c, uint32_t shape) {
    if (shape == 0 || c >> 24 == 0) {
        return d;
    }
    c = shape < 255 ? Scale(c, shape + 1) : c;
    const uint32_t as = c >> 24;
    const uint32_t ab = d >> 24;
    if (ab == 0) {
        return c;
    }
    if (mode == 0) {
        return Scale(d, 256 - as) + c;
    }
    const uint32_t blended = Blend(mode, d, c);
    if (as == 255) {
        return (ab == 255 ? blended : Scale(c, 256 - ab) + Scale(blended, ab + 1)) | 0xFF000000U;
    }
    if (ab == 255) {
        return (Scale(d, 256 - as) + Scale(blended, as + 1)) | 0xFF000000U;
    }
    const uint32_t t = as * (ab + 1) >> 8;
    const uint32_t sum = Scale(d, 256 - as) + Scale(c, 256 - ab) + (t == 255 ? blended : Scale(blended, t + 1));
    return (sum & 0x00FFFFFFU) | (as + ab - t) << 24;
}

struct Layer {
    std::vector<uint32_t> color = std::vector<uint32_t>(kCount, 0);
    std::vector<uint32_t> backdrop = std::vector<uint32_t>(kCount, 0); // initial
    std::vector<uint32_t> alpha = std::vector<uint32_t>(kCount, 0);
    std::vector<uint32_t> shape = std::vector<uint32_t>(kCount, 0);
    bool group = false;
    bool isolated = true;
    bool knockout = false;
    float opacity = 1.0F;
};

void DrawPixel(Layer& layer, size_t i, uint32_t mode, uint32_t c, uint32_t shape) {
    if (!layer.group) {
        layer.color[i] = Basic(mode, layer.color[i], c, shape);
        return;
    }
    const uint32_t as = c >> 24;
    if (as == 0 || shape == 0) {
        return;
    }
    const uint32_t group = layer.color[i];
    const uint32_t alpha = layer.alpha[i];
    const uint32_t a0 = layer.knockout ? 0 : alpha;
    const uint32_t newAlpha = ((as + a0 - (a0 * (as + 1) >> 8)) * (shape + 1) >> 8) + (alpha * (256 - shape) >> 8);
    const uint32_t under = layer.knockout ? layer.backdrop[i] : group;
    uint32_t over = Scale(under, 256 - as) + c;
    if (mode != 0) {
        const uint32_t au = under >> 24;
        const uint32_t mixed = Scale(c, 256 - au) + Scale(Blend(mode, under, c), au + 1);
        over = Scale(under, 256 - as) + Scale(mixed, as + 1);
    }
    const uint32_t ab = layer.backdrop[i] >> 24;
    const uint32_t sum = Scale(group, 256 - shape) + Scale(over, shape + 1);
    layer.color[i] = (sum & 0x00FFFFFFU) | (newAlpha + ab - (newAlpha * (ab + 1) >> 8)) << 24;
    layer.alpha[i] = newAlpha;
    layer.shape[i] += shape - (layer.shape[i] * (shape + 1) >> 8);
}

uint32_t Divide(uint32_t pixel, uint32_t v) {
    uint32_t out = 0;
    for (int shift = 0; shift < 32; shift += 8) {
        out |= std::min(Channel(pixel, shift), v) * 255 / v << shift;
    }
    return out;
}

uint32_t ResultPixel(const Layer& layer, size_t i) {
    const uint32_t shape = layer.shape[i];
    const uint32_t alpha = layer.alpha[i];
    uint32_t pixel = layer.color[i];
    if (shape == 0 || (!layer.isolated && alpha == 0)) {
        return pixel;
    }
    if (!layer.isolated) {
        if (alpha == 255) {
            return pixel | 0xFF000000U;
        }
        const uint32_t share = Scale(layer.backdrop[i], 256 - alpha);
        uint32_t difference = 0;
        for (int shift = 0; shift < 24; shift += 8) {
            const uint32_t c = Channel(pixel, shift);
            difference |= (c > Channel(share, shift) ? c - Channel(share, shift) : 0) << shift;
        }
        pixel = difference;
    }
    pixel = (pixel & 0x00FFFFFFU) | alpha << 24;
    return shape < 255 ? Divide(pixel, shape) : pixel;
}

class Model {
public:
    std::vector<Layer> layers{1};

    void Draw(const GXIntRect& r, uint32_t mode, uint32_t argb, uint32_t shape) {
        // The brush's colour, premultiplied.
        const uint32_t a = argb >> 24;
        const uint32_t c = a == 255 ? argb : (Scale(argb, a + 1) & 0x00FFFFFFU) | a << 24;
        for (int y = r.top; y < r.bottom; ++y) {
            for (int x = r.left; x < r.right; ++x) {
                DrawPixel(layers.back(), static_cast<size_t>(y * kSize + x), mode, c, shape);
            }
        }
    }
    void Open(bool isolated, bool knockout, float opacity) {
        Layer layer;
        layer.group = true;
        layer.isolated = isolated;
        layer.knockout = knockout;
        layer.opacity = opacity;
        if (!isolated) {
            const Layer& parent = layers.back();
            layer.backdrop = parent.group && parent.knockout ? parent.backdrop : parent.color;
        }
        layer.color = layer.backdrop;
        layers.push_back(std::move(layer));
    }
    void Close(uint32_t mode) {
        const Layer layer = std::move(layers.back());
        layers.pop_back();
        const auto factor = static_cast<uint32_t>(layer.opacity * 255.0F) + 1;
        for (size_t i = 0; i < kCount; ++i) {
            DrawPixel(layers.back(), i, mode, Scale(ResultPixel(layer, i), factor), layer.shape[i]);
        }
    }
};

TEST(Groups, RandomNestsEqualThePlainModel) {
    constexpr uint32_t kModes[] = {GXBlendModeNormal,     GXBlendModeNormal,    GXBlendModeMultiply,
                                   GXBlendModeScreen,     GXBlendModeDarken,    GXBlendModeLighten,
                                   GXBlendModeDifference, GXBlendModeExclusion, 99};
    std::mt19937 random(77);
    const auto below = [&](uint32_t n) { return static_cast<uint32_t>(random() % n); };
    const auto value = [&] { return below(3) == 0 ? below(2) * 255 : below(256); };
    for (int round = 0; round < 400; ++round) {
        Canvas canvas(kSize, kSize);
        Model model;
        std::vector<uint32_t> modes; // of the state that each open group will be composited under
        const uint32_t paper = value() << 24 | 0x00804020;
        ASSERT_EQ(GXRenderTargetClear(canvas.target, paper), GXResultSuccess);
        std::fill(model.layers[0].color.begin(), model.layers[0].color.end(), canvas.At(0, 0));
        const uint32_t steps = 4 + below(24);
        for (uint32_t step = 0; step < steps; ++step) {
            const uint32_t mode = kModes[below(9)];
            ASSERT_EQ(GXRenderTargetSetBlendMode(canvas.target, mode), GXResultSuccess);
            const uint32_t action = below(6);
            if (action == 0 && model.layers.size() < 5) {
                const GXLayerDesc desc{{0, 0, 0, 0},
                                       static_cast<float>(value()) / 255.0F,
                                       static_cast<uint8_t>(below(2)),
                                       static_cast<uint8_t>(below(2))};
                ASSERT_EQ(GXRenderTargetBeginLayer(canvas.target, &desc), GXResultSuccess);
                model.Open(desc.isolated != 0, desc.knockout != 0, desc.opacity);
            } else if (action == 1 && model.layers.size() > 1) {
                ASSERT_EQ(GXRenderTargetEndLayer(canvas.target), GXResultSuccess);
                model.Close(modes.back());
                modes.pop_back();
                continue;
            } else {
                const auto x = static_cast<int32_t>(below(kSize));
                const auto y = static_cast<int32_t>(below(kSize));
                const GXIntRect r{x, y, x + 1 + static_cast<int32_t>(below(static_cast<uint32_t>(kSize - x))),
                                  y + 1 + static_cast<int32_t>(below(static_cast<uint32_t>(kSize - y)))};
                const GXRect rect{static_cast<float>(r.left), static_cast<float>(r.top), static_cast<float>(r.right),
                                  static_cast<float>(r.bottom)};
                const uint32_t argb = value() << 24 | (random() & 0x00FFFFFFU);
                const uint32_t shape = value();
                const Owned<GXBrush> brush = Solid(argb);
                const Owned<GXBrush> mask = Solid(shape << 24);
                ASSERT_EQ(GXRenderTargetSetShapeMask(canvas.target, GXMaskTypeAlpha, mask), GXResultSuccess);
                ASSERT_EQ(GXRenderTargetFillRect(canvas.target, &rect, brush), GXResultSuccess);
                ASSERT_EQ(GXRenderTargetSetShapeMask(canvas.target, GXMaskTypeAlpha, nullptr), GXResultSuccess);
                model.Draw(r, mode, argb, shape);
                continue;
            }
            modes.push_back(mode);
        }
        while (model.layers.size() > 1) {
            ASSERT_EQ(GXRenderTargetEndLayer(canvas.target), GXResultSuccess);
            model.Close(modes.back());
            modes.pop_back();
        }
        ASSERT_EQ(canvas.Pixels(), model.layers[0].color) << "round " << round;
    }
}

} // namespace
