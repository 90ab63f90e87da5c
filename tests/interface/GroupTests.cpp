// SPDX-License-Identifier: MIT
// Nested transparency groups of all four kinds, under every blend mode, with opacities, bounds, both masks, clips,
// partly covered pixels and cleared ones, against a plain model that keeps whole planes and follows the formulas pixel
// by pixel.
#include <algorithm>
#include <cmath>
#include <memory>
#include <random>

#include "../BlendOracle.h"
#include "TargetSupport.h"

using namespace BlendOracle;
using namespace TargetSupport;

namespace {

constexpr int kSize = 12;
constexpr size_t kCount = kSize * kSize;

using Plane = std::vector<uint32_t>;

uint32_t Byte(uint32_t value, uint32_t mask) { return mask == 255 ? value : value * (mask + 1) >> 8; }

uint32_t Scale(uint32_t pixel, uint32_t factor) { return Times(pixel, static_cast<int>(factor)); }

uint32_t Premultiplied(uint32_t argb) {
    const auto a = static_cast<int>(argb >> 24);
    return WithAlpha(Times(argb, a + 1), a);
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
        std::transform(pixels.begin(), pixels.end(), values.begin(),
                       [&](uint32_t p) { return static_cast<uint32_t>(MaskOracle(static_cast<int>(type), p)); });
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

void DrawPixel(Layer& layer, size_t i, uint32_t modeNumber, uint32_t c, uint32_t shapeValue) {
    const auto mode = static_cast<int>(modeNumber), shape = static_cast<int>(shapeValue);
    uint32_t& color = layer.color[i];
    if (!layer.group) {
        color = mode == 0 ? NormalOracle(color, c, shape) : ModeOracle(mode, color, c, shape);
        return;
    }
    const Group old{color, static_cast<int>(layer.alpha[i]), static_cast<int>(layer.shape[i])};
    const Group now = LayerOracle(mode == 0 ? -1 : mode, old, layer.backdrop[i], layer.knockout, c, shape);
    color = now.color;
    layer.alpha[i] = static_cast<uint32_t>(now.alpha);
    layer.shape[i] = static_cast<uint32_t>(now.shape);
}

uint32_t ResultPixel(const Layer& layer, size_t i) {
    return ResultOracle(layer.color[i], static_cast<int>(layer.alpha[i]), static_cast<int>(layer.shape[i]),
                        layer.isolated ? nullptr : &layer.backdrop[i]);
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
                layer.color[i] =
                    WithAlpha(layer.color[i], UnionOf(static_cast<int>(layer.alpha[i]), Split(layer.backdrop[i]).a));
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
