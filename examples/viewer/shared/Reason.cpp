// SPDX-License-Identifier: MIT
#include "Reason.h"

#include <GX/GX.h>

#include <mutex>
#include <utility>

namespace Viewer {
namespace {

constexpr int32_t kKey = 2; // the page host has 1

std::mutex g_mutex;
std::string g_reason;

} // namespace

void ListenToLibrary() {
    GXLogSetSink(
        kKey,
        [](void*, const char* text) {
            try {
                const std::lock_guard lock(g_mutex);
                g_reason = text;
            } catch (...) { // the call itself tells of the failure
            }
        },
        nullptr);
}

std::string WithReason(const std::string& what) {
    const std::lock_guard lock(g_mutex);
    const std::string reason = std::exchange(g_reason, {});
    return reason.empty() ? what : what + " (" + reason + ")";
}

} // namespace Viewer
