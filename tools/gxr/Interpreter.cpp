// SPDX-License-Identifier: MIT
// The commands of a recording.
#include "Interpreter.h"

#include <algorithm>
#include <cmath>
#include <tuple>
#include <utility>

namespace Gxr {
namespace {

GXMatrix Multiply(const GXMatrix& first, const GXMatrix& then) {
    return {first.m00 * then.m00 + first.m01 * then.m10,
            first.m00 * then.m01 + first.m01 * then.m11,
            first.m10 * then.m00 + first.m11 * then.m10,
            first.m10 * then.m01 + first.m11 * then.m11,
            first.m20 * then.m00 + first.m21 * then.m10 + then.m20,
            first.m20 * then.m01 + first.m21 * then.m11 + then.m21};
}

bool IsIdentity(const GXMatrix& m) {
    return m.m00 == 1 && m.m01 == 0 && m.m10 == 0 && m.m11 == 1 && m.m20 == 0 && m.m21 == 0;
}

} // namespace

void Interpreter::Run(GXRenderTarget page, float scale, const Paper* paper) {
    if (!(scale > 0.0f) || !std::isfinite(scale))
        throw Error("the scale is not above 0");
    m_scale = scale;
    m_paper = paper;
    m_filled = false;
    m_surfaces.clear();
    m_surfaceBrushes.clear();
    m_selected = 0;
    m_livePixels = 0;
    m_layers = m_states = 0;
    Surface& first = m_surfaces.emplace_back();
    first.alive = true;
    first.target = page;
    first.width = m_page.width;
    first.height = m_page.height;
    if (m_live)
        Check(GXRenderTargetGetCTM(page, &first.base), "GXRenderTargetGetCTM");
    first.base = Multiply({scale, 0, 0, scale, 0, 0}, first.base);
    try {
        Commands(ByteReader(m_body.data() + m_commandsAt, m_body.size() - m_commandsAt));
    } catch (...) {
        StopPainting();
        throw;
    }
    StopPainting();
    m_surfaceBrushes.clear();
    m_surfaces.clear();
}

void Interpreter::StopPainting() noexcept {
    for (Surface& surface : m_surfaces) {
        if (m_live && surface.painting)
            GXRenderTargetEndPaint(surface.target);
        surface.painting = false;
    }
}

void Interpreter::Commands(ByteReader in) {
    for (;;) {
        const auto op = static_cast<Op>(in.U8());
        switch (op) {
        case Op::End:
            if (in.Left() != 0)
                throw Error("the recording has something behind its last command");
            return;
        case Op::NewSurface:
            NewSurface(in);
            break;
        case Op::DropSurface:
            DropSurface(in);
            break;
        case Op::Select: {
            const uint64_t number = in.Count();
            SurfaceAt(number);
            m_selected = static_cast<uint32_t>(number);
            break;
        }
        case Op::SurfaceBrush:
            NewSurfaceBrush(in);
            break;
        case Op::SurfacePixels:
            SetSurfacePixels(in);
            break;
#define GXR_CASE(name)                                                                                                 \
    case Op::name:                                                                                                     \
        TargetCall(op, in, &GXRenderTarget##name);                                                                     \
        break;
            GXR_TARGET_CALLS(GXR_CASE)
#undef GXR_CASE
        default:
            throw Error("the recording holds an unknown command");
        }
    }
}

Interpreter::Surface& Interpreter::SurfaceAt(uint64_t number) {
    if (number >= m_surfaces.size() || !m_surfaces[static_cast<size_t>(number)].alive)
        throw Error("the recording uses a surface that is not there");
    return m_surfaces[static_cast<size_t>(number)];
}

GXBitmap Interpreter::Find(uint64_t reference, GXBitmap) const {
    if (reference % 2 != kOfSurface)
        return At(m_bitmaps, reference / 2);
    const uint64_t number = reference / 2;
    // The page has no bitmap of its own.
    if (number == 0 || number >= m_surfaces.size() || !m_surfaces[static_cast<size_t>(number)].alive)
        throw Error("the recording uses a surface that is not there");
    if (m_scale != 1.0f)
        throw Error("the recording draws one of its surfaces as a bitmap, pixel by pixel: it plays at scale 1 alone");
    return m_surfaces[static_cast<size_t>(number)].bitmap.Get();
}

GXBrush Interpreter::Find(uint64_t reference, GXBrush) const {
    if (reference % 2 != kOfSurface)
        return At(m_brushes, reference / 2);
    const uint64_t index = reference / 2 - 1;
    if (reference / 2 == 0 || index >= m_surfaceBrushes.size() ||
        !m_surfaces[m_surfaceBrushes[static_cast<size_t>(index)].surface].alive)
        throw Error("the recording uses a brush that is not there");
    return m_surfaceBrushes[static_cast<size_t>(index)].brush.Get();
}

void Interpreter::NewSurface(ByteReader& in) {
    const PageInfo info = ReadSize(in);
    const uint64_t pixels = uint64_t{info.width} * info.height;
    m_livePixels += pixels;
    if (m_livePixels > kMaxLivePages * m_page.width * m_page.height)
        throw Error("the recording keeps too many surfaces at a time");
    Surface& surface = m_surfaces.emplace_back();
    surface.alive = true;
    surface.width = info.width;
    surface.height = info.height;
    surface.base = {m_scale, 0, 0, m_scale, 0, 0};
    if (!m_live)
        return;
    const auto scaled = [&](uint32_t side) {
        return m_scale == 1.0f ? side : static_cast<uint32_t>(std::ceil(static_cast<double>(side) * m_scale));
    };
    const GXBitmapDesc desc{scaled(info.width), scaled(info.height), info.format, info.dpiX, info.dpiY};
    Check(GXCreateBitmap(&desc, surface.bitmap.Out()), "GXCreateBitmap");
    Check(GXBitmapColorFill(surface.bitmap.Get(), nullptr, 0), "GXBitmapColorFill");
    Check(GXCreateRenderTargetBitmap(surface.bitmap.Get(), surface.owned.Out()), "GXCreateRenderTargetBitmap");
    surface.target = surface.owned.Get();
}

void Interpreter::DropSurface(ByteReader& in) {
    const uint64_t number = in.Count();
    Surface& surface = SurfaceAt(number);
    if (number == 0 || surface.painting)
        throw Error("the recording drops a surface that is in use");
    m_livePixels -= uint64_t{surface.width} * surface.height;
    for (SurfaceBrush& brush : m_surfaceBrushes)
        if (brush.surface == number)
            brush.brush.Reset();
    surface = {};
    if (m_selected == number)
        m_selected = 0;
}

void Interpreter::NewSurfaceBrush(ByteReader& in) {
    const uint64_t number = in.Count();
    if (number == 0)
        throw Error("the recording uses the page as a bitmap");
    const GXBitmap bitmap = SurfaceAt(number).bitmap.Get();
    const float opacity = in.F32();
    const Slot<const GXBitmapBrushOptions*> options(in);
    const Slot<const GXMatrix*> matrix(in);
    SurfaceBrush& brush = m_surfaceBrushes.emplace_back();
    brush.surface = static_cast<uint32_t>(number);
    if (!m_live)
        return;
    const GXMatrix* place = matrix.Get();
    GXMatrix shrunk{1.0f / m_scale, 0, 0, 1.0f / m_scale, 0, 0};
    if (m_scale != 1.0f) {
        if (place != nullptr)
            shrunk = Multiply(shrunk, *place);
        place = &shrunk;
    }
    Check(GXCreateBrushBitmap(bitmap, opacity, options.Get(), place, brush.brush.Out()), "GXCreateBrushBitmap");
}

void Interpreter::SetSurfacePixels(ByteReader& in) {
    Surface& surface = SurfaceAt(in.Count());
    const GXBitmap source = At(m_bitmaps, in.Count());
    if (surface.painting || &surface == m_surfaces.data())
        throw Error("the recording changes a surface that is in use");
    if (!m_live)
        return;
    if (m_scale == 1.0f) {
        Check(GXBitmapCopyFromBitmap(surface.bitmap.Get(), nullptr, source, nullptr), "GXBitmapCopyFromBitmap");
        return;
    }
    const GXRect whole{0, 0, static_cast<float>(surface.width) * m_scale, static_cast<float>(surface.height) * m_scale};
    Check(GXRenderTargetBeginPaint(surface.target), "GXRenderTargetBeginPaint");
    surface.painting = true; // ended also on the way out of a failure
    Check(GXRenderTargetClear(surface.target, 0), "GXRenderTargetClear");
    Check(GXRenderTargetStretchBitmap(surface.target, source, &whole, nullptr, 1.0f, GXInterpolationLinear),
          "GXRenderTargetStretchBitmap");
    surface.painting = false;
    Check(GXRenderTargetEndPaint(surface.target), "GXRenderTargetEndPaint");
}

template <class... P>
void Interpreter::TargetCall(Op op, ByteReader& in, GXResult (*call)(GXRenderTarget, P...) noexcept) {
    const std::tuple<Slot<P>...> arguments{Slot<P>(in, *this)...};
    Surface& surface = SurfaceAt(m_selected);
    if (m_live) {
        Place(surface);
        const GXResult result = std::apply(
            [&](const auto&... argument) {
                if constexpr (std::is_same_v<std::tuple<P...>, std::tuple<const GXMatrix*>>) {
                    if (op == Op::SetCTM)
                        return SetMatrix(surface, argument.Get()...);
                }
                return call(surface.target, argument.Get()...);
            },
            arguments);
        Check(result, OpName(op));
    }
    Follow(op, surface);
}

// Painting starts on the identity; what the recording calls that is here the matrix of the whole surface.
void Interpreter::Place(Surface& surface) {
    if (surface.placed)
        return;
    surface.placed = true;
    if (!IsIdentity(surface.base))
        Check(GXRenderTargetSetCTM(surface.target, &surface.base), "GXRenderTargetSetCTM");
}

GXResult Interpreter::SetMatrix(const Surface& surface, const GXMatrix* matrix) const {
    if (IsIdentity(surface.base))
        return GXRenderTargetSetCTM(surface.target, matrix);
    const GXMatrix placed = matrix != nullptr ? Multiply(*matrix, surface.base) : surface.base;
    return GXRenderTargetSetCTM(surface.target, &placed);
}

// Each bracket has a clip of its own, and the target's pixels stay between them.
void Interpreter::LayPaper(const Surface& surface) {
    const bool fill = !std::exchange(m_filled, true);
    if (fill)
        Check(GXRenderTargetClear(surface.target, m_paper->around), "GXRenderTargetClear");
    Check(GXRenderTargetSetCTM(surface.target, nullptr), "GXRenderTargetSetCTM");
    Check(GXRenderTargetClipRect(surface.target, &m_paper->area), "GXRenderTargetClipRect");
    if (fill)
        Check(GXRenderTargetClear(surface.target, m_paper->color), "GXRenderTargetClear");
    Check(GXRenderTargetSetCTM(surface.target, &surface.base), "GXRenderTargetSetCTM");
}

void Interpreter::Follow(Op op, Surface& surface) {
    const auto close = [&](Op opened, size_t& count) {
        if (surface.open.empty() || surface.open.back() != opened)
            throw Error("the recording ends a state or a layer that it did not begin");
        surface.open.pop_back();
        --count;
    };
    const auto opened = [](const Surface& s, Op what) {
        return static_cast<size_t>(std::count(s.open.begin(), s.open.end(), what));
    };
    switch (op) {
    case Op::BeginPaint:
        if (surface.painting)
            throw Error("the recording begins to paint twice");
        surface.painting = true;
        if (m_live && &surface == m_surfaces.data() && m_paper != nullptr)
            LayPaper(surface);
        break;
    case Op::EndPaint:
        if (!surface.painting)
            throw Error("the recording ends painting that it did not begin");
        m_states -= opened(surface, Op::PushState);
        m_layers -= opened(surface, Op::BeginLayer);
        surface.open.clear();
        surface.painting = surface.placed = false;
        break;
    case Op::PushState:
        surface.open.push_back(op);
        if (++m_states > kMaxStates)
            throw Error("the recording saves too many states");
        break;
    case Op::BeginLayer:
        surface.open.push_back(op);
        if (++m_layers > kMaxLayers)
            throw Error("the recording opens too many layers");
        break;
    case Op::PopState:
        close(Op::PushState, m_states);
        break;
    case Op::EndLayer:
        // States left open inside end with their layer.
        while (!surface.open.empty() && surface.open.back() == Op::PushState)
            close(Op::PushState, m_states);
        close(Op::BeginLayer, m_layers);
        break;
    default:
        break;
    }
}

} // namespace Gxr
