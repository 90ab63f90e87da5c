// SPDX-License-Identifier: MIT
// The process-wide table from tickets to bitmap handles, limited by a byte budget. It stores bare handles: it neither
// acquires nor releases them, and does not access their bitmaps after Put.
#pragma once

#include <atomic>
#include <cstdint>
#include <list>
#include <mutex>
#include <unordered_map>

#include "Types.h"

namespace Graphics {

/// Callable from any thread.
class BitmapCache {
public:
    static constexpr uint64_t kDefaultQuota = 40ULL << 20;

    BitmapCache() = default;
    BitmapCache(const BitmapCache&) = delete;
    BitmapCache& operator=(const BitmapCache&) = delete;

    [[nodiscard]] static BitmapCache& Shared() noexcept;

    /// Drops the oldest entries until the others fit.
    void SetQuota(uint64_t bytes);
    [[nodiscard]] uint64_t Quota() const noexcept { return m_quota.load(std::memory_order_relaxed); }
    [[nodiscard]] uint64_t InUse() const noexcept { return m_inUse.load(std::memory_order_relaxed); }

    /// Returns the new entry's ticket, 1 for the first. Drops the oldest entries until the new one fits; one larger
    /// than the quota is kept alone. If memory runs out, nothing changes.
    [[nodiscard]] uint32_t Put(GXBitmap bitmap, const Size& size, GXPixelFormat format);
    /// Null if the ticket is unknown. The entry's age does not change.
    [[nodiscard]] GXBitmap Get(uint32_t ticket) const;
    /// An unknown ticket has no effect.
    void Remove(uint32_t ticket);

    /// The size that an entry counts for: its rows without padding.
    [[nodiscard]] static uint64_t EntryBytes(const Size& size, GXPixelFormat format) noexcept;

private:
    struct Entry {
        uint32_t ticket;
        GXBitmap bitmap;
        uint64_t bytes;
    };
    using Entries = std::list<Entry>;

    void Drop(Entries::iterator entry) noexcept;
    /// Drops the oldest entries until `more` bytes fit or none is left.
    void MakeRoom(uint64_t more) noexcept;

    mutable std::mutex m_mutex; // guards the other members; the two numbers are written under it and read without it
    std::atomic<uint64_t> m_quota{kDefaultQuota};
    std::atomic<uint64_t> m_inUse{0};
    uint32_t m_lastTicket = 0;
    Entries m_entries; // oldest first
    std::unordered_map<uint32_t, Entries::iterator> m_byTicket;
};

} // namespace Graphics
