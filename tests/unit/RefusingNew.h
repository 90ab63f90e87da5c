// SPDX-License-Identifier: MIT
// The C++ allocator of a test program, which counts and refuses one allocation when it is told to. Its operators lie in
// a source of their own: a compiler that sees one of a pair inlined and the other not takes them for strangers.
#pragma once

#include <cstdint>

namespace RefusingNew {

/// Allocations so far, refused ones included.
[[nodiscard]] int64_t Count() noexcept;
/// Blocks that have not been freed.
[[nodiscard]] int64_t Live() noexcept;
/// The allocation before which Count() gives `number` is refused; none for a negative number.
void Refuse(int64_t number) noexcept;

} // namespace RefusingNew
