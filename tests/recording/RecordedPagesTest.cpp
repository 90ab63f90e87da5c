// SPDX-License-Identifier: MIT
// Whole pages from their recordings: the pixels are the stored ones, byte for byte, on this machine as on any other, in
// a bitmap and in the host's own memory. After a change that is meant to change pixels: tools/record_pages.sh
// --checksums
#include "RecordedPages.h"

namespace {

using namespace RecordingTests;
using Gxr::Handle;

class RecordedPageTest : public testing::TestWithParam<RecordedPage> {};

TEST_P(RecordedPageTest, HasItsChecksumInABitmapAndInTheHostsMemory) {
    const Gxr::Recording recording = Gxr::Recording::FromFile(GetParam().Path());
    const Gxr::PageInfo& page = recording.Page();
    Gxr::Player player(recording);

    const Handle<GXBitmap> bitmap = Gxr::NewPageBitmap(page);
    Handle<GXRenderTarget> target;
    ASSERT_EQ(GXCreateRenderTargetBitmap(bitmap.Get(), target.Out()), GXResult{GXResultSuccess});
    player.Play(target.Get());
    EXPECT_EQ(ChecksumOf(bitmap.Get(), page.format), GetParam().checksum);

    // Rows that start anywhere.
    const uint64_t rowBytes = Gxr::RowBytes(page.format, page.width), stride = rowBytes + 13;
    std::vector<uint8_t> memory(static_cast<size_t>(stride * page.height + 1), 0);
    const GXExtBufLayout layout{static_cast<float>(page.width), static_cast<float>(page.height),
                                static_cast<float>(stride), page.dpiX, page.dpiY};
    Handle<GXRenderTarget> buffer;
    ASSERT_EQ(GXCreateRenderTargetExtBuf(memory.data() + 1, page.format, &layout, buffer.Out()),
              GXResult{GXResultSuccess});
    player.Play(buffer.Get());
    EXPECT_EQ(Gxr::PixelChecksum(memory.data() + 1, stride, rowBytes, page.height), GetParam().checksum);
}

INSTANTIATE_TEST_SUITE_P(Pages, RecordedPageTest, testing::ValuesIn(RecordedPages()), TestName);

TEST(RecordedPages, AreThere) { EXPECT_GE(RecordedPages().size(), 25u); }

} // namespace
