// SPDX-License-Identifier: MIT
// Lifetime of handles, the thread setting and the diagnostic log.
#include "Guard.h"
#include "Handles.h"
#include "LogSinks.h"
#include "Target/PlatformTargets.h"

using namespace Graphics;

GXResult GXObjectAcquire(void* handle) noexcept {
    if (handle == nullptr) {
        return GXResultInvalidArgument;
    }
    static_cast<GXObjBase*>(handle)->Acquire();
    return GXResultSuccess;
}

GXResult GXObjectRelease(void* handle) noexcept {
    if (handle == nullptr) {
        return GXResultInvalidArgument;
    }
    static_cast<GXObjBase*>(handle)->Release();
    return GXResultSuccess;
}

GXResult GXEnableHWAccelerationForThread() noexcept {
    return Guard([] { EnableHardwareForThread(); });
}

GXResult GXLogSetSink(int32_t key, GXLogProc proc, void* context) noexcept {
    (void)Guard([&] { LogSinks::Instance().Set(key, proc, context); }); // the log never fails a host's call
    return GXResultSuccess;
}
