// SPDX-License-Identifier: MIT
// Nested transparency groups of all four kinds, under every blend mode, with opacities, bounds, both masks, clips,
// partly covered pixels and cleared ones, against a plain model that keeps whole planes and follows the formulas pixel
// by pixel.
#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <random>

#include "TargetSupport.h"

using namespace TargetSupport;

namespace {

constexpr int kSize = 12;
constexpr size_t kCount = kSize * kSize;

using Plane = std::vector<uint32_t>;

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

uint32_t HardLight(uint32_t cb, uint32_t cs) {
    if (cs > 127) {
        const uint32_t s = 2 * cs - 255;
        return cb + s - s * cb / 255;
    }
    return 2 * cs * cb / 255;
}

uint32_t SoftLight(uint32_t cb, uint32_t cs) {
    const int b = static_cast<int>(cb);
    const int s = static_cast<int>(cs);
    if (s <= 127) {
        return static_cast<uint32_t>(b - (255 - 2 * s) * (255 - b) * b / 65025);
    }
    const float x = static_cast<float>(cb) / 255.0F;
    const float f = x <= 0.25F ? ((16.0F * x - 12.0F) * x + 4.0F) * x : std::sqrt(x);
    return static_cast<uint32_t>(b + (static_cast<int>(f * 255.0F) - b) * (2 * s - 255) / 255);
}

uint32_t BlendChannel(uint32_t mode, uint32_t cb, uint32_t cs) {
    switch (mode) {
    case GXBlendModeMultiply:
        return (cb + 1) * cs >> 8;
    case GXBlendModeScreen:
        return cs + cb - ((cb + 1) * cs >> 8);
    case GXBlendModeOverlay:
        return HardLight(cs, cb);
    case GXBlendModeDarken:
        return std::min(cb, cs);
    case GXBlendModeLighten:
        return std::max(cb, cs);
    case GXBlendModeColorBurn:
        return cs == 0 ? 0 : 255 - std::min(255U, (255 - cb) * 255 / cs);
    case GXBlendModeColorDodge:
        return cs == 255 || cb >= 255 - cs ? 255 : cb * 255 / (255 - cs);
    case GXBlendModeHardLight:
        return HardLight(cb, cs);
    case GXBlendModeSoftLight:
        return SoftLight(cb, cs);
    case GXBlendModeDifference:
        return cb > cs ? cb - cs : cs - cb;
    case GXBlendModeExclusion:
        return cs + cb - 2 * cs * cb / 255;
    default:
        return cs;
    }
}

/// Red, green, blue.
using Rgb = std::array<float, 3>;

Rgb ToRgb(uint32_t pixel) {
    return {static_cast<float>(Channel(pixel, 16)) / 255.0F, static_cast<float>(Channel(pixel, 8)) / 255.0F,
            static_cast<float>(Channel(pixel, 0)) / 255.0F};
}

float Lum(const Rgb& c) { return 0.3F * c[0] + 0.59F * c[1] + 0.11F * c[2]; }

float Sat(uint32_t pixel) {
    const auto [low, high] = std::minmax({Channel(pixel, 16), Channel(pixel, 8), Channel(pixel, 0)});
    return static_cast<float>(high - low) / 255.0F;
}

Rgb SetSat(Rgb c, float s) {
    std::array<size_t, 3> order{0, 1, 2};
    std::stable_sort(order.begin(), order.end(), [&](size_t l, size_t r) { return c[l] > c[r]; });
    float& high = c[order[0]];
    float& middle = c[order[1]];
    const float low = c[order[2]]; // stays
    middle = high > low ? (middle - low) * s / (high - low) : 0.0F;
    high = high > low ? s : 0.0F;
    return c;
}

Rgb SetLum(Rgb c, float l) {
    const float d = l - Lum(c);
    for (float& v : c) {
        v += d;
    }
    const float lum = Lum(c);
    const float low = *std::min_element(c.begin(), c.end());
    const float high = *std::max_element(c.begin(), c.end());
    for (float& v : c) {
        v = low < 0.0F ? lum + (v - lum) * lum / (lum - low) : v;
        v = high > 1.0F ? lum + (v - lum) * (1.0F - lum) / (high - lum) : v;
    }
    return c;
}

uint32_t ToPixel(const Rgb& c) {
    uint32_t out = 0;
    for (const float v : c) {
        out = out << 8 | (v > 1.0F ? 255U : v >= 0.0F ? static_cast<uint32_t>(v * 255.0F) : 0U);
    }
    return out;
}

/// Three colour bytes, alpha 0.
uint32_t Blend(uint32_t mode, uint32_t backdrop, uint32_t source) {
    const uint32_t b = Straight(backdrop);
    const uint32_t s = Straight(source);
    switch (mode) {
    case GXBlendModeHue:
        return ToPixel(SetLum(SetSat(ToRgb(s), Sat(b)), Lum(ToRgb(b))));
    case GXBlendModeSaturation:
        return ToPixel(SetLum(SetSat(ToRgb(b), Sat(s)), Lum(ToRgb(b))));
    case GXBlendModeColor:
        return ToPixel(SetLum(ToRgb(s), Lum(ToRgb(b))));
    case GXBlendModeLuminosity:
        return ToPixel(SetLum(ToRgb(b), Lum(ToRgb(s))));
    default:
        break;
    }
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

/// a + b - a b
uint32_t Union(uint32_t a, uint32_t b) { return a + b - (a * (b + 1) >> 8); }

uint32_t Byte(uint32_t value, uint32_t mask) { return mask == 255 ? value : value * (mask + 1) >> 8; }

uint32_t Premultiplied(uint32_t argb) {
    const uint32_t a = argb >> 24;
    return (Scale(argb, a + 1) & 0x00FFFFFFU) | a << 24;
}

/// An image in brush and bitmap; as a mask it has a value for each type.
struct Image {
    Plane pixels = Plane(kCount);
    Owned<GXBitmap> bitmap = MakeBitmap(kSize, kSize, GXPixelFormatPBGRA32);
    Owned<GXBrush> brush;

    template <class Random> explicit Image(Random&& value) {
        for (uint32_t& pixel : pixels) {
            const uint32_t a = value();
            const bool grey = value() < 64; // its saturation is 0
            const uint32_t level = value();
            const uint32_t rgb = grey ? level * 0x010101U : level << 16 | value() << 8 | value();
            pixel = Premultiplied(a << 24 | rgb);
        }
        const GXBitmapData data{pixels.data(), kSize * 4, kSize * 4};
        EXPECT_EQ(GXBitmapCopyFromMemory(bitmap, nullptr, &data), GXResultSuccess);
        const GXBitmapBrushOptions nearest{GXInterpolationNearest, GXExtendClamp, GXExtendClamp};
        EXPECT_EQ(GXCreateBrushBitmap(bitmap, 1.0F, &nearest, nullptr, brush.Out()), GXResultSuccess);
    }

    [[nodiscard]] Plane MaskValues(uint32_t type) const {
        Plane values(kCount);
        std::transform(pixels.begin(), pixels.end(), values.begin(), [&](uint32_t p) {
            const uint32_t v =
                type < 2 ? p >> 24 : (77 * Channel(p, 16) + 151 * Channel(p, 8) + 28 * Channel(p, 0)) >> 8;
            return type % 2 != 0 ? 255 - v : v;
        });
        return values;
    }
};

struct State {
    uint32_t mode = 0;
    Plane shapeMask = Plane(kCount, 255);
    Plane opacityMask = Plane(kCount, 255);
    Plane clip = Plane(kCount, 255);
};

struct Layer {
    Plane color = Plane(kCount, 0);
    Plane backdrop = Plane(kCount, 0); // initial
    Plane alpha = Plane(kCount, 0);
    Plane shape = Plane(kCount, 0);
    std::vector<State> states = std::vector<State>(1);
    GXIntRect bounds{0, 0, kSize, kSize};
    bool group = false;
    bool isolated = true;
    bool knockout = false;
    float opacity = 1.0F;

    [[nodiscard]] bool Holds(size_t i) const {
        const int x = static_cast<int>(i) % kSize;
        const int y = static_cast<int>(i) / kSize;
        return x >= bounds.left && x < bounds.right && y >= bounds.top && y < bounds.bottom;
    }
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
    const uint32_t newAlpha = (Union(a0, as) * (shape + 1) >> 8) + (alpha * (256 - shape) >> 8);
    const uint32_t under = layer.knockout ? layer.backdrop[i] : group;
    uint32_t over = Scale(under, 256 - as) + c;
    if (mode != 0) {
        const uint32_t au = under >> 24;
        const uint32_t mixed = Scale(c, 256 - au) + Scale(Blend(mode, under, c), au + 1);
        over = Scale(under, 256 - as) + Scale(mixed, as + 1);
    }
    const uint32_t sum = Scale(group, 256 - shape) + Scale(over, shape + 1);
    layer.color[i] = (sum & 0x00FFFFFFU) | Union(newAlpha, layer.backdrop[i] >> 24) << 24;
    layer.alpha[i] = newAlpha;
    layer.shape[i] = Union(layer.shape[i], shape);
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

/// Coverage of a rectangle in eighths of a pixel: 64 samples a pixel, their number times 4 less 1.
Plane CoverageOf(const GXIntRect& r) {
    Plane coverage(kCount);
    for (size_t i = 0; i < kCount; ++i) {
        const int x = static_cast<int>(i) % kSize * 8;
        const int y = static_cast<int>(i) / kSize * 8;
        const int samples = std::max(0, std::min(r.right, x + 8) - std::max(r.left, x)) *
                            std::max(0, std::min(r.bottom, y + 8) - std::max(r.top, y));
        coverage[i] = samples == 0 ? 0 : static_cast<uint32_t>(samples * 4 - 1);
    }
    return coverage;
}

class Model {
public:
    std::vector<Layer> layers{1};
    bool opaque = false; ///< of the target's format

    Layer& Top() { return layers.back(); }
    State& Current() { return Top().states.back(); }

    void Draw(const Plane& coverage, const Plane& source) {
        const State& state = Current();
        for (size_t i = 0; i < kCount; ++i) {
            if (coverage[i] == 0 || !Top().Holds(i)) {
                continue;
            }
            const uint32_t shape = Byte(Byte(coverage[i], state.shapeMask[i]), state.clip[i]);
            DrawPixel(Top(), i, state.mode, Scale(source[i], state.opacityMask[i] + 1), shape);
        }
    }
    void Open(const GXLayerDesc& desc) {
        Layer layer;
        layer.group = true;
        layer.isolated = desc.isolated != 0;
        layer.knockout = desc.knockout != 0;
        layer.opacity = desc.opacity;
        if (desc.bounds.left < desc.bounds.right && desc.bounds.top < desc.bounds.bottom) {
            layer.bounds = {
                static_cast<int>(std::floor(desc.bounds.left)), static_cast<int>(std::floor(desc.bounds.top)),
                static_cast<int>(std::ceil(desc.bounds.right)), static_cast<int>(std::ceil(desc.bounds.bottom))};
        }
        if (!layer.isolated) {
            layer.backdrop = Top().group && Top().knockout ? Top().backdrop : Top().color;
        }
        layer.color = layer.backdrop;
        layers.push_back(std::move(layer));
    }
    void Close() {
        const Layer layer = std::move(Top());
        layers.pop_back();
        const State& state = Current();
        const auto factor = static_cast<uint32_t>(std::clamp(layer.opacity, 0.0F, 1.0F) * 255.0F) + 1;
        for (size_t i = 0; i < kCount; ++i) {
            if (layer.Holds(i) && Top().Holds(i)) {
                const uint32_t shape = Byte(Byte(state.shapeMask[i], layer.shape[i]), state.clip[i]);
                const uint32_t color = Scale(ResultPixel(layer, i), factor);
                DrawPixel(Top(), i, state.mode, Scale(color, state.opacityMask[i] + 1), shape);
            }
        }
    }
    void Clip(const Plane& coverage) {
        Plane& clip = Current().clip;
        for (size_t i = 0; i < kCount; ++i) {
            clip[i] = Byte(coverage[i], clip[i]);
        }
    }
    void Clear(uint32_t argb) {
        Layer& layer = Top();
        const uint32_t c = Premultiplied(opaque && !layer.group ? argb | 0xFF000000U : argb);
        const uint32_t a = c >> 24;
        for (size_t i = 0; i < kCount; ++i) {
            const uint32_t share = Current().clip[i];
            if (share == 0 || !layer.Holds(i)) {
                continue;
            }
            const auto mix = [share](uint32_t was, uint32_t now) {
                return Scale(was, 256 - share) + Scale(now, share + 1);
            };
            layer.color[i] = mix(layer.color[i], Scale(layer.backdrop[i], 256 - a) + c);
            if (layer.group) { // as a knockout draw of full shape would leave it
                layer.alpha[i] = mix(layer.alpha[i], a);
                layer.shape[i] = mix(layer.shape[i], 255);
                layer.color[i] = (layer.color[i] & 0x00FFFFFFU) | Union(layer.alpha[i], layer.backdrop[i] >> 24) << 24;
            }
        }
    }
};

class Groups : public ::testing::Test {
protected:
    uint32_t Below(uint32_t n) { return static_cast<uint32_t>(m_random() % n); }
    uint32_t Value() { return Below(3) == 0 ? Below(2) * 255 : Below(256); }

    /// In eighths; often of whole pixels.
    GXIntRect Area() {
        const uint32_t unit = Below(3) == 0 ? 1 : 8;
        const auto l = Below(kSize * 8 / unit);
        const auto t = Below(kSize * 8 / unit);
        const auto r = l + 1 + Below(kSize * 8 / unit - l);
        const auto b = t + 1 + Below(kSize * 8 / unit - t);
        return {static_cast<int>(l * unit), static_cast<int>(t * unit), static_cast<int>(r * unit),
                static_cast<int>(b * unit)};
    }
    static GXRect Rect(const GXIntRect& r) {
        return {static_cast<float>(r.left) / 8.0F, static_cast<float>(r.top) / 8.0F, static_cast<float>(r.right) / 8.0F,
                static_cast<float>(r.bottom) / 8.0F};
    }

    void Step(GXRenderTarget target, Model& model) {
        const uint32_t action = Below(16);
        if (action < 2 && model.layers.size() < 6) {
            const GXLayerDesc desc{Below(3) == 0 ? Rect(Area()) : GXRect{0, 0, 0, 0},
                                   Below(20) == 0 ? 1.5F : static_cast<float>(Value()) / 255.0F,
                                   static_cast<uint8_t>(Below(2)), static_cast<uint8_t>(Below(2))};
            ASSERT_EQ(GXRenderTargetBeginLayer(target, &desc), GXResultSuccess);
            model.Open(desc);
        } else if (action < 4 && model.layers.size() > 1) {
            ASSERT_EQ(GXRenderTargetEndLayer(target), GXResultSuccess);
            model.Close();
        } else if (action == 4) {
            ASSERT_EQ(GXRenderTargetPushState(target), GXResultSuccess);
            model.Top().states.push_back(model.Current());
        } else if (action == 5) {
            const bool pushed = model.Top().states.size() > 1;
            ASSERT_EQ(GXRenderTargetPopState(target), pushed ? GXResultSuccess : GXResultEngineError);
            if (pushed) {
                model.Top().states.pop_back();
            }
        } else if (action == 6) {
            model.Current().mode = Below(3) == 0 ? 0 : Below(18);
            ASSERT_EQ(GXRenderTargetSetBlendMode(target, model.Current().mode), GXResultSuccess);
        } else if (action == 7 || action == 8) {
            Plane& mask = action == 7 ? model.Current().shapeMask : model.Current().opacityMask;
            const auto set = action == 7 ? GXRenderTargetSetShapeMask : GXRenderTargetSetOpacityMask;
            const uint32_t type = Below(4);
            const Image* image = Below(2) == 0 ? &m_images[Below(4)] : nullptr;
            ASSERT_EQ(set(target, type, image != nullptr ? GXBrush{image->brush} : nullptr), GXResultSuccess);
            mask = image != nullptr ? image->MaskValues(type) : Plane(kCount, 255);
        } else if (action == 9) {
            const GXIntRect area = Area();
            const GXRect rect = Rect(area);
            ASSERT_EQ(GXRenderTargetClipRect(target, &rect), GXResultSuccess);
            model.Clip(CoverageOf(area));
        } else if (action == 10 && Below(3) == 0) {
            const uint32_t argb = Value() << 24 | (m_random() & 0x00FFFFFFU);
            ASSERT_EQ(GXRenderTargetClear(target, argb), GXResultSuccess);
            model.Clear(argb);
        } else {
            const GXIntRect area = Area();
            const GXRect rect = Rect(area);
            if (Below(2) == 0) {
                const Image& image = m_images[Below(4)];
                ASSERT_EQ(GXRenderTargetFillRect(target, &rect, image.brush), GXResultSuccess);
                model.Draw(CoverageOf(area), image.pixels);
            } else {
                const uint32_t argb = Value() << 24 | (m_random() & 0x00FFFFFFU);
                ASSERT_EQ(GXRenderTargetFillRect(target, &rect, Solid(argb)), GXResultSuccess);
                model.Draw(CoverageOf(area), Plane(kCount, Premultiplied(argb)));
            }
        }
    }

    std::mt19937 m_random{77};
    std::vector<Image> m_images;
};

TEST_F(Groups, RandomNestsEqualThePlainModel) {
    for (int i = 0; i < 4; ++i) {
        m_images.emplace_back([&] { return Value(); });
    }
    for (int round = 0; round < 5000; ++round) {
        Model model;
        model.opaque = Below(4) == 0;
        Canvas canvas(kSize, kSize, model.opaque ? GXPixelFormatBGRX32 : GXPixelFormatPBGRA32);
        ASSERT_EQ(GXRenderTargetSetStrokeAdjustment(canvas.target, 0), GXResultSuccess);
        const uint32_t paper = Value() << 24 | 0x00804020;
        ASSERT_EQ(GXRenderTargetClear(canvas.target, paper), GXResultSuccess);
        model.Clear(paper);
        for (uint32_t step = 4 + Below(40); step > 0; --step) {
            ASSERT_NO_FATAL_FAILURE(Step(canvas.target, model));
        }
        // What is still open is closed by the end of painting.
        ASSERT_EQ(GXRenderTargetEndPaint(canvas.target), GXResultSuccess);
        while (model.layers.size() > 1) {
            model.Close();
        }
        ASSERT_EQ(canvas.Pixels(), model.layers[0].color) << "round " << round;
    }
}

} // namespace
