#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Makes the packages: graphics-runtime, graphics-dev, graphics-tools, graphics-viewer and python3-gxgraphics for Debian, a .tar.gz
# for other systems with the same C library or a newer one, and a .zip for Windows, with their checksums. The same commit gives
# the same bytes.
#
#   tools/package.sh [folder] [--no-windows] [--arm64]    the folder is build/packages without one
#
# --arm64 makes the Debian packages and the .tar.gz for 64-bit ARM, too.
#
# SOURCE_DATE_EPOCH, the time that the files get, is that of the last commit unless it is set.
set -euo pipefail

here=$PWD
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source tools/setup.sh

folder=$PWD/build/packages
windows=1
arm64=
for argument in "$@"; do
    case $argument in
    --no-windows) windows= ;;
    --arm64) arm64=1 ;;
    -*)
        sed -n '3,11s/^# \{0,1\}//p' "${BASH_SOURCE[0]}" >&2
        exit 2
        ;;
    /*) folder=$argument ;;
    *) folder=$here/$argument ;;
    esac
done

gx_require "${GX_PACKAGES[@]}" "${GX_PACKAGING_PACKAGES[@]}"
[[ -z $windows ]] || gx_require g++-mingw-w64-x86-64-posix llvm-14 libz-mingw-w64-dev

if [[ -z ${SOURCE_DATE_EPOCH:-} ]]; then
    SOURCE_DATE_EPOCH=$(git log -1 --format=%ct) || gx_die "Not a git checkout: set SOURCE_DATE_EPOCH"
fi
export SOURCE_DATE_EPOCH TZ=UTC # times of a .zip are local ones
umask 022
# Files belong to root in the archives.
as_root=()
((EUID == 0)) || as_root=(fakeroot)

mkdir -p "$folder"
rm -f "$folder"/{graphics[-_],python3-gxgraphics_}* "$folder/SHA256SUMS"

# pack PRESET GENERATOR BUILD-FOLDER
pack() {
    gx_build "$1"
    rm -rf "$3/_CPack_Packages" "$3/cpack"
    "${as_root[@]}" env LC_ALL=C cpack --config "$3/CPackConfig.cmake" -G "$2" -B "$PWD/$3/cpack"
    find "$3/cpack" -maxdepth 1 -type f -exec mv -t "$folder" {} +
}
# repack FILE: packs an archive of CPack's anew, which takes the files of a folder in the order in which the disk has them.
repack() {
    local scratch
    scratch=$(mktemp -d)
    case $1 in
    *.tar.gz)
        tar -xzf "$1" -C "$scratch"
        (cd "$scratch" && tar --sort=name --mtime="@$SOURCE_DATE_EPOCH" --owner=0 --group=0 --numeric-owner -c graphics-*) |
            gzip -9n >"$1.new"
        ;;
    *.zip)
        unzip -q "$1" -d "$scratch"
        find "$scratch" -exec touch -h -d "@$SOURCE_DATE_EPOCH" {} +
        (cd "$scratch" && find . -type f -printf '%P\n' | LC_ALL=C sort | zip -q -X -9 -@ "$1.new")
        ;;
    esac
    rm -rf "$scratch"
    mv "$1.new" "$1"
}
pack package-debian DEB build/package
# same_symbols ARCHITECTURE BUILD-FOLDER: the list of symbols in the package is the list in the library.
same_symbols() {
    local listed tree=$PWD
    listed=$(mktemp -d)
    mkdir -p "$listed/debian"
    printf 'Source: graphics\n\nPackage: graphics-runtime\nArchitecture: any\n' >"$listed/debian/control"
    (cd "$listed" && dpkg-gensymbols -c4 "-a$1" -pgraphics-runtime \
        -v"$(dpkg-deb -f "$folder"/graphics-runtime_*_"$1".deb Version)" -I"$tree/$2/packaging/control/symbols" \
        -e"$(readlink -f "$tree/$2/lib/libGraphics.so")" -O/dev/null) ||
        gx_die "packaging/debian/graphics-runtime.symbols.in does not list what the library exports"
    rm -rf "$listed"
}
same_symbols "$(dpkg --print-architecture)" build/package
pack package-archive TGZ build/package
repack "$folder"/graphics-*.tar.gz
if [[ -n $arm64 ]]; then
    source tools/package_arm64.sh
fi
if [[ -n $windows ]]; then
    pack package-windows ZIP build/package-windows
    repack "$folder"/graphics-*.zip
fi

(cd "$folder" && sha256sum {graphics[-_],python3-gxgraphics_}* | LC_ALL=C sort -k 2 >SHA256SUMS)
gx_say "Packages in $folder"
cat "$folder/SHA256SUMS"
