// SPDX-License-Identifier: MIT
// A device that draws nothing keeps a tree of the spans: how many objects each holds, whether one of them is blended
// with what is below the span, and their box. The roads follow from the outermost spans inwards.
#include "GroupRoads.h"

#include <algorithm>
#include <map>

namespace PdfPage {
namespace {

constexpr size_t kNone = static_cast<size_t>(-1);
constexpr unsigned kMany = 2;

struct Node {
    bool isMask = false; // what a soft mask covers; else a group
    bool isolated = false, knockout = false;
    bool blends = false;     // in another mode than Normal
    bool fades = false;      // at an opacity below 1
    bool inKnockout = false; // somewhere inside a knockout group
    bool shaped = false;     // an image mask lies around it: it has to stay one object
    size_t parent = kNone;   // on the same surface

    // Content.
    unsigned objects = 0; // kMany is any number above 1
    unsigned groups = 0, masks = 0;
    bool looksBelow = false; // something is blended, in another mode than Normal, with what is below the span
    fz_rect bounds = fz_empty_rect;
};

struct Open {
    enum class Kind { Clip, ImageMask, Span, MaskContent };
    Kind kind;
    size_t node = kNone;  // of a span; for the content of a mask that of what the mask will cover
    size_t inner = kNone; // the innermost span that this entry is or lies in, on the same surface
    bool shaped = false;  // this entry is or lies in an image mask, on the same surface
};

class Survey {
public:
    explicit Survey(fz_context* ctx) noexcept : m_ctx(ctx) {}
    void SetDevice(fz_device* device) noexcept { m_device = device; }
    void Fail() noexcept { m_failed = true; }
    bool InsideSpan() const noexcept { return m_quiet == 0 && Innermost() != kNone; }

    void Add(const fz_rect& box, unsigned objects) {
        const size_t node = Innermost();
        if (m_quiet > 0 || node == kNone)
            return;
        m_nodes[node].objects = std::min(m_nodes[node].objects + objects, kMany);
        const fz_rect seen = m_device->container_len > 0
                                 ? fz_intersect_rect(box, m_device->container[m_device->container_len - 1].scissor)
                                 : box;
        m_nodes[node].bounds = fz_union_rect(m_nodes[node].bounds, seen);
    }

    void PushClip(Open::Kind kind) {
        if (m_quiet == 0)
            m_open.push_back({kind, kNone, Innermost(), Shaped() || kind == Open::Kind::ImageMask});
    }
    void Pop() {
        if (m_quiet == 0 && !m_open.empty())
            Close();
    }

    void BeginGroup(bool isolated, bool knockout, bool blends, float alpha) {
        if (m_quiet > 0) {
            m_quietBlends |= blends;
            return;
        }
        Node node;
        node.isolated = isolated;
        node.knockout = knockout;
        node.blends = blends;
        node.fades = alpha < 1.0f;
        Begin(node, Open::Kind::Span);
    }
    void BeginMask() {
        Node node;
        node.isMask = true;
        if (m_quiet == 0)
            Begin(node, Open::Kind::MaskContent);
    }
    void EndMask() {
        if (m_quiet > 0 || m_open.empty() || m_open.back().kind != Open::Kind::MaskContent)
            return;
        const size_t node = m_open.back().node;
        m_open.back() = {Open::Kind::Span, node, node, m_nodes[node].shaped};
    }

    // Inside tiles and type 3 glyphs all that counts is whether anything is blended.
    void BeginTile() {
        if (m_quiet++ == 0)
            m_quietBlends = false;
    }
    void EndTile(const fz_rect& box) {
        if (m_quiet == 0 || --m_quiet > 0)
            return;
        Add(box, kMany);
        if (const size_t node = Innermost(); node != kNone)
            m_nodes[node].looksBelow |= m_quietBlends;
    }
    void Type3Glyph(fz_font* font, int gid) {
        constexpr int kMaxDepth = 8; // a damaged font may show itself
        if (gid < 0 || gid >= 256 || m_glyphDepth >= kMaxDepth || (m_quiet == 0 && Innermost() == kNone))
            return;
        const auto [glyph, isNew] = m_glyphBlends.try_emplace({font, gid}, false);
        if (isNew) {
            const bool blends = std::exchange(m_quietBlends, false);
            const int quiet = m_quiet++;
            ++m_glyphDepth;
            Try(m_ctx, [&] { fz_run_t3_glyph(m_ctx, font, gid, fz_identity, m_device); });
            --m_glyphDepth;
            m_quiet = quiet; // whatever a damaged glyph left open
            glyph->second = std::exchange(m_quietBlends, blends);
        }
        if (m_quiet > 0)
            m_quietBlends |= glyph->second;
        else if (const size_t node = Innermost(); node != kNone)
            m_nodes[node].looksBelow |= glyph->second;
    }

    std::vector<Span> Spans() {
        std::vector<Span> spans;
        if (m_failed)
            return spans;
        while (!m_open.empty())
            Close();
        for (const Node& node : m_nodes) {
            const bool underMask =
                node.parent != kNone && m_nodes[node.parent].isMask && spans[node.parent].road == Road::State;
            // A pixel more: the boxes are those of ideal shapes.
            spans.push_back({RoadOf(node, node.shaped || underMask), fz_expand_rect(node.bounds, 1.0f)});
        }
        return spans;
    }

private:
    static Road RoadOf(const Node& node, bool masked) noexcept {
        if (node.knockout || node.inKnockout)
            return Road::Layer;
        const bool oneObject = node.objects == 1 && node.groups == 0 && node.masks == 0;
        const bool oneGroup = node.objects == 0 && node.groups == 1 && node.masks == 0;
        if (!node.isMask && !node.blends && !node.fades && !masked && (!node.isolated || !node.looksBelow))
            return Road::Plain;
        if (node.isMask ? oneObject || oneGroup : oneObject && !node.fades)
            return Road::State;
        return node.isolated || !node.looksBelow ? Road::Bitmap : Road::Layer;
    }

    size_t Innermost() const noexcept { return m_open.empty() ? kNone : m_open.back().inner; }
    bool Shaped() const noexcept { return !m_open.empty() && m_open.back().shaped; }

    void Begin(Node node, Open::Kind kind) {
        const size_t number = m_nodes.size();
        node.parent = Innermost();
        node.shaped = Shaped();
        if (node.parent != kNone)
            node.inKnockout = m_nodes[node.parent].knockout || m_nodes[node.parent].inKnockout;
        m_nodes.push_back(node);
        if (kind == Open::Kind::Span)
            m_open.push_back({kind, number, number, node.shaped});
        else
            m_open.push_back({kind, number, kNone, false});
    }

    void Close() {
        const Open open = m_open.back();
        m_open.pop_back();
        if (open.node == kNone || m_nodes[open.node].parent == kNone)
            return;
        const Node& node = m_nodes[open.node];
        Node& parent = m_nodes[node.parent];
        ++(node.isMask ? parent.masks : parent.groups);
        parent.looksBelow |= node.blends || (!node.isolated && node.looksBelow);
        parent.bounds = fz_union_rect(parent.bounds, node.bounds);
    }

    fz_context* m_ctx;
    fz_device* m_device = nullptr;
    std::vector<Node> m_nodes;
    std::vector<Open> m_open;
    std::map<std::pair<fz_font*, int>, bool> m_glyphBlends;
    int m_quiet = 0; // depth of tiles and type 3 glyphs
    bool m_quietBlends = false;
    int m_glyphDepth = 0;
    bool m_failed = false;
};

struct SurveyDevice {
    fz_device super;
    Survey* survey;
};

// MuPDF calls the functions below as C: no exception leaves them.
template <class Note> void With(fz_device* dev, Note&& note) noexcept {
    Survey& survey = *reinterpret_cast<SurveyDevice*>(dev)->survey;
    try {
        note(survey);
    } catch (...) {
        survey.Fail();
    }
}

// Boxes are found inside spans only.
template <class Bound> void Object(fz_context* ctx, fz_device* dev, unsigned objects, Bound&& bound) noexcept {
    With(dev, [&](Survey& survey) {
        fz_rect box = fz_infinite_rect;
        if (!survey.InsideSpan())
            return;
        Try(ctx, [&] { box = bound(); });
        survey.Add(box, objects);
    });
}

void FillPath(fz_context* ctx, fz_device* dev, const fz_path* path, int, fz_matrix ctm, fz_colorspace*, const float*,
              float, fz_color_params) {
    Object(ctx, dev, 1, [&] { return fz_bound_path(ctx, path, nullptr, ctm); });
}

void StrokePath(fz_context* ctx, fz_device* dev, const fz_path* path, const fz_stroke_state* stroke, fz_matrix ctm,
                fz_colorspace*, const float*, float, fz_color_params) {
    Object(ctx, dev, 1, [&] { return fz_bound_path(ctx, path, stroke, ctm); });
}

void Text(fz_context* ctx, fz_device* dev, const fz_text* text, const fz_stroke_state* stroke, const fz_matrix& ctm) {
    int glyphs = 0;
    bool type3 = false;
    for (const fz_text_span* span = text->head; span; span = span->next) {
        glyphs += span->len;
        if (!fz_font_t3_procs(ctx, span->font))
            continue;
        type3 = true;
        for (int i = 0; i < span->len; ++i)
            With(dev, [&](Survey& survey) { survey.Type3Glyph(span->font, span->items[i].gid); });
    }
    Object(ctx, dev, type3 || glyphs > 1 ? kMany : 1,
           [&] { return type3 ? fz_infinite_rect : fz_bound_text(ctx, text, stroke, ctm); });
}

void FillText(fz_context* ctx, fz_device* dev, const fz_text* text, fz_matrix ctm, fz_colorspace*, const float*, float,
              fz_color_params) {
    Text(ctx, dev, text, nullptr, ctm);
}

void StrokeText(fz_context* ctx, fz_device* dev, const fz_text* text, const fz_stroke_state* stroke, fz_matrix ctm,
                fz_colorspace*, const float*, float, fz_color_params) {
    Text(ctx, dev, text, stroke, ctm);
}

void FillShade(fz_context* ctx, fz_device* dev, fz_shade* shade, fz_matrix ctm, float, fz_color_params) {
    // A background is drawn by a call of its own.
    Object(ctx, dev, shade->use_background ? kMany : 1, [&] { return fz_bound_shade(ctx, shade, ctm); });
}

// Upright images are widened to whole pixels.
fz_rect ImageBox(const fz_matrix& ctm) {
    return fz_rect_from_irect(fz_irect_from_rect(fz_transform_rect(fz_unit_rect, ctm)));
}

void FillImage(fz_context* ctx, fz_device* dev, fz_image*, fz_matrix ctm, float, fz_color_params) {
    Object(ctx, dev, 1, [&] { return ImageBox(ctm); });
}

void FillImageMask(fz_context* ctx, fz_device* dev, fz_image*, fz_matrix ctm, fz_colorspace*, const float*, float,
                   fz_color_params) {
    Object(ctx, dev, 1, [&] { return ImageBox(ctm); });
}

void PushClip(fz_device* dev, Open::Kind kind = Open::Kind::Clip) {
    With(dev, [&](Survey& survey) { survey.PushClip(kind); });
}

void ClipPath(fz_context*, fz_device* dev, const fz_path*, int, fz_matrix, fz_rect) { PushClip(dev); }
void ClipStrokePath(fz_context*, fz_device* dev, const fz_path*, const fz_stroke_state*, fz_matrix, fz_rect) {
    PushClip(dev);
}
void ClipText(fz_context*, fz_device* dev, const fz_text*, fz_matrix, fz_rect) { PushClip(dev); }
void ClipStrokeText(fz_context*, fz_device* dev, const fz_text*, const fz_stroke_state*, fz_matrix, fz_rect) {
    PushClip(dev);
}
void ClipImageMask(fz_context*, fz_device* dev, fz_image*, fz_matrix, fz_rect) { PushClip(dev, Open::Kind::ImageMask); }

void Pop(fz_context*, fz_device* dev) {
    With(dev, [](Survey& survey) { survey.Pop(); });
}

void BeginGroup(fz_context*, fz_device* dev, fz_rect, fz_colorspace*, int isolated, int knockout, int blendMode,
                float alpha) {
    With(dev, [&](Survey& survey) {
        survey.BeginGroup(isolated != 0, knockout != 0, (blendMode & FZ_BLEND_MODEMASK) != FZ_BLEND_NORMAL, alpha);
    });
}

void BeginMask(fz_context*, fz_device* dev, fz_rect, int, fz_colorspace*, const float*, fz_color_params) {
    With(dev, [](Survey& survey) { survey.BeginMask(); });
}

void EndMask(fz_context*, fz_device* dev) {
    With(dev, [](Survey& survey) { survey.EndMask(); });
}

int BeginTile(fz_context*, fz_device* dev, fz_rect, fz_rect, float, float, fz_matrix, int) {
    With(dev, [](Survey& survey) { survey.BeginTile(); });
    return 0; // the cell's content has to follow
}

void EndTile(fz_context*, fz_device* dev) {
    With(dev, [](Survey& survey) { survey.EndTile(fz_infinite_rect); }); // cut by the clip
}

} // namespace

std::vector<Span> SurveyGroups(fz_context* ctx, fz_display_list* list, const fz_matrix& ctm, const fz_rect& scissor) {
    Survey survey(ctx);
    SurveyDevice* device = nullptr;
    if (!Try(ctx, [&] { device = fz_new_derived_device(ctx, SurveyDevice); }))
        return {};
    device->survey = &survey;
    fz_device& d = device->super;
    survey.SetDevice(&d);
    d.fill_path = FillPath;
    d.stroke_path = StrokePath;
    d.clip_path = ClipPath;
    d.clip_stroke_path = ClipStrokePath;
    d.fill_text = FillText;
    d.stroke_text = StrokeText;
    d.clip_text = ClipText;
    d.clip_stroke_text = ClipStrokeText;
    d.fill_shade = FillShade;
    d.fill_image = FillImage;
    d.fill_image_mask = FillImageMask;
    d.clip_image_mask = ClipImageMask;
    d.pop_clip = Pop;
    d.begin_mask = BeginMask;
    d.end_mask = EndMask;
    d.begin_group = BeginGroup;
    d.end_group = Pop;
    d.begin_tile = BeginTile;
    d.end_tile = EndTile;
    Try(ctx, [&] {
        fz_run_display_list(ctx, list, &d, ctm, scissor, nullptr);
        fz_close_device(ctx, &d);
    });
    fz_drop_device(ctx, &d);
    return survey.Spans();
}

} // namespace PdfPage
