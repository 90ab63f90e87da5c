// SPDX-License-Identifier: MIT
// Rectangles become ordered spans along one axis; all have the same extent along the other.
#include "BoxScanner.h"

#include <algorithm>
#include <climits>
#include <cstring>

namespace Graphics {

namespace {

// Up to this many pixels without coverage cost less inside a run than a separate run does.
constexpr int32_t kShortGap = 16;

} // namespace

bool BoxScanner::Prepare(const EdgeBuilder& builder, const IntRect& visible, bool snap) {
    m_boxes.clear();
    m_boxes.reserve(builder.FigureCount());
    m_first = INT_MAX;
    m_last = INT_MIN;
    bool row = true;
    bool column = true;
    builder.ForEachBox([&](const Vertex& a, const Vertex& c) {
        const Box box{{UprightColumn(std::min(a.x, c.x)), UprightColumn(std::max(a.x, c.x))},
                      {std::min(a.y, c.y) >> 4, std::max(a.y, c.y) >> 4}};
        const bool beside = std::max(a.x, c.x) <= builder.ClipLeft() || std::min(a.x, c.x) >= builder.ClipRight();
        if (beside || box.y.from == box.y.to || box.y.from >= builder.ClipLast() || box.y.to <= builder.ClipFirst()) {
            return; // the fill has no edges
        }
        m_first = std::min(m_first, box.y.from);
        m_last = std::max(m_last, box.y.to);
        m_boxes.push_back(box);
        const Box& first = m_boxes[0];
        row = row && box.y.from == first.y.from && box.y.to == first.y.to;
        column = column && box.x.from == first.x.from && box.x.to == first.x.to;
    });
    if (m_boxes.empty()) {
        return true;
    }
    m_first = std::max(m_first, builder.ClipFirst());
    m_last = std::min(m_last, builder.ClipLast());
    if (!(row || column) || (snap && m_boxes.size() == 1)) {
        return false;
    }
    const Span Box::*along = row ? &Box::x : &Box::y;
    const Box* const last = m_boxes.data() + m_boxes.size() - 1;
    if ((m_boxes[0].*along).from > (last->*along).from) {
        std::reverse(m_boxes.data(), m_boxes.data() + m_boxes.size());
    }
    for (const Box* box = m_boxes.data(); box != last; ++box) {
        if ((box->*along).from > (box[1].*along).from || (box->*along).to > (box[1].*along).to) {
            return false;
        }
    }

    m_isRow = row;
    m_clipX = {visible.left * 8, visible.right * 8};
    m_clipY = {std::max(visible.top * 8, m_first), std::min(visible.bottom * 8, m_last)};
    const Span& clip = row ? m_clipX : m_clipY;
    m_spans.clear();
    m_spans.reserve(m_boxes.size());
    for (const Box* box = m_boxes.data(); box <= last; ++box) {
        const Span span{std::max((box->*along).from, clip.from), std::min((box->*along).to, clip.to)};
        if (span.from >= span.to) {
            continue;
        }
        if (!m_spans.empty() && span.from <= m_spans.back().to) {
            m_spans.back().to = span.to;
        } else {
            m_spans.push_back(span);
        }
    }
    const Span& across = row ? m_boxes[0].y : m_boxes[0].x;
    const Span& acrossClip = row ? m_clipY : m_clipX;
    const Span breadth{std::max(across.from, acrossClip.from), std::min(across.to, acrossClip.to)};
    if (m_spans.empty() || breadth.from >= breadth.to) {
        m_spans.clear();
        return true;
    }
    m_clipX = row ? m_clipX : breadth;
    m_clipY = row ? breadth : m_clipY;
    CountColumns(row ? m_spans.data() : &m_clipX, row ? m_spans.size() : 1);
    return true;
}

void BoxScanner::CountColumns(const Span* spans, size_t count) {
    m_left = spans[0].from >> 3;
    const auto width = static_cast<size_t>(((spans[count - 1].to + 7) >> 3) - m_left);
    m_counts.resize(width);
    m_shape.resize(width);
    m_scratch.resize(width);
    m_shapeRows = 0;
    std::memset(m_counts.data(), 0, width);
    m_columns.clear();
    m_columns.reserve(count);
    m_runs.reserve(count);
    for (const Span* span = spans; span != spans + count; ++span) {
        const int32_t from = span->from >> 3;
        const int32_t to = (span->to + 7) >> 3;
        uint8_t* const counts = m_counts.data() + (from - m_left);
        const auto pixels = static_cast<size_t>(to - from);
        // The pixel at either end may also belong to the neighbouring span.
        const auto add = [&](size_t i, int32_t n) { counts[i] = static_cast<uint8_t>(counts[i] + n); };
        if (pixels == 1) {
            add(0, span->to - span->from);
        } else {
            add(0, 8 - (span->from & 7));
            std::memset(counts + 1, 8, pixels - 2);
            add(pixels - 1, ((span->to - 1) & 7) + 1);
        }
        if (!m_columns.empty() && from - m_columns.back().to <= kShortGap) {
            m_columns.back().to = to;
        } else {
            m_columns.push_back({from, to});
        }
    }
}

void BoxScanner::SendRows(RasterizationSink& sink, int32_t from, int32_t to, int32_t subRows) {
    if (m_shapeRows != subRows) {
        m_shapeRows = subRows;
        for (size_t i = 0; i < m_counts.size(); ++i) {
            // 4 n - 1, and 0 for n = 0; 64 samples give 256 - 1, the byte 255.
            const int32_t n = m_counts[i] * subRows;
            m_shape[i] = static_cast<uint8_t>(n * 4 - (n != 0 ? 1 : 0));
        }
    }
    const auto setRuns = [&](uint8_t* shape) {
        m_runs.clear();
        for (const Columns& s : m_columns) {
            m_runs.push_back({s.from, s.to, shape + (s.from - m_left), 0});
        }
    };
    setRuns(m_shape.data());
    if (sink.Rows(from, to, {m_runs.data(), m_runs.size()})) {
        return;
    }
    for (int32_t y = from; y < to; ++y) {
        std::memcpy(m_scratch.data(), m_shape.data(), m_shape.size());
        setRuns(m_scratch.data());
        sink.Row(y, {m_runs.data(), m_runs.size()});
    }
}

void BoxScanner::Send(RasterizationSink& sink) {
    if (m_boxes.empty() || m_spans.empty()) {
        return;
    }
    // Collects the sub rows of a pixel row until the next span begins in another row.
    int32_t row = INT_MIN;
    int32_t collected = 0;
    const auto flush = [&] {
        if (collected != 0) {
            SendRows(sink, row, row + 1, collected);
        }
    };
    const Span* const spans = m_isRow ? &m_clipY : m_spans.data();
    const size_t count = m_isRow ? 1 : m_spans.size();
    for (const Span* span = spans; span != spans + count; ++span) {
        if (span->from >> 3 != row) {
            flush();
            row = span->from >> 3;
            collected = 0;
        }
        const int32_t rowEnd = (row + 1) * 8;
        collected += std::min(span->to, rowEnd) - span->from;
        if (span->to < rowEnd) {
            continue; // the next span may begin in the same row
        }
        const int32_t last = span->to >> 3;
        if (collected == 8) {
            SendRows(sink, row, last, 8);
        } else {
            flush();
            if (row + 1 < last) {
                SendRows(sink, row + 1, last, 8);
            }
        }
        row = last;
        collected = span->to & 7;
    }
    flush();
}

} // namespace Graphics
