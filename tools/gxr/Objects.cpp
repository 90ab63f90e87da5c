// SPDX-License-Identifier: MIT
#include "Objects.h"

namespace Gxr {
namespace {

std::vector<GXGradientStop> ReadStops(ByteReader& in) {
    std::vector<GXGradientStop> stops(in.Things(sizeof(GXGradientStop)));
    for (GXGradientStop& stop : stops)
        stop = Reader<GXGradientStop>::Get(in);
    return stops;
}

size_t PointsOf(uint8_t verb) {
    switch (verb) {
    case 'M':
    case 'L':
        return 1;
    case 'C':
        return 3;
    case 'E':
    case 'Z':
        return 0;
    default:
        throw Error("the recording holds an unknown part of a geometry");
    }
}

} // namespace

void CheckResult(GXResult result, const char* what) {
    if (result != GXResultSuccess)
        throw Error(std::string(what) + " failed with result " + std::to_string(result));
}

Objects::Objects(const Bytes& body, bool live) : m_live(live), m_body(body) {
    ByteReader in(body.data(), body.size());
    m_page = ReadSize(in);
    if (uint64_t{m_page.width} * m_page.height > kMaxPagePixels)
        throw Error("the recording's page is too large: " + std::to_string(m_page.width) + " x " +
                    std::to_string(m_page.height));
    while (ReadObject(in)) {
    }
    m_commandsAt = body.size() - in.Left();
}

PageInfo ReadSize(ByteReader& in) {
    PageInfo info;
    info.width = in.U32();
    info.height = in.U32();
    info.format = in.U32();
    info.dpiX = in.F32();
    info.dpiY = in.F32();
    if (info.width == 0 || info.height == 0 || info.width > kMaxSide || info.height > kMaxSide ||
        RowBytes(info.format, 1) == 0)
        throw Error("the recording holds a surface that cannot be");
    return info;
}

bool Objects::ReadObject(ByteReader& in) {
    const auto kind = static_cast<ObjectKind>(in.U8());
    switch (kind) {
    case ObjectKind::End:
        return false;
    case ObjectKind::Geometry:
        ReadGeometry(in);
        break;
    case ObjectKind::Palette:
        ReadPalette(in);
        break;
    case ObjectKind::Bitmap:
        ReadBitmap(in);
        break;
    case ObjectKind::LinearGradient:
    case ObjectKind::RadialGradient:
    case ObjectKind::MeshGradient:
        ReadGradient(in, kind);
        break;
    case ObjectKind::SolidBrush:
    case ObjectKind::SolidBrushARGB:
    case ObjectKind::BitmapBrush:
    case ObjectKind::GradientBrush:
        ReadBrush(in, kind);
        break;
    case ObjectKind::FontFace:
        ReadFontFace(in);
        break;
    default:
        throw Error("the recording holds an unknown object");
    }
    return true;
}

void Objects::ReadGeometry(ByteReader& in) {
    Handle<GXGeometry>& geometry = m_geometries.emplace_back();
    uint64_t& pointCount = m_pointCounts.emplace_back();
    const uint32_t fillRule = in.U32();
    const size_t count = in.Things(1);
    const uint8_t* const verbs = in.Raw(count);
    uint64_t points = 0;
    for (size_t i = 0; i < count; ++i)
        points += PointsOf(verbs[i]);
    pointCount = points;
    if (points > in.Left() / sizeof(GXPoint))
        throw Error("the recording ends too early");
    if (!m_live) {
        in.Raw(points * sizeof(GXPoint));
        return;
    }
    CheckResult(GXCreateGeometry(geometry.Out()), "GXCreateGeometry");
    CheckResult(GXGeometrySetFillRule(geometry.Get(), fillRule), "GXGeometrySetFillRule");
    for (size_t i = 0; i < count; ++i) {
        GXPoint p[3];
        for (size_t k = 0; k < PointsOf(verbs[i]); ++k)
            p[k] = Reader<GXPoint>::Get(in);
        switch (verbs[i]) {
        case 'M':
            CheckResult(GXGeometryBeginFigure(geometry.Get(), p), "GXGeometryBeginFigure");
            break;
        case 'L':
            CheckResult(GXGeometryLineTo(geometry.Get(), p), "GXGeometryLineTo");
            break;
        case 'C':
            CheckResult(GXGeometryCubicCurveTo(geometry.Get(), p, p + 1, p + 2), "GXGeometryCubicCurveTo");
            break;
        case 'E':
            CheckResult(GXGeometryEndFigure(geometry.Get()), "GXGeometryEndFigure");
            break;
        default:
            CheckResult(GXGeometryEndFigureClose(geometry.Get()), "GXGeometryEndFigureClose");
            break;
        }
    }
}

void Objects::ReadPalette(ByteReader& in) {
    std::vector<uint32_t> colors(in.Things(sizeof(uint32_t)));
    for (uint32_t& color : colors)
        color = in.U32();
    if (colors.empty())
        throw Error("the recording holds a palette without colours");
    Handle<GXPalette>& palette = m_palettes.emplace_back();
    if (m_live)
        CheckResult(GXCreatePalette(colors.data(), colors.size(), palette.Out()), "GXCreatePalette");
}

void Objects::ReadBitmap(ByteReader& in) {
    GXBitmapDesc desc{};
    desc.width = in.U32();
    desc.height = in.U32();
    desc.format = in.U32();
    desc.dpiX = in.F32();
    desc.dpiY = in.F32();
    const GXPalette palette = At(m_palettes, in.Count());
    const uint64_t rowBytes = RowBytes(desc.format, desc.width);
    // The pixels are there before memory is taken for them.
    if (rowBytes == 0 || desc.height == 0 || desc.width > kMaxBodyBytes || rowBytes > in.Left() / desc.height)
        throw Error("the recording holds a bitmap that cannot be");
    const uint8_t* const pixels = in.Raw(rowBytes * desc.height);
    Handle<GXBitmap>& bitmap = m_bitmaps.emplace_back();
    if (!m_live)
        return;
    CheckResult(GXCreateBitmap(&desc, bitmap.Out()), "GXCreateBitmap");
    // The library only reads them.
    const GXBitmapData data{const_cast<uint8_t*>(pixels), static_cast<uint32_t>(rowBytes),
                            static_cast<uint32_t>(rowBytes)};
    CheckResult(GXBitmapCopyFromMemory(bitmap.Get(), nullptr, &data), "GXBitmapCopyFromMemory");
    if (palette != nullptr)
        CheckResult(GXBitmapSetPalette(bitmap.Get(), palette), "GXBitmapSetPalette");
}

void Objects::ReadGradient(ByteReader& in, ObjectKind kind) {
    Handle<GXGradient>& gradient = m_gradients.emplace_back();
    if (kind == ObjectKind::MeshGradient) {
        std::vector<GXTriMeshVertex> vertices(in.Things(sizeof(GXTriMeshVertex)));
        for (GXTriMeshVertex& vertex : vertices)
            vertex = Reader<GXTriMeshVertex>::Get(in);
        const uint32_t background = in.U32();
        if (vertices.empty())
            throw Error("the recording holds a mesh without triangles");
        if (m_live)
            CheckResult(GXCreateGradientTriMesh(vertices.data(), vertices.size(), background, gradient.Out()),
                        "GXCreateGradientTriMesh");
        return;
    }
    const std::vector<GXGradientStop> stops = ReadStops(in);
    GXRadialGradientDesc desc{};
    desc.stops = stops.data();
    desc.stopCount = stops.size();
    const bool radial = kind == ObjectKind::RadialGradient;
    desc.startCenter = Reader<GXPoint>::Get(in);
    desc.startRadius = radial ? in.F32() : 0.0f;
    desc.endCenter = Reader<GXPoint>::Get(in);
    desc.endRadius = radial ? in.F32() : 0.0f;
    desc.extendStart = in.U8();
    desc.extendEnd = in.U8();
    desc.background = in.U32();
    if (!m_live)
        return;
    if (radial) {
        CheckResult(GXCreateGradientRadial(&desc, gradient.Out()), "GXCreateGradientRadial");
        return;
    }
    const GXLinearGradientDesc linear{desc.stops,       desc.stopCount, desc.startCenter, desc.endCenter,
                                      desc.extendStart, desc.extendEnd, desc.background};
    CheckResult(GXCreateGradientLinear(&linear, gradient.Out()), "GXCreateGradientLinear");
}

void Objects::ReadBrush(ByteReader& in, ObjectKind kind) {
    Handle<GXBrush>& brush = m_brushes.emplace_back();
    m_brushKinds.push_back(kind);
    if (kind == ObjectKind::SolidBrush) {
        const auto color = Reader<GXColor>::Get(in);
        if (m_live)
            CheckResult(GXCreateBrushSolid(&color, brush.Out()), "GXCreateBrushSolid");
    } else if (kind == ObjectKind::SolidBrushARGB) {
        const uint32_t argb = in.U32();
        if (m_live)
            CheckResult(GXCreateBrushSolidARGB(argb, brush.Out()), "GXCreateBrushSolidARGB");
    } else if (kind == ObjectKind::GradientBrush) {
        const GXGradient gradient = At(m_gradients, in.Count());
        const float opacity = in.F32();
        const Slot<const GXMatrix*> matrix(in);
        if (m_live)
            CheckResult(GXCreateBrushGradient(gradient, opacity, matrix.Get(), brush.Out()), "GXCreateBrushGradient");
    } else {
        const GXBitmap bitmap = At(m_bitmaps, in.Count());
        const float opacity = in.F32();
        const Slot<const GXBitmapBrushOptions*> options(in);
        const Slot<const GXMatrix*> matrix(in);
        if (m_live)
            CheckResult(GXCreateBrushBitmap(bitmap, opacity, options.Get(), matrix.Get(), brush.Out()),
                        "GXCreateBrushBitmap");
    }
}

void Objects::ReadFontFace(ByteReader& in) {
    const Slot<const uint16_t*> name(in, *this);
    const uint32_t flags = in.U32();
    const float size = in.F32();
    Handle<GXFontFace>& face = m_faces.emplace_back();
    if (m_live)
        CheckResult(GXCreateFontFace(name.Get(), flags, size, face.Out()), "GXCreateFontFace");
}

} // namespace Gxr
