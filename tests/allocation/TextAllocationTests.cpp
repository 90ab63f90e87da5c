// SPDX-License-Identifier: MIT
// Text through the exported functions while memory is refused, one allocation after another, by the working heap and by
// the C++ allocator: every call says so, leaves its outputs alone, and the next try draws the same page.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "../unit/RefusingNew.h"
#include "../unit/WaitingMemory.h"
#include "GX/GX.h"
#include "ProcessHeap.h"

namespace Graphics {
namespace {

constexpr int kWidth = 160, kHeight = 48;

class TextAllocation : public testing::Test {
protected:
    TextAllocation() : m_pixels(kWidth * kHeight), m_text(u"Refuse & give \u00e4") {
        const GXExtBufLayout layout = {kWidth, kHeight, kWidth * 4, 96, 96};
        EXPECT_EQ(GXCreateRenderTargetExtBuf(m_pixels.data(), GXPixelFormatPBGRA32, &layout, &m_target),
                  GXResultSuccess);
        EXPECT_EQ(GXCreateBrushSolidARGB(0xC0204060, &m_brush), GXResultSuccess);
        GXLogSetSink(
            7, [](void* self, const char* text) { static_cast<TextAllocation*>(self)->m_log = text; }, this);
        m_log.reserve(4096);
    }
    ~TextAllocation() override {
        GXLogSetSink(7, nullptr, nullptr);
        GXObjectRelease(m_target);
        GXObjectRelease(m_brush);
    }

    static const uint16_t* Units(const std::u16string& s) { return reinterpret_cast<const uint16_t*>(s.c_str()); }

    /// Stops at the first refusal.
    GXResult Draw() {
        static const std::u16string family = u"Liberation Sans";
        GXFontFace face = nullptr;
        GXResult result = GXCreateFontFace(Units(family), GXFontBold, 12.0F, &face);
        EXPECT_EQ(result == GXResultSuccess, face != nullptr);
        float size[2] = {-1, -1};
        if (result == GXResultSuccess) {
            result = GXFontFaceCalculateTextBound(face, Units(m_text), size);
            EXPECT_EQ(result == GXResultSuccess, size[0] > 0);
            EXPECT_EQ(result == GXResultSuccess, size[1] == 12.0F);
        }
        if (result == GXResultSuccess) {
            result = GXRenderTargetBeginPaint(m_target);
            const bool painting = result == GXResultSuccess;
            const GXMatrix matrix = {1.25F, 0, 0, 1.25F, 4, 30};
            result = painting ? GXRenderTargetSetCTM(m_target, &matrix) : result;
            result = result == GXResultSuccess ? GXRenderTargetClear(m_target, 0xFFFFFFFF) : result;
            if (result == GXResultSuccess) {
                result = GXRenderTargetFillText(m_target, face, Units(m_text), m_brush);
                GXMatrix after = {};
                EXPECT_EQ(GXRenderTargetGetCTM(m_target, &after), GXResultSuccess);
                EXPECT_EQ(after.m20, 4.0F);
            }
            if (painting) {
                const GXResult ended = GXRenderTargetEndPaint(m_target);
                result = result == GXResultSuccess ? ended : result;
            }
        }
        if (face != nullptr) {
            GXObjectRelease(face);
        }
        return result;
    }

    /// `arm` lets n allocations pass and refuses one; `disarm` says whether it came to that.
    template <class Arm, class Disarm> void RefuseEach(GXResult expected, const Arm& arm, const Disarm& disarm) {
        ASSERT_EQ(Draw(), GXResultSuccess);
        const std::vector<uint32_t> page = m_pixels;
        ASSERT_NE(std::count(page.begin(), page.end(), 0xFFFFFFFFU), kWidth * kHeight);
        int failures = 0, expectedOnes = 0;
        bool refused = true;
        for (int64_t n = 0; refused && n < 5000; ++n) {
            DropWaitingMemory();
            m_log.clear();
            arm(n);
            const GXResult result = Draw();
            refused = disarm();
            if (result != GXResultSuccess) {
                ++failures;
                ASSERT_TRUE(refused) << "allocation " << n;
                // The working heap takes its blocks from the C++ allocator, and reports them in its own way.
                ASSERT_TRUE(result == expected || result == GXResultEngineError) << "allocation " << n;
                expectedOnes += result == expected ? 1 : 0;
                if (result == GXResultEngineError) {
                    ASSERT_NE(m_log.find("Not enough memory"), std::string::npos) << m_log;
                }
                ASSERT_EQ(Draw(), GXResultSuccess) << "after allocation " << n;
            }
            // A refusal that passed was one for the glyph cache, which can do without.
            ASSERT_EQ(m_pixels, page) << "allocation " << n;
        }
        EXPECT_FALSE(refused);
        EXPECT_GT(failures, 10);
        EXPECT_GT(expectedOnes, 5);
    }

    std::vector<uint32_t> m_pixels;
    std::u16string m_text;
    std::string m_log;
    GXRenderTarget m_target = nullptr;
    GXBrush m_brush = nullptr;
};

TEST_F(TextAllocation, RefusedWorkingMemoryIsAnEngineError) {
    int64_t before = 0, allowed = 0;
    RefuseEach(
        GXResultEngineError,
        [&](int64_t n) {
            allowed = n;
            before = ProcessHeap::FailAfter(n);
        },
        [&] { return ProcessHeap::FailAfter(-1) - before > allowed; });
}

TEST_F(TextAllocation, RefusedCppMemoryIsAnUnexpectedError) {
    int64_t last = 0;
    RefuseEach(
        GXResultUnexpectedError,
        [&](int64_t n) {
            last = RefusingNew::Count() + n;
            RefusingNew::Refuse(last);
        },
        [&] {
            RefusingNew::Refuse(-1);
            return RefusingNew::Count() > last;
        });
}

} // namespace
} // namespace Graphics
