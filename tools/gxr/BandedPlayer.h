// SPDX-License-Identifier: MIT
// Draws one recorded page on several threads: each takes a band of whole rows after the other, with a target of its own
// over the whole page and a clip to the band. A clip on whole pixels changes no pixel that it shows, so the bytes are
// those that Player draws, whatever the number of threads and wherever bands end.
//
// The objects of the recording are shared. What the page draws for itself (soft masks, cells) each thread draws for
// itself, but only the rows that its band shows.
#pragma once

#include "PageSurvey.h"
#include "Recording.h"

#include <optional>

namespace Gxr {

class BandedPlayer {
public:
    enum class Cut {
        Cost,  // bands that cost the same, by a survey of the page and, from the second time on, by what the last took
        Height // bands of equal height, one a thread: to compare
    };
    // A band as it was drawn.
    struct Drawn {
        Rows rows;
        unsigned thread = 0;
        double milliseconds = 0.0; // of processor time
    };
    // A part of the target: the page is placed by `matrix` (Player::Play), only `area` is drawn. Its rows may be any: the
    // bytes are those that the same columns have when all of their rows are drawn. Bitmaps are sampled from the left
    // edge of what is drawn on, by steps that are rounded, so the columns of `area` can change a sample.
    // With `stop` set on the way, Play throws Stopped.
    struct Part {
        GXMatrix matrix{1, 0, 0, 1, 0, 0};
        GXIntRect area{};
        const StopFlag* stop = nullptr;
    };

    // The recording outlives this object. From 1 thread on. Throws Error when the library refuses an object.
    BandedPlayer(const Recording& recording, unsigned threads, Cut cut = Cut::Cost);
    ~BandedPlayer();

    // Draw the page at `scale` into a bitmap, or into the host's memory as GXCreateRenderTargetExtBuf takes it. Return
    // when all is drawn. Throw Error when a call fails. One thread at a time. Memory whose rows do not start at
    // multiples of four bytes is drawn by one thread: a target there works on a copy of all rows.
    void Play(GXBitmap bitmap, float scale = 1.0f);
    void Play(void* pixels, GXPixelFormat format, const GXExtBufLayout& layout, float scale = 1.0f,
              const Part* part = nullptr);

    // Of the last drawing, top down.
    const std::vector<Drawn>& Bands() const noexcept { return m_bands; }

private:
    struct Canvas; // the memory that is drawn into
    class Worker;

    void Plan(GXSize size, const GXMatrix& matrix, float scale, Rows rows);
    void CutByCost(size_t count, Rows rows);
    void Learn();

    std::shared_ptr<const Objects> m_objects;
    const unsigned m_threads;
    const Cut m_cut;
    GXSize m_size{}; // what the survey is of
    GXMatrix m_matrix{};
    float m_scale = 0.0f;
    std::optional<PageSurvey> m_survey;
    std::vector<double> m_costs; // of rows, by the survey and by what was measured
    std::vector<Drawn> m_bands;
};

} // namespace Gxr
