// SPDX-License-Identifier: MIT
// The recorded pages of the repository with the checksums that their pixels have on every machine.
#pragma once

#include "PageChecksum.h"
#include "Recording.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

namespace RecordingTests {

struct RecordedPage {
    uint64_t checksum = 0;
    std::string name;
    std::string Path() const { return std::string(GX_RECORDINGS) + "/" + name; }
};

inline void PrintTo(const RecordedPage& page, std::ostream* out) { *out << page.name; }

// Empty when the list is missing: the test that counts them says so.
inline std::vector<RecordedPage> RecordedPages() {
    std::ifstream list(std::string(GX_RECORDINGS) + "/CHECKSUMS");
    std::vector<RecordedPage> pages;
    for (std::string sum, name; list >> sum >> name;)
        pages.push_back({std::stoull(sum, nullptr, 16), name});
    return pages;
}

inline std::string TestName(const testing::TestParamInfo<RecordedPage>& info) {
    std::string name = info.param.name.substr(0, info.param.name.find('.'));
    for (char& c : name)
        c = c == '-' ? '_' : c;
    return name;
}

// The checksum of a bitmap's pixels.
inline uint64_t ChecksumOf(GXBitmap bitmap, GXPixelFormat format) {
    GXBitmapData data{};
    GXSize size{};
    EXPECT_EQ(GXBitmapGetSize(bitmap, &size), GXResult{GXResultSuccess});
    EXPECT_EQ(GXBitmapLock(bitmap, nullptr, GXLockRead, &data), GXResult{GXResultSuccess});
    const uint64_t sum = Gxr::PixelChecksum(data.data, data.stride, Gxr::RowBytes(format, size.width), size.height);
    EXPECT_EQ(GXBitmapUnlock(bitmap), GXResult{GXResultSuccess});
    return sum;
}

} // namespace RecordingTests
