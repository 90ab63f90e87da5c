#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# arm64.sh [--all]: builds for 64-bit ARM and tests under QEMU, with plain kernels and with those of NEON. Without --all it
# does what tells most in a few minutes: every recorded page, the pages and calls that every set of kernels draws, and the
# kernels' own tests; with it, the whole build and every test of it. Ends with 77 where the packages cannot be had.
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."
source tools/setup.sh
(gx_require "${GX_ARM64_PACKAGES[@]}" && tools/sysroot.sh) || {
    echo "No packages for arm64: the build for 64-bit ARM and its tests are left out"
    exit 77
}

failed=()
if [[ ${1:-} == --all ]]; then
    gx_build arm64 -DGX_WERROR=ON
    gx_say "Tests of the build for 64-bit ARM, under QEMU"
    ctest --preset arm64 -j2 || failed+=("tests")
else
    gx_build arm64 -DGX_WERROR=ON -- recording_tests kernel_page_tests exactness_tests
    gx_say "Chosen tests of the build for 64-bit ARM, under QEMU"
    run() { timeout 900 cmake/run-arm64 "build/arm64/bin/$1" --gtest_brief=1 "${@:2}" 2>&1; }
    run recording_tests --gtest_filter='Pages/*' >build/arm64/recording.txt &
    pages=$!
    run kernel_page_tests || failed+=("kernel_page_tests")
    run exactness_tests || failed+=("exactness_tests")
    wait "$pages" || failed+=("recording_tests")
    cat build/arm64/recording.txt
fi

if command -v clang++-14 >/dev/null; then
    gx_say "Building the library for 64-bit ARM with Clang 14"
    # Not optimized: it is compiled for what a second compiler warns about.
    { cmake --preset arm64-clang -DGX_WERROR=ON -DGX_BUILD_TESTS=OFF -DGX_BUILD_EXAMPLES=OFF -DCMAKE_CXX_FLAGS_RELEASE=-DNDEBUG &&
        cmake --build --preset arm64-clang; } || failed+=("Clang build")
fi

((${#failed[@]} == 0)) || gx_die "64-bit ARM failed: ${failed[*]}"
