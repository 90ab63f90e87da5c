#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# paper.sh EMULATOR VIEWER PRINT_PAGES PPD PAGES WORK: the viewer prints a page as wide as the paper on the test printer;
# the paper is compared with the pixels on screen. The result 77 is "no Ghostscript here".
set -euo pipefail

command -v gs >/dev/null || { echo "Ghostscript is not installed"; exit 77; }
emulator=$1 viewer=$2 print_pages=$3 ppd=$4 page=$5/form_tax-1.gxr work=$6
rm -rf "$work"
mkdir -p "$work"
cd "$work"
"$emulator" "$print_pages" print "$ppd" "$work" "$5/text_clip-2.gxr" # makes the printer
"$emulator" "$viewer" "$page" --print "Graphics Test Printer" form_tax-1.ps
gs -q -dSAFER -dBATCH -dNOPAUSE -sDEVICE=ppmraw -dGraphicsAlphaBits=4 -r144 -sOutputFile=form_tax-1.ppm form_tax-1.ps
"$emulator" "$print_pages" compare "$work" "$page"
