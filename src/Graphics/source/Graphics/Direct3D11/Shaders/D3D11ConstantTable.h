// SPDX-License-Identifier: MIT
// The values of a key's constants as the shader stages read them. Each fragment's structure begins at a 16-byte
// register; a float4x2 is two registers, one for each column:
//
//     m00 m10 m20 -
//     m01 m11 m21 -
//
// Colours fill a register; opacity and shape fill its first component. Values are stored in shader order: the
// composition's first, then those of the fragments in key order.
#pragma once

#include <algorithm>
#include <cstring>

#include "../../Matrix.h"

namespace Graphics {

class D3D11ConstantTable {
public:
    static constexpr size_t kRegisterFloats = 4;

    void Clear() noexcept { m_size = 0; }
    [[nodiscard]] const float* Data() const noexcept { return m_values; }
    /// Size in bytes, a multiple of 16.
    [[nodiscard]] size_t ByteSize() const noexcept { return m_size * sizeof(float); }

    [[nodiscard]] friend bool operator==(const D3D11ConstantTable& a, const D3D11ConstantTable& b) noexcept {
        return a.m_size == b.m_size && std::memcmp(a.m_values, b.m_values, a.ByteSize()) == 0;
    }

protected:
    /// Room for two matrices of a composition and one for every fragment.
    static constexpr size_t kCapacity = (2 + 9) * 2 * kRegisterFloats;

    void AddRegister(float x, float y, float z, float w) noexcept {
        if (m_size + kRegisterFloats <= kCapacity) {
            float* to = m_values + m_size;
            to[0] = x;
            to[1] = y;
            to[2] = z;
            to[3] = w;
            m_size += kRegisterFloats;
        }
    }

private:
    float m_values[kCapacity];
    size_t m_size = 0;
};

class D3D11VertexShaderConstantTable : public D3D11ConstantTable {
public:
    static constexpr size_t kMaxBytes = kCapacity * sizeof(float);

    void AddTransform(const Matrix& m) noexcept {
        AddRegister(m.m00, m.m10, m.m20, 0.0F);
        AddRegister(m.m01, m.m11, m.m21, 0.0F);
    }
};

class D3D11PixelShaderConstantTable : public D3D11ConstantTable {
public:
    static constexpr size_t kMaxBytes = kCapacity * sizeof(float);

    void AddColor(const Color& c) noexcept { AddRegister(c.red, c.green, c.blue, c.alpha); }
    /// An opacity or a shape.
    void AddScalar(float v) noexcept { AddRegister(v, 0.0F, 0.0F, 0.0F); }
};

} // namespace Graphics
