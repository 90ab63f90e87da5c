// SPDX-License-Identifier: MIT
// Large blocks are the system's: counted, zero at first, gone when they are freed.
#include <gtest/gtest.h>

#include <malloc.h>
#include <unistd.h>

#include <cstring>
#include <fstream>

#include "Bitmaps/Bitmap.h"
#include "ProcessHeap.h"

namespace Graphics {
namespace {

constexpr int64_t kMiB = int64_t{1} << 20;

int64_t ResidentBytes() {
    int64_t pages = 0;
    int64_t resident = 0;
    std::ifstream("/proc/self/statm") >> pages >> resident;
    return resident * sysconf(_SC_PAGESIZE);
}

TEST(SystemPages, FortyBigBitmapsLeaveNothingResident) {
    malloc_trim(0);
    const int64_t before = ResidentBytes();
    const ProcessHeap::Held held = ProcessHeap::AlignedHeld();
    std::shared_ptr<Bitmap> small[40];
    for (auto& between : small) {
        const auto bitmap = Bitmap::Create({2048, 2048, GXPixelFormatPBGRA32, 96, 96});
        EXPECT_EQ(ProcessHeap::AlignedHeld().systemBytes - held.systemBytes, 16 * kMiB);
        bitmap->ColorFill(nullptr, {1, 1, 1, 1});
        between = Bitmap::Create({16, 16, GXPixelFormatPBGRA32, 96, 96}); // lies behind it in a heap
    }
    EXPECT_EQ(ProcessHeap::AlignedHeld().systemBytes, held.systemBytes);
    EXPECT_LT(ResidentBytes() - before, 4 * kMiB);
}

TEST(SystemPages, ZeroedPixelsCostNothingUntilTheyAreRead) {
    malloc_trim(0);
    const int64_t before = ResidentBytes();
    const SysMemBitmap large(4096, 4096, GXPixelFormatPBGRA32, 96, 96, true);
    EXPECT_LT(ResidentBytes() - before, kMiB);
    const SysMemBitmap tiny(5, 5, GXPixelFormatBGR24, 96, 96, true);
    for (const SysMemBitmap* bitmap : {&large, &tiny}) {
        const uint8_t* data = bitmap->Data();
        const size_t bytes = static_cast<size_t>(bitmap->StrideBytes()) * bitmap->GetSize().height;
        EXPECT_TRUE(data[0] == 0 && std::memcmp(data, data + 1, bytes - 1) == 0);
    }
}

} // namespace
} // namespace Graphics
