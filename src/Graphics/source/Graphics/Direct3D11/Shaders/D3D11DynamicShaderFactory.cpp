// SPDX-License-Identifier: MIT
// Numbers are assigned once for both stages: texture coordinates, textures and samplers first to the composition and
// then to the fragments in key order. Constant members are named after the fragment's index in the key, because a key
// may contain a fragment more than once.
#include "D3D11DynamicShaderFactory.h"

namespace Graphics::D3D11DynamicShaderFactory {
namespace {

/// A user of constants, coordinates and textures: a fragment at its index, or the composition.
struct Place {
    const D3D11ShaderFragment* fragment;
    std::string index; // suffix of "constants_"
    uint32_t firstTexcoord;
    uint32_t firstTexture;
};

/// Every place of a key; the composition is first.
[[nodiscard]] std::vector<Place> Places(const D3D11ShaderKey& key) {
    std::vector<Place> out;
    uint32_t texcoord = 0;
    uint32_t texture = 0;
    const auto add = [&](D3D11Fragment f, std::string index) {
        const D3D11ShaderFragment& fragment = D3D11ShaderFragment::Get(f);
        out.push_back({&fragment, std::move(index), texcoord, texture});
        texcoord += fragment.texcoordCount;
        texture += fragment.textureCount;
    };
    add(key.Composition(), "composition");
    for (size_t i = 0; i < key.Count(); ++i) {
        add(key.At(i), std::to_string(i));
    }
    return out;
}

/// Visits each kind of fragment once, in the given order of places.
template <class Visit> void ForEachKind(const std::vector<Place>& places, Visit&& visit) {
    for (size_t i = 0; i < places.size(); ++i) {
        bool seen = false;
        for (size_t k = 0; k < i && !seen; ++k) {
            seen = places[k].fragment == places[i].fragment;
        }
        if (!seen) {
            visit(*places[i].fragment);
        }
    }
}

/// The fragments' structures, then the block of all places.
void AddConstants(std::string& text, const std::vector<Place>& places, bool vertex) {
    const std::string stage = vertex ? "VS" : "PS";
    const auto used = [&](const D3D11ShaderFragment& f) {
        return !f.constants.empty() && IsD3D11VertexConstant(f.constants.front()) == vertex;
    };
    ForEachKind(places, [&](const D3D11ShaderFragment& f) {
        if (used(f)) {
            text += "\nstruct " + f.name + "_" + stage + "ConstData {";
            for (const std::string_view constant : f.constants) {
                text += "\n  " + std::string(D3D11ConstantType(constant)) + " " + std::string(constant) + ";";
            }
            text += "\n};\n";
        }
    });
    std::string members;
    for (const Place& p : places) {
        if (used(*p.fragment)) {
            members += "\n  " + p.fragment->name + "_" + stage + "ConstData constants_" + p.index + ";";
        }
    }
    const std::string lower = vertex ? "vs" : "ps";
    text += "\nstruct " + stage + "ConstData {" + members + "\n};\n";
    text += "\n" + stage + "ConstData " + lower + "Data;\n";
}

/// "\n  VS_" or "\n  PS_", the name and the arguments that `argument` finds for each parameter.
template <class Argument>
void AddCall(std::string& text, const char* stage, const Place& place,
             const std::vector<D3D11ShaderFragment::Parameter>& parameters, Argument&& argument) {
    if (parameters.empty()) {
        return;
    }
    text += std::string("\n  ") + stage + place.fragment->name + "(";
    const char* separator = "";
    for (const auto& parameter : parameters) {
        text += separator + argument(parameter);
        separator = ", ";
    }
    text += ");";
}

template <class Call> void AddCalls(const std::vector<Place>& places, Call&& call) {
    for (size_t i = 1; i < places.size(); ++i) {
        call(places[i]);
    }
    call(places.front());
}

[[nodiscard]] std::string Texcoord(uint32_t index) { return "texcoord" + std::to_string(index); }

/// The index of the fragment's texture coordinate that a parameter of that name receives.
[[nodiscard]] uint32_t TexcoordOf(const Place& place, std::string_view name) {
    uint32_t index = place.firstTexcoord;
    for (const auto& p : place.fragment->vertexParameters) {
        if (p.type == "float2" && p.name != "position") {
            if (p.name == name) {
                break;
            }
            ++index;
        }
    }
    return index;
}

[[nodiscard]] uint32_t TexcoordTotal(const std::vector<Place>& places) {
    return places.back().firstTexcoord + places.back().fragment->texcoordCount;
}

[[nodiscard]] uint32_t TextureTotal(const std::vector<Place>& places) {
    return places.back().firstTexture + places.back().fragment->textureCount;
}

} // namespace

std::string VertexText(const D3D11ShaderKey& key) {
    const std::vector<Place> places = Places(key);
    std::string text;
    AddConstants(text, places, true);
    text += "\nstruct VSOutput {\n  float4 position : SV_POSITION;\n  float4 color : COLOR0;";
    for (uint32_t i = 0; i < TexcoordTotal(places); ++i) {
        text += "\n  float2 " + Texcoord(i) + " : TEXCOORD" + std::to_string(i) + ";";
    }
    text += "\n};\n";
    ForEachKind(places, [&](const D3D11ShaderFragment& f) {
        if (!f.vertexFunction.empty()) {
            text += "\nvoid VS_" + f.name + f.vertexFunction;
        }
    });
    text += "\nVSOutput VS(float2 position : POSITION, float4 color : COLOR0) {\n  VSOutput output;\n"
            "  output.position = float4(position, 0, 1);\n  output.color = color;";
    AddCalls(places, [&](const Place& place) {
        AddCall(text, "VS_", place, place.fragment->vertexParameters, [&](const auto& p) -> std::string {
            if (p.name == "position") {
                return "position";
            }
            if (p.name == "data") {
                return "vsData.constants_" + place.index;
            }
            return p.name == "outPos" ? "output.position" : "output." + Texcoord(TexcoordOf(place, p.name));
        });
    });
    text += "\n  return output;\n}\n";
    return text;
}

std::string PixelText(const D3D11ShaderKey& key) {
    const std::vector<Place> places = Places(key);
    std::string text = "\nstruct PSOutput {\n  float4 color : SV_TARGET0;";
    if (places.front().fragment->writesShape) {
        text += "\n  float4 shape : SV_TARGET1;";
    }
    text += "\n};\n";
    text += D3D11HelperFunctions();
    text += "\nfloat3 Blend(float3 cb, float3 cs) {";
    text += D3D11BlendBody(key.BlendMode());
    text += "\n}\n";
    for (uint32_t i = 0; i < TextureTotal(places); ++i) {
        const std::string n = std::to_string(i);
        text += "\nTexture2D texture_" + n + ": register(t" + n + ");";
        text += "\nSamplerState sampler_" + n + ": register(s" + n + ");";
    }
    AddConstants(text, places, false);
    ForEachKind(places, [&](const D3D11ShaderFragment& f) {
        if (!f.pixelFunction.empty()) {
            text += "\nvoid PS_" + f.name + f.pixelFunction;
        }
    });
    text += "\nPSOutput PS(float4 position : SV_POSITION, float4 diffuse : COLOR0";
    for (uint32_t i = 0; i < TexcoordTotal(places); ++i) {
        text += ", float2 " + Texcoord(i) + " : TEXCOORD" + std::to_string(i);
    }
    text += ") {\n  PSOutput output;\n  float4 color = diffuse;\n  float shape = 1;";
    AddCalls(places, [&](const Place& place) {
        uint32_t texture = place.firstTexture;
        uint32_t sampler = place.firstTexture;
        AddCall(text, "PS_", place, place.fragment->pixelParameters, [&](const auto& p) -> std::string {
            if (p.type == "Texture2D") {
                return "texture_" + std::to_string(texture++);
            }
            if (p.type == "sampler") {
                return "sampler_" + std::to_string(sampler++);
            }
            if (p.type == "float2") {
                return Texcoord(TexcoordOf(place, p.name));
            }
            if (p.name == "data") {
                return "psData.constants_" + place.index;
            }
            if (p.type == "PSOutput") {
                return "output";
            }
            return p.type == "float4" ? "color" : "shape";
        });
    });
    text += "\n  return output;\n}\n";
    return text;
}

} // namespace Graphics::D3D11DynamicShaderFactory
