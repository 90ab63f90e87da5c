// SPDX-License-Identifier: MIT
// Ten recorded pages while memory is refused, at one allocation after the other: drawing fails with a plain result,
// nothing leaks, and the same page is drawn right afterwards on the same target. Pages with more allocations than the
// test has time for are refused at points spread over all of them.
#include "Handle.h"
#include "RecordedPages.h"

#include "../unit/RefusingNew.h"
#include "../unit/WaitingMemory.h"
#include "ProcessHeap.h"

#include <algorithm>
#include <new>

namespace {

using namespace RecordingTests;
using Graphics::ProcessHeap;
using Gxr::Handle;

constexpr float kScale = 0.25f;
constexpr int64_t kMostPoints = 60;

/// Counts one of the two kinds of allocations, and refuses the one that is `number` further on.
struct Kind {
    int64_t (*count)();
    void (*refuse)(int64_t number); ///< negative: none
};

const Kind kKinds[] = {
    {[] { return ProcessHeap::FailAfter(-1); }, [](int64_t n) { ProcessHeap::FailAfter(n); }},
    {[] { return RefusingNew::Count(); },
     [](int64_t n) { RefusingNew::Refuse(n < 0 ? -1 : RefusingNew::Count() + n); }},
};

/// A page's objects, made anew for each try: bitmaps keep what was derived from them.
struct Try {
    explicit Try(const Gxr::Recording& recording)
        : player(recording), format(recording.Page().format), bitmap(Gxr::NewPageBitmap(recording.Page(), kScale)) {
        EXPECT_EQ(GXCreateRenderTargetBitmap(bitmap.Get(), target.Out()), GXResult{GXResultSuccess});
    }
    /// On the page as it is at first: a draw that failed has left what it had drawn.
    uint64_t Draw(const Gxr::Recording& recording) {
        const Handle<GXBitmap> fresh = Gxr::NewPageBitmap(recording.Page(), kScale);
        EXPECT_EQ(GXBitmapCopyFromBitmap(bitmap.Get(), nullptr, fresh.Get(), nullptr), GXResult{GXResultSuccess});
        // The player goes on from the matrix that the target has; one that was set before a bracket stays set when the
        // bracket does not begin.
        EXPECT_EQ(GXRenderTargetSetCTM(target.Get(), nullptr), GXResult{GXResultSuccess});
        player.Play(target.Get(), kScale);
        return ChecksumOf(bitmap.Get(), format);
    }

    Gxr::Player player;
    const GXPixelFormat format;
    Handle<GXBitmap> bitmap;
    Handle<GXRenderTarget> target;
};

class RefusedPages : public testing::TestWithParam<const char*> {};

TEST_P(RefusedPages, FailPlainlyAndAreDrawnRightAfterwards) {
    const Gxr::Recording recording = Gxr::Recording::FromFile(std::string(GX_RECORDINGS) + "/" + GetParam());
    for (const Kind& kind : kKinds) {
        SCOPED_TRACE(&kind - kKinds);
        DropWaitingMemory();
        uint64_t expected = 0;
        int64_t points = 0;
        {
            Try reference(recording);
            const int64_t before = kind.count();
            expected = reference.Draw(recording);
            points = kind.count() - before;
        }
        const int64_t step = std::max<int64_t>(1, points / kMostPoints);
        int refused = 0;
        for (int64_t n = 0; n < points; n += step) {
            DropWaitingMemory();
            const int64_t live = RefusingNew::Live();
            const int64_t held = ProcessHeap::AlignedHeld().bytes;
            {
                Try page(recording);
                kind.refuse(n);
                try {
                    page.player.Play(page.target.Get(), kScale);
                } catch (const Gxr::Error& error) {
                    const std::string what = error.what();
                    EXPECT_TRUE(what.find(" 5") != what.npos || what.find(" 9") != what.npos) << what;
                    ++refused;
                } catch (const std::bad_alloc&) { // the player's own
                    GXRenderTargetEndPaint(page.target.Get());
                }
                kind.refuse(-1);
                ASSERT_EQ(page.Draw(recording), expected) << "allocation " << n << " of " << points;
            }
            DropWaitingMemory();
            ASSERT_EQ(RefusingNew::Live(), live) << "allocation " << n << " of " << points;
            ASSERT_EQ(ProcessHeap::AlignedHeld().bytes, held) << "allocation " << n << " of " << points;
        }
        EXPECT_GT(refused, 0);
    }
}

INSTANTIATE_TEST_SUITE_P(Recordings, RefusedPages,
                         testing::Values("blend_images-1.gxr", "group_knockout-3.gxr", "images_1bit-1.gxr",
                                         "page_tiny-1.gxr", "shading_freeform-1.gxr", "softmask_alpha-1.gxr",
                                         "text_clip-1.gxr", "text_pattern-1.gxr", "tiling-1.gxr", "vector_tiger-1.gxr"),
                         [](const auto& page) {
                             return TestName({{0, page.param}, page.index});
                         });

} // namespace
