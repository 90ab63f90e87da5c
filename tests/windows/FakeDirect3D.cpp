// SPDX-License-Identifier: MIT
// Interfaces in the form they have in C: tables of functions, of which only those are filled in that the library calls.
#define CINTERFACE
#include "FakeDirect3D.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <set>

#include "Direct3D11/D3D11Calls.h"
#include "Direct3D11/D3D11Half.h"

#include <d3dcompiler.h>

namespace FakeDirect3D {
namespace {

struct Device;

/// Every object but devices, contexts and those of DXGI. Which fields count depends on what it is.
struct Object {
    const void* vtable;
    ULONG references = 1;
    Device* device;
    std::vector<uint8_t> bytes; // of textures, buffers and blobs
    int32_t width = 0, height = 0, pixelBytes = 0;
    bool isTarget = false;
    bool mapped = false;
    size_t inUse = 0;           // bytes of a vertex buffer that draws have read since it was discarded
    std::vector<uint8_t> drawn; // those bytes, while it is mapped without being discarded
    uint64_t content = 0;       // of what is only read: what was put there last
    Object* texture = nullptr;  // of a view
    bool replaces = false;      // of a blend state
    // Of a shader, whose content is its text: what it reads and writes.
    size_t constantBytes = 0, textures = 0;
    bool isVertexShader = false, writesShape = false;

    Object(const void* table, Device* owner);
    ~Object();
};

struct Global {
    int64_t calls = 0;
    int64_t failAt = -1;
    Fault fault = Fault::OutOfMemory;
    std::string failed;
    bool refuses = false;
    int64_t alive = 0;
    int64_t draws = 0;
    std::vector<uint32_t> presented;
    std::set<Device*> devices;
    std::set<HWND> windows; // with a swap chain
} g;

[[nodiscard]] HRESULT ReasonOf(Fault fault) {
    switch (fault) {
    case Fault::Hung:
        return DXGI_ERROR_DEVICE_HUNG;
    case Fault::Reset:
        return DXGI_ERROR_DEVICE_RESET;
    case Fault::DriverError:
        return DXGI_ERROR_DRIVER_INTERNAL_ERROR;
    default:
        return DXGI_ERROR_DEVICE_REMOVED;
    }
}

struct Device : ID3D11Device {
    ULONG references = 1;
    HRESULT removed = S_OK;
    Device();
    ~Device() {
        g.devices.erase(this);
        --g.alive;
    }
};

void Complain(const std::string& what) { ADD_FAILURE() << "Direct3D: " << what; }

/// What a call that can fail answers: S_OK to go on.
[[nodiscard]] HRESULT Enter(const char* name, Device* device) {
    const bool fails = g.calls++ == g.failAt;
    if (device != nullptr && device->removed != S_OK) {
        return DXGI_ERROR_DEVICE_REMOVED;
    }
    if (!fails) {
        return S_OK;
    }
    g.failed = name;
    if (g.fault == Fault::OutOfMemory) {
        return E_OUTOFMEMORY;
    }
    if (device != nullptr) {
        device->removed = ReasonOf(g.fault);
    }
    return DXGI_ERROR_DEVICE_REMOVED;
}

ULONG AddRefDevice(ID3D11Device* self) { return ++static_cast<Device*>(self)->references; }
ULONG ReleaseDevice(ID3D11Device* self) {
    auto* device = static_cast<Device*>(self);
    const ULONG left = --device->references;
    if (left == 0) {
        delete device;
    }
    return left;
}

Object::Object(const void* table, Device* owner) : vtable(table), device(owner) {
    ++g.alive;
    if (device != nullptr) {
        AddRefDevice(device);
    }
}

ULONG AddRefObject(void* self) { return ++static_cast<Object*>(self)->references; }
ULONG ReleaseObject(void* self) {
    auto* object = static_cast<Object*>(self);
    const ULONG left = --object->references;
    if (left == 0) {
        delete object;
    }
    return left;
}

Object::~Object() {
    if (mapped) {
        Complain("a mapped resource is released");
        --g.alive;
    }
    if (texture != nullptr) {
        ReleaseObject(texture);
    }
    --g.alive;
    if (device != nullptr) {
        ReleaseDevice(device);
    }
}

/// Of objects that are only held.
const void* const kPlain[] = {nullptr, reinterpret_cast<const void*>(&AddRefObject),
                              reinterpret_cast<const void*>(&ReleaseObject)};

template <class T> [[nodiscard]] Object* Of(T* pointer) { return reinterpret_cast<Object*>(pointer); }

/// A slot of the pipeline.
void Bind(Object*& slot, Object* next) {
    if (next != nullptr) {
        AddRefObject(next);
    }
    if (slot != nullptr) {
        ReleaseObject(slot);
    }
    slot = next;
}

[[nodiscard]] uint64_t Mix(uint64_t hash, const void* data, size_t size) {
    const auto* p = static_cast<const uint8_t*>(data);
    for (size_t i = 0; i < size; ++i) {
        hash = (hash ^ p[i]) * 0x100000001b3ULL;
    }
    return hash;
}
template <class T> [[nodiscard]] uint64_t Mix(uint64_t hash, const T& value) { return Mix(hash, &value, sizeof value); }
constexpr uint64_t kStart = 0xcbf29ce484222325ULL;

[[nodiscard]] size_t Count(const std::string& text, const std::string& what) {
    size_t n = 0;
    for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) {
        ++n;
    }
    return n;
}

// The device.

template <class I> HRESULT Give(I** out, Object* object) {
    *out = reinterpret_cast<I*>(object);
    return S_OK;
}

/// A call of the device that makes an object, unless it fails.
template <class I, class Make> HRESULT Making(ID3D11Device* self, const char* name, I** out, Make&& make) {
    auto* device = static_cast<Device*>(self);
    *out = nullptr;
    const HRESULT result = Enter(name, device);
    if (result != S_OK) {
        return result;
    }
    auto* object = new Object(kPlain, device);
    make(*object);
    return Give(out, object);
}

HRESULT CreateBuffer(ID3D11Device* self, const D3D11_BUFFER_DESC* desc, const D3D11_SUBRESOURCE_DATA* data,
                     ID3D11Buffer** out) {
    return Making(self, "CreateBuffer", out, [&](Object& o) {
        o.bytes.assign(desc->ByteWidth, 0xCD);
        if (data != nullptr) {
            std::memcpy(o.bytes.data(), data->pSysMem, desc->ByteWidth);
        }
    });
}

void Write(Object& o, int32_t left, int32_t top, int32_t width, int32_t height, const void* data, size_t stride) {
    o.content = Mix(Mix(kStart, width), height);
    for (int32_t y = 0; y < height; ++y) {
        const auto row = static_cast<size_t>(width) * static_cast<size_t>(o.pixelBytes);
        const uint8_t* from = static_cast<const uint8_t*>(data) + static_cast<size_t>(y) * stride;
        std::memcpy(o.bytes.data() +
                        static_cast<size_t>((top + y) * o.width + left) * static_cast<size_t>(o.pixelBytes),
                    from, row);
        o.content = Mix(o.content, from, row);
    }
}

void MakeTexture(Object& o, UINT width, UINT height, DXGI_FORMAT format) {
    o.width = static_cast<int32_t>(width);
    o.height = static_cast<int32_t>(height);
    o.pixelBytes = format == DXGI_FORMAT_A8_UNORM ? 1 : format == DXGI_FORMAT_R16G16B16A16_FLOAT ? 8 : 4;
    o.bytes.assign(static_cast<size_t>(o.width) * static_cast<size_t>(o.height) * static_cast<size_t>(o.pixelBytes), 0);
}

HRESULT CreateTexture2D(ID3D11Device* self, const D3D11_TEXTURE2D_DESC* desc, const D3D11_SUBRESOURCE_DATA* data,
                        ID3D11Texture2D** out) {
    return Making(self, "CreateTexture2D", out, [&](Object& o) {
        MakeTexture(o, desc->Width, desc->Height, desc->Format);
        o.isTarget = (desc->BindFlags & D3D11_BIND_RENDER_TARGET) != 0;
        if (data != nullptr) {
            Write(o, 0, 0, o.width, o.height, data->pSysMem, data->SysMemPitch);
        }
    });
}

template <class I> HRESULT MakeView(ID3D11Device* self, const char* name, ID3D11Resource* resource, I** out) {
    return Making(self, name, out, [&](Object& o) { Bind(o.texture, Of(resource)); });
}
HRESULT CreateShaderResourceView(ID3D11Device* self, ID3D11Resource* resource, const D3D11_SHADER_RESOURCE_VIEW_DESC*,
                                 ID3D11ShaderResourceView** out) {
    return MakeView(self, "CreateShaderResourceView", resource, out);
}
HRESULT CreateRenderTargetView(ID3D11Device* self, ID3D11Resource* resource, const D3D11_RENDER_TARGET_VIEW_DESC*,
                               ID3D11RenderTargetView** out) {
    return MakeView(self, "CreateRenderTargetView", resource, out);
}
HRESULT CreateInputLayout(ID3D11Device* self, const D3D11_INPUT_ELEMENT_DESC*, UINT, const void*, SIZE_T,
                          ID3D11InputLayout** out) {
    return Making(self, "CreateInputLayout", out, [](Object&) {});
}
HRESULT CreateVertexShader(ID3D11Device* self, const void* code, SIZE_T size, ID3D11ClassLinkage*,
                           ID3D11VertexShader** out) {
    return Making(self, "CreateVertexShader", out, [&](Object& o) {
        const std::string text(static_cast<const char*>(code), size);
        o.content = Mix(kStart, code, size);
        o.isVertexShader = text.find("VSOutput VS(") != std::string::npos;
        o.constantBytes = 32 * (Count(text, "\n  VS_") + Count(text, "float4x2 Co_transform;"));
    });
}
HRESULT CreatePixelShader(ID3D11Device* self, const void* code, SIZE_T size, ID3D11ClassLinkage*,
                          ID3D11PixelShader** out) {
    return Making(self, "CreatePixelShader", out, [&](Object& o) {
        const std::string text(static_cast<const char*>(code), size);
        o.content = Mix(kStart, code, size);
        o.constantBytes = 16 * (Count(text, "\n  PS_SO(") + Count(text, "\n  PS_SS(") + Count(text, "\n  PS_SC("));
        o.textures = Count(text, "\nTexture2D ");
        o.writesShape = text.find("SV_TARGET1") != std::string::npos;
    });
}
HRESULT CreateBlendState(ID3D11Device* self, const D3D11_BLEND_DESC* desc, ID3D11BlendState** out) {
    return Making(self, "CreateBlendState", out, [&](Object& o) {
        o.replaces = desc->RenderTarget[0].BlendEnable == FALSE;
        o.content = Mix(kStart, desc->RenderTarget[0].SrcBlend * 64 + desc->RenderTarget[0].DestBlend);
    });
}
HRESULT CreateDepthStencilState(ID3D11Device* self, const D3D11_DEPTH_STENCIL_DESC*, ID3D11DepthStencilState** out) {
    return Making(self, "CreateDepthStencilState", out, [](Object&) {});
}
HRESULT CreateRasterizerState(ID3D11Device* self, const D3D11_RASTERIZER_DESC*, ID3D11RasterizerState** out) {
    return Making(self, "CreateRasterizerState", out, [](Object&) {});
}
HRESULT CreateSamplerState(ID3D11Device* self, const D3D11_SAMPLER_DESC* desc, ID3D11SamplerState** out) {
    return Making(self, "CreateSamplerState", out,
                  [&](Object& o) { o.content = Mix(kStart, desc->Filter * 64 + desc->AddressU * 8 + desc->AddressV); });
}
HRESULT CheckFormatSupport(ID3D11Device* self, DXGI_FORMAT, UINT* out) {
    const HRESULT result = Enter("CheckFormatSupport", static_cast<Device*>(self));
    *out = result == S_OK ? ~0U : 0U;
    return result;
}
HRESULT GetDeviceRemovedReason(ID3D11Device* self) { return static_cast<Device*>(self)->removed; }

// DXGI: outputs, adapters and devices hold nothing; they are plain objects with a few more functions.

HRESULT GetOutputDesc(IDXGIOutput*, DXGI_OUTPUT_DESC* desc) {
    *desc = {};
    return Enter("IDXGIOutput::GetDesc", nullptr);
}
HRESULT FindClosestMatchingMode(IDXGIOutput*, const DXGI_MODE_DESC* wanted, DXGI_MODE_DESC* out, IUnknown*) {
    *out = *wanted;
    return Enter("FindClosestMatchingMode", nullptr);
}
HRESULT EnumOutputs(IDXGIAdapter*, UINT index, IDXGIOutput** out) {
    *out = nullptr;
    const HRESULT result = Enter("EnumOutputs", nullptr);
    if (result != S_OK || index != 0) {
        return result != S_OK ? result : DXGI_ERROR_NOT_FOUND;
    }
    static const IDXGIOutputVtbl table = [] {
        IDXGIOutputVtbl t{};
        std::memcpy(static_cast<void*>(&t), kPlain, sizeof kPlain);
        t.GetDesc = &GetOutputDesc;
        t.FindClosestMatchingMode = &FindClosestMatchingMode;
        return t;
    }();
    return Give(out, new Object(&table, nullptr));
}
HRESULT GetAdapterDesc(IDXGIAdapter*, DXGI_ADAPTER_DESC* desc) {
    *desc = {};
    return Enter("IDXGIAdapter::GetDesc", nullptr);
}
HRESULT GetAdapter(IDXGIDevice*, IDXGIAdapter** out) {
    *out = nullptr;
    if (const HRESULT result = Enter("GetAdapter", nullptr); result != S_OK) {
        return result;
    }
    static const IDXGIAdapterVtbl table = [] {
        IDXGIAdapterVtbl t{};
        std::memcpy(static_cast<void*>(&t), kPlain, sizeof kPlain);
        t.EnumOutputs = &EnumOutputs;
        t.GetDesc = &GetAdapterDesc;
        return t;
    }();
    return Give(out, new Object(&table, nullptr));
}
HRESULT QueryDevice(ID3D11Device* self, const IID& id, void** out) {
    *out = nullptr;
    if (const HRESULT result = Enter("QueryInterface", nullptr); result != S_OK) {
        return result;
    }
    if (!IsEqualGUID(id, IID_IDXGIDevice)) {
        return E_NOINTERFACE;
    }
    static const IDXGIDeviceVtbl table = [] {
        IDXGIDeviceVtbl t{};
        std::memcpy(static_cast<void*>(&t), kPlain, sizeof kPlain);
        t.GetAdapter = &GetAdapter;
        return t;
    }();
    return Give(out, new Object(&table, static_cast<Device*>(self)));
}

const ID3D11DeviceVtbl& DeviceTable() {
    static const ID3D11DeviceVtbl table = [] {
        ID3D11DeviceVtbl t{};
        t.QueryInterface = &QueryDevice;
        t.AddRef = &AddRefDevice;
        t.Release = &ReleaseDevice;
        t.CreateBuffer = &CreateBuffer;
        t.CreateTexture2D = &CreateTexture2D;
        t.CreateShaderResourceView = &CreateShaderResourceView;
        t.CreateRenderTargetView = &CreateRenderTargetView;
        t.CreateInputLayout = &CreateInputLayout;
        t.CreateVertexShader = &CreateVertexShader;
        t.CreatePixelShader = &CreatePixelShader;
        t.CreateBlendState = &CreateBlendState;
        t.CreateDepthStencilState = &CreateDepthStencilState;
        t.CreateRasterizerState = &CreateRasterizerState;
        t.CreateSamplerState = &CreateSamplerState;
        t.CheckFormatSupport = &CheckFormatSupport;
        t.GetDeviceRemovedReason = &GetDeviceRemovedReason;
        return t;
    }();
    return table;
}

Device::Device() {
    lpVtbl = const_cast<ID3D11DeviceVtbl*>(&DeviceTable());
    g.devices.insert(this);
    ++g.alive;
}

// The context.

constexpr size_t kSlots = 16;

struct Context : ID3D11DeviceContext {
    ULONG references = 1;
    Device* device;
    Object *layout = nullptr, *vertices = nullptr, *indices = nullptr, *vs = nullptr, *ps = nullptr, *blend = nullptr,
           *raster = nullptr, *depth = nullptr, *vsConstants = nullptr, *psConstants = nullptr;
    Object* targets[2] = {};
    Object* views[kSlots] = {};
    Object* samplers[kSlots] = {};
    UINT stride = 0, offset = 0;
    D3D11_RECT scissor{};
    bool triangles = false;

    explicit Context(Device* owner);
    ~Context() {
        Clear();
        --g.alive;
        ReleaseDevice(device);
    }
    void Clear() {
        for (Object** slot : {&layout, &vertices, &indices, &vs, &ps, &blend, &raster, &depth, &vsConstants,
                              &psConstants, &targets[0], &targets[1]}) {
            Bind(*slot, nullptr);
        }
        for (size_t i = 0; i < kSlots; ++i) {
            Bind(views[i], nullptr);
            Bind(samplers[i], nullptr);
        }
    }
};

[[nodiscard]] Context& Self(ID3D11DeviceContext* self) { return *static_cast<Context*>(self); }

/// The object behind a pointer that was handed in, which belongs to the context's device.
template <class I> [[nodiscard]] Object* Mine(ID3D11DeviceContext* self, I* pointer) {
    Object* object = Of(pointer);
    if (object != nullptr && object->device != Self(self).device) {
        Complain("an object of another device");
    }
    return object;
}

[[nodiscard]] uint32_t Pattern(uint64_t hash, uint32_t below) {
    const uint64_t mixed = Mix(hash, below);
    return static_cast<uint32_t>(mixed ^ mixed >> 32);
}

/// Puts the pattern of a draw, or of a clear, into one of its targets.
void Paint(Object& view, const D3D11_RECT& scissor, uint64_t hash, bool replaces) {
    Object& t = *view.texture;
    const int32_t left = std::max<int32_t>(scissor.left, 0), right = std::min<int32_t>(scissor.right, t.width);
    const int32_t top = std::max<int32_t>(scissor.top, 0), bottom = std::min<int32_t>(scissor.bottom, t.height);
    for (int32_t y = top; y < bottom; ++y) {
        for (int32_t x = left; x < right; ++x) {
            uint8_t* p = t.bytes.data() + static_cast<size_t>(y * t.width + x) * static_cast<size_t>(t.pixelBytes);
            uint32_t below = 0;
            std::memcpy(&below, p, 4);
            const uint32_t word = Pattern(hash, replaces ? 0 : below);
            if (t.pixelBytes == 4) {
                const uint32_t opaque = word | 0xFF000000U;
                std::memcpy(p, &opaque, 4);
            } else { // opaque halves
                constexpr uint16_t kLevels[] = {0, 0x3400, 0x3800, 0x3C00};
                const uint16_t halves[] = {kLevels[word & 3U], kLevels[word >> 2 & 3U], kLevels[word >> 4 & 3U],
                                           0x3C00};
                std::memcpy(p, halves, 8);
            }
        }
    }
}

void DrawIndexed(ID3D11DeviceContext* self, UINT count, UINT start, INT base) {
    Context& c = Self(self);
    ++g.draws;
    const struct {
        const Object* object;
        const char* name;
    } needed[] = {{c.layout, "layout"},
                  {c.vertices, "vertices"},
                  {c.indices, "indices"},
                  {c.vs, "vertex shader"},
                  {c.ps, "pixel shader"},
                  {c.blend, "blend state"},
                  {c.raster, "rasterizer"},
                  {c.depth, "depth state"},
                  {c.vsConstants, "vertex constants"},
                  {c.targets[0], "target"},
                  {c.psConstants, "pixel constants"}};
    for (const auto& n : needed) {
        if (n.object == nullptr) {
            Complain(std::string("a draw without ") + n.name);
            return;
        }
    }
    if (!c.triangles || c.vertices->mapped || !c.vs->isVertexShader) {
        Complain("a draw in a wrong state");
        return;
    }
    uint64_t hash = Mix(Mix(Mix(kStart, c.ps->content), c.vs->content), c.blend->content);
    // As many constants as the shaders have; the buffers are larger.
    hash = Mix(hash, c.vsConstants->bytes.data(), std::min(c.vs->constantBytes, c.vsConstants->bytes.size()));
    hash = Mix(hash, c.psConstants->bytes.data(), std::min(c.ps->constantBytes, c.psConstants->bytes.size()));
    for (size_t i = 0; i < c.ps->textures; ++i) {
        if (c.views[i] == nullptr || c.samplers[i] == nullptr) {
            Complain("a draw without its texture " + std::to_string(i));
            return;
        }
        const Object& t = *c.views[i]->texture;
        if (&t == c.targets[0]->texture) {
            Complain("a draw that reads its own target");
        }
        hash = Mix(Mix(Mix(hash, t.width), t.height), c.samplers[i]->content);
        hash = t.isTarget ? hash : Mix(hash, t.content);
    }
    const auto* indices = reinterpret_cast<const uint16_t*>(c.indices->bytes.data());
    for (UINT i = start; i < start + count; ++i) {
        const size_t at = c.offset + static_cast<size_t>(indices[i] + base) * c.stride;
        if ((i + 1) * 2 > c.indices->bytes.size() || at + c.stride > c.vertices->bytes.size()) {
            Complain("vertices beyond the buffer");
            return;
        }
        hash = Mix(hash, c.vertices->bytes.data() + at, c.stride);
        c.vertices->inUse = std::max(c.vertices->inUse, at + c.stride);
    }
    if (c.ps->writesShape != (c.targets[1] != nullptr)) {
        Complain("a draw with a wrong number of targets");
        return;
    }
    Paint(*c.targets[0], c.scissor, hash, c.blend->replaces);
    if (c.ps->writesShape) {
        Paint(*c.targets[1], c.scissor, hash, true);
    }
}

HRESULT Map(ID3D11DeviceContext* self, ID3D11Resource* resource, UINT, D3D11_MAP how, UINT,
            D3D11_MAPPED_SUBRESOURCE* out) {
    *out = {};
    Object* o = Mine(self, resource);
    if (o == nullptr) {
        Complain("a map of nothing");
        return E_INVALIDARG;
    }
    if (const HRESULT result = Enter("Map", o->device); result != S_OK) {
        return result;
    }
    if (o->mapped) {
        Complain("a map of what is mapped");
    }
    if (how == D3D11_MAP_WRITE_DISCARD) {
        std::fill_n(o->bytes.begin(), o->inUse, uint8_t{0xCD});
        o->inUse = 0;
    }
    o->drawn.assign(o->bytes.begin(), o->bytes.begin() + static_cast<ptrdiff_t>(o->inUse));
    o->mapped = true;
    ++g.alive;
    out->pData = o->bytes.data();
    out->RowPitch = static_cast<UINT>(o->width * o->pixelBytes);
    return S_OK;
}
void Unmap(ID3D11DeviceContext* self, ID3D11Resource* resource, UINT) {
    Object* o = Mine(self, resource);
    if (!o->mapped) {
        Complain("an unmap of what is not mapped");
        return;
    }
    if (!std::equal(o->drawn.begin(), o->drawn.end(), o->bytes.begin())) {
        Complain("vertices are written over that the card may be reading");
    }
    o->mapped = false;
    --g.alive;
}

void UpdateSubresource(ID3D11DeviceContext* self, ID3D11Resource* resource, UINT, const D3D11_BOX* box,
                       const void* data, UINT stride, UINT) {
    Object* o = Mine(self, resource);
    if (o->pixelBytes == 0) {
        std::memcpy(o->bytes.data(), data, o->bytes.size());
        return;
    }
    Write(*o, static_cast<int32_t>(box->left), static_cast<int32_t>(box->top),
          static_cast<int32_t>(box->right - box->left), static_cast<int32_t>(box->bottom - box->top), data, stride);
}

void CopySubresourceRegion(ID3D11DeviceContext* self, ID3D11Resource* to, UINT, UINT x, UINT y, UINT,
                           ID3D11Resource* from, UINT, const D3D11_BOX* box) {
    Object* d = Mine(self, to);
    Object* s = Mine(self, from);
    const auto width = static_cast<int32_t>(box->right - box->left);
    const auto height = static_cast<int32_t>(box->bottom - box->top);
    if (d->pixelBytes != s->pixelBytes || static_cast<int32_t>(box->right) > s->width ||
        static_cast<int32_t>(box->bottom) > s->height || static_cast<int32_t>(x) + width > d->width ||
        static_cast<int32_t>(y) + height > d->height) {
        Complain("a copy beyond a texture");
        return;
    }
    Write(*d, static_cast<int32_t>(x), static_cast<int32_t>(y), width, height,
          s->bytes.data() +
              static_cast<size_t>(static_cast<int32_t>(box->top) * s->width + static_cast<int32_t>(box->left)) *
                  static_cast<size_t>(s->pixelBytes),
          static_cast<size_t>(s->width * s->pixelBytes));
}
void CopyResource(ID3D11DeviceContext* self, ID3D11Resource* to, ID3D11Resource* from) {
    Object* d = Mine(self, to);
    Object* s = Mine(self, from);
    if (d->width != s->width || d->height != s->height || d->pixelBytes != s->pixelBytes) {
        Complain("a copy between textures of different size");
        return;
    }
    d->bytes = s->bytes;
}

void ClearRenderTargetView(ID3D11DeviceContext* self, ID3D11RenderTargetView* view, const FLOAT color[4]) {
    Object& t = *Mine(self, view)->texture;
    uint8_t pixel[8] = {};
    if (t.pixelBytes == 8) {
        for (size_t i = 0; i < 4; ++i) {
            const uint16_t half = Graphics::D3D11Half::FromFloat(color[i]);
            std::memcpy(pixel + 2 * i, &half, 2);
        }
    } else {
        for (size_t i = 0; i < 4; ++i) {
            pixel[i == 3 ? 3 : 2 - i] = static_cast<uint8_t>(color[i] * 255.0F);
        }
    }
    for (size_t i = 0; i < t.bytes.size(); ++i) {
        t.bytes[i] = pixel[i % static_cast<size_t>(t.pixelBytes)];
    }
}

const ID3D11DeviceContextVtbl& ContextTable() {
    using C = ID3D11DeviceContext;
    static const ID3D11DeviceContextVtbl table = [] {
        ID3D11DeviceContextVtbl t{};
        t.AddRef = [](C* c) -> ULONG { return ++Self(c).references; };
        t.Release = [](C* c) -> ULONG {
            const ULONG left = --Self(c).references;
            if (left == 0) {
                delete static_cast<Context*>(c);
            }
            return left;
        };
        t.VSSetConstantBuffers = [](C* c, UINT, UINT, ID3D11Buffer* const* b) {
            Bind(Self(c).vsConstants, Mine(c, *b));
        };
        t.PSSetConstantBuffers = [](C* c, UINT, UINT, ID3D11Buffer* const* b) {
            Bind(Self(c).psConstants, Mine(c, *b));
        };
        t.PSSetShaderResources = [](C* c, UINT slot, UINT, ID3D11ShaderResourceView* const* v) {
            Bind(Self(c).views[slot], Mine(c, *v));
        };
        t.PSSetSamplers = [](C* c, UINT slot, UINT, ID3D11SamplerState* const* s) {
            Bind(Self(c).samplers[slot], Mine(c, *s));
        };
        t.VSSetShader = [](C* c, ID3D11VertexShader* s, ID3D11ClassInstance* const*, UINT) {
            Bind(Self(c).vs, Mine(c, s));
        };
        t.PSSetShader = [](C* c, ID3D11PixelShader* s, ID3D11ClassInstance* const*, UINT) {
            Bind(Self(c).ps, Mine(c, s));
        };
        t.IASetInputLayout = [](C* c, ID3D11InputLayout* l) { Bind(Self(c).layout, Mine(c, l)); };
        t.IASetVertexBuffers = [](C* c, UINT, UINT, ID3D11Buffer* const* b, const UINT* stride, const UINT* offset) {
            Bind(Self(c).vertices, Mine(c, *b));
            Self(c).stride = *stride;
            Self(c).offset = *offset;
        };
        t.IASetIndexBuffer = [](C* c, ID3D11Buffer* b, DXGI_FORMAT, UINT) { Bind(Self(c).indices, Mine(c, b)); };
        t.IASetPrimitiveTopology = [](C* c, D3D11_PRIMITIVE_TOPOLOGY topology) {
            Self(c).triangles = topology == D3D11_PRIMITIVE_TOPOLOGY_TRIANGLELIST;
        };
        t.OMSetRenderTargets = [](C* c, UINT count, ID3D11RenderTargetView* const* views, ID3D11DepthStencilView*) {
            Bind(Self(c).targets[0], Mine(c, views[0]));
            Bind(Self(c).targets[1], count > 1 ? Mine(c, views[1]) : nullptr);
            for (Object*& view : Self(c).views) { // what is drawn into cannot be read
                for (const Object* target : Self(c).targets) {
                    if (view != nullptr && target != nullptr && view->texture == target->texture) {
                        Bind(view, nullptr);
                        break;
                    }
                }
            }
        };
        t.OMSetBlendState = [](C* c, ID3D11BlendState* s, const FLOAT*, UINT) { Bind(Self(c).blend, Mine(c, s)); };
        t.OMSetDepthStencilState = [](C* c, ID3D11DepthStencilState* s, UINT) { Bind(Self(c).depth, Mine(c, s)); };
        t.RSSetState = [](C* c, ID3D11RasterizerState* s) { Bind(Self(c).raster, Mine(c, s)); };
        t.RSSetViewports = [](C*, UINT, const D3D11_VIEWPORT*) {};
        t.RSSetScissorRects = [](C* c, UINT, const D3D11_RECT* r) { Self(c).scissor = *r; };
        t.DrawIndexed = &DrawIndexed;
        t.Map = &Map;
        t.Unmap = &Unmap;
        t.UpdateSubresource = &UpdateSubresource;
        t.CopySubresourceRegion = &CopySubresourceRegion;
        t.CopyResource = &CopyResource;
        t.ClearRenderTargetView = &ClearRenderTargetView;
        t.ClearState = [](C* c) { Self(c).Clear(); };
        t.Flush = [](C*) {};
        return t;
    }();
    return table;
}

Context::Context(Device* owner) : device(owner) {
    lpVtbl = const_cast<ID3D11DeviceContextVtbl*>(&ContextTable());
    AddRefDevice(device);
    ++g.alive;
}

// Swap chains and their factory.

struct Chain : IDXGISwapChain {
    ULONG references = 1;
    Device* device;
    HWND window;
    Object* buffer = nullptr;

    Chain(Device* owner, const DXGI_SWAP_CHAIN_DESC& desc);
    ~Chain() {
        ReleaseObject(buffer);
        g.windows.erase(window);
        --g.alive;
        ReleaseDevice(device);
    }
    void Resize(UINT width, UINT height) {
        auto* fresh = new Object(kPlain, device);
        MakeTexture(*fresh, width, height, DXGI_FORMAT_B8G8R8A8_UNORM);
        fresh->isTarget = true;
        Bind(buffer, nullptr);
        buffer = fresh;
    }
};

const IDXGISwapChainVtbl& ChainTable() {
    using C = IDXGISwapChain;
    static const IDXGISwapChainVtbl table = [] {
        IDXGISwapChainVtbl t{};
        t.AddRef = [](C* c) -> ULONG { return ++static_cast<Chain*>(c)->references; };
        t.Release = [](C* c) -> ULONG {
            const ULONG left = --static_cast<Chain*>(c)->references;
            if (left == 0) {
                delete static_cast<Chain*>(c);
            }
            return left;
        };
        t.GetBuffer = [](C* c, UINT, REFIID, void** out) -> HRESULT {
            auto* chain = static_cast<Chain*>(c);
            *out = nullptr;
            if (const HRESULT result = Enter("GetBuffer", chain->device); result != S_OK) {
                return result;
            }
            AddRefObject(chain->buffer);
            *out = chain->buffer;
            return S_OK;
        };
        t.ResizeBuffers = [](C* c, UINT, UINT width, UINT height, DXGI_FORMAT, UINT) -> HRESULT {
            auto* chain = static_cast<Chain*>(c);
            if (const HRESULT result = Enter("ResizeBuffers", chain->device); result != S_OK) {
                return result;
            }
            if (chain->buffer->references != 1) {
                Complain("a swap chain is resized whose buffer is held");
            }
            chain->Resize(width, height);
            return S_OK;
        };
        t.Present = [](C* c, UINT, UINT) -> HRESULT {
            auto* chain = static_cast<Chain*>(c);
            if (const HRESULT result = Enter("Present", chain->device); result != S_OK) {
                return result;
            }
            g.presented.resize(chain->buffer->bytes.size() / 4);
            std::memcpy(g.presented.data(), chain->buffer->bytes.data(), chain->buffer->bytes.size());
            return S_OK;
        };
        return t;
    }();
    return table;
}

Chain::Chain(Device* owner, const DXGI_SWAP_CHAIN_DESC& desc) : device(owner), window(desc.OutputWindow) {
    lpVtbl = const_cast<IDXGISwapChainVtbl*>(&ChainTable());
    AddRefDevice(device);
    ++g.alive;
    if (!g.windows.insert(window).second) {
        Complain("a second swap chain on a window");
    }
    Resize(desc.BufferDesc.Width, desc.BufferDesc.Height);
}

HRESULT CreateSwapChain(IDXGIFactory1*, IUnknown* device, DXGI_SWAP_CHAIN_DESC* desc, IDXGISwapChain** out) {
    auto* owner = static_cast<Device*>(reinterpret_cast<ID3D11Device*>(device));
    *out = nullptr;
    if (const HRESULT result = Enter("CreateSwapChain", owner); result != S_OK) {
        return result;
    }
    *out = new Chain(owner, *desc);
    return S_OK;
}

HRESULT WINAPI CreateFactory(REFIID, void** out) {
    *out = nullptr;
    if (const HRESULT result = Enter("CreateDXGIFactory1", nullptr); result != S_OK) {
        return result;
    }
    static const IDXGIFactory1Vtbl table = [] {
        IDXGIFactory1Vtbl t{};
        std::memcpy(static_cast<void*>(&t), kPlain, sizeof kPlain);
        t.CreateSwapChain = &CreateSwapChain;
        t.MakeWindowAssociation = [](IDXGIFactory1*, HWND, UINT) -> HRESULT {
            return Enter("MakeWindowAssociation", nullptr);
        };
        return t;
    }();
    *out = new Object(&table, nullptr);
    return S_OK;
}

HRESULT WINAPI CreateDevice(IDXGIAdapter*, D3D_DRIVER_TYPE, HMODULE, UINT, const D3D_FEATURE_LEVEL*, UINT, UINT,
                            ID3D11Device** device, D3D_FEATURE_LEVEL* level, ID3D11DeviceContext** context) {
    *device = nullptr;
    *context = nullptr;
    HRESULT result = Enter("D3D11CreateDevice", nullptr);
    result = result == S_OK && g.refuses ? DXGI_ERROR_UNSUPPORTED : result;
    if (result != S_OK) {
        return result;
    }
    auto* made = new Device;
    *context = new Context(made);
    *device = made;
    *level = D3D_FEATURE_LEVEL_11_1;
    return S_OK;
}

// The compiler: byte code is the text.

HRESULT WINAPI Compile(LPCVOID text, SIZE_T size, LPCSTR, const D3D_SHADER_MACRO*, ID3DInclude*, LPCSTR, LPCSTR, UINT,
                       UINT, ID3DBlob** code, ID3DBlob** errors) {
    *code = nullptr;
    *errors = nullptr;
    if (const HRESULT result = Enter("D3DCompile", nullptr); result != S_OK) {
        return result;
    }
    static const ID3D10BlobVtbl table = [] {
        ID3D10BlobVtbl t{};
        std::memcpy(static_cast<void*>(&t), kPlain, sizeof kPlain);
        t.GetBufferPointer = [](ID3DBlob* b) -> void* { return Of(b)->bytes.data(); };
        t.GetBufferSize = [](ID3DBlob* b) -> SIZE_T { return Of(b)->bytes.size(); };
        return t;
    }();
    auto* blob = new Object(&table, nullptr);
    blob->bytes.assign(static_cast<const uint8_t*>(text), static_cast<const uint8_t*>(text) + size);
    return Give(code, blob);
}

HMODULE WINAPI LoadCompiler(LPCWSTR) {
    return Enter("LoadLibrary", nullptr) == S_OK ? LoadLibraryW(L"kernel32.dll") : nullptr;
}
FARPROC WINAPI FindCompile(HMODULE, LPCSTR) {
    return Enter("GetProcAddress", nullptr) == S_OK ? reinterpret_cast<FARPROC>(reinterpret_cast<void (*)()>(&Compile))
                                                    : nullptr;
}

} // namespace

void Install() {
    g = Global();
    Graphics::g_d3d11 = {&CreateDevice, &CreateFactory, &LoadCompiler, &FindCompile};
}

void Uninstall() { Graphics::g_d3d11 = Graphics::D3D11Calls(); }

void FailAt(int64_t n, Fault fault) {
    g.calls = 0;
    g.failAt = n;
    g.fault = fault;
    g.failed.clear();
}

std::string FailedCall() { return g.failed; }

void Remove(Fault reason) {
    for (Device* device : g.devices) {
        device->removed = ReasonOf(reason);
    }
}

void RefuseDevices(bool refuse) { g.refuses = refuse; }
int64_t Objects() { return g.alive; }
int64_t Draws() { return g.draws; }
std::vector<uint32_t> TakePresented() { return std::exchange(g.presented, {}); }

} // namespace FakeDirect3D
