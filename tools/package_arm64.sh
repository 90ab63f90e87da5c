# SPDX-License-Identifier: MIT
# The part of tools/package.sh for 64-bit ARM: the same packages from the cross build. Sourced, not run. Dependencies are those of
# the libraries in the sysroot, by its own records: dpkg-shlibdeps, which CPack calls, is told to look there.
gx_require "${GX_ARM64_PACKAGES[@]}"
tools/sysroot.sh --all
arm64_sysroot=$PWD/build/arm64-sysroot
arm64_records=$(mktemp -d)
cp -r "$arm64_sysroot/var/lib/dpkg/." "$arm64_records/"
# Files are looked up by the paths at which they lie; some packages still say /lib.
for list in "$arm64_records"/info/*.list; do
    sed -i -e 's,^/lib/,/usr/lib/,' -e "s,^,$arm64_sysroot," "$list"
done
mkdir "$arm64_records/bin"
cat >"$arm64_records/bin/dpkg-shlibdeps" <<EOF
#!/bin/sh
export DEB_HOST_ARCH=arm64
exec $(command -v dpkg-shlibdeps) --admindir=$arm64_records -l$arm64_sysroot/usr/lib/aarch64-linux-gnu "\$@"
EOF
chmod +x "$arm64_records/bin/dpkg-shlibdeps"

# What is linked in is told by the packages of this machine (packaging/Copyright.cmake).
mupdf() { sed -n '/^Package: libmupdf-dev$/,/^$/s/^Version: //p' "$1"; }
[[ $(mupdf "$arm64_records/status") == "$(mupdf /var/lib/dpkg/status)" ]] ||
    gx_die "libmupdf-dev for arm64 and that of this machine are not of the same version"

host_path=$PATH
PATH=$arm64_records/bin:$PATH
pack package-debian-arm64 DEB build/package-arm64
PATH=$host_path
same_symbols arm64 build/package-arm64
pack package-archive-arm64 TGZ build/package-arm64
repack "$folder"/graphics-*-linux-aarch64.tar.gz
rm -rf "$arm64_records"
