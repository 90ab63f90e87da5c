// SPDX-License-Identifier: MIT
// Images whose memory ends, or begins, at a page that cannot be read: samplers that gather words or pairs of pixels may
// not reach beyond the last row, which no comparison of pixels shows.
#include <gtest/gtest.h>

#include <sys/mman.h>
#include <unistd.h>

#include "../KernelSets.h"
#include "../PaintSupport.h"
#include "Arena.h"
#include "Kernels/PaintKernels.h"
#include "Pixels/PixelFormat.h"
#include "Sources/SwBitmapColorSource.h"

using namespace Graphics;
using namespace PaintSupport;

namespace {

/// Bytes between two unreadable pages.
class Fenced {
public:
    explicit Fenced(size_t bytes) : m_page(static_cast<size_t>(sysconf(_SC_PAGESIZE))) {
        m_inner = (bytes + m_page - 1) / m_page * m_page;
        void* all = mmap(nullptr, m_inner + 2 * m_page, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        m_all = static_cast<uint8_t*>(all);
        EXPECT_NE(all, MAP_FAILED);
        EXPECT_EQ(mprotect(m_all + m_page, m_inner, PROT_READ | PROT_WRITE), 0);
    }
    Fenced(const Fenced&) = delete;
    Fenced& operator=(const Fenced&) = delete;
    ~Fenced() { munmap(m_all, m_inner + 2 * m_page); }

    [[nodiscard]] uint8_t* First() const { return m_all + m_page; }
    [[nodiscard]] uint8_t* Behind() const { return m_all + m_page + m_inner; }

private:
    size_t m_page, m_inner = 0;
    uint8_t* m_all = nullptr;
};

TEST(Fence, Bites) {
    const Fenced memory(100);
    volatile uint8_t* first = memory.First();
    first[0] = 1;
    EXPECT_EQ(first[0], 1);
    EXPECT_DEATH(static_cast<void>(*const_cast<const volatile uint8_t*>(memory.Behind())), "");
    EXPECT_DEATH(static_cast<void>(*const_cast<const volatile uint8_t*>(memory.First() - 1)), "");
}

TEST(Fence, SamplersStayInsideTheirImage) {
    for (int round = 0; round < 3000; ++round) {
        KernelTable<PaintKernels>::Select(KernelSetOfRound<PaintKernels>(round).kernels);
        PixelView view;
        view.format = 1 + g_random() % 10;
        view.width = 1 + static_cast<int32_t>(g_random() % 40);
        view.height = 1 + static_cast<int32_t>(g_random() % 12);
        const size_t rowBytes = (static_cast<size_t>(BitsPerPixel(view.format) * view.width) + 7) / 8;
        const Fenced memory(rowBytes * static_cast<size_t>(view.height));
        const bool atEnd = round % 2 == 0;
        view.data = atEnd ? memory.Behind() - rowBytes * static_cast<size_t>(view.height) : memory.First();
        view.strideBytes = static_cast<ptrdiff_t>(rowBytes);
        const bool turned = g_random() % 2 != 0;
        const float scale = Uniform(0.3F, 3.0F);
        const Matrix place{turned ? 0.8F * scale : scale,
                           turned ? 0.6F * scale : 0.0F,
                           turned ? -0.6F * scale : 0.0F,
                           turned ? 0.8F * scale : scale,
                           Uniform(-10, 10),
                           Uniform(-10, 10)};
        Arena arena;
        SwColorSource* source = CreateBitmapSource(arena, {view, nullptr, static_cast<uint32_t>(g_random() % 2),
                                                           static_cast<uint32_t>(g_random() % 3),
                                                           static_cast<uint32_t>(g_random() % 3), 1.0F, place, false});
        for (int32_t y = -12; y < 40; ++y) {
            Row(*source, -20, 60, y);
        }
    }
    KernelTable<PaintKernels>::Select(nullptr);
}

} // namespace
