// SPDX-License-Identifier: MIT
// The commands of a recording.
#include "Interpreter.h"

#include "Matrix.h"

#include <algorithm>
#include <cmath>
#include <tuple>
#include <utility>

namespace Gxr {
namespace {

// Says something about certain rows alone: not needed where none of them is drawn.
bool HasPlace(Op op) {
    switch (op) {
    case Op::Clear:
    case Op::FillGeometry:
    case Op::FillTextGeometry:
    case Op::FillRect:
    case Op::FillEllipse:
    case Op::StrokeGeometry:
    case Op::StrokeLine:
    case Op::StrokeRect:
    case Op::StrokeEllipse:
    case Op::ClipGeometry:
    case Op::ClipRect:
    case Op::ClipEllipse:
    case Op::DrawBitmap:
    case Op::StretchBitmap:
    case Op::DrawGradient:
    case Op::FillMask:
    case Op::InvertRect:
    case Op::InvertLine:
    case Op::FillText:
        return true;
    default:
        return false;
    }
}

} // namespace

void Interpreter::Start(float scale) {
    m_scale = scale;
    m_playing = m_filled = false;
    m_watcher = nullptr;
    m_paper = nullptr;
    m_band = nullptr;
    m_surfaces.clear();
    m_surfaceBrushes.clear();
    m_selected = 0;
    m_livePixels = 0;
    m_layers = m_states = m_calls = 0;
    Surface& page = m_surfaces.emplace_back();
    page.alive = true;
    page.width = Page().width;
    page.height = Page().height;
}

void Interpreter::Run(GXRenderTarget page, float scale, const Paper* paper, const Band* band) {
    if (!(scale > 0.0f) || !std::isfinite(scale))
        throw Error("the scale is not above 0");
    Start(scale);
    m_playing = m_objects->AreLive();
    m_paper = paper;
    m_band = band;
    Surface& first = m_surfaces.front();
    first.target = page;
    if (m_playing)
        CheckResult(GXRenderTargetGetCTM(page, &first.base), "GXRenderTargetGetCTM");
    first.base = Multiply({scale, 0, 0, scale, 0, 0}, first.base);
    try {
        Commands(m_objects->Commands());
    } catch (...) {
        StopPainting();
        throw;
    }
    StopPainting();
    m_surfaceBrushes.clear();
    m_surfaces.clear();
}

void Interpreter::Watch(CommandWatcher& watcher) {
    Start(1.0f);
    m_watcher = &watcher;
    Commands(m_objects->Commands());
}

void Interpreter::StopPainting() noexcept {
    for (Surface& surface : m_surfaces) {
        if (m_playing && surface.painting)
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
        return m_objects->Bitmap(reference / 2);
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
        return m_objects->Brush(reference / 2);
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
    if (m_livePixels > kMaxLivePages * Page().width * Page().height)
        throw Error("the recording keeps too many surfaces at a time");
    Surface& surface = m_surfaces.emplace_back();
    surface.alive = true;
    surface.width = info.width;
    surface.height = info.height;
    surface.base = {m_scale, 0, 0, m_scale, 0, 0};
    if (m_watcher != nullptr)
        m_watcher->OnSurface(info.width, info.height);
    if (!m_playing)
        return;
    const auto scaled = [&](uint32_t side) {
        return m_scale == 1.0f ? side : static_cast<uint32_t>(std::ceil(static_cast<double>(side) * m_scale));
    };
    const GXBitmapDesc desc{scaled(info.width), scaled(info.height), info.format, info.dpiX, info.dpiY};
    CheckResult(GXCreateBitmap(&desc, surface.bitmap.Out()), "GXCreateBitmap");
    // Rows beside the band are neither drawn nor looked at.
    const Rows rows = RowsOf(surface);
    const GXIntRect seen{0, rows.top, static_cast<int32_t>(desc.width),
                         std::min(rows.bottom, static_cast<int32_t>(desc.height))};
    CheckResult(GXBitmapColorFill(surface.bitmap.Get(), &seen, 0), "GXBitmapColorFill");
    CheckResult(GXCreateRenderTargetBitmap(surface.bitmap.Get(), surface.owned.Out()), "GXCreateRenderTargetBitmap");
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
    if (m_watcher != nullptr)
        m_watcher->OnSurfaceBrush(brush.surface, options.Get(), matrix.Get());
    if (!m_playing)
        return;
    const GXMatrix* place = matrix.Get();
    GXMatrix shrunk{1.0f / m_scale, 0, 0, 1.0f / m_scale, 0, 0};
    if (m_scale != 1.0f) {
        if (place != nullptr)
            shrunk = Multiply(shrunk, *place);
        place = &shrunk;
    }
    CheckResult(GXCreateBrushBitmap(bitmap, opacity, options.Get(), place, brush.brush.Out()), "GXCreateBrushBitmap");
}

void Interpreter::SetSurfacePixels(ByteReader& in) {
    Surface& surface = SurfaceAt(in.Count());
    const GXBitmap source = m_objects->Bitmap(in.Count());
    if (surface.painting || &surface == m_surfaces.data())
        throw Error("the recording changes a surface that is in use");
    if (!m_playing)
        return;
    if (m_scale == 1.0f) {
        CheckResult(GXBitmapCopyFromBitmap(surface.bitmap.Get(), nullptr, source, nullptr), "GXBitmapCopyFromBitmap");
        return;
    }
    const GXRect whole{0, 0, static_cast<float>(surface.width) * m_scale, static_cast<float>(surface.height) * m_scale};
    CheckResult(GXRenderTargetBeginPaint(surface.target), "GXRenderTargetBeginPaint");
    surface.painting = true; // ended also on the way out of a failure
    CheckResult(GXRenderTargetClear(surface.target, 0), "GXRenderTargetClear");
    CheckResult(GXRenderTargetStretchBitmap(surface.target, source, &whole, nullptr, 1.0f, GXInterpolationLinear),
                "GXRenderTargetStretchBitmap");
    surface.painting = false;
    CheckResult(GXRenderTargetEndPaint(surface.target), "GXRenderTargetEndPaint");
}

template <class... P>
void Interpreter::TargetCall(Op op, ByteReader& in, GXResult (*call)(GXRenderTarget, P...) noexcept) {
    const std::tuple<Slot<P>...> arguments{Slot<P>(in, *this)...};
    Surface& surface = SurfaceAt(m_selected);
    if (m_watcher != nullptr) {
        SeenCall seen;
        seen.op = op;
        seen.surface = m_selected;
        std::apply([&](const auto&... argument) { (seen.Add(argument), ...); }, arguments);
        m_watcher->OnCall(seen);
    }
    if (m_band != nullptr && m_band->stop != nullptr && m_band->stop->load(std::memory_order_relaxed))
        throw Stopped();
    const bool hidden = IsHidden(op, surface);
    ++m_calls;
    if (m_playing && !hidden) {
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
        CheckResult(result, OpName(op));
    }
    Follow(op, surface);
}

// Painting starts on the identity; what the recording calls that is here the matrix of the whole surface.
void Interpreter::Place(Surface& surface) {
    if (surface.placed)
        return;
    surface.placed = true;
    if (!IsIdentity(surface.base))
        CheckResult(GXRenderTargetSetCTM(surface.target, &surface.base), "GXRenderTargetSetCTM");
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
        CheckResult(GXRenderTargetClear(surface.target, m_paper->around), "GXRenderTargetClear");
    CheckResult(GXRenderTargetSetCTM(surface.target, nullptr), "GXRenderTargetSetCTM");
    CheckResult(GXRenderTargetClipRect(surface.target, &m_paper->area), "GXRenderTargetClipRect");
    if (fill)
        CheckResult(GXRenderTargetClear(surface.target, m_paper->color), "GXRenderTargetClear");
    CheckResult(GXRenderTargetSetCTM(surface.target, &surface.base), "GXRenderTargetSetCTM");
}

// All rows without a band, of surfaces of any height.
Rows Interpreter::RowsOf(const Surface& surface) const {
    const auto number = static_cast<size_t>(&surface - m_surfaces.data());
    return m_band != nullptr ? m_band->surfaces[number] : Rows{0, INT32_MAX};
}

// The matrix may have been set before painting began.
void Interpreter::ClipToBand(const Surface& surface) {
    const Rows rows = RowsOf(surface);
    const bool isPage = &surface == m_surfaces.data();
    const GXRect box{isPage ? static_cast<float>(m_band->left) : -1.0f, static_cast<float>(rows.top),
                     isPage ? static_cast<float>(std::min(m_band->right, static_cast<int32_t>(2 * kMaxSide)))
                            : static_cast<float>(2 * kMaxSide),
                     static_cast<float>(rows.bottom)};
    GXMatrix matrix;
    CheckResult(GXRenderTargetGetCTM(surface.target, &matrix), "GXRenderTargetGetCTM");
    CheckResult(GXRenderTargetSetCTM(surface.target, nullptr), "GXRenderTargetSetCTM");
    CheckResult(GXRenderTargetClipRect(surface.target, &box), "GXRenderTargetClipRect");
    CheckResult(GXRenderTargetSetCTM(surface.target, &matrix), "GXRenderTargetSetCTM");
}

bool Interpreter::IsHidden(Op op, const Surface& surface) const {
    return m_band != nullptr && HasPlace(op) &&
           !m_band->Meets(m_calls, static_cast<size_t>(&surface - m_surfaces.data()));
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
        if (m_playing && m_band != nullptr)
            ClipToBand(surface);
        if (m_playing && &surface == m_surfaces.data() && m_paper != nullptr)
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
