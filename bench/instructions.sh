#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# instructions.sh [part of scenes' names]: the table "Instructions on 64-bit ARM" of README.md: what the plain kernels and those
# of NEON execute for each scene, counted by a plugin of QEMU. Needs the preset arm64, built with -DGX_BUILD_BENCH=ON.
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."
source tools/setup.sh
gx_require qemu-user gcc
program=build/arm64/bin/gxinstructions
[[ -x $program ]] || gx_die "$program is missing: cmake --preset arm64 -DGX_BUILD_BENCH=ON && ninja -C build/arm64 gxinstructions"

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
gcc -O2 -Wall -Wextra -shared -fPIC bench/CountPlugin.c -o "$scratch/count.so"
qemu-aarch64 -plugin "$scratch/count.so" -L build/arm64-sysroot "$program" "$@" | awk -F '\t' '
    $2 == "plain" { plain[$1] = $3; next }
    {
        ratio = $3 / plain[$1]
        ++scenes; sum += ratio; logs += log(ratio); within += ratio <= 0.4; above += ratio > 1
        if (scenes == 1) printf "%-32s %12s %12s %7s\n", "scene", "plain/1000", "NEON/1000", "ratio"
        printf "%-32s %12d %12d %7.3f\n", $1, plain[$1] / 1000, $3 / 1000, ratio
    }
    END {
        if (!scenes) exit 1
        printf "%d scenes: mean %.3f, geometric mean %.3f, %d at most 0.4, %d above 1\n",
            scenes, sum / scenes, exp(logs / scenes), within, above
    }'
