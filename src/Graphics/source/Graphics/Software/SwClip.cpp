// SPDX-License-Identifier: MIT
#include "SwClip.h"

#include <algorithm>
#include <cstring>

#include "Kernels/SwKernels.h"

namespace Graphics {

void SwClipRef::Drop() noexcept {
    if (m_clip != nullptr && --m_clip->m_references == 0) {
        m_clip->m_pool->Give(m_clip);
    }
}

SwClipPool::~SwClipPool() {
    while (m_free != nullptr) {
        SwClip* clip = m_free;
        m_free = clip->m_next;
        delete clip;
    }
}

SwClip* SwClipPool::Take() {
    if (m_free == nullptr) {
        auto* clip = new SwClip;
        clip->m_pool = this;
        return clip;
    }
    SwClip* clip = m_free;
    m_free = clip->m_next;
    clip->m_hasMask = false;
    return clip;
}

void SwClipPool::Give(SwClip* clip) noexcept {
    // A plane of a whole large page is not worth keeping for the next glyph-sized clip.
    constexpr size_t kKeepBytes = 1U << 20;
    if (clip->m_plane.capacity() > kKeepBytes) {
        clip->m_plane = HeapArray<uint8_t>();
    }
    clip->m_next = m_free;
    m_free = clip;
}

SwClipBuilder::SwClipBuilder(SwClipPool& pool, const SwClip* parent, const IntRect& visible)
    : m_clip(pool.Take()), m_owner(m_clip), m_parent(parent), m_visible(visible) {
    m_clip->m_box = {visible.left, visible.top, visible.left, visible.top};
}

void SwClipBuilder::StartMask() {
    m_touched = true;
    m_clip->m_box = m_visible;
    m_clip->m_hasMask = true;
    m_clip->m_stride = static_cast<size_t>(m_visible.right - m_visible.left);
    const auto rows = static_cast<size_t>(m_visible.bottom - m_visible.top);
    m_clip->m_plane.resize(m_clip->m_stride * rows);
    m_clip->m_rows.resize(rows);
    for (SwClipRow& row : m_clip->m_rows) {
        row = {0, 0, 0, 0};
    }
}

void SwClipBuilder::Row(int32_t y, std::span<CoverageRun> runs) {
    if (runs.empty() || y < m_visible.top || y >= m_visible.bottom) {
        return;
    }
    if (!m_touched) {
        StartMask();
    }
    uint8_t* plane = m_clip->m_plane.data() + static_cast<size_t>(y - m_visible.top) * m_clip->m_stride;
    const int32_t begin = runs.front().x0;
    int32_t end = begin;
    for (const CoverageRun& run : runs) {
        std::memset(plane + (end - m_visible.left), 0, static_cast<size_t>(run.x0 - end));
        uint8_t* out = plane + (run.x0 - m_visible.left);
        const auto count = static_cast<size_t>(run.x1 - run.x0);
        if (run.shape != nullptr) {
            std::memcpy(out, run.shape, count);
        } else {
            std::memset(out, run.value, count);
        }
        end = run.x1;
    }
    FinishRow(y, begin, end);
}

void SwClipBuilder::FinishRow(int32_t y, int32_t begin, int32_t end) {
    uint8_t* plane = m_clip->m_plane.data() + static_cast<size_t>(y - m_visible.top) * m_clip->m_stride;
    if (m_parent != nullptr && m_parent->HasMask()) {
        const SwClipRow& parent = m_parent->Row(y);
        begin = std::max(begin, parent.begin);
        end = std::min(end, parent.end);
        if (begin >= end) {
            return;
        }
        // Only where the parent is partial.
        const auto scale = [&](int32_t from, int32_t to) {
            if (from < to) {
                ActiveKernels().scaleShape(plane + (from - m_visible.left), m_parent->Coverage(from, y),
                                           static_cast<size_t>(to - from));
            }
        };
        scale(begin, std::min(end, parent.fullBegin));
        scale(std::max(begin, parent.fullEnd), end);
    }
    // The longest run of 255.
    const uint8_t* row = plane - m_visible.left;
    SwClipRow extents{begin, end, begin, begin};
    for (int32_t x = begin; x < end;) {
        if (row[x] != 255) {
            ++x;
            continue;
        }
        int32_t stop = x + 1;
        while (stop < end && row[stop] == 255) {
            ++stop;
        }
        if (stop - x > extents.fullEnd - extents.fullBegin) {
            extents.fullBegin = x;
            extents.fullEnd = stop;
        }
        x = stop;
    }
    m_clip->m_rows[static_cast<size_t>(y - m_visible.top)] = extents;
}

void SwClipBuilder::Rectangle(int32_t left, int32_t top, int32_t right, int32_t bottom) {
    const IntRect box = Intersect({left, top, right, bottom}, m_visible);
    if (IsEmpty(box)) {
        return;
    }
    m_touched = true;
    if (m_parent == nullptr || !m_parent->HasMask()) {
        m_clip->m_box = box;
        return;
    }
    // The part of the parent's mask inside the rectangle.
    m_visible = box;
    StartMask();
    for (int32_t y = box.top; y < box.bottom; ++y) {
        const SwClipRow& parent = m_parent->Row(y);
        SwClipRow row{std::max(parent.begin, box.left), std::min(parent.end, box.right),
                      std::max(parent.fullBegin, box.left), std::min(parent.fullEnd, box.right)};
        if (row.begin >= row.end) {
            continue;
        }
        if (row.fullBegin >= row.fullEnd) {
            row.fullBegin = row.fullEnd = row.begin;
        }
        std::memcpy(m_clip->m_plane.data() + static_cast<size_t>(y - box.top) * m_clip->m_stride +
                        static_cast<size_t>(row.begin - box.left),
                    m_parent->Coverage(row.begin, y), static_cast<size_t>(row.end - row.begin));
        m_clip->m_rows[static_cast<size_t>(y - box.top)] = row;
    }
}

SwClipRef SwClipBuilder::Finish() { return std::move(m_owner); }

} // namespace Graphics
