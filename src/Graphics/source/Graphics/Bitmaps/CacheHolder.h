// SPDX-License-Identifier: MIT
// What others have made out of an image, kept with the image until its pixels change: converted copies, textures.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>

namespace Graphics {

/// Any thread may call. Derived objects are released outside the mutex, so that their destructors may come back here.
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
