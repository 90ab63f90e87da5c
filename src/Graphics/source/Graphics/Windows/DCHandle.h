// SPDX-License-Identifier: MIT
// Owners of GDI resources: device contexts, objects, a selection, a saved state. Their destructors release them.
#pragma once

#include <utility>

#include "SystemCalls.h"

namespace Graphics {

/// A device context; empty if the system refused one.
class DCHandle {
public:
    DCHandle() noexcept = default;
    DCHandle(DCHandle&& o) noexcept : m_dc(std::exchange(o.m_dc, nullptr)), m_window(o.m_window) {}
    DCHandle& operator=(DCHandle&& o) noexcept {
        std::swap(m_dc, o.m_dc);
        std::swap(m_window, o.m_window);
        return *this;
    }
    ~DCHandle() {
        if (m_dc != nullptr) {
            m_window != nullptr ? static_cast<void>(g_system.releaseDC(m_window, m_dc))
                                : static_cast<void>(g_system.deleteDC(m_dc));
        }
    }

    /// An information context of the display; not for drawing.
    [[nodiscard]] static DCHandle DisplayInformation() noexcept {
        return {g_system.createIC(L"DISPLAY", nullptr, nullptr, nullptr), nullptr};
    }
    /// The client area of a window.
    [[nodiscard]] static DCHandle OfWindow(HWND window) noexcept { return {g_system.getDC(window), window}; }
    /// A memory context compatible with `dc`; null: with the display.
    [[nodiscard]] static DCHandle Compatible(HDC dc) noexcept { return {g_system.createCompatibleDC(dc), nullptr}; }

    [[nodiscard]] HDC Get() const noexcept { return m_dc; }
    [[nodiscard]] explicit operator bool() const noexcept { return m_dc != nullptr; }

private:
    DCHandle(HDC dc, HWND window) noexcept : m_dc(dc), m_window(window) {}

    HDC m_dc = nullptr;
    HWND m_window = nullptr; // set if the context must be released instead of deleted
};

/// A GDI bitmap, or none.
class GdiBitmap {
public:
    GdiBitmap() noexcept = default;
    explicit GdiBitmap(HBITMAP bitmap) noexcept : m_bitmap(bitmap) {}
    GdiBitmap(GdiBitmap&& o) noexcept : m_bitmap(o.Release()) {}
    GdiBitmap& operator=(GdiBitmap&& o) noexcept {
        std::swap(m_bitmap, o.m_bitmap);
        return *this;
    }
    ~GdiBitmap() {
        if (m_bitmap != nullptr) {
            g_system.deleteObject(m_bitmap);
        }
    }

    [[nodiscard]] HBITMAP Get() const noexcept { return m_bitmap; }
    [[nodiscard]] HBITMAP Release() noexcept { return std::exchange(m_bitmap, nullptr); }
    [[nodiscard]] explicit operator bool() const noexcept { return m_bitmap != nullptr; }

private:
    HBITMAP m_bitmap = nullptr;
};

/// Keeps a bitmap or font selected in a device context. False if the system refused.
class GdiSelection {
public:
    GdiSelection(HDC dc, HGDIOBJ object) noexcept : m_dc(dc), m_before(g_system.selectObject(dc, object)) {}
    GdiSelection(const GdiSelection&) = delete;
    GdiSelection& operator=(const GdiSelection&) = delete;
    ~GdiSelection() {
        if (m_before != nullptr) {
            g_system.selectObject(m_dc, m_before);
        }
    }
    [[nodiscard]] explicit operator bool() const noexcept { return m_before != nullptr; }

private:
    HDC m_dc;
    HGDIOBJ m_before;
};

/// While this object lives, one unit of the host's context is one device pixel and (0, 0) is the device's top left
/// corner, whatever mapping, origin, transform or mirroring the host has set. The context's clip remains in force.
/// False if the system refused.
class DevicePixels {
public:
    explicit DevicePixels(HDC dc) noexcept;
    DevicePixels(const DevicePixels&) = delete;
    DevicePixels& operator=(const DevicePixels&) = delete;
    ~DevicePixels();
    [[nodiscard]] explicit operator bool() const noexcept { return m_saved != 0; }

private:
    HDC m_dc;
    int m_saved;
};

} // namespace Graphics
