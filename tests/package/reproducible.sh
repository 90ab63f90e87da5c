#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# tests/package/reproducible.sh [PACKAGES] [option of tools/package.sh...]: makes the packages again from a clone of the last
# commit, in another folder and without a compiler cache, and compares them byte for byte with PACKAGES (build/packages).
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/../.."
first=${1:-build/packages}
first=$(cd "$first" && pwd)
shift || true
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
git clone -q . "$scratch/a-folder-of-another-length"
env -u CMAKE_C_COMPILER_LAUNCHER -u CMAKE_CXX_COMPILER_LAUNCHER -u SOURCE_DATE_EPOCH \
    "$scratch/a-folder-of-another-length/tools/package.sh" "$scratch/packages" "$@"
failed=0
for file in "$scratch"/packages/{graphics[-_],python3-gxgraphics_}*; do
    if cmp "$file" "$first/$(basename "$file")"; then
        printf 'same: %s\n' "$(basename "$file")"
    else
        failed=1
    fi
done
exit $failed
