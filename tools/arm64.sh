#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# arm64.sh [--all]: builds for 64-bit ARM and tests under QEMU, with plain kernels and with those of NEON. Without --all it
# does what tells most in a few minutes: every recorded page, the pages and calls that every set of kernels draws, and the
# kernels' own tests; with it, the whole build and every test of it, the unit and interface tests and the recorded pages once more
# by plain kernels, and all of these under the checkers of addresses, alignment and undefined behaviour. Ends with 77 where the
# packages cannot be had.
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."
source tools/setup.sh
(gx_require "${GX_ARM64_PACKAGES[@]}" && tools/sysroot.sh "$@") || {
    echo "No packages for arm64: the build for 64-bit ARM and its tests are left out"
    exit 77
}

failed=()
# program PRESET NAME [option...]: a program of tests as a whole, which starts once instead of once for each test.
program() { timeout 7200 cmake/run-arm64 "build/$1/bin/$2" --gtest_brief=1 "${@:3}" || failed+=("$1/$2${GX_TEST_KERNELS:+ by $GX_TEST_KERNELS}"); }
if [[ ${1:-} == --all ]]; then
    gx_build arm64 -DGX_WERROR=ON -- all GraphicsOfKernels
    gx_say "Tests of the build for 64-bit ARM, under QEMU"
    ctest --preset arm64 -j2 || failed+=("tests")
    gx_say "Unit and interface tests and recorded pages by plain kernels"
    export GX_TEST_KERNELS=plain
    program arm64 unit_tests
    QEMU_SET_ENV=LD_PRELOAD=$PWD/build/arm64/lib/kernels/libGraphics.so program arm64 interface_tests
    QEMU_SET_ENV=LD_PRELOAD=$PWD/build/arm64/lib/kernels/libGraphics.so program arm64 recording_tests --gtest_filter='Pages/*'
    unset GX_TEST_KERNELS
    checked=(unit_tests interface_tests recording_tests kernel_page_tests)
    # The checkers' own libraries belong to the cross compiler, and are not in the sysroot.
    for name in libasan.so.8 libubsan.so.1; do
        install -D "$(aarch64-linux-gnu-g++ -print-file-name="${name%.*}" | xargs readlink -f)" "build/arm64-checked/lib/$name"
    done
    gx_build arm64-checked -DGX_BUILD_EXAMPLES=OFF -DGX_BUILD_PAGE_TESTS=OFF -- "${checked[@]}"
    gx_say "The same under the checkers of addresses, alignment and undefined behaviour"
    for name in "${checked[@]}"; do program arm64-checked "$name"; done
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
