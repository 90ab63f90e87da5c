// SPDX-License-Identifier: MIT
// The fragments of source colours and masks, and the reader that extracts their inputs from their texts. Maps from
// positions to texture coordinates differ only in names, so their text is generated.
#include "D3D11ShaderFragment.h"

#include "D3D11CompositionTexts.h"

namespace Graphics {
namespace {

/// x' = x m00 + y m10 + m20, y' = x m01 + y m11 + m21 with the constant `matrix`, written to `to`.
[[nodiscard]] std::string MapText(std::string_view to, std::string_view matrix) {
    std::string text;
    const auto line = [&](const char* axis, const char* a, const char* b, const char* c) {
        const std::string element = "data." + std::string(matrix) + "._m";
        text += "  " + std::string(to) + "." + axis + " = position.x * " + element + a + " + position.y * " + element +
                b + " + " + element + c + ";\n";
    };
    line("x", "00", "10", "20");
    line("y", "01", "11", "21");
    return text;
}

/// A vertex function with a texture coordinate for each matrix; `prefixes` are "" or "Cb_" and the like.
[[nodiscard]] std::string TexcoordFunction(const std::string& name, const std::vector<std::string>& prefixes) {
    std::string text = "(float2 position, " + name + "_VSConstData data";
    for (const std::string& p : prefixes) {
        text += ", inout float2 " + p + "texcoord";
    }
    text += ") {\n";
    for (const std::string& p : prefixes) {
        text += MapText(p + "texcoord", p + "transform");
    }
    return text + "}";
}

/// The factor of each of the six kinds of mask, given a sample of the mask.
struct MaskRule {
    const char* suffix;
    const char* factor;
    bool ofAlpha; // one expression over the sample's alpha; otherwise `sample` is a variable
};
constexpr MaskRule kMaskRules[] = {
    {"Alpha", "", true},
    {"IAlpha", "1.f - ", true},
    {"Lum", "Luminosity(sample.rgb)", false},
    {"ILum", "1 - Luminosity(sample.rgb)", false},
    {"LumP", "Luminosity(sample.rgb) / sample.a", false},
    {"ILumP", "1 - Luminosity(sample.rgb) / sample.a", false},
};

[[nodiscard]] std::string MaskFunction(const MaskRule& rule, const char* resultType) {
    std::string text = "(float2 texcoord, Texture2D bitmapTexture, sampler bitmapSampler, inout ";
    text += resultType;
    text += " result) {\n";
    if (rule.ofAlpha) {
        return text + "  result *= " + rule.factor + "bitmapTexture.Sample(bitmapSampler, texcoord).a;\n}";
    }
    return text + "  float4 sample = bitmapTexture.Sample(bitmapSampler, texcoord);\n  result *= " + rule.factor +
           ";\n}";
}

[[nodiscard]] std::vector<D3D11ShaderFragment::Parameter> ReadParameters(std::string_view function) {
    std::vector<D3D11ShaderFragment::Parameter> out;
    if (function.empty()) {
        return out;
    }
    std::string_view list = function.substr(1, function.find(')') - 1);
    while (!list.empty()) {
        const size_t comma = list.find(", ");
        std::string_view one = list.substr(0, comma);
        list = comma == std::string_view::npos ? std::string_view() : list.substr(comma + 2);
        constexpr std::string_view kInOut = "inout ";
        if (one.substr(0, kInOut.size()) == kInOut) {
            one.remove_prefix(kInOut.size());
        }
        const size_t space = one.find(' ');
        out.push_back({one.substr(0, space), one.substr(space + 1)});
    }
    return out;
}

using Fragments = std::array<D3D11ShaderFragment, kD3D11FragmentCount>;

/// Reads what the factory needs to know about a finished text.
void Complete(D3D11ShaderFragment& f) {
    f.vertexParameters = ReadParameters(f.vertexFunction);
    f.pixelParameters = ReadParameters(f.pixelFunction);
    for (const auto& p : f.pixelParameters) {
        f.textureCount += p.type == "Texture2D" ? 1 : 0;
    }
    for (const auto& p : f.vertexParameters) {
        f.texcoordCount += p.type == "float2" && p.name != "position" ? 1 : 0;
    }
    f.writesShape = f.pixelFunction.find("output.shape") != std::string::npos;
}

[[nodiscard]] Fragments MakeFragments() {
    Fragments all;
    const auto at = [&](D3D11Fragment f) -> D3D11ShaderFragment& { return all[static_cast<size_t>(f)]; };
    const auto sampled = [&](D3D11Fragment f, std::string name, std::string pixelFunction) {
        D3D11ShaderFragment& out = at(f);
        out.name = std::move(name);
        out.constants = {"transform"};
        out.vertexFunction = TexcoordFunction(out.name, {""});
        out.pixelFunction = std::move(pixelFunction);
    };
    const auto scaled = [&](D3D11Fragment f, const char* name, const char* constant, const char* type) {
        D3D11ShaderFragment& out = at(f);
        out.name = name;
        out.constants = {constant};
        out.pixelFunction =
            "(" + out.name + "_PSConstData data, inout " + type + " result) {\n  result *= data." + constant + ";\n}";
    };

    D3D11ShaderFragment& position = at(D3D11Fragment::T2D);
    position.name = "T2D";
    position.constants = {"transform"};
    position.vertexFunction = "(float2 position, T2D_VSConstData data, inout float4 outPos) {\n" +
                              MapText("outPos", "transform") + "  outPos.z = 0;\n  outPos.w = 1;\n}";

    scaled(D3D11Fragment::SC, "SC", "color", "float4");
    scaled(D3D11Fragment::SO, "SO", "opacity", "float4");
    scaled(D3D11Fragment::SS, "SS", "shape", "float");

    const std::string bitmap =
        "(float2 texcoord, Texture2D bitmapTexture, sampler bitmapSampler, inout float4 result) {\n";
    sampled(D3D11Fragment::BC, "BC",
            bitmap + "  float4 sample = bitmapTexture.Sample(bitmapSampler, texcoord);\n"
                     "  sample.rgb *= sample.a;\n  result *= sample;\n}");
    sampled(D3D11Fragment::BCP, "BCP", bitmap + "  result *= bitmapTexture.Sample(bitmapSampler, texcoord);\n}");

    for (size_t i = 0; i < std::size(kMaskRules); ++i) {
        const MaskRule& rule = kMaskRules[i];
        const auto add = [&](D3D11Fragment first, const char* prefix, const char* type) {
            sampled(static_cast<D3D11Fragment>(static_cast<size_t>(first) + i), std::string(prefix) + rule.suffix,
                    MaskFunction(rule, type));
        };
        add(D3D11Fragment::BOAlpha, "BO", "float4");
        add(D3D11Fragment::BSAlpha, "BS", "float");
    }

    for (const D3D11CompositionText& text : D3D11CompositionTexts()) {
        D3D11ShaderFragment& out = at(text.fragment);
        out.name = text.name;
        std::vector<std::string> prefixes;
        for (const std::string_view constant : text.constants) {
            if (!constant.empty()) {
                out.constants.push_back(constant);
                prefixes.emplace_back(constant.substr(0, constant.find('_') + 1));
            }
        }
        if (!prefixes.empty()) {
            out.vertexFunction = TexcoordFunction(out.name, prefixes);
        }
        out.pixelFunction = text.pixelFunction;
    }
    for (D3D11ShaderFragment& f : all) {
        Complete(f);
    }
    return all;
}

} // namespace

const D3D11ShaderFragment& D3D11ShaderFragment::Get(D3D11Fragment f) {
    static const Fragments kFragments = MakeFragments();
    return kFragments[static_cast<size_t>(f)];
}

std::string_view D3D11ConstantType(std::string_view name) noexcept {
    if (IsD3D11VertexConstant(name)) {
        return "float4x2";
    }
    return name == "color" ? "float4" : "float";
}

bool IsD3D11VertexConstant(std::string_view name) noexcept { return name.find("transform") != std::string_view::npos; }

} // namespace Graphics
