#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# kernel_symbols.sh NM OBJECT...: fails when an object compiled for one instruction set offers the linker anything but its
# tables. An inline function that it shared with the rest of the program could be kept in its wide form for processors
# that lack the set.
set -euo pipefail

# Reads the output of nm -C --defined-only.
shared_symbols() {
    { grep -E ' [TDBRGWVu] ' || true; } | { grep -vE ' [DR] Graphics::Simd[A-Za-z0-9]+::k[A-Za-z]+$' || true; }
}

proof=$(printf '%s\n' '0 D Graphics::SimdAVX2::kTable' '0 t Graphics::SimdAVX2::Row()' '0 W Graphics::Scale(int)' | shared_symbols)
[[ $proof == '0 W Graphics::Scale(int)' ]] || { echo "The check itself is broken, it found: $proof"; exit 1; }

nm=$1
shift
[[ $# -gt 0 ]] || { echo "No objects"; exit 1; }
shared=$("$nm" -C --defined-only "$@" | shared_symbols)
[[ -z $shared ]] || { echo "$shared"; exit 1; }
echo "$# objects share nothing but their tables."
