// SPDX-License-Identifier: MIT
// A counted reference to a COM object.
#pragma once

#include <utility>

namespace Graphics {

template <class T> class D3D11Ref {
public:
    D3D11Ref() noexcept = default;
    /// Takes over the caller's reference to `object`.
    explicit D3D11Ref(T* object) noexcept : m_object(object) {}
    D3D11Ref(const D3D11Ref& o) noexcept : m_object(o.m_object) {
        if (m_object != nullptr) {
            m_object->AddRef();
        }
    }
    D3D11Ref(D3D11Ref&& o) noexcept : m_object(std::exchange(o.m_object, nullptr)) {}
    D3D11Ref& operator=(D3D11Ref o) noexcept {
        std::swap(m_object, o.m_object);
        return *this;
    }
    ~D3D11Ref() { Reset(); }

    void Reset() noexcept {
        if (T* old = std::exchange(m_object, nullptr)) {
            old->Release();
        }
    }

    [[nodiscard]] T* get() const noexcept { return m_object; }
    T* operator->() const noexcept { return m_object; }
    explicit operator bool() const noexcept { return m_object != nullptr; }

    /// For calls that return an object through a pointer; releases the present object.
    [[nodiscard]] T** Out() noexcept {
        Reset();
        return &m_object;
    }
    [[nodiscard]] void** OutVoid() noexcept { return reinterpret_cast<void**>(Out()); }

private:
    T* m_object = nullptr;
};

} // namespace Graphics
