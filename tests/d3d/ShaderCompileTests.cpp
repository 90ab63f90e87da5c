// SPDX-License-Identifier: MIT
// The platform's compiler takes the generated texts.
#include <random>
#include <set>

#include "Direct3D11/D3D11ShaderCompiler.h"
#include "Direct3D11/Shaders/D3D11DynamicShaderFactory.h"
#include "Direct3D11/Shaders/D3D11ShaderTargets.h"
#include "Exception.h"
#include "HardwareTest.h"

using namespace Graphics;

namespace {

[[nodiscard]] std::string Message(const std::function<void()>& work) {
    try {
        work();
    } catch (const Exception& e) {
        return e.what();
    }
    return {};
}

} // namespace

TEST(D3D11ShaderCompiler, SaysWhatIsMissing) {
    EXPECT_EQ(Message([] { D3D11ShaderCompiler(L"no_such_module.dll", "D3DCompile"); }),
              "Failed to load D3DCompiler module");
    EXPECT_EQ(Message([] { D3D11ShaderCompiler(L"kernel32.dll", "D3DCompile"); }),
              "D3DCompile function not found in D3DCompiler module");
}

/// Each fragment, composition and mode at least once with masks around it, and random keys as long as draws make them.
TEST_F(HardwareTest, EveryShaderCompiles) {
    const D3D11ShaderCompiler& compiler = Context()->Compiler();
    std::vector<D3D11ShaderKey> keys;
    const auto add = [&](std::initializer_list<D3D11Fragment> fragments, D3D11Fragment composition, uint32_t mode) {
        D3D11ShaderKey key;
        for (const D3D11Fragment f : fragments) {
            ASSERT_TRUE(key.Add(f));
        }
        key.SetComposition(composition, mode);
        keys.push_back(key);
    };
    for (size_t f = 1; f < 18; ++f) {
        add({D3D11Fragment::T2D, static_cast<D3D11Fragment>(f)}, D3D11Fragment::BasicFastComposition, 0);
    }
    for (size_t c = 18; c < kD3D11FragmentCount; ++c) {
        for (uint32_t mode = 0; mode < 16; ++mode) {
            add({D3D11Fragment::T2D, D3D11Fragment::BCP, D3D11Fragment::BOILum, D3D11Fragment::BSILum,
                 D3D11Fragment::BSLum, D3D11Fragment::BSAlpha},
                static_cast<D3D11Fragment>(c), mode);
        }
    }
    std::mt19937 random(3);
    for (int i = 0; i < 20; ++i) {
        D3D11ShaderKey key;
        static_cast<void>(key.Add(D3D11Fragment::T2D));
        for (size_t n = random() % 5; n > 0; --n) {
            static_cast<void>(key.Add(static_cast<D3D11Fragment>(1 + random() % 17)));
        }
        key.SetComposition(static_cast<D3D11Fragment>(18 + random() % 8), random() % 16);
        keys.push_back(key);
    }
    std::set<uint64_t> done;
    std::set<uint32_t> beyondSmallest;
    for (const D3D11ShaderKey& key : keys) {
        if (!done.insert(key.Code()).second) {
            continue;
        }
        std::vector<uint8_t> code;
        std::string message;
        const std::string vertex = D3D11DynamicShaderFactory::VertexText(key);
        ASSERT_TRUE(compiler.TryCompile(vertex, "VS", kD3D11VertexShaderTarget, code, &message)) << message << vertex;
        const std::string pixel = D3D11DynamicShaderFactory::PixelText(key);
        if (!compiler.TryCompile(pixel, "PS", kD3D11PixelShaderTargets[0], code, &message)) {
            beyondSmallest.insert(key.BlendMode());
            ASSERT_TRUE(compiler.TryCompile(pixel, "PS", kD3D11PixelShaderTargets[1], code, &message) ||
                        compiler.TryCompile(pixel, "PS", kD3D11PixelShaderTargets[2], code, &message))
                << message << pixel;
        }
        EXPECT_FALSE(code.empty());
    }
    EXPECT_EQ(beyondSmallest.count(GXBlendModeHue), 1U) << "the ladder of targets has been climbed";
    EXPECT_EQ(beyondSmallest.count(GXBlendModeNormal), 0U);
    // A device of the lowest level has no further target.
    D3D11ShaderKey hue;
    static_cast<void>(hue.Add(D3D11Fragment::T2D));
    hue.SetComposition(D3D11Fragment::BasicComposition, GXBlendModeHue);
    const std::string text = D3D11DynamicShaderFactory::PixelText(hue);
    std::vector<uint8_t> code;
    EXPECT_FALSE(compiler.TryCompile(text, D3D11ShaderCompiler::Stage::Pixel, 0x9100, code));
    EXPECT_TRUE(compiler.TryCompile(text, D3D11ShaderCompiler::Stage::Pixel, 0x9300, code));
}
