#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Every relative link and picture of the documentation points to a file, and every picture of the guide is shown.
#
# usage: links.sh ROOT
set -euo pipefail

cd "$1"
failed=0
while IFS= read -r page; do
    while IFS= read -r link; do
        target=${link%%#*}
        [[ -z $target || $target == *://* || -e $(dirname "$page")/$target ]] && continue
        echo "$page: $link leads nowhere" >&2
        failed=1
    done < <(sed '/^```/,/^```/d' "$page" | grep -oP '\]\(\K[^) ]+')
done < <(find README.md CHANGELOG.md CONTRIBUTING.md docs bench/README.md bindings/python/README.md examples -name '*.md')

for picture in docs/guide/*.png; do
    name=${picture##*/}
    grep -qF "($name)" docs/guide/*.md || { echo "$picture is on no page" >&2; failed=1; }
done
exit "$failed"
