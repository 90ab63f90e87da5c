#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Every source as clang-format leaves it; with --tidy also without a word from clang-tidy, on the sources that this platform
# builds (minutes). The versions are those of Debian 12's packages clang-format-14 and clang-tidy-14.
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."
source tools/setup.sh

gx_require clang-format-14
find bench bindings examples fuzz src tests tools -name '*.cpp' -o -name '*.h' -o -name '*.c' |
    xargs clang-format-14 --dry-run -Werror

[[ ${1:-} == --tidy ]] || exit 0
gx_require "${GX_PACKAGES[@]}" clang-tidy-14
cmake --preset release -DCMAKE_EXPORT_COMPILE_COMMANDS=ON >/dev/null
find src -name '*.cpp' | grep -v -e /Windows/ -e /Gdiplus/ -e '/Direct3D11/[^S]' |
    xargs -P "$(nproc)" -n 4 clang-tidy-14 -p build/release --quiet --warnings-as-errors='*'
