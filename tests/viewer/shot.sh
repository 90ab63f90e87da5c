#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# shot.sh VIEWER PDFPAGE PAGES WORK: pictures of the viewer without a display: a page that is one cell has the pixels that
# the page host writes, on one thread as on three; what cannot be shown is told in one line.
set -uo pipefail
viewer=$1 pdfpage=$2 pages=$3 work=$4
command -v compare >/dev/null || { echo "ImageMagick is not installed"; exit 77; }
unset DISPLAY WAYLAND_DISPLAY SDL_VIDEODRIVER
rm -rf "$work"
mkdir -p "$work"
cd "$work" || exit 1
failed=0

fail() {
    echo "$*"
    failed=1
}

# same WHAT A B: two pictures, pixel for pixel.
same() {
    local different
    different=$(compare -metric AE "$2" "$3" null: 2>&1) && [[ $different == 0 ]] || fail "$1: $different pixels differ"
}

# refused TEXT ARGUMENT...: the text, which may hold patterns, is all that the viewer says.
refused() {
    local text=$1 said
    shift
    said=$(timeout 60 "$viewer" "$@" 2>&1 >/dev/null) && fail "viewer $*: no fault"
    # shellcheck disable=SC2053
    [[ $said == $text ]] || fail "viewer $*: \"$said\", not \"$text\""
}

# 612 x 792 points at 72 dots an inch.
"$pdfpage" "$pages/corpus/vector_tiger.pdf" 1 page.png --dpi 96
size=$(identify -format %wx%h page.png)
"$viewer" "$pages/corpus/vector_tiger.pdf" --zoom 1 --size "$size" --shot whole.png || fail "no picture"
same "a page" page.png whole.png
"$viewer" "$pages/corpus/vector_tiger.pdf" --zoom 1 --size 320x240 --at 100,150 --shot part.png || fail "no part"
convert page.png -crop 320x240+100+150 +repage crop.png
same "a part" crop.png part.png

list=("$pages"/recordings/{blend_modes-1,softmask_alpha-2,images_masked-1}.gxr)
for threads in 1 3; do
    "$viewer" "${list[@]}" --list --page 3 --zoom 2.5 --at 300,500 --size 700x400 --threads $threads \
        --shot recordings-$threads.png || fail "no picture of recordings"
done
same "threads" recordings-1.png recordings-3.png
[[ $(identify -format %wx%h recordings-1.png) == 700x400 ]] || fail "another size than asked for"

head -c 700 "$pages/recordings/text_clip-2.gxr" >cut.gxr
echo "no PDF" >text.pdf
refused "gxviewer: 'cut.gxr': the recording is cut off" cut.gxr --shot out.png
refused "gxviewer: cannot open 'nowhere.pdf': No such file or directory" nowhere.pdf --shot out.png
refused "gxviewer: cannot read 'text.pdf': *" text.pdf --shot out.png
refused "gxviewer: page 4 does not exist, there are 3 pages" "$pages/corpus/blend_modes.pdf" --page 4 --shot out.png
refused "gxviewer: cannot write 'nowhere/out.png'*" "$pages/recordings/page_tiny-1.gxr" --shot nowhere/out.png
refused "gxviewer: one PDF file at a time; only recordings can be several" a.pdf b.pdf --shot out.png
refused "gxviewer: there is no display for a window (DISPLAY is not set); --shot out.png needs none" cut.gxr
[[ ! -e out.png ]] || fail "a picture of what cannot be shown"
exit $failed
