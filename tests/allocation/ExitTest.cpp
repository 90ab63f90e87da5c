// SPDX-License-Identifier: MIT
// A host's static objects may use the library while the program ends, also those made before the library's own state
// was first used.
#include <cstdio>
#include <cstdlib>

#include "../ScratchFolder.h"
#include "GX/GX.h"

namespace {

void Expect(bool ok, const char* what) {
    if (!ok) {
        std::fprintf(stderr, "at exit: %s\n", what);
        std::_Exit(1);
    }
}

void Count(void* context, const char*) { ++*static_cast<int*>(context); }

struct Host {
    const std::wstring file = (ScratchFolder() / "exit.png").wstring(); // the folder ends after its users
    GXBitmap bitmap = nullptr;
    GXRenderTarget target = nullptr;
    GXBrush brush = nullptr;
    GXFontFace face = nullptr;
    uint32_t ticket = 0;
    int messages = 0;

    void Start() {
        const GXBitmapDesc desc{32, 32, GXPixelFormatPBGRA32, 96.0F, 96.0F};
        const uint16_t name[] = {'S', 'a', 'n', 's', 0};
        Expect(GXCreateBitmap(&desc, &bitmap) == 0 && GXBitmapColorFill(bitmap, nullptr, 0) == 0, "bitmap");
        Expect(GXCreateRenderTargetBitmap(bitmap, &target) == 0 && GXCreateBrushSolidARGB(~0U, &brush) == 0, "target");
        Expect(GXCreateFontFace(name, 0, 12.0F, &face) == 0, "face");
        Expect(GXBitmapCachePut(bitmap, &ticket) == 0, "cache");
        Expect(GXLogSetSink(1, &Count, &messages) == 0, "log");
        Use();
    }

    void Use() {
        const uint16_t text[] = {'A', 'b', 0};
        const GXRect box{2.0F, 2.0F, 30.0F, 30.0F};
        Expect(GXRenderTargetBeginPaint(target) == 0 && GXRenderTargetFillText(target, face, text, brush) == 0 &&
                   GXRenderTargetStrokeEllipse(target, &box, brush, 3.0F, nullptr) == 0 &&
                   GXRenderTargetEndPaint(target) == 0,
               "drawing");
        GXBitmap loaded = nullptr;
        Expect(GXBitmapSaveToFile(bitmap, file.c_str()) == 0 && GXCreateBitmapFromFile(file.c_str(), &loaded) == 0,
               "image files");
        GXObjectRelease(loaded);
        GXBitmap found = nullptr;
        uint64_t inUse = 0;
        Expect(GXBitmapCacheGet(ticket, &found) == 0 && found == bitmap, "the cache's entry");
        Expect(GXBitmapCacheGetMemoryInUse(&inUse) == 0 && inUse == 32 * 32 * 4, "the cache's size");
        const int before = messages;
        Expect(GXRenderTargetEndPaint(target) == GXResultEngineError && messages == before + 1, "the log's sink");
    }

    ~Host() {
        Use();
        Expect(GXBitmapCacheRemove(ticket) == 0 && GXLogSetSink(1, nullptr, nullptr) == 0, "leaving");
        for (void* handle : {static_cast<void*>(face), static_cast<void*>(brush), static_cast<void*>(target),
                             static_cast<void*>(bitmap)}) {
            Expect(GXObjectRelease(handle) == 0, "release");
        }
    }
};

Host g_host; // made before main, ended after everything that main made first

} // namespace

int main() { g_host.Start(); }
