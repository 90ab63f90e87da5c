// SPDX-License-Identifier: MIT
// Bodies of recorded pages: packed, read as a file is, and played small on a target that must still paint afterwards.
// A body that was cut is tried with zeros behind it, which end every list.
#include <algorithm>
#include <cstdlib>

#include "Container.h"
#include "Recording.h"

namespace {

/// Of a page's sides when it is played.
constexpr float kSide = 64;
/// Of a body: longer ones only cost time.
constexpr size_t kMostBytes = 1U << 16;
/// More than the rest of any command takes.
constexpr size_t kMostZeros = 48;

[[nodiscard]] bool Paints(GXRenderTarget target) {
    const GXRect all{0, 0, kSide, kSide};
    return GXRenderTargetBeginPaint(target) == GXResultSuccess &&
           GXRenderTargetInvertRect(target, &all) == GXResultSuccess &&
           GXRenderTargetEndPaint(target) == GXResultSuccess;
}

[[nodiscard]] bool IsBody(const Gxr::Bytes& body) {
    try {
        Gxr::Interpreter check(body, false);
        check.Run(nullptr, 1.0F);
        return true;
    } catch (const Gxr::Error&) {
        return false;
    }
}

} // namespace

/// What fontconfig makes once and keeps for the process.
extern "C" const char* __lsan_default_suppressions() { return "leak:libfontconfig"; }

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size > kMostBytes) {
        return 0;
    }
    Gxr::Bytes body(data, data + size);
    while (!IsBody(body)) {
        if (body.size() == size + kMostZeros) {
            return 0;
        }
        body.push_back(0);
    }
    try {
        const Gxr::Recording recording(Gxr::Pack(body));
        const auto longest = static_cast<float>(std::max(recording.Page().width, recording.Page().height));
        const float scale = std::min(1.0F, kSide / longest);
        const auto bitmap = Gxr::NewPageBitmap(recording.Page(), scale);
        Gxr::Handle<GXRenderTarget> target;
        if (GXCreateRenderTargetBitmap(bitmap.Get(), target.Out()) != GXResultSuccess || !Paints(target.Get())) {
            return 0; // a format that nothing draws in
        }
        try {
            Gxr::Player player(recording);
            player.Play(target.Get(), scale);
            player.Play(target.Get(), scale);
        } catch (const Gxr::Error&) { // the library refuses an object or a call
        }
        if (!Paints(target.Get())) {
            std::abort();
        }
    } catch (const Gxr::Error&) { // no memory for the page
    }
    return 0;
}
