#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# display.sh VIEWER PAGES WORK: the viewer in a window on an X server of its own, driven by keys, wheel and pointer. After
# each step the window shows, pixel for pixel, what the viewer writes for the same view without a window.
set -uo pipefail
viewer=$1 pages=$2 work=$3
for program in Xvfb xdotool import compare; do
    command -v $program >/dev/null || { echo "$program is not installed"; exit 77; }
done
rm -rf "$work"
mkdir -p "$work"
cd "$work" || exit 1
failed=0
viewer_pid=""
server_pid=""
trap 'kill $viewer_pid $server_pid 2>/dev/null; wait' EXIT

fail() {
    echo "$*"
    failed=1
}

# until_true COMMAND...: within 40 seconds.
until_true() {
    local left=800
    until "$@"; do
        ((left-- > 0)) || return 1
        sleep 0.05
    done
}

Xvfb -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp 3>display 2>server.log &
server_pid=$!
until_true test -s display || { fail "no X server"; exit 1; }
DISPLAY=:$(cat display)
export DISPLAY
unset WAYLAND_DISPLAY SDL_VIDEODRIVER

start() {
    : >trace
    "$viewer" "$@" --trace --size 640x480 >trace 2>errors &
    viewer_pid=$!
    until_true test -s trace || { fail "no view of $1: $(cat errors)"; exit 1; }
    window=$(xdotool search --onlyvisible --pid $viewer_pid | tail -1)
    xdotool windowfocus "$window"
    view=$(tail -1 trace)
}

changed() { [[ $(tail -1 trace) != "$view" ]]; }

# step WHAT COMMAND...: the command changes the view.
step() {
    local what=$1
    shift
    before=$view
    "$@"
    until_true changed || fail "$what: the view stays $view"
    view=$(tail -1 trace)
}

# number NAME VIEW: of the options of a view; x and y of --at.
number() {
    local words
    read -ra words <<<"${2//,/ }"
    case $1 in
    page) echo "${words[1]}" ;;
    zoom) echo "${words[3]}" ;;
    x) echo "${words[5]}" ;;
    y) echo "${words[6]}" ;;
    pixels) sed 's/.*# \([0-9]*\) pixels.*/\1/' <<<"$2" ;;
    esac
}

# holds WHAT EXPRESSION: of awk, with numbers in it.
holds() { awk "BEGIN { exit !($2) }" || fail "$1: not $2 ($before -> $view)"; }

# shown WHAT FILE...: the window against a picture of the same view.
shown() {
    local what=$1 options different
    shift
    read -ra options <<<"${view%%#*}"
    import -window "$window" "$what.png"
    DISPLAY='' "$viewer" "$@" "${options[@]}" --shot "$what-shot.png" || fail "$what: no picture"
    different=$(compare -metric AE "$what.png" "$what-shot.png" null: 2>&1) && [[ $different == 0 ]] ||
        fail "$what: $different pixels of the window differ ($view)"
}

quit() {
    xdotool key q
    wait $viewer_pid || fail "the viewer ended with $?: $(cat errors)"
    viewer_pid=""
    [[ ! -s errors ]] || fail "the viewer said: $(cat errors)"
}

pdf=$pages/corpus/blend_modes.pdf
start "$pdf"
shown first "$pdf"
holds "first page" "$(number page "$view") == 1"
step "next page" xdotool key Next
holds "next page" "$(number page "$view") == 2"
shown next "$pdf"

# The page's point under the pointer stays there: to half a pixel, before and after.
xdotool mousemove --window "$window" 400 130
for notch in 1 2 3 4 5 6 7 8; do
    step "notch $notch" xdotool click 4
    for axis in "x 400" "y 130"; do
        read -r name at <<<"$axis"
        # Until the page is larger than the window, it stands in the middle.
        ((notch < 5)) || holds "zoom about the pointer" "(($(number "$name" "$before") + $at) / $(number zoom "$before") \
            - ($(number "$name" "$view") + $at) / $(number zoom "$view")) ^ 2 < (1 / $(number zoom "$before")) ^ 2"
    done
done
shown zoomed "$pdf"

# No inertia, and nothing is drawn but the columns (256 wide) and rows that come in sight.
drag() {
    xdotool mousemove --window "$window" 300 200 mousedown 1
    xdotool mousemove --window "$window" $((300 + $1)) $((200 + $2)) mouseup 1
}
step "drag" drag -70 -45
holds "drag" "$(number x "$view") == $(number x "$before") + 70 && $(number y "$view") == $(number y "$before") + 45"
holds "drag draws a strip" "$(number pixels "$view") - $(number pixels "$before") <= 45 * 1024 + 525 * 256"
shown dragged "$pdf"
step "down" xdotool key Down
shown down "$pdf"

step "list" xdotool key t
shown list "$pdf"
step "a page of the list" xdotool mousemove --window "$window" 70 360 click 1
holds "a page of the list" "$(number page "$view") == 3"
step "fitted" xdotool key ctrl+0
shown picked "$pdf"
step "first page" xdotool key Home
step "last page" xdotool key End
holds "last page" "$(number page "$view") == 3"
step "resized" xdotool windowsize "$window" 500 610
shown resized "$pdf"
quit

recordings=("$pages"/recordings/{vector_tiger-1,softmask_alpha-1}.gxr)
start "${recordings[@]}" --list
shown recording "${recordings[@]}"
step "pixel for pixel" xdotool key ctrl+1
step "zoom" xdotool key plus
step "right" xdotool key Right
shown recording-zoomed "${recordings[@]}"
step "next recording" xdotool key n
shown recording-next "${recordings[@]}"
quit
exit $failed
