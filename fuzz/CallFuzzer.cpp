// SPDX-License-Identifier: MIT
// Sequences of calls of the C interface: each byte of the input is a choice. The host's memory around the pixels and
// the answers are checked after every call.
#include <cstdint>
#include <cstdlib>

#include "../tests/interface/CallStream.h"

namespace {

/// Zeros when the bytes are used up.
class ByteChoice final : public CallChoice {
public:
    ByteChoice(const uint8_t* data, size_t size) noexcept : m_next(data), m_end(data + size) {}

    uint32_t Below(uint32_t n) noexcept override {
        uint32_t value = Byte();
        if (n > 256) {
            value = value << 8 | Byte();
        }
        return value % n;
    }
    [[nodiscard]] bool Done() const noexcept { return m_next == m_end; }

private:
    uint32_t Byte() noexcept { return Done() ? 0 : *m_next++; }

    const uint8_t* m_next;
    const uint8_t* m_end;
};

} // namespace

/// What fontconfig makes once and keeps for the process.
extern "C" const char* __lsan_default_suppressions() { return "leak:libfontconfig"; }

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    ByteChoice choice(data, size);
    CallStream calls(choice);
    while (!choice.Done()) {
        if (!calls.Call() || !calls.GuardsHold()) {
            std::abort();
        }
    }
    return 0;
}
