# SPDX-License-Identifier: MIT
# What ./run, ./test and tools/package.sh share: the packages of a Debian 12 machine, and installing those that are not there.
# Sourced, not run.

GX_PACKAGES=(
    cmake ninja-build g++ pkg-config
    libgtest-dev libpng-dev libjpeg-dev libtiff-dev libgif-dev libfreetype-dev libfontconfig-dev libboost-dev zlib1g-dev
    libmupdf-dev libmujs-dev libgumbo-dev libjbig2dec0-dev libopenjp2-7-dev libharfbuzz-dev mupdf-tools
)
# The viewer's window, beside what pdfpage needs.
GX_VIEWER_PACKAGES=(libsdl2-dev)
GX_TEST_PACKAGES=(
    "${GX_VIEWER_PACKAGES[@]}"
    fonts-liberation clang-14 clang-format-14 libpolyclipping-dev pngcheck libtiff-tools libjpeg-turbo-progs imagemagick
    python3-dev python3-setuptools python3-wheel python3-pip python3-cffi python3-numpy python3-pil python3-pytest
    gearman-job-server libgearman-dev
    doxygen groff-base libcairo2-dev libwebp-dev qtbase5-dev
    xvfb xdotool
)
# The Windows build and its tests under Wine; LLD checks the import library for Microsoft's linker.
GX_WINDOWS_PACKAGES=(
    g++-mingw-w64-x86-64-posix googletest lld lld-14 llvm-14 wine wine64 xvfb libgl1 libgl1-mesa-dri fonts-liberation
    fonts-dejavu-core libz-mingw-w64-dev ghostscript
)
# The build for 64-bit ARM and its tests under QEMU; the libraries are for arm64 and go into a folder (tools/sysroot.sh).
GX_ARM64_PACKAGES=(g++-aarch64-linux-gnu qemu-user-static googletest)
GX_ARM64_LIBRARIES=(
    libc6-dev libpng-dev libjpeg-dev libtiff-dev libgif-dev libfreetype-dev libfontconfig-dev zlib1g-dev
    libmupdf-dev libmujs-dev libgumbo-dev libjbig2dec0-dev libopenjp2-7-dev libharfbuzz-dev
)
# For the viewer, and for packages with all that they have on this machine.
GX_ARM64_MORE_LIBRARIES=(libgearman-dev libsdl2-dev)
# What the packages contain beside what ./run builds, so that they are the same on every machine, and what packs them.
GX_PACKAGING_PACKAGES=(
    "${GX_VIEWER_PACKAGES[@]}" libgearman-dev python3-dev python3-cffi
    dpkg-dev fakeroot file binutils zip unzip
)
# It fetches the HLSL compiler, and may have come another way than as a package.
command -v npm >/dev/null || GX_WINDOWS_PACKAGES+=(npm)

gx_say() { printf '\n==> %s\n' "$*"; }

gx_die() {
    printf '%s\n' "$*" >&2
    exit 1
}

# Prints those of the named packages that are not installed, one a line.
gx_missing() {
    local package
    for package in "$@"; do
        [[ $(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null) == installed ]] || printf '%s\n' "$package"
    done
}

# Installs what is missing of the named packages, or names it and stops when this user may not install.
gx_require() {
    command -v dpkg-query >/dev/null || gx_die "This script knows Debian 12 only; elsewhere install by hand: $*"
    local missing=() as_root=()
    mapfile -t missing < <(gx_missing "$@")
    ((${#missing[@]})) || return 0
    if ((EUID != 0)); then
        if command -v sudo >/dev/null && sudo -n true 2>/dev/null; then
            as_root=(sudo -n)
        else
            gx_die "Missing packages (install them as root): apt-get install ${missing[*]}"
        fi
    fi
    gx_say "Installing ${missing[*]}"
    local get=("${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q -y)
    { "${get[@]}" update && "${get[@]}" install --no-install-recommends "${missing[@]}"; } ||
        gx_die "Could not install: ${missing[*]}"
}

# gx_build PRESET [cmake option...] [-- target...]: configures and builds a preset of CMakePresets.json, all of it unless
# targets are named, with the build's progress.
gx_build() {
    local preset=$1 options=() targets=()
    shift
    while (($#)) && [[ $1 != -- ]]; do
        options+=("$1")
        shift
    done
    if (($#)); then targets=(--target "${@:2}"); fi
    gx_say "Building the $preset preset"
    cmake --preset "$preset" "${options[@]}"
    cmake --build --preset "$preset" "${targets[@]}"
}

# gx_shader_compiler DIRECTORY: puts Microsoft's HLSL compiler, out of a package of the npm registry, into the directory;
# the tests of the Direct3D 11 back end need it and are skipped without. Kept in the user's cache between builds.
gx_shader_compiler() {
    local cache=${XDG_CACHE_HOME:-$HOME/.cache}/graphics-d3dcompiler name=d3dcompiler_47.dll scratch
    if [[ ! -f $cache/$name ]]; then
        scratch=$(mktemp -d)
        (cd "$scratch" && npm pack --silent gl@6.0.2 && tar xzf gl-6.0.2.tgz "package/deps/windows/dll/x64/$name" &&
            mkdir -p "$cache" && mv "package/deps/windows/dll/x64/$name" "$cache/") >/dev/null 2>&1 ||
            echo "No HLSL compiler from npm: the tests of Direct3D 11 are skipped"
        rm -rf "$scratch"
    fi
    [[ ! -f $cache/$name ]] || install -m 644 -D "$cache/$name" "$1/$name"
}
