// SPDX-License-Identifier: MIT
// Owns one reference to a library object.
#pragma once

#include <GX/GX.h>

#include <utility>

namespace Gxr {

template <class T> class Handle {
public:
    Handle() noexcept = default;
    Handle(Handle&& other) noexcept : m_object(std::exchange(other.m_object, nullptr)) {}
    Handle& operator=(Handle&& other) noexcept {
        if (this != &other) {
            Reset();
            m_object = std::exchange(other.m_object, nullptr);
        }
        return *this;
    }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    ~Handle() { Reset(); }

    void Reset() noexcept {
        if (m_object)
            GXObjectRelease(m_object);
        m_object = nullptr;
    }
    // For the library's trailing "out" arguments.
    [[nodiscard]] T* Out() noexcept {
        Reset();
        return &m_object;
    }
    T Get() const noexcept { return m_object; }
    explicit operator bool() const noexcept { return m_object != nullptr; }

private:
    T m_object = nullptr;
};

} // namespace Gxr
