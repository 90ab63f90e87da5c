// SPDX-License-Identifier: MIT
// Collects the calls of one page. Objects are stored when a command first uses them, and once: geometries and bitmaps
// by what they hold at that moment, so that equal ones are shared and changed ones are stored anew.
//
// What a page cannot be recorded with (an object made behind the recorder's back, memory) is remembered and told by
// Save; drawing goes on.
#pragma once

#include "Arguments.h"
#include "Handle.h"

#include <map>
#include <optional>
#include <unordered_map>

namespace Gxr {

class Recorder {
public:
    // What would take bitmaps of more than `mostPixelBytes` cannot be recorded: they are copied several times.
    explicit Recorder(uint64_t mostPixelBytes = UINT64_MAX) : m_mostPixelBytes(mostPixelBytes) {}
    ~Recorder();
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;

    // `bitmap` is what the target draws into, null when it is no bitmap. The first target is the page; what lies on it
    // before the first call is not recorded, nor on any other: start with Clear.
    void NoteTarget(GXRenderTarget target, GXBitmap bitmap) noexcept;
    void NoteSolid(GXBrush brush, const GXColor& color) noexcept;
    void NoteSolidARGB(GXBrush brush, uint32_t argb) noexcept;
    void NoteBitmapBrush(GXBrush brush, GXBitmap bitmap, float opacity, const GXBitmapBrushOptions* options,
                         const GXMatrix* matrix) noexcept;
    void NoteGradientBrush(GXBrush brush, GXGradient gradient, float opacity, const GXMatrix* matrix) noexcept;
    void NoteGradient(GXGradient gradient, const GXLinearGradientDesc& desc) noexcept;
    void NoteGradient(GXGradient gradient, const GXRadialGradientDesc& desc) noexcept;
    void NoteMesh(GXGradient gradient, const GXTriMeshVertex* vertices, size_t count, uint32_t background) noexcept;
    void NoteFontFace(GXFontFace face, const uint16_t* name, uint32_t flags, float size) noexcept;
    void Forget(GXBitmap bitmap) noexcept;

    // A call on a target that has succeeded.
    template <class... P> void Command(Op op, GXRenderTarget target, P... arguments) noexcept {
        Attempt([&] {
            const uint32_t surface = SurfaceOf(target);
            ByteWriter command;
            command.U8(static_cast<uint8_t>(op));
            (PutArgument(command, arguments), ...);
            Select(surface);
            m_commands.Append(command);
            AfterCommand(op, m_surfaces[surface]);
        });
    }

    // The file so far. Throws Error when something could not be recorded.
    Bytes File() const;
    // The same before it is packed, for Recording::FromBody.
    Bytes Body() const;

private:
    struct Surface {
        GXBitmap bitmap = nullptr; // kept
        bool painting = false;
        bool drawn = false;
        uint32_t checksum = 0; // of the pixels when painting ended
    };
    struct BrushNote {
        ObjectKind kind = ObjectKind::End;
        GXColor color{};
        uint32_t argb = 0;
        GXBitmap bitmap = nullptr; // kept by the brush, which is kept
        GXGradient gradient = nullptr;
        float opacity = 1.0f;
        std::optional<GXBitmapBrushOptions> options;
        std::optional<GXMatrix> matrix;
    };
    // An object as it stands in the file, numbered when it is first used.
    struct Encoded {
        ObjectKind kind;
        ByteWriter bytes;
    };

    template <class Work> void Attempt(Work&& work) noexcept;
    void Fail(const char* reason) noexcept;
    template <class H> void Keep(H handle);

    void PutArgument(ByteWriter& out, float v) { Put(out, v); }
    void PutArgument(ByteWriter& out, uint32_t v) { Put(out, v); }
    void PutArgument(ByteWriter& out, uint8_t v) { Put(out, v); }
    void PutArgument(ByteWriter& out, const uint16_t* text) { PutText(out, text); }
    template <class T> void PutArgument(ByteWriter& out, const T* record) { PutOptional(out, record); }
    void PutArgument(ByteWriter& out, GXGeometry v) { out.Count(v == nullptr ? 0 : Number(v)); }
    void PutArgument(ByteWriter& out, GXGradient v) { out.Count(v == nullptr ? 0 : Number(v)); }
    void PutArgument(ByteWriter& out, GXFontFace v) { out.Count(v == nullptr ? 0 : Number(v)); }
    void PutArgument(ByteWriter& out, GXBitmap v) { out.Count(v == nullptr ? 0 : Reference(v)); }
    void PutArgument(ByteWriter& out, GXBrush v) { out.Count(v == nullptr ? 0 : Reference(v)); }

    // The number of an object in its list, from 1.
    uint64_t Number(GXGeometry geometry);
    uint64_t Number(GXGradient gradient);
    uint64_t Number(GXFontFace face);
    uint64_t NumberOfPixels(GXBitmap bitmap);
    // Numbers of two lists, see kOfSurface.
    uint64_t Reference(GXBitmap bitmap);
    uint64_t Reference(GXBrush brush);
    // Stores an object that is not stored yet.
    uint64_t Store(ObjectKind list, ObjectKind kind, const ByteWriter& bytes);

    uint32_t SurfaceOf(GXRenderTarget target) const;
    void Select(uint32_t surface);
    void AfterCommand(Op op, Surface& surface);
    // Stores what other means than drawing left on a surface.
    void Refresh(uint32_t number);

    ByteWriter m_objects, m_commands;
    std::map<ObjectKind, std::unordered_map<std::string, uint64_t>> m_stored; // by list
    std::vector<Surface> m_surfaces;
    std::unordered_map<GXRenderTarget, uint32_t> m_targets;
    std::unordered_map<GXBitmap, uint32_t> m_surfaceOfBitmap;
    std::unordered_map<GXBrush, BrushNote> m_brushes;
    std::unordered_map<GXGradient, Encoded> m_gradients;
    std::unordered_map<GXFontFace, Encoded> m_faces;
    std::unordered_map<std::string, uint64_t> m_surfaceBrushes;
    std::vector<void*> m_kept;
    ByteWriter m_page;
    uint64_t m_surfaceBrushCount = 0;
    const uint64_t m_mostPixelBytes;
    uint64_t m_pixelBytes = 0; // of the bitmaps that are stored
    uint32_t m_selected = 0;
    std::string m_failure;
};

template <class Work> void Recorder::Attempt(Work&& work) noexcept {
    try {
        if (m_failure.empty())
            work();
    } catch (const std::exception& failure) {
        Fail(failure.what());
    }
}

} // namespace Gxr
