// SPDX-License-Identifier: MIT
#include "D3D11SoftwareDraw.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace Graphics {
namespace {

using D3D11ShaderModel::Float4;

/// The pixels that the mesh may cover, inside scissor and target, in the target's pixels.
[[nodiscard]] IntRect Covered(const D3D11DrawState& state, const D3D11Mesh& mesh) noexcept {
    const IntPoint o = state.origin;
    const IntRect& s = state.scissor;
    IntRect limit = Intersect({s.left - o.x, s.top - o.y, s.right - o.x, s.bottom - o.y},
                              {0, 0, state.color->Width(), state.color->Height()});
    if (IsEmpty(limit)) {
        return {0, 0, 0, 0};
    }
    float left = 1e9F, top = 1e9F, right = -1e9F, bottom = -1e9F;
    for (size_t i = 0; i < mesh.QuadCount() * D3D11Mesh::kQuadVertices; ++i) {
        const D3D11Vertex& v = mesh.Data()[i];
        left = std::min(left, v.x);
        right = std::max(right, v.x);
        top = std::min(top, v.y);
        bottom = std::max(bottom, v.y);
    }
    const auto inside = [](float v, int32_t origin, int32_t from, int32_t to) {
        return static_cast<int32_t>(
            std::clamp(v - static_cast<float>(origin), static_cast<float>(from), static_cast<float>(to)));
    };
    return {inside(std::floor(left), o.x, limit.left, limit.right),
            inside(std::floor(top), o.y, limit.top, limit.bottom),
            inside(std::ceil(right), o.x, limit.left, limit.right),
            inside(std::ceil(bottom), o.y, limit.top, limit.bottom)};
}

/// Twice the area of the triangle from the edge to a point; positive inside of a clockwise triangle.
struct Edge {
    double dx, dy, x, y;
    bool takesBorder; // upper and left edges have the pixels whose centres lie on them

    Edge(const D3D11Vertex& a, const D3D11Vertex& b) noexcept
        : dx(static_cast<double>(b.x) - a.x), dy(static_cast<double>(b.y) - a.y), x(a.x), y(a.y),
          takesBorder(dy < 0.0 || (dy == 0.0 && dx > 0.0)) {}

    [[nodiscard]] double At(double px, double py) const noexcept { return dx * (py - y) - dy * (px - x); }
    [[nodiscard]] bool Has(double value) const noexcept { return value > 0.0 || (value == 0.0 && takesBorder); }
};

struct Rule {
    bool ofShape;
    bool inverse;
    enum { Alpha, Luminosity, OverAlpha } kind;
};

[[nodiscard]] Rule MaskRule(D3D11Fragment f) noexcept {
    const bool ofShape = f >= D3D11Fragment::BSAlpha;
    const auto n =
        static_cast<unsigned>(f) - static_cast<unsigned>(ofShape ? D3D11Fragment::BSAlpha : D3D11Fragment::BOAlpha);
    return {ofShape, (n & 1U) != 0, n < 2 ? Rule::Alpha : n < 4 ? Rule::Luminosity : Rule::OverAlpha};
}

[[nodiscard]] float MaskValue(const Rule& rule, const Float4& sample) noexcept {
    float v = rule.kind == Rule::Alpha ? sample.a : D3D11ShaderModel::Luminosity(sample);
    v = rule.kind == Rule::OverAlpha ? v / sample.a : v;
    return rule.inverse ? 1.0F - v : v;
}

[[nodiscard]] Float4 Times(const Float4& a, const Float4& b) noexcept {
    return {a.r * b.r, a.g * b.g, a.b * b.b, a.a * b.a};
}

[[nodiscard]] Float4 Blended(D3D11Blend blend, const Float4& s, const Float4& d) noexcept {
    const auto each = [&](auto&& f) { return Float4{f(s.r, d.r), f(s.g, d.g), f(s.b, d.b), f(s.a, d.a)}; };
    const float rest = 1.0F - s.a;
    switch (blend) {
    case D3D11Blend::Over:
        return each([&](float c, float below) { return c + below * rest; });
    case D3D11Blend::Remove:
        return each([&](float, float below) { return below * rest; });
    case D3D11Blend::Add:
        return each([](float c, float below) { return c + below; });
    case D3D11Blend::Invert: {
        Float4 out = each([&](float c, float below) { return c * d.a - below; });
        out.a = d.a;
        return out;
    }
    default:
        return s;
    }
}

} // namespace

D3D11SoftwareDraw::D3D11SoftwareDraw(D3D11Device& device, const D3D11DrawState& state, const D3D11Mesh& mesh)
    : m_device(device), m_state(state), m_mesh(mesh), m_box(Covered(state, mesh)) {}

bool D3D11SoftwareDraw::Can(const D3D11DrawState& state) noexcept {
    return D3D11SoftwarePlane::Knows(*state.color) &&
           std::all_of(state.inputs, state.inputs + state.inputCount,
                       [](const auto& input) { return D3D11SoftwarePlane::Knows(*input.texture); });
}

void D3D11SoftwareDraw::Run() {
    if (IsEmpty(m_box)) {
        return;
    }
    m_color.Read(m_device, *m_state.color, m_box);
    if (m_state.shape != nullptr) {
        m_shape.Read(m_device, *m_state.shape, m_box);
    }
    for (size_t i = 0; i < m_state.inputCount; ++i) {
        const D3D11Texture& texture = *m_state.inputs[i].texture;
        m_inputs[i].Read(m_device, texture, {0, 0, texture.Width(), texture.Height()});
    }
    for (size_t q = 0; q < m_mesh.QuadCount(); ++q) {
        const D3D11Vertex* v = m_mesh.Data() + q * D3D11Mesh::kQuadVertices;
        Triangle(v[0], v[1], v[2]);
        Triangle(v[2], v[1], v[3]);
    }
    m_color.Write(m_device, *m_state.color);
    if (m_state.shape != nullptr) {
        m_shape.Write(m_device, *m_state.shape);
    }
}

void D3D11SoftwareDraw::Triangle(const D3D11Vertex& a, const D3D11Vertex& b, const D3D11Vertex& c) {
    const double area = Edge(a, b).At(c.x, c.y);
    if (area < 0.0) {
        Triangle(a, c, b);
        return;
    }
    if (!(area > 0.0)) {
        return;
    }
    const Edge ab(a, b), bc(b, c), ca(c, a);
    const IntPoint o = m_state.origin;
    const auto first = [](float v, int32_t origin, int32_t least, int32_t most) {
        return std::clamp(static_cast<int32_t>(std::floor(v)) - origin, least, most);
    };
    const int32_t top = first(std::min({a.y, b.y, c.y}), o.y, m_box.top, m_box.bottom);
    const int32_t bottom = first(std::max({a.y, b.y, c.y}) + 1.0F, o.y, m_box.top, m_box.bottom);
    const int32_t left = first(std::min({a.x, b.x, c.x}), o.x, m_box.left, m_box.right);
    const int32_t right = first(std::max({a.x, b.x, c.x}) + 1.0F, o.x, m_box.left, m_box.right);
    for (int32_t y = top; y < bottom; ++y) {
        for (int32_t x = left; x < right; ++x) {
            const double px = x + o.x + 0.5;
            const double py = y + o.y + 0.5;
            const double ofC = ab.At(px, py);
            const double ofA = bc.At(px, py);
            const double ofB = ca.At(px, py);
            if (!ab.Has(ofC) || !bc.Has(ofA) || !ca.Has(ofB)) {
                continue;
            }
            const auto mix = [&](int i) {
                return static_cast<float>((ofA * a.color[i] + ofB * b.color[i] + ofC * c.color[i]) / area);
            };
            Pixel(x, y, {mix(0), mix(1), mix(2), mix(3)});
        }
    }
}

void D3D11SoftwareDraw::Pixel(int32_t x, int32_t y, const Float4& diffuse) {
    const float px = static_cast<float>(x + m_state.origin.x) + 0.5F;
    const float py = static_cast<float>(y + m_state.origin.y) + 0.5F;
    const float* transform = m_state.vertexConstants.Data(); // two registers each, in shader order
    const float* scalar = m_state.pixelConstants.Data();
    size_t input = 0;
    const auto sampleAt = [&](const float* t) {
        const size_t i = input++;
        return m_inputs[i].Sample(px * t[0] + py * t[1] + t[2], px * t[4] + py * t[5] + t[6],
                                  m_state.inputs[i].sampling);
    };
    constexpr size_t kRegister = D3D11ConstantTable::kRegisterFloats;
    const auto nextTransform = [&] { return std::exchange(transform, transform + 2 * kRegister); };

    D3D11ShaderModel::Inputs in{};
    const D3D11Fragment composition = m_state.key.Composition();
    const D3D11ShaderFragment& reads = D3D11ShaderFragment::Get(composition);
    // The surface's colour alone, or colour and shape of a group, behind what a group that is not isolated began with.
    if (reads.textureCount == 3) {
        in.initial = sampleAt(nextTransform());
    }
    if (reads.textureCount != 0) {
        const float* t = nextTransform();
        in.backdrop = sampleAt(t);
        if (reads.textureCount > 1) {
            in.group = sampleAt(t);
        }
    }
    in.source = diffuse;
    in.shape = 1.0F;
    for (size_t i = 0; i < m_state.key.Count(); ++i) {
        const D3D11Fragment f = m_state.key.At(i);
        switch (f) {
        case D3D11Fragment::T2D:
            static_cast<void>(nextTransform());
            break;
        case D3D11Fragment::SC:
            in.source = Times(in.source, {scalar[0], scalar[1], scalar[2], scalar[3]});
            scalar += kRegister;
            break;
        case D3D11Fragment::SO:
            in.source = Times(in.source, {*scalar, *scalar, *scalar, *scalar});
            scalar += kRegister;
            break;
        case D3D11Fragment::SS:
            in.shape *= *scalar;
            scalar += kRegister;
            break;
        case D3D11Fragment::BC: {
            const Float4 s = sampleAt(nextTransform());
            in.source = Times(in.source, {s.r * s.a, s.g * s.a, s.b * s.a, s.a});
            break;
        }
        case D3D11Fragment::BCP:
            in.source = Times(in.source, sampleAt(nextTransform()));
            break;
        default: {
            const Rule rule = MaskRule(f);
            const float v = MaskValue(rule, sampleAt(nextTransform()));
            if (rule.ofShape) {
                in.shape *= v;
            } else {
                in.source = Times(in.source, {v, v, v, v});
            }
        }
        }
    }
    const D3D11ShaderModel::Outputs out = D3D11ShaderModel::Compose(composition, m_state.key.BlendMode(), in);
    m_color.Set(x, y, Blended(m_state.blend, out.color, m_color.At(x, y)));
    if (m_state.shape != nullptr) {
        m_shape.Set(x, y, Blended(m_state.blend, out.shape, m_shape.At(x, y)));
    }
}

} // namespace Graphics
