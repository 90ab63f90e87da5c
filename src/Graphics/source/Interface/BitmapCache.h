// SPDX-License-Identifier: MIT
// The process-wide table from tickets to bitmap handles under a budget of bytes. It keeps bare handles: it neither
// acquires nor releases them, and never looks into one after the put.
#pragma once

#include <atomic>
#include <cstdint>
#include <list>
#include <mutex>
#include <unordered_map>

#include "Types.h"

namespace Graphics {

/// Any thread may call.
class BitmapCache {
public:
    static constexpr uint64_t kDefaultQuota = 40ULL << 20;

    BitmapCache() = default;
    BitmapCache(const BitmapCache&) = delete;
    BitmapCache& operator=(const BitmapCache&) = delete;

    [[nodiscard]] static BitmapCache& Shared() noexcept;

    /// Drops the oldest entries until the rest fit.
    void SetQuota(uint64_t bytes);
    [[nodiscard]] uint64_t Quota() const noexcept { return m_quota.load(std::memory_order_relaxed); }
    [[nodiscard]] uint64_t InUse() const noexcept { return m_inUse.load(std::memory_order_relaxed); }

    /// The new entry's ticket, 1 for the first. Oldest entries are dropped while the new one does not fit; one larger
    /// than the quota stays alone. Nothing is changed when memory runs out.
    [[nodiscard]] uint32_t Put(GXBitmap bitmap, const Size& size, GXPixelFormat format);
    /// Null when the ticket is unknown. The entry does not become younger.
    [[nodiscard]] GXBitmap Get(uint32_t ticket) const;
    /// An unknown ticket changes nothing.
    void Remove(uint32_t ticket);

    /// Bytes that an entry counts for: the rows without padding.
    [[nodiscard]] static uint64_t EntryBytes(const Size& size, GXPixelFormat format) noexcept;

private:
    struct Entry {
        uint32_t ticket;
        GXBitmap bitmap;
        uint64_t bytes;
    };
    using Entries = std::list<Entry>;

    void Drop(Entries::iterator entry) noexcept;
    /// Drops the oldest until `more` bytes fit or nothing is left.
    void MakeRoom(uint64_t more) noexcept;

    mutable std::mutex m_mutex; // guards the rest; the two numbers are written under it and read without
    std::atomic<uint64_t> m_quota{kDefaultQuota};
    std::atomic<uint64_t> m_inUse{0};
    uint32_t m_lastTicket = 0;
    Entries m_entries; // oldest first
    std::unordered_map<uint32_t, Entries::iterator> m_byTicket;
};

} // namespace Graphics
