#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# tests/package/arm64.sh PACKAGES: unpacks the packages for 64-bit ARM that tools/package.sh --arm64 made beside the libraries of
# the sysroot, looks at what they say of themselves, builds the example there with CMake and with pkg-config, does the same with
# the archive in another place, and runs what was built, and the tools, under QEMU.
set -euo pipefail

packages=$(cd "$1" && pwd)
tree=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
cd "$tree"
source tools/setup.sh
fail() { gx_die "FAILED: $*"; }
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

gx_say "What the packages say"
for name in runtime dev tools; do
    file=$(echo "$packages"/graphics-"$name"_*_arm64.deb)
    [[ -f $file && $(dpkg-deb -f "$file" Architecture) == arm64 ]] || fail "graphics-$name is not a package for arm64"
done
depends=$(dpkg-deb -f "$packages"/graphics-runtime_*_arm64.deb Depends)
for library in libc6 libpng16-16 libjpeg62-turbo libtiff6 libgif7 libfreetype6 libfontconfig1 libstdc++6; do
    [[ $depends == *"$library (>= "* ]] || fail "graphics-runtime does not depend on a version of $library: $depends"
done

# A second root with the same files, in which the packages may be unpacked.
root=$scratch/root
cp -al build/arm64-sysroot "$root"
for file in "$packages"/*_arm64.deb; do
    dpkg-deb --fsys-tarfile "$file" | tar -x -C "$root" --keep-directory-symlink --no-same-owner
done
while IFS= read -r program; do
    machine=$(aarch64-linux-gnu-readelf -h "$program" | sed -n 's/^ *Machine: *//p')
    [[ $machine == AArch64 ]] || fail "$program is for $machine"
done < <(find "$root/usr/lib/aarch64-linux-gnu" "$root/usr/bin" -name 'libGraphics.so.*' -o -name pdfpage -o -name gxreplay)

# host NAME FOLDER LIBRARY-FOLDER [CMake option...]: builds the example both ways and runs it.
host() {
    local name=$1 library=$3 example
    example=$(find "$2" -path '*examples/hello' -type d | head -n 1)
    gx_say "The example with $name"
    cmake -S "$example" -B "$scratch/$name" -DCMAKE_SYSTEM_NAME=Linux -DCMAKE_SYSTEM_PROCESSOR=aarch64 \
        -DCMAKE_C_COMPILER=aarch64-linux-gnu-gcc -DCMAKE_SYSROOT="$root" "${@:4}" >"$scratch/log" &&
        cmake --build "$scratch/$name" >>"$scratch/log" || { cat "$scratch/log" && fail "$name: CMake"; }
    local flags
    flags=$(PKG_CONFIG_LIBDIR=$library/pkgconfig pkg-config --cflags --libs graphics)
    # shellcheck disable=SC2086 # flags are several
    aarch64-linux-gnu-gcc --sysroot="$root" "$example/hello.c" -o "$scratch/$name/hello-pc" $flags
    local program
    for program in hello hello-pc; do
        (cd "$scratch/$name" && qemu-aarch64-static -L "$root" -E LD_LIBRARY_PATH="$library" "./$program" "$program.ppm")
        cmp "$scratch/$name/$program.ppm" "${picture:=$scratch/$name/$program.ppm}" || fail "$name: another picture"
    done
}
host packages "$root/usr" "$root/usr/lib/aarch64-linux-gnu"
mkdir "$scratch/archive-at"
tar -xzf "$packages"/graphics-*-linux-aarch64.tar.gz -C "$scratch/archive-at"
archive=$(echo "$scratch"/archive-at/*)
host archive "$archive" "$archive/lib" -DCMAKE_PREFIX_PATH="$archive" -DCMAKE_FIND_ROOT_PATH_MODE_PACKAGE=BOTH

gx_say "The tools"
run() { qemu-aarch64-static -L "$root" "$@"; }
for bin in "$root/usr/bin" "$archive/bin"; do
    run "$bin/pdfpage" --record "$scratch/page.gxr" tests/pages/corpus/vector_tiger.pdf "$scratch/page.png" || fail "pdfpage"
    sum=$(run "$bin/gxreplay" "$scratch/page.gxr" "$scratch/again.png" --checksum) || fail "gxreplay"
    [[ $sum == "${drawn:=$sum}" && $sum =~ ^[0-9a-f]{16}$ ]] || fail "$bin: another page"
done
echo "The packages for arm64 serve a host"
