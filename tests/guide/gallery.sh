#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Draws the gallery and holds it, pixel by pixel, against the pictures of its page; but for the one of text, whose letters
# are those of the machine.
#
# usage: gallery.sh EMULATOR GXGALLERY SAME_PICTURES PAGE FOLDER
set -euo pipefail

emulator=$1 gallery=$2 same=$3 page=$4 folder=$5
rm -rf "$folder"
mkdir -p "$folder"
cd "$folder"
$emulator "$gallery" . >/dev/null
diff <(cd "$page" && ls -- *.png) <(ls -- *.png)
for picture in *.png; do
    [[ $picture == text.png ]] || $emulator "$same" "$page/$picture" "$picture"
done
