// SPDX-License-Identifier: MIT
// How a value is written and read, by its type in the library's own signatures: the recorder and the interpreter derive
// the form of every command from these.
#pragma once

#include "Bytes.h"

#include <array>
#include <cstring>
#include <type_traits>

namespace Gxr {

// Records made of 32-bit fields alone.
template <class T>
concept Words = std::is_same_v<T, GXPoint> || std::is_same_v<T, GXRect> || std::is_same_v<T, GXIntPoint> ||
    std::is_same_v<T, GXIntRect> || std::is_same_v<T, GXMatrix> || std::is_same_v<T, GXColor> ||
    std::is_same_v<T, GXBitmapBrushOptions> || std::is_same_v<T, GXGradientStop> || std::is_same_v<T, GXTriMeshVertex>;

inline void Put(ByteWriter& out, float v) { out.F32(v); }
inline void Put(ByteWriter& out, uint32_t v) { out.U32(v); }
inline void Put(ByteWriter& out, uint8_t v) { out.U8(v); }

template <Words T> void Put(ByteWriter& out, const T& v) {
    std::array<uint32_t, sizeof(T) / sizeof(uint32_t)> words;
    std::memcpy(words.data(), &v, sizeof v);
    for (const uint32_t word : words)
        out.U32(word);
}

inline void Put(ByteWriter& out, const GXStrokeStyle& v) {
    const auto dashes = static_cast<uint8_t>(v.dashCount < 15 ? v.dashCount : 15);
    out.U32(v.join);
    out.U32(v.cap);
    out.F32(v.miterLimit);
    out.F32(v.dashPhase);
    out.U8(dashes);
    for (size_t i = 0; i < dashes; ++i)
        out.F32(v.dashes[i]);
}

inline void Put(ByteWriter& out, const GXLayerDesc& v) {
    Put(out, v.bounds);
    out.F32(v.opacity);
    out.U8(v.isolated);
    out.U8(v.knockout);
}

// Pointers to records may be null.
template <class T> void PutOptional(ByteWriter& out, const T* v) {
    out.U8(v != nullptr);
    if (v != nullptr)
        Put(out, *v);
}

inline void PutText(ByteWriter& out, const uint16_t* text) {
    size_t length = 0;
    while (text[length] != 0)
        ++length;
    out.Count(length);
    for (size_t i = 0; i < length; ++i) {
        out.U8(static_cast<uint8_t>(text[i]));
        out.U8(static_cast<uint8_t>(text[i] >> 8));
    }
}

template <class T> struct Reader;
template <> struct Reader<float> {
    static float Get(ByteReader& in) { return in.F32(); }
};
template <> struct Reader<uint32_t> {
    static uint32_t Get(ByteReader& in) { return in.U32(); }
};
template <> struct Reader<uint8_t> {
    static uint8_t Get(ByteReader& in) { return in.U8(); }
};
template <Words T> struct Reader<T> {
    static T Get(ByteReader& in) {
        std::array<uint32_t, sizeof(T) / sizeof(uint32_t)> words;
        for (uint32_t& word : words)
            word = in.U32();
        T v;
        std::memcpy(&v, words.data(), sizeof v);
        return v;
    }
};
template <> struct Reader<GXStrokeStyle> {
    static GXStrokeStyle Get(ByteReader& in) {
        GXStrokeStyle v{};
        v.join = in.U32();
        v.cap = in.U32();
        v.miterLimit = in.F32();
        v.dashPhase = in.F32();
        v.dashCount = in.U8();
        if (v.dashCount > 15)
            throw Error("the recording holds too many dashes");
        for (size_t i = 0; i < v.dashCount; ++i)
            v.dashes[i] = in.F32();
        return v;
    }
};
template <> struct Reader<GXLayerDesc> {
    static GXLayerDesc Get(ByteReader& in) {
        GXLayerDesc v{};
        v.bounds = Reader<GXRect>::Get(in);
        v.opacity = in.F32();
        v.isolated = in.U8();
        v.knockout = in.U8();
        return v;
    }
};

// One parameter of a function while it is read and passed on. `Objects` turns references into handles:
// objects.Find(number, type).
template <class T> class Slot {
public:
    template <class Objects> Slot(ByteReader& in, Objects& objects) {
        if constexpr (std::is_pointer_v<T>) {
            m_reference = in.Count();
            m_value = objects.Find(m_reference, T{});
        } else {
            m_value = Reader<T>::Get(in);
        }
    }
    T Get() const noexcept { return m_value; }
    // Of an object: what stands in the file.
    uint64_t Reference() const noexcept { return m_reference; }

private:
    T m_value{};
    uint64_t m_reference = 0;
};

template <class T> class Slot<const T*> {
public:
    Slot() noexcept = default;
    template <class Objects> Slot(ByteReader& in, Objects&) : Slot(in) {}
    explicit Slot(ByteReader& in) : m_present(in.U8() != 0) {
        if (m_present)
            m_value = Reader<T>::Get(in);
    }
    const T* Get() const noexcept { return m_present ? &m_value : nullptr; }

private:
    bool m_present = false;
    T m_value{};
};

template <> class Slot<const uint16_t*> {
public:
    template <class Objects> Slot(ByteReader& in, Objects&) : Slot(in) {}
    explicit Slot(ByteReader& in) {
        m_text.resize(in.Things(2));
        for (uint16_t& unit : m_text) {
            const uint8_t low = in.U8();
            unit = static_cast<uint16_t>(low | in.U8() << 8);
        }
        m_text.push_back(0);
    }
    const uint16_t* Get() const noexcept { return m_text.data(); }

private:
    std::vector<uint16_t> m_text;
};

} // namespace Gxr
