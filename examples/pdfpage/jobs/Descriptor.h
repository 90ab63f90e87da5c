// SPDX-License-Identifier: MIT
// Owns one file descriptor.
#pragma once

#include <unistd.h>
#include <utility>

namespace PdfPage {

class Descriptor {
public:
    Descriptor() noexcept = default;
    explicit Descriptor(int number) noexcept : m_number(number) {}
    Descriptor(Descriptor&& other) noexcept : m_number(std::exchange(other.m_number, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(m_number, other.m_number);
        return *this;
    }
    ~Descriptor() { Close(); }

    void Close() noexcept {
        if (m_number >= 0)
            ::close(std::exchange(m_number, -1));
    }
    int Get() const noexcept { return m_number; }
    int Release() noexcept { return std::exchange(m_number, -1); }
    explicit operator bool() const noexcept { return m_number >= 0; }

private:
    int m_number = -1;
};

} // namespace PdfPage
