// SPDX-License-Identifier: MIT
// How each transparency group and each soft mask of a display list is drawn, decided by one pass over the list before
// anything is drawn.
//
// A span is a group, from begin_group to end_group, or what a soft mask covers, from end_mask to its pop_clip: that is a
// non-isolated group whose content is masked as a whole. What a span draws becomes one object of the span around it.
#pragma once

#include "MuPdf.h"

#include <utility>
#include <vector>

namespace PdfPage {

enum class Road {
    // The content goes straight to the target around it: a group at opacity 1 in mode Normal without mask that is not
    // isolated, which is what such a group means, or that blends nothing with what is below, where source over, being
    // associative, gives the same.
    Plain,
    // The content is one object: it is drawn by itself in the group's blend mode, or under the mask.
    State,
    // The content is drawn on a transparent bitmap of its own, where blends are exact, which is then painted as one
    // object: an isolated group, or one in which nothing is blended with what is below.
    Bitmap,
    // A layer of the library: groups that blend with what is below as a whole, knockout groups, and all groups inside
    // those, which need shape and opacity apart.
    Layer
};

struct Span {
    Road road = Road::Layer;
    fz_rect bounds = fz_infinite_rect; // of what the content can change, in device pixels
};

// The spans of `list` in the order of their begin_group and begin_mask under this matrix and scissor. Those inside
// tiles and type 3 glyphs are not counted. Empty when memory runs out.
std::vector<Span> SurveyGroups(fz_context* ctx, fz_display_list* list, const fz_matrix& ctm, const fz_rect& scissor);

// Hands the spans out again while the list is drawn.
class GroupRoads {
public:
    GroupRoads() = default;
    explicit GroupRoads(std::vector<Span> spans) noexcept : m_spans(std::move(spans)) {}

    // Beyond the end of a survey that was cut short there are layers.
    Span Next() noexcept { return m_next < m_spans.size() ? m_spans[m_next++] : Span{}; }

private:
    std::vector<Span> m_spans;
    size_t m_next = 0;
};

} // namespace PdfPage
