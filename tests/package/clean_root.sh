#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# tests/package/clean_root.sh PACKAGES [ROOT]: takes the packages that tools/package.sh made into a bare Debian 12, installs
# them, builds the example there with pkg-config and with CMake and runs it, does the same with the archive unpacked in two
# places, draws a page with the tools, the viewer and from Python, removes the packages and looks for what they left. Needs root
# and mmdebstrap; a ROOT that is there is used as it is and kept.
set -euo pipefail

packages=$(cd "$1" && pwd)
tree=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
root=${2:-}
say() { printf '==> %s\n' "$*"; }
die() {
    printf 'FAILED: %s\n' "$*" >&2
    exit 1
}
scratch=$(mktemp -d)
finish() {
    [[ -z $root ]] || ! mountpoint -q "$root/proc" || umount "$root/proc"
    rm -rf "$scratch"
}
trap finish EXIT

say "lintian"
lintian --allow-root --fail-on error "$packages"/*.deb || die "lintian has errors to report"

if [[ -z $root ]]; then root=$scratch/root; fi
if [[ ! -d $root/usr ]]; then
    say "A bare Debian 12 with a compiler, CMake and pkg-config"
    mmdebstrap --mode=root --variant=minbase --dpkgopt=force-unsafe-io --include=gcc,libc6-dev,cmake,make,pkg-config \
        bookworm "$root"
fi
mountpoint -q "$root/proc" || mount -t proc proc "$root/proc"
cp -L /etc/resolv.conf "$root/etc/resolv.conf"
inside() { chroot "$root" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C DEBIAN_FRONTEND=noninteractive "$@"; }

rm -rf "$root/tmp/packages"
mkdir -p "$root/tmp/packages"
cp "$packages"/*.deb "$packages"/*linux*.tar.gz "$tree/tests/pages/corpus/vector_tiger.pdf" "$root/tmp/packages/"

# The dependencies first, so that what comes and goes after this is the packages alone.
say "Dependencies"
inside apt-get -qq update || die "no lists of packages"
inside sh -c 'apt-get -s install --no-install-recommends /tmp/packages/*.deb' >"$scratch/apt.log" ||
    die "the packages cannot be installed"
mapfile -t wanted < <(awk '$1 == "Inst" && $2 !~ /^(graphics-|python3-gxgraphics$)/ { print $2 }' "$scratch/apt.log")
((${#wanted[@]} == 0)) || inside apt-get -q -y install --no-install-recommends "${wanted[@]}" >"$scratch/apt.log"
# Everything but the package manager's own records and the work folders.
files() {
    (cd "$root" && find . -xdev \( -path ./proc -o -path ./tmp -o -path ./var/lib/dpkg -o -path ./var/lib/apt \
        -o -path ./var/cache/apt -o -path ./var/log \) -prune -o -print) | LC_ALL=C sort
}
inside ldconfig
files >"$scratch/before"

say "Installing the packages"
inside sh -c 'dpkg -i /tmp/packages/*.deb' >"$scratch/dpkg.log" || die "dpkg -i: $(cat "$scratch/dpkg.log")"
inside apt-get check >/dev/null || die "dependencies are missing"

# hello NAME PC-FOLDER CMAKE-PREFIX LIBRARY-FOLDER: the example, built both ways; empty means where the system looks.
hello() {
    say "hello, $1"
    inside sh -euc '
        rm -rf /tmp/hello && mkdir /tmp/hello && cd /tmp/hello
        export PKG_CONFIG_PATH=$1
        gcc "$4/hello.c" -o hello-pc $(pkg-config --cflags --libs graphics)
        LD_LIBRARY_PATH=$3 ./hello-pc pc.ppm
        cmake -S "$4" -B build ${2:+"-DCMAKE_PREFIX_PATH=$2"} >log 2>&1 || { cat log; exit 1; }
        cmake --build build >>log 2>&1 || { cat log; exit 1; }
        build/hello cmake.ppm
        cmp pc.ppm cmake.ppm
        test "$(head -c 2 pc.ppm)" = P6' sh "$2" "$3" "$4" "$5"
    cmp "$root/tmp/hello/pc.ppm" "${picture:-$root/tmp/hello/pc.ppm}"
}
hello "from the installed packages" "" "" "" /usr/share/doc/graphics-dev/examples/hello
cp "$root/tmp/hello/pc.ppm" "$scratch/hello.ppm"
picture=$scratch/hello.ppm

say "The tools"
page() {
    inside sh -euc 'cd /tmp && "$1pdfpage" packages/vector_tiger.pdf 1 page.png --dpi 50 --record page.gxr &&
        "$1gxreplay" page.gxr replay.png --checksum' sh "$1" >"$scratch/page.log"
    tail -n 1 "$scratch/page.log"
}
installed=$(page "")
[[ $installed =~ ^[0-9a-f]{16}$ ]] || die "gxreplay printed no checksum: $installed"
for name in pdfpage gxreplay gxviewer; do
    inside test -s "/usr/share/man/man1/$name.1.gz" || grep -q 'path-exclude.*man' -r "$root/etc/dpkg" ||
        die "no manual page of $name"
done
for name in tools viewer; do
    grep -q "GNU Affero" "$root/usr/share/doc/graphics-$name/copyright" || die "the licence of the $name is not named"
done

# The recorded page once more: in the window's picture and from Python it has the pixels that gxreplay wrote.
say "The viewer and Python"
inside sh -euc 'cd /tmp && python3 - size <<END && gxviewer page.gxr --zoom 1 --at 0,0 --size "$(cat size)" --shot shot.png
import sys, gxgraphics as gx, numpy as np, importlib.metadata
picture = np.asarray(gx.Bitmap.open("replay.png"))
assert np.array_equal(np.asarray(gx.Recording.open("page.gxr").render(1))[..., :3], picture[..., :3])
assert importlib.metadata.version("gxgraphics") == gx.__version__
open(sys.argv[1], "w").write("%dx%d" % picture.shape[1::-1])
END' || die "the recorded page is not drawn"
inside sh -euc 'cd /tmp && python3 -c "import gxgraphics as gx, numpy as np
shot, picture = (np.asarray(gx.Bitmap.open(name))[..., :3] for name in (\"shot.png\", \"replay.png\"))
assert np.array_equal(shot, picture)"' || die "the viewer and Python draw another page"

say "Removing the packages"
inside dpkg --purge python3-gxgraphics graphics-viewer graphics-tools graphics-dev graphics-runtime >"$scratch/dpkg.log"
files >"$scratch/after"
diff "$scratch/before" "$scratch/after" || die "removed, but not without a trace"
! inside ldconfig -p | grep -q Graphics || die "the loader's cache still names the library"
! inside dpkg -l 'graphics-*' python3-gxgraphics 2>/dev/null | grep -q '^[a-z]i' || die "still installed"

# The archive, where no package is, in two places with names that need care.
for place in /tmp/here "/tmp/moved/some where"; do
    rm -rf "${root:?}$place"
    mkdir -p "$root$place"
    tar -xzf "$root"/tmp/packages/*linux*.tar.gz -C "$root$place" --strip-components=1
    # A blank in the path: the shell that calls pkg-config would split it, so that is CMake's and the loader's part alone.
    if [[ $place != *' '* ]]; then
        hello "from the archive in $place" "$place/lib/pkgconfig" "$place" "$place/lib" \
            "$place/share/doc/graphics-dev/examples/hello"
    else
        inside sh -euc 'rm -rf /tmp/hello && cmake -S "$1/share/doc/graphics-dev/examples/hello" -B /tmp/hello \
            "-DCMAKE_PREFIX_PATH=$1" && cmake --build /tmp/hello && /tmp/hello/hello /tmp/hello/cmake.ppm' \
            sh "$place" >"$scratch/log" || die "$(cat "$scratch/log")"
        cmp "$root/tmp/hello/cmake.ppm" "$picture"
    fi
    [[ $(page "$place/bin/") == "$installed" ]] || die "the archive's tools draw another page"
done
rm -rf "$root/tmp/packages" "$root/tmp/here" "$root/tmp/moved" "$root/tmp/hello"
say "All of it works, and nothing is left"
