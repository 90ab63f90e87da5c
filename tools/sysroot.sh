#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# sysroot.sh [DIRECTORY]: unpacks the headers and libraries that the builds for 64-bit ARM need into a folder, by default
# build/arm64-sysroot, where cmake/arm64-linux.cmake looks for them. The packages come from the machine's own sources for
# Debian, through lists of packages that are kept apart, and are unpacked, not installed: the machine's packages, and the
# architectures that its dpkg knows, stay as they are.
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."
source tools/setup.sh
target=${1:-build/arm64-sysroot}
packages=("${GX_ARM64_LIBRARIES[@]}")

# What a sysroot was made of is noted in it, so that the second call has nothing to do.
if [[ -f $target/.packages && $(<"$target/.packages") == "${packages[*]}" ]]; then
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
for archive in "$scratch"/archives/*.deb; do
    dpkg-deb --fsys-tarfile "$archive" |
        tar -x -C "$scratch/tree" --keep-directory-symlink --no-same-owner --exclude='./usr/share/[!p]*' \
            --exclude='./usr/bin' --exclude='./bin' --exclude='./sbin' --exclude='./usr/sbin' --exclude='./etc' --exclude='./var'
done
# Links to absolute names would lead out of the folder.
while IFS= read -r -d '' link; do
    to=$(readlink "$link")
    ln -sfn "$(realpath -m --relative-to="$(dirname "$link")" "$scratch/tree$to")" "$link"
done < <(find "$scratch/tree" -type l -lname '/*' -print0)

printf '%s\n' "${packages[*]}" >"$scratch/tree/.packages"
mkdir -p "$(dirname "$target")"
rm -rf "$target"
mv "$scratch/tree" "$target"
