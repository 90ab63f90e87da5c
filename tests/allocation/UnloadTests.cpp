// SPDX-License-Identifier: MIT
// A host may load the library, use fonts and unload it again and again: every time leaves as much memory as the one
// before.
#include <gtest/gtest.h>

#include <dlfcn.h>
#include <malloc.h>

#include <cstdlib>
#include <cstring>

#include "GX/GX.h"

namespace {

template <class F> F* Find(void* library, const char* name) {
    void* const symbol = dlsym(library, name);
    EXPECT_NE(symbol, nullptr) << name;
    return reinterpret_cast<F*>(symbol);
}

void LoadUseUnload() {
    void* const library = dlopen(GX_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << dlerror();
    const uint16_t family[] = {'S', 'a', 'n', 's', 0};
    GXFontFace face = nullptr;
    float size[2] = {};
    ASSERT_EQ(Find<decltype(GXCreateFontFace)>(library, "GXCreateFontFace")(family, 0, 12.0F, &face), GXResultSuccess);
    ASSERT_EQ(Find<decltype(GXFontFaceCalculateTextBound)>(library, "GXFontFaceCalculateTextBound")(face, family, size),
              GXResultSuccess);
    EXPECT_GT(size[0], 0.0F);
    Find<decltype(GXObjectRelease)>(library, "GXObjectRelease")(face);
    ASSERT_EQ(dlclose(library), 0);
}

} // namespace

TEST(Unload, LeavesNoMoreMemoryEachTime) {
    LoadUseUnload();
    EXPECT_EQ(dlopen(GX_LIBRARY, RTLD_NOW | RTLD_NOLOAD), nullptr) << "it is still there";
    LoadUseUnload();
#if defined(__GLIBC__) && !defined(__SANITIZE_ADDRESS__)
    // Blocks in a thread's cache count as used: the comparison needs it off.
    const char* const tunables = std::getenv("GLIBC_TUNABLES");
    const bool exact = tunables != nullptr && std::strstr(tunables, "tcache_count=0") != nullptr;
    const size_t before = mallinfo2().uordblks;
    LoadUseUnload();
    LoadUseUnload();
    if (exact) {
        EXPECT_LE(mallinfo2().uordblks, before);
    } else {
        GTEST_SKIP() << "not with GLIBC_TUNABLES=glibc.malloc.tcache_count=0";
    }
#else
    LoadUseUnload(); // the checker counts
#endif
}
