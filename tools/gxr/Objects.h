// SPDX-License-Identifier: MIT
// The page and the objects of a recording: geometries, brushes, bitmaps and what they are made of. They do not change
// once they are read, so any number of interpreters, each on a thread of its own, may draw with the same ones.
#pragma once

#include "Arguments.h"
#include "Handle.h"

namespace Gxr {

struct PageInfo {
    uint32_t width = 0, height = 0;
    GXPixelFormat format = 0;
    float dpiX = 96.0f, dpiY = 96.0f;
};

// Throws Error with the name of the function that failed.
void CheckResult(GXResult result, const char* what);

// Throws Error for a page or surface that cannot be.
PageInfo ReadSize(ByteReader& in);

class Objects {
public:
    // Reads page and objects; with `live` they are made. The body outlives this object. Throws Error.
    Objects(const Bytes& body, bool live);

    bool AreLive() const noexcept { return m_live; }
    const PageInfo& Page() const noexcept { return m_page; }
    ByteReader Commands() const noexcept { return {m_body.data() + m_commandsAt, m_body.size() - m_commandsAt}; }

    // By number: 0 is null, beyond the list throws.
    GXGeometry Geometry(uint64_t number) const { return At(m_geometries, number); }
    GXGradient Gradient(uint64_t number) const { return At(m_gradients, number); }
    GXFontFace FontFace(uint64_t number) const { return At(m_faces, number); }
    GXBitmap Bitmap(uint64_t number) const { return At(m_bitmaps, number); }
    GXBrush Brush(uint64_t number) const { return At(m_brushes, number); }

    // Of objects that are there: numbers from 1.
    uint64_t PointCount(uint64_t geometry) const { return m_pointCounts[static_cast<size_t>(geometry - 1)]; }
    ObjectKind BrushKind(uint64_t brush) const { return m_brushKinds[static_cast<size_t>(brush - 1)]; }

private:
    template <class H> using List = std::vector<Handle<H>>;
    template <class H> static H At(const List<H>& list, uint64_t number) {
        if (number > list.size())
            throw Error("the recording uses an object that is not there");
        return number == 0 ? nullptr : list[static_cast<size_t>(number - 1)].Get();
    }

    bool ReadObject(ByteReader& in);
    void ReadGeometry(ByteReader& in);
    void ReadPalette(ByteReader& in);
    void ReadBitmap(ByteReader& in);
    void ReadGradient(ByteReader& in, ObjectKind kind);
    void ReadBrush(ByteReader& in, ObjectKind kind);
    void ReadFontFace(ByteReader& in);

    const bool m_live;
    PageInfo m_page;
    size_t m_commandsAt = 0;
    const Bytes& m_body;
    List<GXGeometry> m_geometries;
    List<GXPalette> m_palettes;
    List<GXBitmap> m_bitmaps;
    List<GXGradient> m_gradients;
    List<GXFontFace> m_faces;
    List<GXBrush> m_brushes;
    std::vector<uint64_t> m_pointCounts; // of the geometries
    std::vector<ObjectKind> m_brushKinds;
};

} // namespace Gxr
