// SPDX-License-Identifier: MIT
// Shader text only: the compositions, the blend functions, and their helper functions.
#include "D3D11CompositionTexts.h"

namespace Graphics {
namespace {

constexpr std::string_view kBasicFastComposition = "(float4 Cs, float fs, inout PSOutput output) {\n"
                                                   "  output.color = Cs * fs;\n"
                                                   "}";

constexpr std::string_view kBasicComposition =
    "(float4 Cs, float fs, float2 Cb_texcoord, Texture2D Cb_texture, sampler Cb_sampler, inout PSOutput output) {\n"
    "  float4 Cb = Cb_texture.Sample(Cb_sampler, Cb_texcoord);\n"
    "  Cs *= fs;\n"
    "  if (Cs.a == 0) {\n"
    "    output.color = Cb;\n"
    "  } else {\n"
    "    float3 Cblend = Blend(Cb.rgb / Cb.a, Cs.rgb / Cs.a);\n"
    "    output.color.rgb = (1 - Cs.a) * Cb.rgb + (1 - Cb.a) * Cs.rgb + Cs.a * Cb.a * Cblend;\n"
    "    output.color.a = Cb.a + Cs.a - Cb.a * Cs.a;\n"
    "  }\n"
    "}";

constexpr std::string_view kLayerResultComposition =
    "(float4 Cs, float fs, float2 Co_texcoord, Texture2D Co_texture, sampler Co_sampler, float2 Cg_texcoord, Texture2D "
    "Cg_texture, sampler Cg_sampler, Texture2D fg_texture, sampler fg_sampler, inout PSOutput output) {\n"
    "  float4 fg = fg_texture.Sample(fg_sampler, Cg_texcoord);\n"
    "  float4 Cg = Cg_texture.Sample(Cg_sampler, Cg_texcoord);\n"
    "  float4 Co = Co_texture.Sample(Co_sampler, Co_texcoord);\n"
    "  if (fg.r == 0 || fg.a == 0 || Cg.a == 0) {\n"
    "    output.color = float4(0, 0, 0, 0);\n"
    "  } else {\n"
    "    Cg.rgb /= Cg.a;\n"
    "    if (Co.a == 0) {\n"
    "      output.color.rgb = Cg.rgb;\n"
    "    } else {\n"
    "      Co.rgb /= Co.a;\n"
    "      output.color.rgb = Cg.rgb + (Cg.rgb - Co.rgb) * (Co.a / fg.a - Co.a);\n"
    "    }\n"
    "    output.color.a = 1;\n"
    "    output.color *= fg.a / fg.r;\n"
    "  }\n"
    "}";

constexpr std::string_view kIsolatedLayerResultComposition =
    "(float4 Cs, float fs, float2 Cg_texcoord, Texture2D Cg_texture, sampler Cg_sampler, Texture2D fg_texture, sampler "
    "fg_sampler, inout PSOutput output) {\n"
    "  float4 fg = fg_texture.Sample(fg_sampler, Cg_texcoord);\n"
    "  float4 Cg = Cg_texture.Sample(Cg_sampler, Cg_texcoord);\n"
    "  if (fg.r == 0 || fg.a == 0 || Cg.a == 0) {\n"
    "    output.color = float4(0, 0, 0, 0);\n"
    "  } else {\n"
    "    output.color = float4(Cg.rgb / fg.r, fg.a / fg.r);\n"
    "  }\n"
    "}";

constexpr std::string_view kLayerComposition =
    "(float4 Cs, float fs, float2 Co_texcoord, Texture2D Co_texture, sampler Co_sampler, float2 Cg_texcoord, Texture2D "
    "Cg_texture, sampler Cg_sampler, Texture2D fg_texture, sampler fg_sampler, inout PSOutput output) {\n"
    "  float4 fg = fg_texture.Sample(fg_sampler, Cg_texcoord);\n"
    "  float4 Cg = Cg_texture.Sample(Cg_sampler, Cg_texcoord);\n"
    "  float4 Co = Co_texture.Sample(Co_sampler, Co_texcoord);\n"
    "  Cs *= fs;\n"
    "  if (Cs.a == 0) {\n"
    "    output.shape = fg;\n"
    "    output.color = Cg;\n"
    "  } else {\n"
    "    float3 Cblend = Blend(Cg.rgb / Cg.a, Cs.rgb / Cs.a);\n"
    "    output.shape.rgb = fg.rgb + fs * (1 - fg.rgb);\n"
    "    output.shape.a = (1 - Cs.a) * fg.a + Cs.a;\n"
    "    output.color.rgb = (1 - Cs.a) * Cg.rgb + (1 - Cg.a) * Cs.rgb + Cg.a * Cs.a * Cblend;\n"
    "    output.color.a = Co.a + output.shape.a * (1 - Co.a);\n"
    "  }\n"
    "}";

constexpr std::string_view kIsolatedLayerComposition =
    "(float4 Cs, float fs, float2 Cg_texcoord, Texture2D Cg_texture, sampler Cg_sampler, Texture2D fg_texture, sampler "
    "fg_sampler, inout PSOutput output) {\n"
    "  float4 fg = fg_texture.Sample(fg_sampler, Cg_texcoord);\n"
    "  float4 Cg = Cg_texture.Sample(Cg_sampler, Cg_texcoord);\n"
    "  Cs *= fs;\n"
    "  if (Cs.a == 0) {\n"
    "    output.shape = fg;\n"
    "    output.color = Cg;\n"
    "  } else {\n"
    "    float3 Cblend = Blend(Cg.rgb / Cg.a, Cs.rgb / Cs.a);\n"
    "    output.shape.rgb = fg.rgb + fs * (1 - fg.rgb);\n"
    "    output.shape.a = (1 - Cs.a) * fg.a + Cs.a;\n"
    "    output.color.rgb = (1 - Cs.a) * Cg.rgb + (1 - Cg.a) * Cs.rgb + Cg.a * Cs.a * Cblend;\n"
    "    output.color.a = output.shape.a;\n"
    "  }\n"
    "}";

constexpr std::string_view kKnockoutLayerComposition =
    "(float4 Cs, float fs, float2 Co_texcoord, Texture2D Co_texture, sampler Co_sampler, float2 Cg_texcoord, Texture2D "
    "Cg_texture, sampler Cg_sampler, Texture2D fg_texture, sampler fg_sampler, inout PSOutput output) {\n"
    "  float4 fg = fg_texture.Sample(fg_sampler, Cg_texcoord);\n"
    "  float4 Cg = Cg_texture.Sample(Cg_sampler, Cg_texcoord);\n"
    "  float4 Co = Co_texture.Sample(Co_sampler, Co_texcoord);\n"
    "  float4 Cb = float4(Co.rgb * Co.a, Co.a);\n"
    "  Cs *= fs;\n"
    "  if (Cs.a == 0) {\n"
    "    output.shape = fg;\n"
    "    output.color = Cg;\n"
    "  } else {\n"
    "    float3 Cblend = Blend(Co.rgb / Co.a, Cs.rgb / Cs.a);\n"
    "    output.shape.rgb = fg.rgb + fs * (1 - fg.rgb);\n"
    "    output.shape.a = (1 - fs) * fg.a + Cs.a;\n"
    "    output.color.rgb = (1 - fs) * Cg.rgb + (fs - Cs.a) * Cb.rgb + (1 - Co.a) * Cs.rgb + Co.a * Cs.a * Cblend;\n"
    "    output.color.a = Co.a + output.shape.a * (1 - Co.a);\n"
    "  }\n"
    "}";

constexpr std::string_view kIsolatedKnockoutLayerComposition =
    "(float4 Cs, float fs, float2 Cg_texcoord, Texture2D Cg_texture, sampler Cg_sampler, Texture2D fg_texture, sampler "
    "fg_sampler, inout PSOutput output) {\n"
    "  float4 fg = fg_texture.Sample(fg_sampler, Cg_texcoord);\n"
    "  float4 Cg = Cg_texture.Sample(Cg_sampler, Cg_texcoord);\n"
    "  Cs *= fs;\n"
    "  if (Cs.a == 0) {\n"
    "    output.shape = fg;\n"
    "    output.color = Cg;\n"
    "  } else {\n"
    "    output.shape.rgb = fg.rgb + fs * (1 - fg.rgb);\n"
    "    output.shape.a = (1 - fs) * fg.a + Cs.a;\n"
    "    output.color.rgb = (1 - fs) * Cg.rgb + Cs.rgb;\n"
    "    output.color.a = output.shape.a;\n"
    "  }\n"
    "}";
constexpr std::string_view kCo = "Co_transform";
constexpr std::string_view kCg = "Cg_transform";

constexpr D3D11CompositionText kTexts[] = {
    {D3D11Fragment::BasicFastComposition, "BasicFastComposition", {}, kBasicFastComposition},
    {D3D11Fragment::BasicComposition, "BasicComposition", {"Cb_transform"}, kBasicComposition},
    {D3D11Fragment::LayerResultComposition, "LayerResultComposition", {kCo, kCg}, kLayerResultComposition},
    {D3D11Fragment::IsolatedLayerResultComposition,
     "IsolatedLayerResultComposition",
     {kCg},
     kIsolatedLayerResultComposition},
    {D3D11Fragment::LayerComposition, "LayerComposition", {kCo, kCg}, kLayerComposition},
    {D3D11Fragment::IsolatedLayerComposition, "IsolatedLayerComposition", {kCg}, kIsolatedLayerComposition},
    {D3D11Fragment::KnockoutLayerComposition, "KnockoutLayerComposition", {kCo, kCg}, kKnockoutLayerComposition},
    {D3D11Fragment::IsolatedKnockoutLayerComposition,
     "IsolatedKnockoutLayerComposition",
     {kCg},
     kIsolatedKnockoutLayerComposition},
};

constexpr std::string_view kHelpers = "\n"
                                      "float Luminosity(float3 c) {\n"
                                      "  c *= float3(0.3, 0.59, 0.11);\n"
                                      "  return c.r + c.g + c.b;\n"
                                      "}\n"
                                      "\n"
                                      "float Saturation(float3 c) {\n"
                                      "  return max(c.r, max(c.g, c.b)) - min(c.r, min(c.g, c.b));\n"
                                      "}\n"
                                      "\n"
                                      "float3 ClipColor(float3 c) {\n"
                                      "  float l = Luminosity(c);\n"
                                      "  float n = min(c.r, min(c.g, c.b));\n"
                                      "  float x = max(c.r, max(c.g, c.b));\n"
                                      "  if (n < 0)\n"
                                      "    c = l + (l * (c - l)/ (l - n));\n"
                                      "  if (x > 1)\n"
                                      "    c = l + ((1 - l) * (c - l) / (x - l));\n"
                                      "  return c;\n"
                                      "}\n"
                                      "\n"
                                      "float3 SetLum(float3 c, float l) {\n"
                                      "  float d = l - Luminosity(c);\n"
                                      "  return ClipColor(c + d);\n"
                                      "}\n"
                                      "\n"
                                      "float3 SetSat(float3 c, float s) {\n"
                                      "  float3 result = float3(0, 0, 0);\n"
                                      "  if (c.r > c.g) {\n"
                                      "    if (c.r > c.b) {\n"
                                      "      result.r = s;\n"
                                      "      if (c.g > c.b) {\n"
                                      "        result.g = (c.g - c.b) * s / (c.r - c.b);\n"
                                      "      } else if (c.b > c.g) {\n"
                                      "        result.b = (c.b - c.g) * s / (c.r - c.g);\n"
                                      "      }\n"
                                      "    } else if (c.b > c.r) {\n"
                                      "      result.r = (c.r - c.g) * s / (c.b - c.g);\n"
                                      "      result.b = s;\n"
                                      "    }\n"
                                      "  } else {\n"
                                      "    if (c.r > c.b) {\n"
                                      "      result.r = (c.r - c.b) * s / (c.g - c.b);\n"
                                      "      result.g = s;\n"
                                      "    } else if (c.b > c.r) {\n"
                                      "      if (c.g > c.b) {\n"
                                      "        result.b = (c.b - c.r) * s / (c.g - c.r);\n"
                                      "        result.g = s;\n"
                                      "      } else if (c.b > c.g) {\n"
                                      "        result.g = (c.g - c.r) * s / (c.b - c.r);\n"
                                      "        result.b = s;\n"
                                      "      }\n"
                                      "    }\n"
                                      "  }\n"
                                      "  return result;\n"
                                      "}\n";

constexpr std::string_view kBlendBodies[16] = {
    // Normal
    "\n"
    "  return cs;",
    // Multiply
    "\n"
    "  return cb * cs;",
    // Screen
    "\n"
    "  return cb + cs - cb * cs;",
    // Overlay
    "\n"
    "  float3 t = step(cb, 0.5);\n"
    "  return t * (2 * cb * cs) + (1 - t) * (2 * cs + 2 * cb - 2 * cb * cs - 1);",
    // Darken
    "\n"
    "  return min(cb, cs);",
    // Lighten
    "\n"
    "  return max(cb, cs);",
    // ColorBurn
    "\n"
    "  float3 k = step(float3(1, 1, 1), cb);\n"
    "  float3 t = step(cs, 0);\n"
    "  return k + (1 - k) * ((1 - t) * (1 - min(1, (1 - cb) / cs)));",
    // ColorDodge
    "\n"
    "  float3 k = step(cb, 0);\n"
    "  float3 t = step(float3(1, 1, 1), cs);\n"
    "  return (1 - k) * (t + (1 - t) * min(1, cb / (1 - cs)));",
    // HardLight
    "\n"
    "  float3 t = step(cs, 0.5);\n"
    "  return t * (2 * cb * cs) + (1 - t) * (2 * cs + 2 * cb - 2 * cb * cs - 1);",
    // SoftLight
    "\n"
    "  float3 dt = step(cb, 0.25);\n"
    "  float3 d = dt * (((16 * cb - 12) * cb + 4) * cb) + (1 - dt) * sqrt(cb);\n"
    "  float3 t = step(cs, 0.5);\n"
    "  return t * (cb - (1 - 2 * cs) * cb * (1 - cb)) + (1 - t) * (cb - (1 - 2 * cs) * (d - cb));",
    // Difference
    "\n"
    "  return abs(cb - cs);",
    // Exclusion
    "\n"
    "  return cb + cs - 2 * cb * cs;",
    // Hue
    "\n"
    "  return SetLum(SetSat(cs, Saturation(cb)), Luminosity(cb));",
    // Saturation
    "\n"
    "  return SetLum(SetSat(cb, Saturation(cs)), Luminosity(cb));",
    // Color
    "\n"
    "  return SetLum(cs, Luminosity(cb));",
    // Luminosity
    "\n"
    "  return SetLum(cb, Luminosity(cs));",
};

} // namespace

std::span<const D3D11CompositionText> D3D11CompositionTexts() noexcept { return kTexts; }

std::string_view D3D11HelperFunctions() noexcept { return kHelpers; }

std::string_view D3D11BlendBody(uint32_t blendMode) noexcept { return kBlendBodies[blendMode < 16 ? blendMode : 0]; }

} // namespace Graphics
