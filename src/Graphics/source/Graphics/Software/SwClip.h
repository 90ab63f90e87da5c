// SPDX-License-Identifier: MIT
// Clips. A clip is a box in device pixels and, where it is more than a rectangle, a plane of 8-bit coverage over the
// box with the extents of each row:
//
//     box.left   begin        fullBegin          fullEnd      end      box.right
//        |  not stored  | partial |   all 255       | partial |  not stored  |
//
// Clips are immutable once built, shared by the states that use them and recycled by their pool.
#pragma once

#include <memory>

#include "../Matrix.h"
#include "../ProcessHeap.h"
#include "../Scan/RasterizationSink.h"

namespace Graphics {

class Shape;
class SwClipPool;

struct SwClipRow {
    int32_t begin, end;         ///< columns outside are 0
    int32_t fullBegin, fullEnd; ///< columns inside are 255; may be empty
};

class SwClip {
public:
    [[nodiscard]] const IntRect& Box() const noexcept { return m_box; }
    [[nodiscard]] bool HasMask() const noexcept { return m_hasMask; }
    [[nodiscard]] const SwClipRow& Row(int32_t y) const noexcept { return m_rows[static_cast<size_t>(y - m_box.top)]; }
    /// The coverage of column x; meaningful from Row(y).begin to Row(y).end.
    [[nodiscard]] const uint8_t* Coverage(int32_t x, int32_t y) const noexcept {
        return m_plane.data() + static_cast<size_t>(y - m_box.top) * m_stride + static_cast<size_t>(x - m_box.left);
    }

    /// Of the memory for the mask, whether there is one now or not.
    [[nodiscard]] size_t PlaneBytes() const noexcept { return m_plane.capacity(); }
    [[nodiscard]] bool IsShared() const noexcept { return m_references > 1; }

private:
    friend class SwClipPool;
    friend class SwClipRef;
    friend class SwClipBuilder;

    IntRect m_box{};
    bool m_hasMask = false;
    size_t m_stride = 0;
    HeapArray<uint8_t> m_plane;
    HeapArray<SwClipRow> m_rows;

    uint32_t m_references = 0;
    SwClip* m_next = nullptr; // in the pool's free list
    SwClipPool* m_pool = nullptr;
};

/// Whether there is a clip that is more than a rectangle.
[[nodiscard]] inline bool IsMasked(const SwClip* clip) noexcept { return clip != nullptr && clip->HasMask(); }

/// A counted reference; one thread only. Null stands for "no clip".
class SwClipRef {
public:
    SwClipRef() noexcept = default;
    explicit SwClipRef(SwClip* clip) noexcept : m_clip(clip) { Add(); }
    SwClipRef(const SwClipRef& o) noexcept : m_clip(o.m_clip) { Add(); }
    SwClipRef(SwClipRef&& o) noexcept : m_clip(o.m_clip) { o.m_clip = nullptr; }
    SwClipRef& operator=(SwClipRef o) noexcept {
        std::swap(m_clip, o.m_clip);
        return *this;
    }
    ~SwClipRef() { Drop(); }

    [[nodiscard]] const SwClip* get() const noexcept { return m_clip; }
    const SwClip* operator->() const noexcept { return m_clip; }
    explicit operator bool() const noexcept { return m_clip != nullptr; }

private:
    void Add() noexcept {
        if (m_clip != nullptr) {
            ++m_clip->m_references;
        }
    }
    void Drop() noexcept;

    SwClip* m_clip = nullptr;
};

/// Keeps released clips with their memory: one plane of any size, or some that are no more than kKeepBytes together.
/// Outlives every reference to its clips.
class SwClipPool {
public:
    SwClipPool() noexcept = default;
    SwClipPool(const SwClipPool&) = delete;
    SwClipPool& operator=(const SwClipPool&) = delete;
    ~SwClipPool();

    [[nodiscard]] SwClip* Take();
    void Give(SwClip* clip) noexcept;
    /// Gives a clip without a plane of this size the closest fit of the released ones, or no plane where none fits.
    void FindPlane(SwClip& clip, size_t bytes) noexcept;
    /// Drops the planes of released clips that are as large as a page: painting has ended.
    void Trim() noexcept;

private:
    static constexpr size_t kKeepBytes = 1U << 20;

    SwClip* m_free = nullptr;
    size_t m_freeBytes = 0;
};

/// Turns the coverage of one path into a clip inside `parent` (null: none) and `visible`.
class SwClipBuilder final : public RasterizationSink {
public:
    SwClipBuilder(SwClipPool& pool, const SwClip* parent, const IntRect& visible);

    void Row(int32_t y, std::span<CoverageRun> runs) override;
    void Rectangle(int32_t left, int32_t top, int32_t right, int32_t bottom) override;

    /// Call once, after the rasterizer has finished.
    [[nodiscard]] SwClipRef Finish();

private:
    void StartMask();
    /// Multiplies the parent's coverage into the finished row and notes the row's extents inside the parent's.
    void FinishRow(int32_t y, SwClipRow extents);

    SwClip* m_clip;
    SwClipRef m_owner;
    const SwClip* m_parent;
    IntRect m_visible;
    bool m_touched = false;
};

} // namespace Graphics
