// SPDX-License-Identifier: MIT
// What the runner asks of an engine. All engines of a scene draw into the same memory, one after another.
#pragma once

#include <memory>

#include "Scene.h"

namespace Bench {

/// 32-bit premultiplied pixels; rows start on cache lines.
struct Canvas {
    uint32_t* pixels = nullptr;
    int width = 0, height = 0;
    int stride = 0; ///< bytes
};

/// A scene made ready in an engine's own terms.
class Drawing {
public:
    virtual ~Drawing() = default;
    /// Draws everything once; this alone is timed.
    virtual void Draw() = 0;
    /// Brings what was drawn into the canvas, for engines that delay.
    virtual void Flush() {}
};

struct Engine {
    const char* name;
    /// Null when the engine does not offer what the scene needs.
    std::unique_ptr<Drawing> (*prepare)(const Scene& scene, const Canvas& canvas);
};

extern const Engine kGraphics;     ///< with stroke adjustment, as a target begins
extern const Engine kGraphicsFree; ///< without
extern const Engine kCairo;
extern const Engine kAgg;
extern const Engine kQt;
/// The limit: rows of opaque aligned rectangles set with memset.
extern const Engine kMemset;

} // namespace Bench
