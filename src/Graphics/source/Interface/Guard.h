// SPDX-License-Identifier: MIT
// The one place where exceptions turn into result codes.
#pragma once

#include <memory>
#include <utility>

#include "Exception.h"
#include "GX/GX.h"

namespace Graphics {

/// Runs `work`; an engine error gives result 5, any other exception 9.
template <class Work> [[nodiscard]] GXResult Guard(Work&& work) noexcept {
    try {
        std::forward<Work>(work)();
        return GXResultSuccess;
    } catch (const Exception&) {
        return GXResultEngineError;
    } catch (...) {
        return GXResultUnexpectedError;
    }
}

/// Makes an object with `make`, wraps it in a new record of type Rec and writes the handle; `out` is untouched on
/// failure.
template <class Rec, class Make> [[nodiscard]] GXResult Create(Rec** out, Make&& make) noexcept {
    return Guard([&] { *out = std::make_unique<Rec>(std::forward<Make>(make)()).release(); });
}

template <class... Pointers> [[nodiscard]] bool AnyNull(const Pointers*... pointers) noexcept {
    return ((pointers == nullptr) || ...);
}

} // namespace Graphics
