// SPDX-License-Identifier: MIT
// The handle records behind the opaque pointers of the C interface. A record is one of several owners of its object.
#pragma once

#include <atomic>
#include <memory>
#include <utility>

#include "GX/GX.h"
#include "Regions/Region.h"

namespace Graphics {
class Bitmap;
class Brush;
class Font;
class Geometry;
class Gradient;
class Palette;
class RenderTarget;
} // namespace Graphics

/// Base of all records: a virtual destructor and a count that starts at 1.
class GXObjBase {
public:
    GXObjBase() noexcept = default;
    GXObjBase(const GXObjBase&) = delete;
    GXObjBase& operator=(const GXObjBase&) = delete;
    virtual ~GXObjBase() = default;

    void Acquire() noexcept { m_count.fetch_add(1, std::memory_order_relaxed); }
    void Release() noexcept {
        if (m_count.fetch_sub(1, std::memory_order_acq_rel) == 1) {
            delete this;
        }
    }

private:
    std::atomic<uint32_t> m_count{1};
};

/// A record that shares an engine object.
template <class T> class ImplementationHolder : public GXObjBase {
public:
    using Object = T;
    explicit ImplementationHolder(std::shared_ptr<T> shared) noexcept : object(std::move(shared)) {}
    const std::shared_ptr<T> object;
};

// Inheritance is single, so the base has the record's address: a handle converts to GXObjBase* without knowing its
// kind.
struct GXBitmapRec_ final : ImplementationHolder<Graphics::Bitmap> {
    using ImplementationHolder::ImplementationHolder;
};
struct GXBrushRec_ final : ImplementationHolder<const Graphics::Brush> {
    using ImplementationHolder::ImplementationHolder;
};
struct GXFontFaceRec_ final : ImplementationHolder<const Graphics::Font> {
    using ImplementationHolder::ImplementationHolder;
};
struct GXGeometryRec_ final : ImplementationHolder<Graphics::Geometry> {
    using ImplementationHolder::ImplementationHolder;
};
struct GXGradientRec_ final : ImplementationHolder<const Graphics::Gradient> {
    using ImplementationHolder::ImplementationHolder;
};
struct GXPaletteRec_ final : ImplementationHolder<const Graphics::Palette> {
    using ImplementationHolder::ImplementationHolder;
};
/// A region is held by value: the record is its only owner, and copies share their large parts.
struct GXRegionRec_ final : GXObjBase {
    explicit GXRegionRec_(Graphics::Region held) noexcept : region(std::move(held)) {}
    Graphics::Region region;
};
struct GXRenderTargetRec_ final : ImplementationHolder<Graphics::RenderTarget> {
    using ImplementationHolder::ImplementationHolder;
};
