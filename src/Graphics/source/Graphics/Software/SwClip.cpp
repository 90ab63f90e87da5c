// SPDX-License-Identifier: MIT
#include "SwClip.h"

#include <algorithm>
#include <cstring>

#include "Kernels/SwKernels.h"

namespace Graphics {
namespace {

/// The extents of a row, and in it the longest stretch of 255, the first of equals. Where it ends, stretches of pixels
/// are cut, and sources that step along a stretch start anew: it is part of what a page looks like.
struct LongestFull {
    LongestFull(int32_t rowBegin, int32_t rowEnd) noexcept
        : extents{rowBegin, rowEnd, rowBegin, rowBegin}, begin(rowBegin), end(rowBegin) {}

    void Add(int32_t x0, int32_t x1) noexcept {
        begin = x0 == end ? begin : x0;
        end = x1;
        if (end - begin > extents.fullEnd - extents.fullBegin) {
            extents.fullBegin = begin;
            extents.fullEnd = end;
        }
    }

    void AddBytes(int32_t x0, int32_t x1, const uint8_t* values) noexcept {
        const uint8_t* const last = values + (x1 - x0);
        const uint8_t* at = values;
        while (at != last &&
               (at = static_cast<const uint8_t*>(std::memchr(at, 255, static_cast<size_t>(last - at)))) != nullptr) {
            const uint8_t* stop = EndOfFull(at + 1, last);
            Add(x0 + static_cast<int32_t>(at - values), x0 + static_cast<int32_t>(stop - values));
            at = stop;
        }
    }

    /// The first byte from `at` on that is not 255.
    [[nodiscard]] static const uint8_t* EndOfFull(const uint8_t* at, const uint8_t* end) noexcept {
        for (uint64_t word; end - at >= 8; at += 8) {
            std::memcpy(&word, at, 8);
            if (word != ~uint64_t{0}) {
                break;
            }
        }
        while (at != end && *at == 255) {
            ++at;
        }
        return at;
    }

    SwClipRow extents;
    int32_t begin; ///< of the stretch that may go on
    int32_t end;
};

} // namespace

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
    m_freeBytes -= clip->PlaneBytes();
    clip->m_hasMask = false;
    return clip;
}

void SwClipPool::Give(SwClip* clip) noexcept {
    if (m_freeBytes != 0 && m_freeBytes + clip->PlaneBytes() > kKeepBytes) {
        clip->m_plane = HeapArray<uint8_t>();
    }
    m_freeBytes += clip->PlaneBytes();
    clip->m_next = m_free;
    m_free = clip;
}

void SwClipPool::FindPlane(SwClip& clip, size_t bytes) noexcept {
    if (clip.PlaneBytes() >= bytes) {
        return;
    }
    SwClip* best = nullptr;
    for (SwClip* other = m_free; other != nullptr; other = other->m_next) {
        if (other->PlaneBytes() >= bytes && (best == nullptr || other->PlaneBytes() < best->PlaneBytes())) {
            best = other;
        }
    }
    if (best != nullptr) {
        m_freeBytes -= best->PlaneBytes() - clip.PlaneBytes();
        std::swap(clip.m_plane, best->m_plane);
        return;
    }
    // All too small: not kept while a larger one is made.
    clip.m_plane = HeapArray<uint8_t>();
    for (SwClip* other = m_free; other != nullptr; other = other->m_next) {
        other->m_plane = HeapArray<uint8_t>();
    }
    m_freeBytes = 0;
}

void SwClipPool::Trim() noexcept {
    for (SwClip* clip = m_free; clip != nullptr; clip = clip->m_next) {
        if (clip->PlaneBytes() > kKeepBytes) {
            m_freeBytes -= clip->PlaneBytes();
            clip->m_plane = HeapArray<uint8_t>();
        }
    }
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
    m_clip->m_pool->FindPlane(*m_clip, m_clip->m_stride * rows);
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
    LongestFull full(begin, runs.back().x1);
    const bool scaled = IsMasked(m_parent); // FinishRow looks for the longest stretch then
    for (const CoverageRun& run : runs) {
        std::memset(plane + (end - m_visible.left), 0, static_cast<size_t>(run.x0 - end));
        uint8_t* out = plane + (run.x0 - m_visible.left);
        const auto count = static_cast<size_t>(run.x1 - run.x0);
        if (run.shape != nullptr) {
            std::memcpy(out, run.shape, count);
            if (!scaled) {
                full.AddBytes(run.x0, run.x1, run.shape);
            }
        } else {
            std::memset(out, run.value, count);
            if (run.value == 255) {
                full.Add(run.x0, run.x1);
            }
        }
        end = run.x1;
    }
    FinishRow(y, full.extents);
}

void SwClipBuilder::FinishRow(int32_t y, SwClipRow extents) {
    uint8_t* plane = m_clip->m_plane.data() + static_cast<size_t>(y - m_visible.top) * m_clip->m_stride;
    if (IsMasked(m_parent)) {
        const SwClipRow& parent = m_parent->Row(y);
        const int32_t begin = std::max(extents.begin, parent.begin);
        const int32_t end = std::min(extents.end, parent.end);
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
        LongestFull full(begin, end);
        full.AddBytes(begin, end, plane + (begin - m_visible.left));
        extents = full.extents;
    }
    m_clip->m_rows[static_cast<size_t>(y - m_visible.top)] = extents;
}

void SwClipBuilder::Rectangle(int32_t left, int32_t top, int32_t right, int32_t bottom) {
    const IntRect box = Intersect({left, top, right, bottom}, m_visible);
    if (IsEmpty(box)) {
        return;
    }
    m_touched = true;
    if (!IsMasked(m_parent)) {
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
