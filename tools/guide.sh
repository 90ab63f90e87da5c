#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Puts the programs, and what they print, into the pages that show them; with --check only says which pages are not
# up to date. With programs (build/release/bin/guide-NAME) it runs them first, for their pictures and what they print.
# A page names the file, seen from the top folder, in a line before the block:
#
#   <!-- file: examples/guide/paths.cpp -->
#   ```cpp
#   ...
#   ```
#
# The licence line at a file's head is left out.
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."
check=
if [[ ${1:-} == --check ]]; then
    check=yes
    shift
fi
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
for program in "$@"; do
    name=${program##*/guide-}
    (cd "$scratch" && "$program" >printed)
    find "$scratch" -name '*.png' -exec mv -t docs/guide {} +
    if [[ -s $scratch/printed ]]; then mv "$scratch/printed" "docs/guide/$name.txt"; fi
done

stale=()
for page in README.md docs/*.md docs/guide/*.md; do
    grep -q '^<!-- file: ' "$page" || continue
    fresh=$(awk '
        /^<!-- file: .* -->$/ { file = $3 }
        skipping { if (/^```$/) skipping = 0; else next }
        { print }
        /^```./ && file != "" {
            for (number = 0; (more = getline line <file) > 0; ) {
                if (number++ == 0 && line ~ /SPDX-License-Identifier/) continue
                print line
            }
            if (more < 0) { print file " cannot be read" >"/dev/stderr"; exit 1 }
            close(file)
            file = ""
            skipping = 1
        }' "$page")
    [[ "$fresh" == "$(<"$page")" ]] && continue
    stale+=("$page")
    [[ -n $check ]] || printf '%s\n' "$fresh" >"$page"
done

if [[ -n $check ]] && ((${#stale[@]})); then
    printf 'Not up to date (tools/guide.sh renews them):\n' >&2
    printf '  %s\n' "${stale[@]}" >&2
    exit 1
fi
