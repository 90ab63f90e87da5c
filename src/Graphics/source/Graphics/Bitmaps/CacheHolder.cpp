// SPDX-License-Identifier: MIT
#include "CacheHolder.h"

#include <utility>

namespace Graphics {

std::shared_ptr<void> CacheHolder::Get(uint32_t key) const {
    const std::lock_guard lock(m_mutex);
    const auto found = m_objects.find(key);
    return found == m_objects.end() ? nullptr : found->second;
}

void CacheHolder::Put(uint32_t key, std::shared_ptr<void> object) {
    const std::lock_guard lock(m_mutex);
    m_objects[key].swap(object); // the parameter ends after the lock, so the replaced object is released outside it
}

void CacheHolder::Clear() {
    std::map<uint32_t, std::shared_ptr<void>> old;
    const std::lock_guard lock(m_mutex);
    m_objects.swap(old);
}

} // namespace Graphics
