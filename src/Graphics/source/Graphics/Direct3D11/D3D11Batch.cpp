// SPDX-License-Identifier: MIT
#include "D3D11Batch.h"

#include <algorithm>

namespace Graphics {
namespace {

// The limit of 16-bit indices without 0xFFFF, which some drivers take for the end of a strip.
constexpr uint32_t kIndexedQuads = 16383;
constexpr size_t kFirstCapacity = size_t{4096} * D3D11Mesh::kQuadVertices * sizeof(D3D11Vertex);
constexpr size_t kMaxBoxes = 16;

[[nodiscard]] IntRect Local(const IntRect& r, const IntPoint& origin) noexcept {
    return {r.left - origin.x, r.top - origin.y, r.right - origin.x, r.bottom - origin.y};
}

} // namespace

bool D3D11DrawState::Equals(const D3D11DrawState& o) const noexcept {
    if (!(key == o.key) || blend != o.blend || color != o.color || shape != o.shape || !(scissor == o.scissor) ||
        inputCount != o.inputCount || colorCopy != o.colorCopy || shapeCopy != o.shapeCopy ||
        !(vertexConstants == o.vertexConstants) || !(pixelConstants == o.pixelConstants)) {
        return false;
    }
    return std::equal(inputs, inputs + inputCount, o.inputs, [](const Input& a, const Input& b) {
        return a.texture == b.texture && a.sampling == b.sampling;
    });
}

bool D3D11Batch::Joins(const D3D11DrawState& state, const IntRect& box) const noexcept {
    if (!m_open || m_mesh.QuadCount() >= kIndexedQuads || !m_state.Equals(state)) {
        return false;
    }
    if (state.colorCopy == nullptr) {
        return true;
    }
    return m_boxes.size() < kMaxBoxes &&
           std::all_of(m_boxes.begin(), m_boxes.end(), [&](const IntRect& b) { return IsEmpty(Intersect(b, box)); });
}

D3D11Mesh& D3D11Batch::Begin(D3D11DrawState&& state, const IntRect& box) {
    if (!Joins(state, box)) {
        Flush();
        m_state = std::move(state);
        m_open = true;
    }
    if (m_state.colorCopy != nullptr) {
        m_boxes.push_back(box);
    }
    return m_mesh;
}

void D3D11Batch::Drop() noexcept {
    m_mesh.Clear();
    m_boxes.clear();
    m_state = D3D11DrawState();
    m_open = false;
}

void D3D11Batch::Flush() {
    if (!m_open) {
        return;
    }
    struct Finally {
        D3D11Batch& batch;
        ~Finally() { batch.Drop(); }
    } finally{*this};
    const auto quads = static_cast<uint32_t>(m_mesh.QuadCount());
    if (quads == 0) {
        return;
    }
    ++m_device.Counters().batches;
    const D3D11ShaderCache::Shaders shaders = m_shaders.Get(m_state.key);
    Prepare();
    CopyTouched();
    const uint32_t offset = FillVertexBuffer();
    m_device.SetRenderTarget(*m_state.color, m_state.shape.get());
    m_samplers.Forget();
    m_device.SetScissor(Local(m_state.scissor, m_state.origin));
    m_device.SetBlend(m_state.blend);
    for (size_t i = 0; i < m_state.inputCount; ++i) {
        m_samplers.SetTexture(static_cast<uint32_t>(i), *m_state.inputs[i].texture, m_state.inputs[i].sampling);
    }
    SetConstants();
    ID3D11DeviceContext& context = m_device.Context();
    context.VSSetShader(shaders.vertex, nullptr, 0);
    context.PSSetShader(shaders.pixel, nullptr, 0);
    ID3D11Buffer* buffer = m_vertices.get();
    const UINT stride = sizeof(D3D11Vertex);
    context.IASetVertexBuffers(0, 1, &buffer, &stride, &offset);
    for (uint32_t done = 0; done < quads; done += kIndexedQuads) {
        const uint32_t n = std::min(kIndexedQuads, quads - done);
        context.DrawIndexed(n * 6, 0, static_cast<INT>(done * D3D11Mesh::kQuadVertices));
        ++m_device.Counters().drawCalls;
    }
}

/// Creates the buffers and sets the state shared by all draws.
void D3D11Batch::Prepare() {
    if (m_indices) {
        return;
    }
    // All or none: m_indices is assigned last and tells that the others exist.
    D3D11Ref<ID3D11Buffer> indices = m_device.CreateIndexBuffer(kIndexedQuads);
    D3D11Ref<ID3D11Buffer> vertexConstants = m_device.CreateConstantBuffer(D3D11VertexShaderConstantTable::kMaxBytes);
    D3D11Ref<ID3D11Buffer> pixelConstants = m_device.CreateConstantBuffer(D3D11PixelShaderConstantTable::kMaxBytes);
    m_device.SetDefaultDeviceState(m_shaders.Layout(), indices.get());
    ID3D11Buffer* vertex = vertexConstants.get();
    ID3D11Buffer* pixel = pixelConstants.get();
    m_device.Context().VSSetConstantBuffers(0, 1, &vertex);
    m_device.Context().PSSetConstantBuffers(0, 1, &pixel);
    m_vertexConstants = std::move(vertexConstants);
    m_pixelConstants = std::move(pixelConstants);
    m_indices = std::move(indices);
}

void D3D11Batch::CopyTouched() {
    for (const IntRect& box : m_boxes) {
        const IntRect local = Local(box, m_state.origin);
        m_device.Copy(*m_state.colorCopy, *m_state.color, local);
        if (m_state.shapeCopy != nullptr) {
            m_device.Copy(*m_state.shapeCopy, *m_state.shape, local);
        }
        ++m_device.Counters().backdropCopies;
    }
}

void D3D11Batch::SetConstants() {
    ID3D11DeviceContext& context = m_device.Context();
    const auto update = [&](ID3D11Buffer* buffer, const D3D11ConstantTable& table) {
        if (table.ByteSize() != 0) {
            context.UpdateSubresource(buffer, 0, nullptr, table.Data(), 0, 0);
        }
    };
    update(m_vertexConstants.get(), m_state.vertexConstants);
    update(m_pixelConstants.get(), m_state.pixelConstants);
}

/// Copies the mesh behind vertices that the GPU may still be reading; returns its offset.
uint32_t D3D11Batch::FillVertexBuffer() {
    const size_t bytes = m_mesh.ByteSize();
    const bool fits = bytes <= m_capacity;
    const size_t capacity = fits ? m_capacity : std::max({kFirstCapacity, m_capacity * 2, bytes});
    const size_t offset = fits && m_used + bytes <= m_capacity ? m_used : 0;
    // Vertices that the GPU may still be reading are never overwritten; the buffer is discarded instead. Until the map
    // has succeeded, the members describe the previous contents.
    const D3D11Ref<ID3D11Buffer> buffer =
        fits ? m_vertices : m_device.CreateVertexBuffer(static_cast<uint32_t>(capacity));
    const D3D11_MAPPED_SUBRESOURCE mapped =
        m_device.MapResource(*buffer.get(), offset == 0 ? D3D11_MAP_WRITE_DISCARD : D3D11_MAP_WRITE_NO_OVERWRITE);
    std::memcpy(static_cast<uint8_t*>(mapped.pData) + offset, m_mesh.Data(), bytes);
    m_device.Unmap(*buffer.get());
    ++m_device.Counters().vertexMaps;
    m_vertices = buffer;
    m_capacity = capacity;
    m_used = offset + bytes;
    return static_cast<uint32_t>(offset);
}

} // namespace Graphics
