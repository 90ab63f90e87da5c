#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Runs a program of the guide in an empty folder and holds what it prints, and its pictures, pixel by pixel, against
# those beside the pages.
#
# usage: program.sh EMULATOR SAME_PICTURES PAGES FOLDER NAME PROGRAM [ARGUMENT...]
set -euo pipefail

emulator=$1 same=$2 pages=$3 folder=$4/$5 name=$5
shift 5
if [[ -n ${GX_FONT:-} ]] && command -v fc-match >/dev/null && [[ $(fc-match -f '%{family}' "$GX_FONT") != "$GX_FONT" ]]; then
    echo "skipped: $GX_FONT is not installed"
    exit 77
fi

rm -rf "$folder"
mkdir -p "$folder"
cd "$folder"
$emulator "$@" >printed.txt
printed=/dev/null
if [[ -e $pages/$name.txt ]]; then printed=$pages/$name.txt; fi
diff --strip-trailing-cr "$printed" printed.txt

shopt -s nullglob
expected=("$pages/$name.png" "$pages/$name"-*.png)
[[ -e ${expected[0]} ]] || expected=("${expected[@]:1}")
diff <(printf '%s\n' "${expected[@]##*/}") <(printf '%s\n' *.png) || { echo "Other pictures than the page's" >&2; exit 1; }
((${#expected[@]})) || [[ -s printed.txt ]] || { echo "Nothing to compare" >&2; exit 1; }
for picture in "${expected[@]}"; do
    [[ -n ${GX_PICTURES_DIFFER:-} ]] || $emulator "$same" "$picture" "${picture##*/}"
done
