// SPDX-License-Identifier: MIT
// The pieces of HLSL that shaders are put together from: how a source colour comes about, how it is masked, and how the
// result meets what lies below it.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Graphics {

/// In the order in which a shader has them. The short names are those of the functions in the shader's text.
enum class D3D11Fragment : uint8_t {
    T2D, ///< position: user space to the target
    // Source colour: one of these.
    SC,  ///< a constant
    BC,  ///< a bitmap with straight alpha
    BCP, ///< a bitmap with premultiplied alpha
    // Opacity: a constant, or the values of a mask's bitmap. I: inverted; P: of a bitmap with premultiplied alpha.
    SO,
    BOAlpha,
    BOIAlpha,
    BOLum,
    BOILum,
    BOLumP,
    BOILumP,
    // Shape: the same.
    SS,
    BSAlpha,
    BSIAlpha,
    BSLum,
    BSILum,
    BSLumP,
    BSILumP,
    // Composition: the last fragment of a shader, and one only.
    BasicFastComposition,
    BasicComposition,
    LayerResultComposition,
    IsolatedLayerResultComposition,
    LayerComposition,
    IsolatedLayerComposition,
    KnockoutLayerComposition,
    IsolatedKnockoutLayerComposition,
};
inline constexpr size_t kD3D11FragmentCount = 26;

struct D3D11ShaderFragment {
    /// One parameter of a function text: its type as written, without "inout", and its name.
    struct Parameter {
        std::string_view type;
        std::string_view name;
    };

    std::string name;
    std::string vertexFunction; ///< from the parameter list on; empty: none
    std::string pixelFunction;
    std::vector<std::string_view> constants;

    // Read out of the texts once.
    std::vector<Parameter> vertexParameters;
    std::vector<Parameter> pixelParameters;
    uint32_t textureCount = 0;
    uint32_t texcoordCount = 0;
    bool writesShape = false;

    [[nodiscard]] static const D3D11ShaderFragment& Get(D3D11Fragment f);
};

/// HLSL type of a constant: matrices for the names that end in "transform", a float4 for "color", else a float.
[[nodiscard]] std::string_view D3D11ConstantType(std::string_view name) noexcept;
/// True for the constants of the vertex stage: the matrices.
[[nodiscard]] bool IsD3D11VertexConstant(std::string_view name) noexcept;

/// The shared functions of every pixel shader.
[[nodiscard]] std::string_view D3D11HelperFunctions() noexcept;
/// The body of Blend(cb, cs); modes above 15 blend as Normal.
[[nodiscard]] std::string_view D3D11BlendBody(uint32_t blendMode) noexcept;

} // namespace Graphics
