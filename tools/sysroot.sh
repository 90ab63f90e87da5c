#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# sysroot.sh [--all]: unpacks the headers and libraries that the build for 64-bit ARM and its chosen tests need into
# build/arm64-sysroot, where cmake/arm64-linux.cmake looks for them; with --all, what every target and the packages need. The
# packages come from the machine's own sources for Debian, through lists of packages that are kept apart, and are unpacked, not
# installed: the machine's packages, and the architectures that its dpkg knows, stay as they are. With --all the folder has dpkg's
# records of them, which name the packages that programs for arm64 depend on.
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."
source tools/setup.sh
target=build/arm64-sysroot
packages=("${GX_ARM64_LIBRARIES[@]}")
more="${packages[*]} ${GX_ARM64_MORE_LIBRARIES[*]}, with records"
[[ ${1:-} != --all ]] || packages+=("${GX_ARM64_MORE_LIBRARIES[@]}")

# What a sysroot was made of is noted in it, so that the second call has nothing to do.
made=${packages[*]}
[[ ${1:-} != --all ]] || made=$more
noted=$(cat "$target/.packages" 2>/dev/null) || true
if [[ $noted == "$made" || $noted == "$more" ]]; then
    exit 0
fi

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
mkdir -p "$scratch"/{lists/partial,archives/partial,tree}
: >"$scratch/status"
cat >"$scratch/apt.conf" <<EOF
APT::Architecture "arm64";
APT::Architectures { "arm64"; };
APT::Install-Recommends "false";
APT::Sandbox::User "";
Acquire::Languages "none";
Dir::State "$scratch";
Dir::State::lists "$scratch/lists";
Dir::State::status "$scratch/status";
Dir::Cache "$scratch";
Dir::Cache::archives "$scratch/archives";
Debug::NoLocking "true";
EOF
fetch() { APT_CONFIG=$scratch/apt.conf apt-get -q -y "$@" >"$scratch/log" 2>&1; }
gx_say "Unpacking libraries for arm64 into $target"
{ fetch update && fetch install --download-only "${packages[@]}"; } || {
    cat "$scratch/log" >&2
    gx_die "The packages for arm64 could not be had: ${packages[*]}"
}

# One folder for /lib and /usr/lib, as on an installed system. Documents and the programs of the packages are of no use here.
mkdir -p "$scratch/tree/usr/lib"
ln -s usr/lib "$scratch/tree/lib"
records=$scratch/tree/var/lib/dpkg
mkdir -p "$records/info"
echo 1 >"$records/info/format"
for archive in "$scratch"/archives/*.deb; do
    dpkg-deb --fsys-tarfile "$archive" |
        tar -x -C "$scratch/tree" --keep-directory-symlink --no-same-owner --exclude='./usr/share/[!p]*' \
            --exclude='./usr/bin' --exclude='./bin' --exclude='./sbin' --exclude='./usr/sbin' --exclude='./etc' --exclude='./var'
    [[ ${1:-} == --all ]] || continue
    rm -rf "$scratch/control"
    dpkg-deb -e "$archive" "$scratch/control"
    sed -e '/^ *$/d' -e 's/^Package: .*/&\nStatus: install ok installed/' "$scratch/control/control" >>"$records/status"
    echo >>"$records/status"
    name=$(dpkg-deb -f "$archive" Package)
    [[ $(dpkg-deb -f "$archive" Multi-Arch) != same ]] || name+=:arm64
    dpkg-deb --fsys-tarfile "$archive" | tar -t | sed -e 's,^\.,,' -e 's,/$,,' >"$records/info/$name.list"
    for file in symbols shlibs; do
        [[ ! -f $scratch/control/$file ]] || cp "$scratch/control/$file" "$records/info/$name.$file"
    done
done
# Links to absolute names would lead out of the folder.
while IFS= read -r -d '' link; do
    to=$(readlink "$link")
    ln -sfn "$(realpath -m --relative-to="$(dirname "$link")" "$scratch/tree$to")" "$link"
done < <(find "$scratch/tree" -type l -lname '/*' -print0)

printf '%s\n' "$made" >"$scratch/tree/.packages"
mkdir -p "$(dirname "$target")"
rm -rf "$target"
mv "$scratch/tree" "$target"
