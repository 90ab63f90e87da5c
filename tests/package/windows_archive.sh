#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# tests/package/windows_archive.sh ARCHIVE.zip: unpacks the archive for Windows, builds the example with what is in it, with CMake
# and with pkg-config, links a host with the import library for Microsoft's linker, and runs them. Started by tools/wine.sh.
set -euo pipefail

archive=$(readlink -f "$1")
tree=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
unzip -q "$archive" -d "$scratch"
mv "$scratch"/graphics-* "$scratch/unpacked"
unpacked=$scratch/unpacked
hello=$unpacked/share/doc/Graphics/examples/hello
cd "$scratch"

cmake -S "$hello" -B build -DCMAKE_TOOLCHAIN_FILE="$tree/cmake/mingw-w64-x86_64.cmake" \
    -DCMAKE_FIND_ROOT_PATH_MODE_PACKAGE=BOTH -DCMAKE_PREFIX_PATH="$unpacked" >log
cmake --build build >>log
read -ra flags < <(PKG_CONFIG_PATH='' PKG_CONFIG_LIBDIR=$unpacked/lib/pkgconfig pkg-config --cflags --libs graphics)
x86_64-w64-mingw32-gcc-posix "$hello/hello.c" -o build/hello-pc.exe "${flags[@]}"
cp "$unpacked/bin/Graphics.dll" build/
(cd build && "$tree/cmake/run-wine" ./hello.exe cmake.ppm && "$tree/cmake/run-wine" ./hello-pc.exe pc.ppm && cmp cmake.ppm pc.ppm)
[[ $(head -c 2 build/pc.ppm) == P6 ]]

read -r sum recording <"$tree/tests/pages/recordings/CHECKSUMS"
drawn=$("$tree/cmake/run-wine" "$unpacked/bin/gxreplay.exe" "$tree/tests/pages/recordings/$recording" --checksum | tr -d '\r')
[[ $drawn == "$sum" ]] || { echo "$recording was drawn as $drawn, not $sum" >&2; exit 1; }
cp "$tree/tests/pages/recordings/$recording" page.gxr
timeout 120 "$tree/cmake/run-wine" "$unpacked/bin/viewer.exe" page.gxr --frames 1 || { echo "the viewer does not run" >&2; exit 1; }

linker=$(command -v lld-link lld-link-14 | head -n 1)
cmake -DCLANG="$(command -v clang clang-14 | head -n 1)" -DLINKER="$linker" -DSOURCE="$tree/tests/package/host.c" \
    -DINCLUDE="$unpacked/include" -DLIBRARY="$unpacked/lib/Graphics.lib" -DDLL="$unpacked/bin/Graphics.dll" \
    -DWORK="$scratch/import" -DEMULATOR="$tree/cmake/run-wine" -P "$tree/tests/package/ImportLibraryTest.cmake"
echo "The archive serves hosts of both tool chains"
