// SPDX-License-Identifier: MIT
// Whole pages have the same bytes whichever kernels draw them: the small recordings, and a drawing with every kind of
// call, once for each instruction set of this machine. Linked with the engine inside, to switch its tables.
#include "RecordedPages.h"
#include "Scenario.h"

#include "Kernels/PaintKernels.h"
#include "Kernels/RowKernels.h"
#include "Pixels/PixelConversion.h"
#include "Scan/BandKernels.h"

#include <set>

namespace {

using namespace RecordingTests;
using Graphics::InstructionSet;

class KernelSets : public testing::Test {
protected:
    ~KernelSets() override { Graphics::AllowInstructionSets(InstructionSet::AVX512); }

    template <class Draw> static void ForEachSet(Draw&& draw) {
        for (int set = 0; set < Graphics::kInstructionSetCount; ++set) {
            if (Graphics::ProcessorHas(static_cast<InstructionSet>(set))) {
                SCOPED_TRACE(set);
                Graphics::AllowInstructionSets(static_cast<InstructionSet>(set));
                draw();
            }
        }
    }
};

// Else the tests below would draw with the same tables again and again.
TEST_F(KernelSets, AreSwitchedTogether) {
    std::set<const void*> rows, bands, paints;
    std::set<Graphics::RowConverter> conversions; // of one pair that every set has a row of its own for
    size_t sets = 0;
    ForEachSet([&] {
        ++sets;
        rows.insert(&Graphics::ActiveKernels());
        bands.insert(&Graphics::KernelTable<Graphics::BandKernels>::Active());
        paints.insert(&Graphics::ActivePaintKernels());
        conversions.insert(Graphics::PixelConversion::Find(GXPixelFormatBGRA32, GXPixelFormatPBGRA32));
    });
    EXPECT_EQ(rows.size(), sets);
    EXPECT_EQ(bands.size(), sets);
    EXPECT_EQ(paints.size(), sets);
    EXPECT_EQ(conversions.size(), sets);
}

TEST_F(KernelSets, GiveEveryPageTheSameBytes) {
    // Those that are quick to draw also without vectors; together they have every kind of paint, mask, blend and group.
    const std::set<std::string> wanted = {
        "blend_images-1.gxr",     "blend_modes-3.gxr",       "group_knockout-1.gxr", "group_knockout-3.gxr",
        "images_1bit-1.gxr",      "images_cmyk-1.gxr",       "page_rotated-2.gxr",   "shading_axial-1.gxr",
        "shading_freeform-1.gxr", "shading_radial-2.gxr",    "softmask_alpha-1.gxr", "softmask_backdrop-1.gxr",
        "solids_clipped-1.gxr",   "text_type3_bitmap-1.gxr", "tiling-1.gxr",         "vector_tiger-1.gxr"};
    size_t found = 0;
    for (const RecordedPage& page : RecordedPages()) {
        if (wanted.count(page.name) == 0)
            continue;
        ++found;
        SCOPED_TRACE(page.name);
        const Gxr::Recording recording = Gxr::Recording::FromFile(page.Path());
        ForEachSet([&] {
            // Made anew: what is derived from bitmaps and gradients is made by the kernels, too.
            Gxr::Player player(recording);
            const Handle<GXBitmap> bitmap = Gxr::NewPageBitmap(recording.Page());
            Handle<GXRenderTarget> target;
            ASSERT_EQ(GXCreateRenderTargetBitmap(bitmap.Get(), target.Out()), GXResult{GXResultSuccess});
            player.Play(target.Get());
            EXPECT_EQ(ChecksumOf(bitmap.Get(), recording.Page().format), page.checksum);
        });
    }
    EXPECT_EQ(found, wanted.size());
}

TEST_F(KernelSets, GiveEveryCallTheSameBytes) {
    std::vector<uint8_t> first;
    ForEachSet([&] {
        const std::vector<uint8_t> pixels = Pixels(DrawScenario(Gxr::Calls()).Get());
        if (first.empty())
            first = pixels;
        EXPECT_EQ(pixels, first);
    });
}

} // namespace
