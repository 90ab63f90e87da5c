// SPDX-License-Identifier: MIT
#include "ClipRegion.h"

#include <cstring>
#include <memory>

namespace Graphics {

void ClipRegion::CopyRow(int32_t y, int32_t x0, int32_t x1, uint8_t* out) const noexcept {
    int32_t done = x0;
    ForParts(y, x0, x1, [&](int32_t from, int32_t to, const uint8_t* coverage) {
        std::memset(out + (done - x0), 0, static_cast<size_t>(from - done));
        if (coverage == nullptr) {
            std::memset(out + (from - x0), 255, static_cast<size_t>(to - from));
        } else {
            std::memcpy(out + (from - x0), coverage, static_cast<size_t>(to - from));
        }
        done = to;
    });
    std::memset(out + (done - x0), 0, static_cast<size_t>(x1 - done));
}

void ClipRef::Drop() noexcept {
    if (m_clip != nullptr && --m_clip->m_references == 0) {
        m_clip->m_pool->Give(m_clip);
    }
}

ClipPool::~ClipPool() {
    for (const ClipRegion* clip : m_spareClips) {
        delete clip;
    }
    for (const ClipCoverage* coverage : m_spareCoverages) {
        delete coverage;
    }
}

ClipRegion* ClipPool::Take() {
    m_spareClips.reserve(kSpare);
    m_spareCoverages.reserve(kSpare);
    if (m_spareClips.empty()) {
        auto* clip = new ClipRegion;
        clip->m_pool = this;
        return clip;
    }
    ClipRegion* clip = m_spareClips.back();
    m_spareClips.pop_back();
    return clip;
}

void ClipPool::Give(ClipRegion* clip) noexcept {
    ClipCoverage* const coverage = clip->m_coverage;
    clip->m_coverage = nullptr;
    if (coverage != nullptr && --coverage->m_references == 0) {
        m_blocks.Give(std::move(coverage->m_block));
        if (m_spareCoverages.size() < kSpare) {
            m_spareCoverages.push_back(coverage);
        } else {
            delete coverage;
        }
    }
    if (m_spareClips.size() < kSpare) {
        m_spareClips.push_back(clip);
    } else {
        delete clip;
    }
}

void ClipPool::MakeCoverage(ClipRegion& clip, int32_t top, size_t rows, size_t bytes) {
    std::unique_ptr<ClipCoverage> coverage;
    if (m_spareCoverages.empty()) {
        coverage = std::make_unique<ClipCoverage>();
    } else {
        coverage.reset(m_spareCoverages.back());
        m_spareCoverages.pop_back();
    }
    coverage->m_block = m_blocks.Take(rows * sizeof(ClipRow) + bytes);
    coverage->m_bytes = coverage->m_block.data() + rows * sizeof(ClipRow);
    coverage->m_top = top;
    coverage->m_references = 1;
    clip.m_coverage = coverage.release();
}

void ClipPool::Trim() noexcept {
    m_blocks.Trim();
    m_rows.Trim();
    m_bytes.Trim();
}

} // namespace Graphics
