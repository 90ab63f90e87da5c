// SPDX-License-Identifier: MIT
#include "D3D11BitmapCache.h"

#include <algorithm>
#include <atomic>

#include "../Arena.h"
#include "../Exception.h"
#include "../Sources/PixelReader.h"

namespace Graphics {
namespace {

/// Caches are numbered, so that those of two threads use different keys with one bitmap.
constexpr uint32_t kTextureKey = 0x80000000U;
constexpr uint32_t kVariantBits = 17; // halvings of both directions, and a bit for masks

[[nodiscard]] uint32_t NextId() noexcept {
    static std::atomic<uint32_t> s_next{0};
    constexpr uint32_t kIds = 1U << (31 - kVariantBits);
    return s_next.fetch_add(1, std::memory_order_relaxed) % kIds;
}

[[nodiscard]] uint64_t DefaultQuota(ID3D11Device& device) noexcept {
    constexpr uint64_t kLeast = uint64_t{64} << 20;
    D3D11Ref<IDXGIDevice> dxgi;
    D3D11Ref<IDXGIAdapter> adapter;
    DXGI_ADAPTER_DESC desc{};
    if (FAILED(device.QueryInterface(IID_IDXGIDevice, dxgi.OutVoid())) || FAILED(dxgi->GetAdapter(adapter.Out())) ||
        FAILED(adapter->GetDesc(&desc))) {
        return kLeast;
    }
    return std::max<uint64_t>(kLeast, desc.DedicatedVideoMemory / 4);
}

} // namespace

D3D11BitmapCache::D3D11BitmapCache(D3D11Device& device, uint64_t quotaBytes)
    : m_device(device), m_id(NextId()), m_quota(quotaBytes != 0 ? quotaBytes : DefaultQuota(*device.Get())) {}

std::shared_ptr<D3D11Texture> D3D11BitmapCache::GetTexture(const PixelView& view, CacheHolder* derived,
                                                           uint32_t variant, bool asMask) {
    if (!Fits(view.width, view.height)) {
        GX_RAISE("Graphics::D3D11BitmapCache::GetTexture", "Texture is too big");
    }
    if (derived == nullptr) {
        return Upload(view, asMask);
    }
    const uint32_t key = kTextureKey | m_id << kVariantBits | (asMask ? 1U << 16 : 0U) | (variant & 0xFFFFU);
    auto entry = std::static_pointer_cast<D3D11VidMemTexCacheEntry>(derived->Get(key));
    const auto known = std::find_if(m_entries.begin(), m_entries.end(),
                                    [&](const Known& k) { return entry != nullptr && k.entry.lock() == entry; });
    if (known != m_entries.end() && entry->texture != nullptr) {
        m_entries.splice(m_entries.end(), m_entries, known);
        return entry->texture;
    }
    // Nothing cached, or only by a former cache of the same number.
    const uint64_t bytes = static_cast<uint64_t>(view.width) * static_cast<uint64_t>(view.height) * (asMask ? 1U : 4U);
    Evict(bytes);
    entry = std::make_shared<D3D11VidMemTexCacheEntry>();
    entry->texture = Upload(view, asMask);
    entry->bytes = bytes;
    m_entries.push_back({entry, bytes});
    m_used += bytes;
    derived->Put(key, entry);
    return entry->texture;
}

void D3D11BitmapCache::SetQuota(uint64_t bytes) {
    m_quota = bytes;
    Evict(0);
}

void D3D11BitmapCache::Evict(uint64_t room) {
    // First removes entries that the bitmaps themselves have dropped.
    m_entries.remove_if([this](const Known& k) {
        const bool gone = k.entry.expired();
        m_used -= gone ? k.bytes : 0;
        return gone;
    });
    while (!m_entries.empty() && m_used + room > m_quota) {
        if (const auto entry = m_entries.front().entry.lock()) {
            entry->texture.reset();
        }
        m_used -= m_entries.front().bytes;
        m_entries.pop_front();
    }
}

std::shared_ptr<D3D11Texture> D3D11BitmapCache::Upload(const PixelView& view, bool asMask) {
    ++m_device.Counters().uploads;
    Arena arena;
    const PixelReader reader(arena, view, asMask);
    const auto width = static_cast<size_t>(view.width);
    const auto height = static_cast<size_t>(view.height);
    if (!asMask && reader.IsDirect()) {
        if (view.strideBytes > 0 && view.strideBytes <= INT32_MAX) {
            return m_device.CreateVidMemTexture(view.width, view.height, DXGI_FORMAT_B8G8R8A8_UNORM, reader.Row(0),
                                                static_cast<uint32_t>(view.strideBytes));
        }
    }
    m_words.resize(asMask ? width : width * height);
    if (!asMask) {
        for (int32_t y = 0; y < view.height; ++y) {
            reader.Run(y, 0, width, m_words.data() + static_cast<size_t>(y) * width);
        }
        return m_device.CreateVidMemTexture(view.width, view.height, DXGI_FORMAT_B8G8R8A8_UNORM, m_words.data(),
                                            static_cast<uint32_t>(width * sizeof(uint32_t)));
    }
    m_values.resize(width * height);
    for (int32_t y = 0; y < view.height; ++y) {
        reader.Run(y, 0, width, m_words.data());
        uint8_t* to = m_values.data() + static_cast<size_t>(y) * width;
        for (size_t x = 0; x < width; ++x) {
            to[x] = static_cast<uint8_t>(m_words[x]);
        }
    }
    return m_device.CreateVidMemTexture(view.width, view.height, DXGI_FORMAT_A8_UNORM, m_values.data(),
                                        static_cast<uint32_t>(width));
}

} // namespace Graphics
