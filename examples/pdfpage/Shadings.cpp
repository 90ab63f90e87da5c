// SPDX-License-Identifier: MIT
#include "Shadings.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace PdfPage {
namespace {

using Color = std::array<float, 4>; // red, green, blue, alpha from 0 to 255

uint32_t Pack(const Color& c) {
    // Rounded; the sum is exact in double.
    const auto channel = [](float v) { return static_cast<uint32_t>(double(std::clamp(v, 0.0f, 255.0f)) + 0.5); };
    return channel(c[3]) << 24 | channel(c[0]) << 16 | channel(c[1]) << 8 | channel(c[2]);
}

Color Convert(fz_context* ctx, fz_colorspace* space, const float* value, float alpha, fz_color_params params) {
    float rgb[FZ_MAX_COLORS] = {0.0f, 0.0f, 0.0f};
    if (space)
        Try(ctx, [&] { fz_convert_color(ctx, space, value, fz_device_rgb(ctx), rgb, nullptr, params); });
    return {rgb[0] * 255.0f, rgb[1] * 255.0f, rgb[2] * 255.0f, alpha * 255.0f};
}

std::array<Color, 256> FunctionColors(fz_context* ctx, const fz_shade& shade, fz_color_params params) {
    std::array<Color, 256> colors;
    const int n = shade.colorspace ? fz_colorspace_n(ctx, shade.colorspace) : 0;
    for (size_t i = 0; i < colors.size(); ++i)
        colors[i] = Convert(ctx, shade.colorspace, shade.function[i], shade.function[i][n], params);
    return colors;
}

// Drops every sample that lies within `kTolerance` of the line between the stops kept, in one pass: while a run grows,
// each channel keeps the interval of slopes that pass all samples so far ("swinging door").
std::vector<GXGradientStop> Stops(const std::array<Color, 256>& colors) {
    constexpr float kTolerance = 0.6f;
    std::vector<GXGradientStop> stops;
    const auto add = [&](size_t i) { stops.push_back({static_cast<float>(i) / 255.0f, Pack(colors[i])}); };
    add(0);
    size_t anchor = 0;
    while (anchor < 255) {
        Color low, high;
        low.fill(-1e9f);
        high.fill(1e9f);
        size_t last = anchor + 1;
        for (size_t i = anchor + 1; i < 256; ++i) {
            const float run = static_cast<float>(i - anchor);
            bool fits = true;
            for (size_t k = 0; k < 4; ++k) {
                const float slope = (colors[i][k] - colors[anchor][k]) / run;
                fits = fits && slope >= low[k] && slope <= high[k];
                low[k] = std::max(low[k], slope - kTolerance / run);
                high[k] = std::min(high[k], slope + kTolerance / run);
            }
            if (fits)
                last = i;
            bool open = true;
            for (size_t k = 0; k < 4; ++k)
                open = open && low[k] <= high[k];
            if (!open)
                break;
        }
        add(last);
        anchor = last;
    }
    return stops;
}

struct Vertex {
    fz_point at;
    Color color;
    float t; // the function's argument, 0 to 1
};

// Receives the triangles of fz_process_shade.
struct Collector {
    const fz_shade* shade;
    fz_color_params params;
    const std::array<Color, 256>* colors; // null without a function
    std::vector<GXTriMeshVertex> vertices;
    bool failed = false;

    Color At(float t) const {
        const float position = std::clamp(t, 0.0f, 1.0f) * 255.0f;
        const size_t i = std::min(static_cast<size_t>(position), size_t{254});
        const float f = position - static_cast<float>(i);
        Color c;
        for (size_t k = 0; k < 4; ++k)
            c[k] = (*colors)[i][k] + f * ((*colors)[i + 1][k] - (*colors)[i][k]);
        return c;
    }

    // Whether colours along the edge stray from the straight line between its ends.
    bool Bends(const Vertex& a, const Vertex& b) const {
        // The squares are exact in double.
        const double dx = a.at.x - b.at.x, dy = a.at.y - b.at.y;
        if (std::fabs(a.t - b.t) < 1.0f / 255.0f || static_cast<float>(std::sqrt(dx * dx + dy * dy)) < 1.5f)
            return false;
        for (const float f : {0.25f, 0.5f, 0.75f}) {
            const Color there = At(a.t + f * (b.t - a.t));
            for (size_t k = 0; k < 4; ++k)
                if (std::fabs(there[k] - (a.color[k] + f * (b.color[k] - a.color[k]))) > 2.0f)
                    return true;
        }
        return false;
    }
    Vertex Middle(const Vertex& a, const Vertex& b) const {
        const float t = (a.t + b.t) / 2;
        return {{(a.at.x + b.at.x) / 2, (a.at.y + b.at.y) / 2}, At(t), t};
    }

    void Add(const Vertex& a, const Vertex& b, const Vertex& c, int depth) {
        if (colors && depth > 0) {
            if (Bends(a, b))
                return Split(a, b, c, depth);
            if (Bends(b, c))
                return Split(b, c, a, depth);
            if (Bends(c, a))
                return Split(c, a, b, depth);
        }
        for (const Vertex* v : {&a, &b, &c})
            vertices.push_back({v->at.x, v->at.y, Pack(v->color)});
    }
    void Split(const Vertex& a, const Vertex& b, const Vertex& apex, int depth) {
        const Vertex middle = Middle(a, b);
        Add(a, middle, apex, depth - 1);
        Add(middle, b, apex, depth - 1);
    }
};

void Prepare(fz_context* ctx, void* arg, fz_vertex* v, const float* c) {
    const auto& collector = *static_cast<Collector*>(arg);
    if (collector.colors) {
        v->c[0] = c[0];
        return;
    }
    const Color color = Convert(ctx, collector.shade->colorspace, c, 1.0f, collector.params);
    std::copy(color.begin(), color.end(), v->c);
}

void Process(fz_context*, void* arg, fz_vertex* a, fz_vertex* b, fz_vertex* c) {
    auto& collector = *static_cast<Collector*>(arg);
    const auto vertex = [&](const fz_vertex& v) {
        if (collector.colors) {
            // The vertex has the function's argument, the samples run over the range of the decode array.
            const auto& mesh = collector.shade->u.m;
            const float range = mesh.c1[0] - mesh.c0[0];
            const float t = range != 0.0f ? std::clamp((v.c[0] - mesh.c0[0]) / range, 0.0f, 1.0f) : 0.0f;
            return Vertex{v.p, collector.At(t), t};
        }
        return Vertex{v.p, {v.c[0], v.c[1], v.c[2], v.c[3]}, 0.0f};
    };
    try {
        if (!collector.failed)
            collector.Add(vertex(*a), vertex(*b), vertex(*c), 12);
    } catch (...) {
        collector.failed = true;
    }
}

uint32_t Background(fz_context* ctx, const fz_shade& shade, fz_color_params params) {
    return shade.use_background ? Pack(Convert(ctx, shade.colorspace, shade.background, 1.0f, params)) : 0;
}

bool OneCircleInsideTheOther(const fz_shade& shade) {
    const auto& c = shade.u.l_or_r.coords;
    return std::hypot(c[1][0] - c[0][0], c[1][1] - c[0][1]) < std::fabs(c[1][2] - c[0][2]);
}

} // namespace

void Shadings::Clear() {
    for (auto& entry : m_gradients)
        fz_drop_shade(m_ctx, entry.first);
    m_gradients.clear();
}

Shadings::Result Shadings::Gradient(Report& report, fz_shade* shade, const fz_matrix& matrix, const fz_rect& visible,
                                    fz_color_params params) {
    Result result;
    if (shade->type != FZ_LINEAR && shade->type != FZ_RADIAL) {
        result.owned = Mesh(report, shade, matrix, visible, params);
        result.gradient = result.owned.Get();
        result.devicePixels = true;
        result.background = Background(m_ctx, *shade, params);
        return result;
    }
    if (shade->type == FZ_RADIAL && !OneCircleInsideTheOther(*shade)) {
        result.owned = Cone(report, *shade, matrix, visible, params);
        result.gradient = result.owned.Get();
        result.background = Background(m_ctx, *shade, params);
        return result;
    }
    auto found = m_gradients.find(shade);
    if (found == m_gradients.end()) {
        found = m_gradients.emplace(shade, AlongLine(report, *shade, params)).first;
        fz_keep_shade(m_ctx, shade);
    }
    result.gradient = found->second.Get();
    result.sampledAtCorners = true;
    return result;
}

Handle<GXGradient> Shadings::AlongLine(Report& report, const fz_shade& shade, fz_color_params params) {
    std::vector<GXGradientStop> stops = Stops(FunctionColors(m_ctx, shade, params));
    const auto& line = shade.u.l_or_r;
    GXPoint start{line.coords[0][0], line.coords[0][1]}, end{line.coords[1][0], line.coords[1][1]};
    float startRadius = line.coords[0][2], endRadius = line.coords[1][2];
    uint8_t extendStart = line.extend[0] != 0, extendEnd = line.extend[1] != 0;
    const uint32_t background = Background(m_ctx, shade, params);
    Handle<GXGradient> gradient;
    if (shade.type == FZ_LINEAR) {
        const GXLinearGradientDesc desc{stops.data(), stops.size(), start, end, extendStart, extendEnd, background};
        report.Check(m_calls.CreateGradientLinear(&desc, gradient.Out()), "GXCreateGradientLinear");
        return gradient;
    }
    if (startRadius > endRadius) {
        // Of the two circles through a point the library takes the later one where neither lies between start and end.
        // That is the one with a positive radius only when the radius grows: turn the gradient round.
        std::swap(start, end);
        std::swap(startRadius, endRadius);
        std::swap(extendStart, extendEnd);
        std::reverse(stops.begin(), stops.end());
        for (GXGradientStop& stop : stops)
            stop.offset = 1.0f - stop.offset;
    }
    const GXRadialGradientDesc desc{stops.data(), stops.size(), start,     startRadius, end,
                                    endRadius,    extendStart,  extendEnd, background};
    report.Check(m_calls.CreateGradientRadial(&desc, gradient.Out()), "GXCreateGradientRadial");
    return gradient;
}

// The circle at s has centre c0 + s d and radius r0 + s dr; a point has the colour of the last circle through it.
// Between two values of s the circles sweep a ring of triangles. Rings come in the order of s; inside a ring the
// triangles go from the leading side (in the direction of d) to the trailing one, which meets each point at a later s.
Handle<GXGradient> Shadings::Cone(Report& report, const fz_shade& shade, const fz_matrix& matrix,
                                  const fz_rect& visible, fz_color_params params) {
    constexpr float kFar = 1000.0f;
    const auto& line = shade.u.l_or_r;
    const float x0 = line.coords[0][0], y0 = line.coords[0][1], r0 = line.coords[0][2];
    const float dx = line.coords[1][0] - x0, dy = line.coords[1][1] - y0, dr = line.coords[1][2] - r0;
    const float distance = std::hypot(dx, dy);
    fz_matrix inverse;
    if (!(distance > 0.0f) || fz_try_invert_matrix(&inverse, matrix))
        return {};

    // Beyond these s no circle reaches the visible part, all of which lies within `reach` of the start's centre.
    const fz_rect seen = fz_transform_rect(visible, inverse);
    const float reach = std::hypot(std::max(std::fabs(seen.x0 - x0), std::fabs(seen.x1 - x0)),
                                   std::max(std::fabs(seen.y0 - y0), std::fabs(seen.y1 - y0)));
    const float away = std::min(kFar, (r0 + reach) / std::max(distance - std::fabs(dr), distance / kFar)) + 1.0f;
    float first = line.extend[0] ? -away : 0.0f, last = line.extend[1] ? away : 1.0f;
    if (dr > 0.0f)
        first = std::max(first, -r0 / dr); // where the radius is 0
    if (dr < 0.0f)
        last = std::min(last, -r0 / dr);
    last = std::max(last, 1.0f);

    std::vector<GXGradientStop> rings = Stops(FunctionColors(m_ctx, shade, params));
    if (first < 0.0f)
        rings.insert(rings.begin(), {first, rings.front().color});
    if (last > 1.0f)
        rings.push_back({last, rings.back().color});

    // Chords stay within a fifth of a pixel of the widest circle.
    const float widest =
        std::max(std::fabs(r0 + first * dr), std::fabs(r0 + last * dr)) * fz_matrix_max_expansion(matrix);
    const int half = static_cast<int>(std::clamp(1.6f * std::sqrt(std::min(widest, 1e6f) / 0.4f), 8.0f, 250.0f)) + 1;
    const float heading = std::atan2(dy, dx);
    const auto vertex = [&](const GXGradientStop& ring, int k) {
        const float angle = heading + 3.14159265f * static_cast<float>(k) / static_cast<float>(half);
        const float r = std::max(0.0f, r0 + ring.offset * dr);
        return GXTriMeshVertex{x0 + ring.offset * dx + r * std::cos(angle), y0 + ring.offset * dy + r * std::sin(angle),
                               ring.color};
    };
    std::vector<GXTriMeshVertex> vertices;
    vertices.reserve(rings.size() * static_cast<size_t>(half) * 12);
    for (size_t i = 0; i + 1 < rings.size(); ++i)
        for (int k = 0; k < half; ++k)
            for (const int side : {1, -1}) {
                const GXTriMeshVertex a = vertex(rings[i], side * k), b = vertex(rings[i], side * (k + 1));
                const GXTriMeshVertex c = vertex(rings[i + 1], side * k), d = vertex(rings[i + 1], side * (k + 1));
                vertices.insert(vertices.end(), {a, b, c, b, d, c});
            }
    Handle<GXGradient> gradient;
    report.Check(m_calls.CreateGradientTriMesh(vertices.data(), vertices.size(), 0, gradient.Out()),
                 "GXCreateGradientTriMesh");
    return gradient;
}

Handle<GXGradient> Shadings::Mesh(Report& report, fz_shade* shade, const fz_matrix& matrix, const fz_rect& visible,
                                  fz_color_params params) {
    std::array<Color, 256> colors;
    if (shade->use_function)
        colors = FunctionColors(m_ctx, *shade, params);
    Collector collector{shade, params, shade->use_function ? &colors : nullptr, {}};
    Try(m_ctx, [&] { fz_process_shade(m_ctx, shade, matrix, visible, Prepare, Process, &collector); });
    Handle<GXGradient> gradient;
    if (!collector.vertices.empty() && !collector.failed)
        report.Check(
            m_calls.CreateGradientTriMesh(collector.vertices.data(), collector.vertices.size(), 0, gradient.Out()),
            "GXCreateGradientTriMesh");
    return gradient;
}

} // namespace PdfPage
