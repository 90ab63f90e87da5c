// SPDX-License-Identifier: MIT
// Bitmaps as textures. A texture is stored among the bitmap's derived objects, so a change of the pixels drops it. The
// cache lists all textures and evicts the least recently used ones when they exceed the quota of video memory.
#pragma once

#include <list>

#include "../Bitmaps/CacheHolder.h"
#include "../Pixels/PixelView.h"
#include "../ProcessHeap.h"
#include "D3D11Device.h"

namespace Graphics {

/// The object stored with a bitmap.
struct D3D11VidMemTexCacheEntry {
    std::shared_ptr<D3D11Texture> texture; ///< null after an eviction
    uint64_t bytes = 0;
};

class D3D11BitmapCache {
public:
    /// `quotaBytes` 0: a quarter of the adapter's memory, at least 64 MB.
    explicit D3D11BitmapCache(D3D11Device& device, uint64_t quotaBytes = 0);
    D3D11BitmapCache(const D3D11BitmapCache&) = delete;
    D3D11BitmapCache& operator=(const D3D11BitmapCache&) = delete;
    ~D3D11BitmapCache() { SetQuota(0); }

    [[nodiscard]] bool Fits(int32_t width, int32_t height) const noexcept {
        return width <= m_device.MaxTextureSize() && height <= m_device.MaxTextureSize();
    }

    /// The whole of `view` as premultiplied words, or as mask values in an alpha texture. `derived` stores it; it is
    /// null if the view is not the whole bitmap. `variant` distinguishes images of one bitmap. Raises "Texture is too
    /// big".
    [[nodiscard]] std::shared_ptr<D3D11Texture> GetTexture(const PixelView& view, CacheHolder* derived,
                                                           uint32_t variant, bool asMask);

    void SetQuota(uint64_t bytes);
    [[nodiscard]] uint64_t UsedBytes() const noexcept { return m_used; }
    [[nodiscard]] size_t EntryCount() const noexcept { return m_entries.size(); }

private:
    struct Known {
        std::weak_ptr<D3D11VidMemTexCacheEntry> entry;
        uint64_t bytes;
    };

    [[nodiscard]] std::shared_ptr<D3D11Texture> Upload(const PixelView& view, bool asMask);
    void Evict(uint64_t room);

    D3D11Device& m_device;
    const uint32_t m_id; // key among the derived objects of a bitmap
    uint64_t m_quota;
    uint64_t m_used = 0;
    std::list<Known> m_entries; // least recently used first
    HeapArray<uint32_t> m_words;
    HeapArray<uint8_t> m_values;
};

} // namespace Graphics
