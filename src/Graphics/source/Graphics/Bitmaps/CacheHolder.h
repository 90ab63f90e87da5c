// SPDX-License-Identifier: MIT
// Objects derived from an image (converted copies, textures), kept with it until its pixels change.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>

namespace Graphics {

/// Callable from any thread. Objects are released outside the mutex, so their destructors may call this class.
class CacheHolder {
public:
    CacheHolder() = default;
    CacheHolder(const CacheHolder&) = delete;
    CacheHolder& operator=(const CacheHolder&) = delete;

    /// Null when there is none.
    [[nodiscard]] std::shared_ptr<void> Get(uint32_t key) const;

    /// Replaces the object of the same key.
    void Put(uint32_t key, std::shared_ptr<void> object);

    void Clear();

private:
    mutable std::mutex m_mutex;
    std::map<uint32_t, std::shared_ptr<void>> m_objects;
};

} // namespace Graphics
