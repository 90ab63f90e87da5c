// SPDX-License-Identifier: MIT
#include "BitmapCache.h"

#include "Pixels/PixelFormat.h"

namespace Graphics {
namespace {

// Created when the library is loaded, so that it outlives a program's static objects.
[[maybe_unused]] const BitmapCache& g_made = BitmapCache::Shared();

} // namespace

BitmapCache& BitmapCache::Shared() noexcept {
    static BitmapCache cache;
    return cache;
}

uint64_t BitmapCache::EntryBytes(const Size& size, GXPixelFormat format) noexcept {
    const uint64_t bits = IsValidFormat(format) ? static_cast<uint64_t>(BitsPerPixel(format)) : 32;
    return (size.width * bits + 7) / 8 * size.height;
}

void BitmapCache::Drop(Entries::iterator entry) noexcept {
    m_inUse.store(InUse() - entry->bytes, std::memory_order_relaxed);
    m_byTicket.erase(entry->ticket);
    m_entries.erase(entry);
}

void BitmapCache::MakeRoom(uint64_t more) noexcept {
    while (!m_entries.empty() && InUse() + more > Quota()) {
        Drop(m_entries.begin());
    }
}

void BitmapCache::SetQuota(uint64_t bytes) {
    const std::lock_guard lock(m_mutex);
    m_quota.store(bytes, std::memory_order_relaxed);
    MakeRoom(0);
}

uint32_t BitmapCache::Put(GXBitmap bitmap, const Size& size, GXPixelFormat format) {
    Entries fresh;
    fresh.push_back({0, bitmap, EntryBytes(size, format)});
    const auto entry = fresh.begin();
    const std::lock_guard lock(m_mutex);
    uint32_t ticket = m_lastTicket + 1;
    while (!m_byTicket.emplace(ticket, entry).second) { // the counter has wrapped, and this ticket is in use
        ++ticket;
    }
    m_lastTicket = entry->ticket = ticket;
    MakeRoom(entry->bytes);
    m_entries.splice(m_entries.end(), fresh);
    m_inUse.store(InUse() + entry->bytes, std::memory_order_relaxed);
    return ticket;
}

GXBitmap BitmapCache::Get(uint32_t ticket) const {
    const std::lock_guard lock(m_mutex);
    const auto found = m_byTicket.find(ticket);
    return found == m_byTicket.end() ? nullptr : found->second->bitmap;
}

void BitmapCache::Remove(uint32_t ticket) {
    const std::lock_guard lock(m_mutex);
    const auto found = m_byTicket.find(ticket);
    if (found != m_byTicket.end()) {
        Drop(found->second);
    }
}

} // namespace Graphics
