#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# postscript.sh EMULATOR PRINT_PAGES PPD WORK PAGE.gxr...: prints the pages on a PostScript printer of Wine, has Ghostscript
# bring them to paper, and compares the paper with the pixels on screen. The result 77 is "no Ghostscript here".
set -euo pipefail

command -v gs >/dev/null || { echo "Ghostscript is not installed"; exit 77; }
emulator=$1 program=$2 ppd=$3 work=$4
shift 4
rm -rf "$work"
mkdir -p "$work"
"$emulator" "$program" print "$ppd" "$work" "$@"
for page in "$work"/*.ps; do
    gs -q -dSAFER -dBATCH -dNOPAUSE -sDEVICE=ppmraw -dGraphicsAlphaBits=4 -r144 -sOutputFile="${page%.ps}.ppm" "$page"
done
"$emulator" "$program" compare "$work" "$@"
