// SPDX-License-Identifier: MIT
#include "Recorder.h"

#include "Container.h"

#include <zlib.h>

namespace Gxr {
namespace {

void Check(GXResult result, const char* what) {
    if (result != GXResultSuccess)
        throw Error(std::string("cannot be recorded: ") + what + " failed");
}

// Writes the verbs of a geometry, then its coordinates.
struct GeometryWriter {
    uint32_t fillRule = 0;
    ByteWriter verbs, points;

    void Add(char verb, std::initializer_list<const GXPoint*> list) {
        verbs.U8(static_cast<uint8_t>(verb));
        for (const GXPoint* point : list)
            Put(points, *point);
    }
    static GeometryWriter& Of(void* context) { return *static_cast<GeometryWriter*>(context); }
    GXGeometrySinkCallbacks Callbacks() {
        GXGeometrySinkCallbacks sink{};
        sink.context = this;
        sink.SetFillRule = [](void* c, uint32_t rule) { Of(c).fillRule = rule; };
        sink.BeginFigure = [](void* c, const GXPoint* p) { Of(c).Add('M', {p}); };
        sink.EndFigure = [](void* c) { Of(c).Add('E', {}); };
        sink.EndFigureClose = [](void* c) { Of(c).Add('Z', {}); };
        sink.LineTo = [](void* c, const GXPoint* p) { Of(c).Add('L', {p}); };
        sink.CubicTo = [](void* c, const GXPoint* a, const GXPoint* b, const GXPoint* p) { Of(c).Add('C', {a, b, p}); };
        return sink;
    }
};

// Calls row(data, bytes) for each row of a bitmap.
template <class Row> void ForRows(GXBitmap bitmap, Row&& row) {
    GXPixelFormat format = 0;
    GXSize size{};
    GXBitmapData data{};
    Check(GXBitmapGetPixelFormat(bitmap, &format), "GXBitmapGetPixelFormat");
    Check(GXBitmapGetSize(bitmap, &size), "GXBitmapGetSize");
    Check(GXBitmapLock(bitmap, nullptr, GXLockRead, &data), "GXBitmapLock");
    const auto bytes = static_cast<size_t>(RowBytes(format, size.width));
    for (size_t y = 0; y < size.height; ++y)
        row(static_cast<const uint8_t*>(data.data) + y * data.stride, bytes);
    Check(GXBitmapUnlock(bitmap), "GXBitmapUnlock");
}

uint32_t ChecksumOf(GXBitmap bitmap) {
    uLong crc = 0;
    ForRows(bitmap, [&](const uint8_t* row, size_t bytes) { crc = crc32(crc, row, static_cast<uInt>(bytes)); });
    return static_cast<uint32_t>(crc);
}

void PutStops(ByteWriter& out, const GXGradientStop* stops, uint64_t count) {
    out.Count(count);
    for (uint64_t i = 0; i < count; ++i)
        Put(out, stops[i]);
}

template <class T> const T* Pointer(const std::optional<T>& v) { return v ? &*v : nullptr; }
template <class T> std::optional<T> Copy(const T* v) { return v != nullptr ? std::optional<T>(*v) : std::nullopt; }

} // namespace

Recorder::~Recorder() {
    for (void* object : m_kept)
        GXObjectRelease(object);
    for (const auto& entry : m_surfaceOfBitmap)
        GXObjectRelease(entry.first);
}

void Recorder::Fail(const char* reason) noexcept {
    try {
        m_failure = reason;
    } catch (...) {
        m_failure = "memory"; // short enough to need none
    }
}

// An object that is kept cannot leave its address to another one.
template <class H> void Recorder::Keep(H handle) {
    m_kept.push_back(handle);
    GXObjectAcquire(handle);
}

void Recorder::NoteTarget(GXRenderTarget target, GXBitmap bitmap) noexcept {
    Attempt([&] {
        const auto known = bitmap == nullptr ? m_surfaceOfBitmap.end() : m_surfaceOfBitmap.find(bitmap);
        if (known != m_surfaceOfBitmap.end()) {
            m_targets[target] = known->second;
            return;
        }
        GXPixelFormat format = 0;
        GXSize size{};
        float dpiX = 96.0f, dpiY = 96.0f;
        Check(GXRenderTargetGetPixelFormat(target, &format), "GXRenderTargetGetPixelFormat");
        Check(GXRenderTargetGetSize(target, &size), "GXRenderTargetGetSize");
        if (bitmap != nullptr) {
            Check(GXBitmapGetDpiX(bitmap, &dpiX), "GXBitmapGetDpiX");
            Check(GXBitmapGetDpiY(bitmap, &dpiY), "GXBitmapGetDpiY");
        }
        ByteWriter& out = m_surfaces.empty() ? m_page : m_commands;
        if (!m_surfaces.empty())
            out.U8(static_cast<uint8_t>(Op::NewSurface));
        out.U32(size.width);
        out.U32(size.height);
        out.U32(format);
        out.F32(dpiX);
        out.F32(dpiY);
        const auto number = static_cast<uint32_t>(m_surfaces.size());
        m_surfaces.push_back({bitmap, false, false, 0});
        m_targets[target] = number;
        if (bitmap != nullptr && m_surfaceOfBitmap.emplace(bitmap, number).second)
            GXObjectAcquire(bitmap);
    });
}

void Recorder::NoteSolid(GXBrush brush, const GXColor& color) noexcept {
    Attempt([&] {
        Keep(brush);
        BrushNote& note = m_brushes[brush] = {};
        note.kind = ObjectKind::SolidBrush;
        note.color = color;
    });
}

void Recorder::NoteSolidARGB(GXBrush brush, uint32_t argb) noexcept {
    Attempt([&] {
        Keep(brush);
        BrushNote& note = m_brushes[brush] = {};
        note.kind = ObjectKind::SolidBrushARGB;
        note.argb = argb;
    });
}

void Recorder::NoteBitmapBrush(GXBrush brush, GXBitmap bitmap, float opacity, const GXBitmapBrushOptions* options,
                               const GXMatrix* matrix) noexcept {
    Attempt([&] {
        Keep(brush);
        m_brushes[brush] = {ObjectKind::BitmapBrush, {}, 0, bitmap, nullptr, opacity, Copy(options), Copy(matrix)};
        // The brush keeps the pixels, not the handle.
        Keep(bitmap);
    });
}

void Recorder::NoteGradientBrush(GXBrush brush, GXGradient gradient, float opacity, const GXMatrix* matrix) noexcept {
    Attempt([&] {
        Keep(brush);
        m_brushes[brush] = {ObjectKind::GradientBrush, {}, 0, nullptr, gradient, opacity, {}, Copy(matrix)};
    });
}

void Recorder::NoteGradient(GXGradient gradient, const GXLinearGradientDesc& desc) noexcept {
    Attempt([&] {
        ByteWriter out;
        PutStops(out, desc.stops, desc.stopCount);
        Put(out, desc.start);
        Put(out, desc.end);
        out.U8(desc.extendStart);
        out.U8(desc.extendEnd);
        out.U32(desc.background);
        Keep(gradient);
        m_gradients.insert_or_assign(gradient, Encoded{ObjectKind::LinearGradient, std::move(out)});
    });
}

void Recorder::NoteGradient(GXGradient gradient, const GXRadialGradientDesc& desc) noexcept {
    Attempt([&] {
        ByteWriter out;
        PutStops(out, desc.stops, desc.stopCount);
        Put(out, desc.startCenter);
        out.F32(desc.startRadius);
        Put(out, desc.endCenter);
        out.F32(desc.endRadius);
        out.U8(desc.extendStart);
        out.U8(desc.extendEnd);
        out.U32(desc.background);
        Keep(gradient);
        m_gradients.insert_or_assign(gradient, Encoded{ObjectKind::RadialGradient, std::move(out)});
    });
}

void Recorder::NoteMesh(GXGradient gradient, const GXTriMeshVertex* vertices, size_t count,
                        uint32_t background) noexcept {
    Attempt([&] {
        ByteWriter out;
        out.Count(count);
        for (size_t i = 0; i < count; ++i)
            Put(out, vertices[i]);
        out.U32(background);
        Keep(gradient);
        m_gradients.insert_or_assign(gradient, Encoded{ObjectKind::MeshGradient, std::move(out)});
    });
}

void Recorder::NoteFontFace(GXFontFace face, const uint16_t* name, uint32_t flags, float size) noexcept {
    Attempt([&] {
        ByteWriter out;
        PutText(out, name);
        out.U32(flags);
        out.F32(size);
        Keep(face);
        m_faces.insert_or_assign(face, Encoded{ObjectKind::FontFace, std::move(out)});
    });
}

void Recorder::Forget(GXBitmap bitmap) noexcept {
    Attempt([&] {
        const auto found = m_surfaceOfBitmap.find(bitmap);
        if (found == m_surfaceOfBitmap.end() || found->second == 0)
            return;
        const uint32_t number = found->second;
        m_commands.U8(static_cast<uint8_t>(Op::DropSurface));
        m_commands.Count(number);
        if (m_selected == number)
            m_selected = 0; // as for the interpreter
        m_surfaces[number].bitmap = nullptr;
        m_surfaceOfBitmap.erase(found);
        GXObjectRelease(bitmap);
    });
}

uint64_t Recorder::Store(ObjectKind list, ObjectKind kind, const ByteWriter& bytes) {
    auto& stored = m_stored[list];
    std::string key(1, static_cast<char>(kind));
    key += bytes.Text();
    const auto [entry, isNew] = stored.try_emplace(std::move(key), stored.size() + 1);
    if (isNew) {
        m_objects.U8(static_cast<uint8_t>(kind));
        m_objects.Append(bytes);
    }
    return entry->second;
}

uint64_t Recorder::Number(GXGeometry geometry) {
    GeometryWriter writer;
    const GXGeometrySinkCallbacks sink = writer.Callbacks();
    Check(GXGeometrySendToSink(geometry, &sink), "GXGeometrySendToSink");
    ByteWriter out;
    out.U32(writer.fillRule);
    out.Count(writer.verbs.Get().size());
    out.Append(writer.verbs);
    out.Append(writer.points);
    return Store(ObjectKind::Geometry, ObjectKind::Geometry, out);
}

uint64_t Recorder::Number(GXGradient gradient) {
    const auto found = m_gradients.find(gradient);
    if (found == m_gradients.end())
        throw Error("cannot be recorded: a gradient was made without the recorder");
    return Store(ObjectKind::LinearGradient, found->second.kind, found->second.bytes);
}

uint64_t Recorder::Number(GXFontFace face) {
    const auto found = m_faces.find(face);
    if (found == m_faces.end())
        throw Error("cannot be recorded: a font face was made without the recorder");
    return Store(ObjectKind::FontFace, found->second.kind, found->second.bytes);
}

uint64_t Recorder::NumberOfPixels(GXBitmap bitmap) {
    GXPixelFormat format = 0;
    GXSize size{};
    float dpiX = 0.0f, dpiY = 0.0f;
    GXPalette palette = nullptr;
    uint64_t paletteNumber = 0;
    Check(GXBitmapGetPixelFormat(bitmap, &format), "GXBitmapGetPixelFormat");
    Check(GXBitmapGetSize(bitmap, &size), "GXBitmapGetSize");
    Check(GXBitmapGetDpiX(bitmap, &dpiX), "GXBitmapGetDpiX");
    Check(GXBitmapGetDpiY(bitmap, &dpiY), "GXBitmapGetDpiY");
    Check(GXBitmapGetPalette(bitmap, &palette), "GXBitmapGetPalette");
    if (palette != nullptr) {
        Handle<GXPalette> owner;
        *owner.Out() = palette;
        uint64_t count = 0;
        const uint32_t* colors = nullptr;
        Check(GXPaletteGetNumColors(palette, &count), "GXPaletteGetNumColors");
        Check(GXPaletteGetColors(palette, &colors), "GXPaletteGetColors");
        ByteWriter out;
        out.Count(count);
        for (uint64_t i = 0; i < count; ++i)
            out.U32(colors[i]);
        paletteNumber = Store(ObjectKind::Palette, ObjectKind::Palette, out);
    }
    const uint64_t pixelBytes = RowBytes(format, size.width) * size.height;
    constexpr const char* kTooLarge = "cannot be recorded: its bitmaps are too large";
    if (pixelBytes > m_mostPixelBytes)
        throw Error(kTooLarge); // before a copy is made
    ByteWriter out;
    out.U32(size.width);
    out.U32(size.height);
    out.U32(format);
    out.F32(dpiX);
    out.F32(dpiY);
    out.Count(paletteNumber);
    ForRows(bitmap, [&](const uint8_t* row, size_t bytes) { out.Raw(row, bytes); });
    const size_t before = m_objects.Get().size();
    const uint64_t number = Store(ObjectKind::Bitmap, ObjectKind::Bitmap, out);
    if (m_objects.Get().size() != before)
        m_pixelBytes += pixelBytes;
    if (m_pixelBytes > m_mostPixelBytes)
        throw Error(kTooLarge);
    return number;
}

uint64_t Recorder::Reference(GXBitmap bitmap) {
    const auto surface = m_surfaceOfBitmap.find(bitmap);
    if (surface == m_surfaceOfBitmap.end())
        return NumberOfPixels(bitmap) * 2;
    if (surface->second == 0)
        throw Error("cannot be recorded: the page is used as a bitmap while it is drawn");
    Refresh(surface->second);
    return uint64_t{surface->second} * 2 + kOfSurface;
}

uint64_t Recorder::Reference(GXBrush brush) {
    const auto found = m_brushes.find(brush);
    if (found == m_brushes.end())
        throw Error("cannot be recorded: a brush was made without the recorder");
    const BrushNote& note = found->second;
    ByteWriter out;
    switch (note.kind) {
    case ObjectKind::SolidBrush:
        Put(out, note.color);
        break;
    case ObjectKind::SolidBrushARGB:
        out.U32(note.argb);
        break;
    case ObjectKind::GradientBrush:
        out.Count(Number(note.gradient));
        out.F32(note.opacity);
        PutOptional(out, Pointer(note.matrix));
        break;
    default: {
        const uint64_t reference = Reference(note.bitmap);
        out.Count(reference / 2);
        out.F32(note.opacity);
        PutOptional(out, Pointer(note.options));
        PutOptional(out, Pointer(note.matrix));
        if (reference % 2 == kOfSurface) {
            const auto [entry, isNew] = m_surfaceBrushes.try_emplace(out.Text(), m_surfaceBrushCount + 1);
            if (isNew) {
                ++m_surfaceBrushCount;
                m_commands.U8(static_cast<uint8_t>(Op::SurfaceBrush));
                m_commands.Append(out);
            }
            return entry->second * 2 + kOfSurface;
        }
    }
    }
    return Store(ObjectKind::SolidBrush, note.kind, out) * 2;
}

void Recorder::Refresh(uint32_t number) {
    Surface& surface = m_surfaces[number];
    if (surface.painting)
        return;
    const uint32_t checksum = ChecksumOf(surface.bitmap);
    if (surface.drawn && checksum == surface.checksum)
        return;
    const uint64_t pixels = NumberOfPixels(surface.bitmap);
    m_commands.U8(static_cast<uint8_t>(Op::SurfacePixels));
    m_commands.Count(number);
    m_commands.Count(pixels);
    surface.drawn = true;
    surface.checksum = checksum;
}

uint32_t Recorder::SurfaceOf(GXRenderTarget target) const {
    const auto found = m_targets.find(target);
    if (found == m_targets.end())
        throw Error("cannot be recorded: a target was made without the recorder");
    return found->second;
}

void Recorder::Select(uint32_t surface) {
    if (surface == m_selected)
        return;
    m_commands.U8(static_cast<uint8_t>(Op::Select));
    m_commands.Count(surface);
    m_selected = surface;
}

void Recorder::AfterCommand(Op op, Surface& surface) {
    if (op == Op::BeginPaint)
        surface.painting = true;
    if (op != Op::EndPaint)
        return;
    surface.painting = false;
    if (surface.bitmap != nullptr && &surface != m_surfaces.data()) {
        surface.drawn = true;
        surface.checksum = ChecksumOf(surface.bitmap);
    }
}

Bytes Recorder::File() const { return Pack(Body()); }

Bytes Recorder::Body() const {
    if (!m_failure.empty())
        throw Error(m_failure);
    if (m_surfaces.empty())
        throw Error("nothing was drawn");
    ByteWriter body;
    body.Append(m_page);
    body.Append(m_objects);
    body.U8(static_cast<uint8_t>(ObjectKind::End));
    body.Append(m_commands);
    body.U8(static_cast<uint8_t>(Op::End));
    return body.Get();
}

} // namespace Gxr
