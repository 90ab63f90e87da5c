// SPDX-License-Identifier: MIT
// The engine's exception type and the function that raises it.
#pragma once

#include <stdexcept>
#include <string>

namespace Graphics {

class GraphicsBase {
public:
    virtual ~GraphicsBase() = default;
};

/// Carries the message. Thrown only by Raise, after it has sent the diagnostic line to the log sinks.
class Exception : public std::runtime_error, public GraphicsBase {
public:
    explicit Exception(const std::string& message) : std::runtime_error(message) {}
};

/// Sends "Exception in <function> (<file>, <line>):\n\t<message>" to the log sinks and throws Exception(message).
[[noreturn]] void Raise(const char* function, const char* file, int line, const std::string& message);

} // namespace Graphics

/// `function` is the raiser's qualified name, e.g. "Graphics::ProcessHeap::Alloc". Log readers search for it, so it is
/// part of the interface; SwSoftMaskOp, SwNativeBitmapWrapper, CreateBitmapSampler and Bitmap's Load and Save functions
/// exist only as log names.
#define GX_RAISE(function, message) ::Graphics::Raise(function, __FILE__, __LINE__, message)
