// SPDX-License-Identifier: MIT
#include "Exception.h"

#include "LogSinks.h"

namespace Graphics {

void Raise(const char* function, const char* file, int line, const std::string& message) {
    if (!LogSinks::Instance().Empty()) {
        LogSinks::Instance().Write(std::string("Exception in ") + function + " (" + file + ", " + std::to_string(line) +
                                   "):\n\t" + message);
    }
    throw Exception(message);
}

} // namespace Graphics
