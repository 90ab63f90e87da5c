#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Draws the gallery and holds it, pixel by pixel, against the pictures of its page; but for the one of text, whose letters
# are those of the machine.
#
# usage: gallery.sh GXGALLERY SAME_PICTURES PAGE FOLDER
set -euo pipefail

rm -rf "$4"
mkdir -p "$4"
"$1" "$4" >/dev/null
diff <(cd "$3" && ls -- *.png) <(cd "$4" && ls -- *.png)
for picture in "$4"/*.png; do
    name=${picture##*/}
    [[ $name == text.png ]] || "$2" "$3/$name" "$picture"
done
