// SPDX-License-Identifier: MIT
// The HLSL of the Direct3D 11 back end is fixed to the byte: every fragment is held against a checksum taken from the
// agreed texts, whole shaders against texts written out here, and random keys against what must hold for any key.
#include <gtest/gtest.h>

#include <random>
#include <set>

#include "Direct3D11/Shaders/D3D11ConstantTable.h"
#include "Direct3D11/Shaders/D3D11DynamicShaderFactory.h"
#include "Direct3D11/Shaders/D3D11ShaderTargets.h"

using namespace Graphics;

namespace {

[[nodiscard]] uint64_t Fnv(std::string_view text) {
    uint64_t hash = 0xcbf29ce484222325ULL;
    for (const char c : text) {
        hash = (hash ^ static_cast<uint8_t>(c)) * 0x100000001b3ULL;
    }
    return hash;
}

struct FragmentSum {
    const char* name;
    uint64_t vertex;
    uint64_t pixel;
};
constexpr FragmentSum kFragments[] = {
    {"T2D", 0xe4ade7f7c4d8580dULL, 0xcbf29ce484222325ULL},
    {"SC", 0xcbf29ce484222325ULL, 0x2a011b0af928787dULL},
    {"BC", 0x048524425a5b0ff8ULL, 0xf800212bfc340ad7ULL},
    {"BCP", 0x6748b2798723f0aeULL, 0x0263374c161ce121ULL},
    {"SO", 0xcbf29ce484222325ULL, 0x13e8c90b7938e2abULL},
    {"BOAlpha", 0x9444e17337d7a326ULL, 0x932df67b92ffa63aULL},
    {"BOIAlpha", 0x3369dd4ab5f262ffULL, 0x3736484e3e704e7aULL},
    {"BOLum", 0xba0c9ebd44a09514ULL, 0x94be6f3d764e38feULL},
    {"BOILum", 0xb944cc8737921b79ULL, 0xec3095602f78f992ULL},
    {"BOLumP", 0x0817fc75df884002ULL, 0x2776fbdfda8b5176ULL},
    {"BOILumP", 0x6eec70b0fc05455dULL, 0x33fe9b8c03762aeaULL},
    {"SS", 0xcbf29ce484222325ULL, 0xbf2bf68c485b2b6dULL},
    {"BSAlpha", 0x7d270d728125497aULL, 0xb1b17d2c2452adaaULL},
    {"BSIAlpha", 0x2af15085c532823bULL, 0x0fcc773687ad514aULL},
    {"BSLum", 0x0c2cf21d0b097a08ULL, 0x0945b26b920f6e4eULL},
    {"BSILum", 0xba3c410a9c662065ULL, 0x26f57ff50ba22702ULL},
    {"BSLumP", 0x07a2b097ab1b04feULL, 0x5aebe5d022e6b266ULL},
    {"BSILumP", 0x4f9e77049dd65721ULL, 0x57972ab44da96ebaULL},
    {"BasicFastComposition", 0xcbf29ce484222325ULL, 0xefa31e3e3e5ec6fcULL},
    {"BasicComposition", 0x1b7fe9dbde7555c7ULL, 0x78e2c3bad255548cULL},
    {"LayerResultComposition", 0x5f56aabad9da2012ULL, 0xba8913ae8513bb6bULL},
    {"IsolatedLayerResultComposition", 0xdc8611411f24ed39ULL, 0xdbdf7de18f57ac1fULL},
    {"LayerComposition", 0x9962d09f19220d59ULL, 0x7ed720ff84ec8bceULL},
    {"IsolatedLayerComposition", 0x7b01168f7bc5507aULL, 0xbfd8747d2d5e1cf6ULL},
    {"KnockoutLayerComposition", 0x7845aa44814b8051ULL, 0x3ee7fac18704ef6cULL},
    {"IsolatedKnockoutLayerComposition", 0x04cb769ba97c67eeULL, 0x11525307c7c78650ULL},
};
constexpr uint64_t kBlendBodies[] = {
    0x3635f6c36d4c2080ULL, // Normal
    0xe2d5f2c3af5e3071ULL, // Multiply
    0x7a2ba3341373a06aULL, // Screen
    0xbf41055aff043e33ULL, // Overlay
    0x3bab979bddc4c4a6ULL, // Darken
    0x27026a38d286a9b0ULL, // Lighten
    0xf629572cdba89779ULL, // ColorBurn
    0x7f952d3fa73cec07ULL, // ColorDodge
    0xde1a40bbd879b26eULL, // HardLight
    0x5886b92d6e12b614ULL, // SoftLight
    0xb1a34db1799f517bULL, // Difference
    0x194f9ce08c8693a2ULL, // Exclusion
    0x09d7a6fd233500f9ULL, // Hue
    0x87afa61a2a7a6d1fULL, // Saturation
    0x581daf575f12d0feULL, // Color
    0xa4774e656a2fa884ULL, // Luminosity
};

[[nodiscard]] D3D11ShaderKey Key(std::initializer_list<D3D11Fragment> fragments, D3D11Fragment composition,
                                 uint32_t mode = 0) {
    D3D11ShaderKey key;
    for (const D3D11Fragment f : fragments) {
        EXPECT_TRUE(key.Add(f));
    }
    key.SetComposition(composition, mode);
    return key;
}

[[nodiscard]] size_t Count(const std::string& text, const std::string& what) {
    size_t n = 0;
    for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) {
        ++n;
    }
    return n;
}

} // namespace

TEST(ShaderText, EveryFragmentIsWordForWord) {
    ASSERT_EQ(std::size(kFragments), kD3D11FragmentCount);
    for (size_t i = 0; i < kD3D11FragmentCount; ++i) {
        const D3D11ShaderFragment& f = D3D11ShaderFragment::Get(static_cast<D3D11Fragment>(i));
        EXPECT_EQ(f.name, kFragments[i].name);
        EXPECT_EQ(Fnv(f.vertexFunction), kFragments[i].vertex) << f.name << f.vertexFunction;
        EXPECT_EQ(Fnv(f.pixelFunction), kFragments[i].pixel) << f.name << f.pixelFunction;
    }
    for (uint32_t mode = 0; mode < 16; ++mode) {
        EXPECT_EQ(Fnv(D3D11BlendBody(mode)), kBlendBodies[mode]) << mode;
    }
    EXPECT_EQ(D3D11BlendBody(16), D3D11BlendBody(0));
    EXPECT_EQ(Fnv(D3D11HelperFunctions()), 0xf098e1dd4ccce471ULL);
}

TEST(ShaderText, SolidColorIsThisAndNothingElse) {
    const D3D11ShaderKey key =
        Key({D3D11Fragment::T2D, D3D11Fragment::SC}, D3D11Fragment::BasicFastComposition, GXBlendModeMultiply);
    EXPECT_EQ(D3D11DynamicShaderFactory::VertexText(key), R"(
struct T2D_VSConstData {
  float4x2 transform;
};

struct VSConstData {
  T2D_VSConstData constants_0;
};

VSConstData vsData;

struct VSOutput {
  float4 position : SV_POSITION;
  float4 color : COLOR0;
};

void VS_T2D(float2 position, T2D_VSConstData data, inout float4 outPos) {
  outPos.x = position.x * data.transform._m00 + position.y * data.transform._m10 + data.transform._m20;
  outPos.y = position.x * data.transform._m01 + position.y * data.transform._m11 + data.transform._m21;
  outPos.z = 0;
  outPos.w = 1;
}
VSOutput VS(float2 position : POSITION, float4 color : COLOR0) {
  VSOutput output;
  output.position = float4(position, 0, 1);
  output.color = color;
  VS_T2D(position, vsData.constants_0, output.position);
  return output;
}
)");
    EXPECT_EQ(D3D11DynamicShaderFactory::PixelText(key), R"(
struct PSOutput {
  float4 color : SV_TARGET0;
};
)" + std::string(D3D11HelperFunctions()) +
                                                             R"(
float3 Blend(float3 cb, float3 cs) {
  return cb * cs;
}

struct SC_PSConstData {
  float4 color;
};

struct PSConstData {
  SC_PSConstData constants_1;
};

PSConstData psData;

void PS_BasicFastComposition(float4 Cs, float fs, inout PSOutput output) {
  output.color = Cs * fs;
}
void PS_SC(SC_PSConstData data, inout float4 result) {
  result *= data.color;
}
PSOutput PS(float4 position : SV_POSITION, float4 diffuse : COLOR0) {
  PSOutput output;
  float4 color = diffuse;
  float shape = 1;
  PS_SC(psData.constants_1, color);
  PS_BasicFastComposition(color, shape, output);
  return output;
}
)");
}

/// Modes that the software draws on the card's behalf, and one that does not exist.
TEST(ShaderText, ModesThatNoDrawSendsAreWholeTextsToo) {
    const struct {
        uint32_t mode;
        const char* body;
    } bodies[] = {
        {GXBlendModeColorBurn, R"(
  float3 k = step(float3(1, 1, 1), cb);
  float3 t = step(cs, 0);
  return k + (1 - k) * ((1 - t) * (1 - min(1, (1 - cb) / cs)));)"},
        {GXBlendModeColorDodge, R"(
  float3 k = step(cb, 0);
  float3 t = step(float3(1, 1, 1), cs);
  return (1 - k) * (t + (1 - t) * min(1, cb / (1 - cs)));)"},
        {GXBlendModeHardLight, R"(
  float3 t = step(cs, 0.5);
  return t * (2 * cb * cs) + (1 - t) * (2 * cs + 2 * cb - 2 * cb * cs - 1);)"},
        {GXBlendModeHue, R"(
  return SetLum(SetSat(cs, Saturation(cb)), Luminosity(cb));)"},
        {GXBlendModeSaturation, R"(
  return SetLum(SetSat(cb, Saturation(cs)), Luminosity(cb));)"},
        {GXBlendModeLuminosity, R"(
  return SetLum(cb, Luminosity(cs));)"},
        {16, R"(
  return cs;)"},
    };
    for (const auto& b : bodies) {
        const D3D11ShaderKey key = Key({D3D11Fragment::T2D}, D3D11Fragment::BasicComposition, b.mode);
        EXPECT_EQ(D3D11DynamicShaderFactory::PixelText(key), R"(
struct PSOutput {
  float4 color : SV_TARGET0;
};
)" + std::string(D3D11HelperFunctions()) + R"(
float3 Blend(float3 cb, float3 cs) {)" + b.body + R"(
}

Texture2D texture_0: register(t0);
SamplerState sampler_0: register(s0);
struct PSConstData {
};

PSConstData psData;

void PS_BasicComposition(float4 Cs, float fs, float2 Cb_texcoord, Texture2D Cb_texture, sampler Cb_sampler, inout PSOutput output) {
  float4 Cb = Cb_texture.Sample(Cb_sampler, Cb_texcoord);
  Cs *= fs;
  if (Cs.a == 0) {
    output.color = Cb;
  } else {
    float3 Cblend = Blend(Cb.rgb / Cb.a, Cs.rgb / Cs.a);
    output.color.rgb = (1 - Cs.a) * Cb.rgb + (1 - Cb.a) * Cs.rgb + Cs.a * Cb.a * Cblend;
    output.color.a = Cb.a + Cs.a - Cb.a * Cs.a;
  }
}
PSOutput PS(float4 position : SV_POSITION, float4 diffuse : COLOR0, float2 texcoord0 : TEXCOORD0) {
  PSOutput output;
  float4 color = diffuse;
  float shape = 1;
  PS_BasicComposition(color, shape, texcoord0, texture_0, sampler_0, output);
  return output;
}
)") << b.mode;
    }
}

/// Straight bitmaps, colours as constants, and masks by luminosity over alpha.
TEST(ShaderText, FragmentsThatNoDrawSendsAreWholeTextsToo) {
    const std::string head = R"(
struct PSOutput {
  float4 color : SV_TARGET0;
};
)" + std::string(D3D11HelperFunctions()) +
                             R"(
float3 Blend(float3 cb, float3 cs) {
  return cs;
}
)";
    const struct {
        D3D11Fragment fragment;
        const char* name;
        const char* result; ///< "float4": the colour; "float": the shape
        const char* lines;
    } sampled[] = {
        {D3D11Fragment::BC, "BC", "float4", "  sample.rgb *= sample.a;\n  result *= sample;"},
        {D3D11Fragment::BOLumP, "BOLumP", "float4", "  result *= Luminosity(sample.rgb) / sample.a;"},
        {D3D11Fragment::BOILumP, "BOILumP", "float4", "  result *= 1 - Luminosity(sample.rgb) / sample.a;"},
        {D3D11Fragment::BSLumP, "BSLumP", "float", "  result *= Luminosity(sample.rgb) / sample.a;"},
        {D3D11Fragment::BSILumP, "BSILumP", "float", "  result *= 1 - Luminosity(sample.rgb) / sample.a;"},
    };
    for (const auto& f : sampled) {
        const D3D11ShaderKey key = Key({D3D11Fragment::T2D, f.fragment}, D3D11Fragment::BasicFastComposition);
        const std::string name = f.name;
        EXPECT_EQ(D3D11DynamicShaderFactory::PixelText(key), head + R"(
Texture2D texture_0: register(t0);
SamplerState sampler_0: register(s0);
struct PSConstData {
};

PSConstData psData;

void PS_BasicFastComposition(float4 Cs, float fs, inout PSOutput output) {
  output.color = Cs * fs;
}
void PS_)" + name + "(float2 texcoord, Texture2D bitmapTexture, sampler bitmapSampler, inout " +
                                                                 f.result + R"( result) {
  float4 sample = bitmapTexture.Sample(bitmapSampler, texcoord);
)" + f.lines + R"(
}
PSOutput PS(float4 position : SV_POSITION, float4 diffuse : COLOR0, float2 texcoord0 : TEXCOORD0) {
  PSOutput output;
  float4 color = diffuse;
  float shape = 1;
  PS_)" + name + "(texcoord0, texture_0, sampler_0, " + (f.result[5] == '4' ? "color" : "shape") +
                                                                 R"();
  PS_BasicFastComposition(color, shape, output);
  return output;
}
)");
        const std::string vertex = D3D11DynamicShaderFactory::VertexText(key);
        EXPECT_NE(vertex.find("\nvoid VS_" + name + "(float2 position, " + name +
                              R"(_VSConstData data, inout float2 texcoord) {
  texcoord.x = position.x * data.transform._m00 + position.y * data.transform._m10 + data.transform._m20;
  texcoord.y = position.x * data.transform._m01 + position.y * data.transform._m11 + data.transform._m21;
})"),
                  std::string::npos)
            << vertex;
    }
}

/// The blend function has the body of the draw's mode whether or not the composition calls it.
TEST(ShaderText, EveryCompositionCarriesItsDrawsBlendBody) {
    for (size_t c = 18; c < kD3D11FragmentCount; ++c) {
        for (uint32_t mode = 0; mode < 18; ++mode) {
            const D3D11ShaderKey key = Key({D3D11Fragment::T2D}, static_cast<D3D11Fragment>(c), mode);
            const std::string text = D3D11DynamicShaderFactory::PixelText(key);
            const std::string function =
                "\nfloat3 Blend(float3 cb, float3 cs) {" + std::string(D3D11BlendBody(mode < 16 ? mode : 0)) + "\n}\n";
            EXPECT_EQ(Count(text, function), 1U) << c << " " << mode;
            EXPECT_EQ(key.BlendMode(), mode < 16 ? mode : 0U);
        }
    }
}

TEST(ShaderText, CallsOfAGroupTakeTheirPlacesInOrder) {
    const std::string pixel = D3D11DynamicShaderFactory::PixelText(
        Key({D3D11Fragment::T2D, D3D11Fragment::BCP, D3D11Fragment::BSLum, D3D11Fragment::SO, D3D11Fragment::BSLum},
            D3D11Fragment::KnockoutLayerComposition, GXBlendModeHue));
    const std::string tail = pixel.substr(pixel.find("\nPSOutput PS("));
    EXPECT_EQ(tail, R"(
PSOutput PS(float4 position : SV_POSITION, float4 diffuse : COLOR0, float2 texcoord0 : TEXCOORD0, float2 texcoord1 : TEXCOORD1, float2 texcoord2 : TEXCOORD2, float2 texcoord3 : TEXCOORD3, float2 texcoord4 : TEXCOORD4) {
  PSOutput output;
  float4 color = diffuse;
  float shape = 1;
  PS_BCP(texcoord2, texture_3, sampler_3, color);
  PS_BSLum(texcoord3, texture_4, sampler_4, shape);
  PS_SO(psData.constants_3, color);
  PS_BSLum(texcoord4, texture_5, sampler_5, shape);
  PS_KnockoutLayerComposition(color, shape, texcoord0, texture_0, sampler_0, texcoord1, texture_1, sampler_1, texture_2, sampler_2, output);
  return output;
}
)");
    EXPECT_EQ(Count(pixel, "void PS_BSLum("), 1U) << "a function is written once";
    EXPECT_NE(pixel.find(D3D11BlendBody(GXBlendModeHue)), std::string::npos);
}

TEST(ShaderText, AnyKeyIsWellFormedAndRepeatable) {
    std::mt19937 random(11);
    std::set<std::string> texts;
    std::set<uint64_t> codes;
    for (int i = 0; i < 400; ++i) {
        D3D11ShaderKey key;
        const size_t count = random() % (D3D11ShaderKey::kMaxFragments + 1);
        for (size_t k = 0; k < count; ++k) {
            ASSERT_TRUE(key.Add(static_cast<D3D11Fragment>(random() % 18)));
        }
        key.SetComposition(static_cast<D3D11Fragment>(18 + random() % 8), random() % 18);
        ASSERT_EQ(key.Count(), count);
        const std::string v = D3D11DynamicShaderFactory::VertexText(key);
        const std::string p = D3D11DynamicShaderFactory::PixelText(key);
        EXPECT_EQ(v, D3D11DynamicShaderFactory::VertexText(key));
        EXPECT_EQ(p, D3D11DynamicShaderFactory::PixelText(key));
        texts.insert(v + p);
        codes.insert(key.Code());
        // Calls: fragments in key order, the composition last.
        size_t at = p.find("\nPSOutput PS(");
        uint32_t textures = 0;
        for (size_t k = 0; k <= count; ++k) {
            const D3D11ShaderFragment& f = D3D11ShaderFragment::Get(k < count ? key.At(k) : key.Composition());
            textures += f.textureCount;
            if (!f.pixelFunction.empty()) {
                at = p.find("\n  PS_" + f.name + "(", at + 1);
                ASSERT_NE(at, std::string::npos) << p;
            }
        }
        const D3D11ShaderFragment& composition = D3D11ShaderFragment::Get(key.Composition());
        EXPECT_EQ(p.find("SV_TARGET1") != std::string::npos, composition.writesShape);
        EXPECT_EQ(Count(p, "\nTexture2D "), textures);
        EXPECT_EQ(Count(p, "\nSamplerState "), textures);
        EXPECT_EQ(Count(v, "TEXCOORD"), Count(p, "TEXCOORD")) << "the stages' signatures agree";
        EXPECT_EQ(Count(p, "{"), Count(p, "}"));
    }
    EXPECT_EQ(texts.size(), codes.size()) << "keys are as different as their texts";
    D3D11ShaderKey full;
    for (size_t i = 0; i < D3D11ShaderKey::kMaxFragments; ++i) {
        EXPECT_TRUE(full.Add(D3D11Fragment::BSILumP));
    }
    EXPECT_FALSE(full.Add(D3D11Fragment::T2D));
}

TEST(ShaderText, ConstantsFillRegistersByColumns) {
    D3D11VertexShaderConstantTable vertex;
    vertex.Clear();
    vertex.AddTransform({1, 2, 3, 4, 5, 6});
    const float expected[] = {1, 3, 5, 0, 2, 4, 6, 0};
    ASSERT_EQ(vertex.ByteSize(), sizeof(expected));
    EXPECT_EQ(std::memcmp(vertex.Data(), expected, sizeof(expected)), 0);
    D3D11PixelShaderConstantTable pixel;
    pixel.Clear();
    pixel.AddScalar(0.5F);
    pixel.AddColor({1, 2, 3, 4});
    const float scalars[] = {0.5F, 0, 0, 0, 1, 2, 3, 4};
    ASSERT_EQ(pixel.ByteSize(), sizeof(scalars));
    EXPECT_EQ(std::memcmp(pixel.Data(), scalars, sizeof(scalars)), 0);
}

TEST(ShaderText, LargerTargetsFollowAsFarAsTheDeviceGoes) {
    EXPECT_EQ(D3D11PixelShaderTargetsFor(0x9100).size(), 1U);
    EXPECT_EQ(D3D11PixelShaderTargetsFor(0x9200).size(), 1U);
    EXPECT_EQ(D3D11PixelShaderTargetsFor(0x9300).size(), 2U);
    const auto all = D3D11PixelShaderTargetsFor(0xb100);
    ASSERT_EQ(all.size(), 3U);
    EXPECT_STREQ(all[0], "ps_4_0_level_9_1");
    EXPECT_STREQ(all[1], "ps_4_0_level_9_3");
    EXPECT_STREQ(all[2], "ps_4_0");
}
