// SPDX-License-Identifier: MIT
// Draws each frame into the memory of a streaming texture of SDL, which SDL then shows. Here into memory, without a
// window; with one, SDL_CreateRenderer takes it and SDL_RenderPresent shows the frame.
#include "Guide.h"

#include <SDL.h>

int main(int, char**) {
    constexpr int kWidth = 240, kHeight = 140;
    if (SDL_Init(0) != 0)
        return 1;
    SDL_Surface* screen = SDL_CreateRGBSurfaceWithFormat(0, kWidth, kHeight, 32, SDL_PIXELFORMAT_ARGB8888);
    SDL_Renderer* renderer = SDL_CreateSoftwareRenderer(screen);

    // RGB888 is blue, green, red and an unused byte: GXPixelFormatBGRX32. Premultiplied alpha goes with a blend mode of
    // its own, see SDL_ComposeCustomBlendMode.
    SDL_Texture* texture =
        SDL_CreateTexture(renderer, SDL_PIXELFORMAT_RGB888, SDL_TEXTUREACCESS_STREAMING, kWidth, kHeight);
    for (int frame = 0; frame < 5; ++frame) {
        // Locked memory is for writing only, and may lie elsewhere in each frame: a target for it, and all of it drawn.
        void* pixels = nullptr;
        int pitch = 0;
        if (SDL_LockTexture(texture, nullptr, &pixels, &pitch) != 0)
            return 1;
        const GXExtBufLayout layout = {kWidth, kHeight, static_cast<float>(pitch), 96, 96};
        Owned<GXRenderTarget> target;
        CHECK(GXCreateRenderTargetExtBuf(pixels, GXPixelFormatBGRX32, &layout, target.Out()));
        CHECK(GXRenderTargetBeginPaint(target));
        CHECK(GXRenderTargetClear(target, 0xFF1D3557));
        for (int i = 0; i <= frame; ++i) {
            const float x = 40 + 40 * static_cast<float>(i);
            const GXRect ball = {x - 22, 48, x + 22, 92};
            const uint32_t light = 0x40 + 0x2Fu * static_cast<uint32_t>(i);
            CHECK(GXRenderTargetFillEllipse(target, &ball, Solid(light << 24 | 0xF4D35E)));
        }
        CHECK(GXRenderTargetEndPaint(target)); // before the memory goes back to SDL
        SDL_UnlockTexture(texture);
        SDL_RenderCopy(renderer, texture, nullptr, nullptr);
        SDL_RenderPresent(renderer);
    }

    // The picture of the last frame, as SDL shows it.
    const auto shown = Guide::MakeBitmap(kWidth, kHeight, GXPixelFormatBGRX32);
    GXBitmapData rows;
    CHECK(GXBitmapLock(shown, nullptr, GXLockWrite, &rows));
    const int read =
        SDL_RenderReadPixels(renderer, nullptr, SDL_PIXELFORMAT_RGB888, rows.data, static_cast<int>(rows.stride));
    CHECK(GXBitmapUnlock(shown));
    CHECK(GXBitmapSaveToFile(shown, L"sdl-texture.png"));
    SDL_DestroyTexture(texture);
    SDL_DestroyRenderer(renderer);
    SDL_FreeSurface(screen);
    SDL_Quit();
    return read == 0 ? 0 : 1;
}
