#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# program.sh EMULATOR VIEWER PAGES WORK: the viewer draws its frames and ends with 0; of what it cannot show it says so in
# one line, shows no box and ends with 1.
set -uo pipefail
emulator=$1 viewer=$2 pages=$3 work=$4
rm -rf "$work"
mkdir -p "$work"
cd "$work" || exit 1
failed=0

# expect RESULT TEXT ARGUMENT...: the text is all that the viewer has on the standard error stream. Wine and the drivers
# of the display may have something of their own there.
expect() {
    local result=$1 text=$2 said got
    shift 2
    timeout 300 "$emulator" "$viewer" "$@" >/dev/null 2>said
    got=$?
    said=$(tr -d '\r' <said | grep '^viewer: ')
    [[ $got == "$result" && $said == "$text" ]] && return
    printf 'viewer %s: result %s, "%s"\n  not %s, "%s"\n' "$*" "$got" "$said" "$result" "$text"
    failed=1
}

cp "$pages/text_clip-2.gxr" page.gxr
head -c 700 page.gxr >cut.gxr
{ head -c 600 page.gxr; printf '\377\377'; tail -c +603 page.gxr; } >bent.gxr

expect 0 '' page.gxr --frames 3
expect 0 '' --zoom 12.5 page.gxr --frames 2
expect 0 '' --hw page.gxr --frames 3
expect 1 "viewer: 'cut.gxr': the recording is cut off" cut.gxr --frames 1
expect 1 "viewer: 'bent.gxr': the recording is damaged: wrong checksum" bent.gxr --frames 1
expect 1 "viewer: cannot open 'nowhere.gxr': No such file or directory" nowhere.gxr --frames 1
expect 1 "viewer: '0' is no number that fits" --frames 3 page.gxr --zoom 0
expect 1 "viewer: there is no printer 'None'" page.gxr --print None out.ps
exit $failed
