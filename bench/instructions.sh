#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# instructions.sh [part of scenes' names]: the table "Instructions on 64-bit ARM" of README.md: what kernels without vector
# instructions, the plain kernels and those of NEON execute for each scene, counted by a plugin of QEMU. Needs two builds, which
# README.md names.
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."
source tools/setup.sh
gx_require qemu-user gcc
for build in arm64 arm64-scalar; do
    [[ -x build/$build/bin/gxinstructions ]] || gx_die "build/$build/bin/gxinstructions is missing: see bench/README.md"
done

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
gcc -O2 -Wall -Wextra -shared -fPIC bench/CountPlugin.c -o "$scratch/count.so"
count() {
    qemu-aarch64 -plugin "$scratch/count.so" -L build/arm64-sysroot "build/$1/bin/gxinstructions" "${@:2}"
}
count arm64-scalar "$@" >"$scratch/scalar"
count arm64 "$@" >"$scratch/vectors"
awk -F '\t' '
    FILENAME == scalars { if ($2 == "plain") scalar[$1] = $3; next }
    $2 == "plain" { plain[$1] = $3; next }
    {
        ratio = $3 / scalar[$1]
        ++scenes; sum += ratio; logs += log(ratio); within += ratio <= 0.4; above += ratio > 1
        plains += $3 / plain[$1]
        if (scenes == 1)
            printf "%-32s %12s %12s %12s %12s %12s\n", "scene", "scalar/1000", "plain/1000", "NEON/1000", "NEON/scalar",
                "NEON/plain"
        printf "%-32s %12d %12d %12d %12.3f %12.3f\n", $1, scalar[$1] / 1000, plain[$1] / 1000, $3 / 1000, ratio,
            $3 / plain[$1]
    }
    END {
        if (!scenes) exit 1
        printf "%d scenes: NEON / scalar mean %.3f, geometric mean %.3f, %d at most 0.4, %d above 1; NEON / plain mean %.3f\n",
            scenes, sum / scenes, exp(logs / scenes), within, above, plains / scenes
    }' scalars="$scratch/scalar" "$scratch/scalar" "$scratch/vectors"
