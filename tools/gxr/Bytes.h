// SPDX-License-Identifier: MIT
// Little-endian numbers to and from bytes. Reading past the end throws, nothing is ever read there.
#pragma once

#include "Format.h"

#include <bit>
#include <string>
#include <vector>

namespace Gxr {

using Bytes = std::vector<uint8_t>;

class ByteWriter {
public:
    void U8(uint8_t v) { m_bytes.push_back(v); }
    void U32(uint32_t v) {
        for (int shift = 0; shift < 32; shift += 8)
            U8(static_cast<uint8_t>(v >> shift));
    }
    void U64(uint64_t v) {
        U32(static_cast<uint32_t>(v));
        U32(static_cast<uint32_t>(v >> 32));
    }
    void F32(float v) { U32(std::bit_cast<uint32_t>(v)); }
    // Seven bits a byte, the lowest first.
    void Count(uint64_t v) {
        for (; v >= 0x80; v >>= 7)
            U8(static_cast<uint8_t>(v | 0x80));
        U8(static_cast<uint8_t>(v));
    }
    void Raw(const void* data, size_t size) {
        const auto* bytes = static_cast<const uint8_t*>(data);
        m_bytes.insert(m_bytes.end(), bytes, bytes + size);
    }
    void Append(const ByteWriter& other) { Raw(other.m_bytes.data(), other.m_bytes.size()); }

    void Clear() { m_bytes.clear(); }
    const Bytes& Get() const noexcept { return m_bytes; }
    // As a key of a map.
    std::string Text() const { return {m_bytes.begin(), m_bytes.end()}; }

private:
    Bytes m_bytes;
};

class ByteReader {
public:
    ByteReader(const uint8_t* data, size_t size) noexcept : m_next(data), m_end(data + size) {}

    size_t Left() const noexcept { return static_cast<size_t>(m_end - m_next); }
    const uint8_t* Raw(uint64_t size) {
        if (size > Left())
            throw Error("the recording ends too early");
        const uint8_t* const at = m_next;
        m_next += static_cast<size_t>(size);
        return at;
    }
    uint8_t U8() { return *Raw(1); }
    uint32_t U32() {
        const uint8_t* const p = Raw(4);
        return p[0] | static_cast<uint32_t>(p[1]) << 8 | static_cast<uint32_t>(p[2]) << 16 |
               static_cast<uint32_t>(p[3]) << 24;
    }
    uint64_t U64() {
        const uint64_t low = U32();
        return low | static_cast<uint64_t>(U32()) << 32;
    }
    float F32() { return std::bit_cast<float>(U32()); }
    uint64_t Count() {
        uint64_t v = 0;
        for (int shift = 0; shift < 63; shift += 7) {
            const uint8_t byte = U8();
            v |= static_cast<uint64_t>(byte & 0x7F) << shift;
            if (byte < 0x80)
                return v;
        }
        throw Error("the recording holds a number that is too long");
    }
    // A number of things that take `each` bytes at least: never more than what is left.
    size_t Things(size_t each) {
        const uint64_t count = Count();
        if (count > Left() / each)
            throw Error("the recording ends too early");
        return static_cast<size_t>(count);
    }

private:
    const uint8_t* m_next;
    const uint8_t* m_end;
};

} // namespace Gxr
