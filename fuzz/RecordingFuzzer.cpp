// SPDX-License-Identifier: MIT
// Bodies of recorded pages: packed, read as a file is, and played small on a target that must still paint afterwards.
// Zeros follow the input, which end every list, so that a body that was cut is a body.
#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "Container.h"
#include "Recording.h"

namespace {

/// Of a page's sides when it is played.
constexpr float kSide = 64;
/// Objects and drawings cost what the bytes say, at most this often.
constexpr size_t kMostBytes = 1U << 16;

void PaintsStill(GXRenderTarget target) {
    const GXRect all{0, 0, kSide, kSide};
    const GXResult results[] = {GXRenderTargetBeginPaint(target), GXRenderTargetInvertRect(target, &all),
                                GXRenderTargetEndPaint(target)};
    if (std::any_of(std::begin(results), std::end(results), [](GXResult r) { return r != GXResultSuccess; })) {
        std::abort();
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
    body.resize(size + 1024);
    try {
        const Gxr::Recording recording(Gxr::Pack(body));
        const auto longest = static_cast<float>(std::max(recording.Page().width, recording.Page().height));
        const float scale = std::min(1.0F, kSide / longest);
        const auto bitmap = Gxr::NewPageBitmap(recording.Page(), scale);
        Gxr::Handle<GXRenderTarget> target;
        if (GXCreateRenderTargetBitmap(bitmap.Get(), target.Out()) != GXResultSuccess) {
            return 0; // a format that nothing draws in
        }
        try {
            Gxr::Player player(recording);
            player.Play(target.Get(), scale);
            player.Play(target.Get(), scale);
        } catch (const Gxr::Error&) { // the library refuses an object or a call
        }
        PaintsStill(target.Get());
    } catch (const Gxr::Error&) { // refused
    }
    return 0;
}
