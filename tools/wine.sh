#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# tools/wine.sh COMMAND [ARGUMENT...]: runs a command, such as `ctest --preset windows`, while Wine is up with a display of
# its own, and takes both down again. The result is the command's. A first start makes the prefix (WINEPREFIX, or
# graphics-wine in the user's cache, 700 MB) in about ten seconds.
set -euo pipefail

(($#)) || { sed -n '3,5s/^# //p' "$0" >&2; exit 2; }
export WINEPREFIX=${WINEPREFIX:-${XDG_CACHE_HOME:-$HOME/.cache}/graphics-wine} WINEARCH=win64 WINEDEBUG=${WINEDEBUG:--all}
export WINEDLLOVERRIDES=${WINEDLLOVERRIDES:-'mscoree=;mshtml=;d3dcompiler_47=n,b'}

die() {
    echo "tools/wine.sh: $*" >&2
    exit 1
}

# The server refuses a prefix directory that is not there.
mkdir -p "$WINEPREFIX"
# One session a prefix at a time: the end of one would stop the other's programs.
exec {lock}>"$WINEPREFIX.lock"
flock -n "$lock" || { echo "tools/wine.sh: waiting for another session in $WINEPREFIX" >&2 && flock "$lock"; }

# Everything that stays running has its streams closed, else it would hold the caller's pipe open; nothing that hangs
# holds up the rest.
quietly() { timeout -k 10 "$@" </dev/null >/dev/null 2>&1 {lock}>&-; }

stop_wine() {
    quietly 60 wineserver -k || true
    quietly 60 wineserver -w || quietly 10 wineserver -k9 || true
}

scratch=$(mktemp -d)
xvfb=
finish() {
    stop_wine
    [[ -z $xvfb ]] || kill "$xvfb" 2>/dev/null || true
    rm -rf "$scratch"
}
trap finish EXIT

# A display whose number is free, told through a pipe once it takes connections. False when the server has ended or takes
# longer than two minutes.
start_display() {
    local second
    rm -f "$scratch/display"
    mkfifo "$scratch/display"
    Xvfb -displayfd 3 -screen 0 1280x1024x24 +extension GLX -nolisten tcp \
        3<>"$scratch/display" </dev/null >/dev/null 2>&1 {lock}>&- &
    xvfb=$!
    for ((second = 0; second < 120; ++second)); do
        if read -r -t 1 number <>"$scratch/display"; then
            export DISPLAY=:$number
            return 0
        fi
        kill -0 "$xvfb" 2>/dev/null || break
    done
    kill "$xvfb" 2>/dev/null || true
    xvfb=
    return 1
}
command -v Xvfb >/dev/null || die "Xvfb is not installed"
start_display || start_display || start_display || die "Xvfb did not start"

cat >"$scratch/quiet.reg" <<'REG'
REGEDIT4

[HKEY_CURRENT_USER\Software\Wine\WineDbg]
"ShowCrashDialog"=dword:00000000

[HKEY_LOCAL_MACHINE\Software\Microsoft\Windows NT\CurrentVersion\AeDebug]
"Auto"="0"

[HKEY_CURRENT_USER\Software\Wine\X11 Driver]
"Managed"="N"
REG

# A server that a session left behind when it was killed would be without a display.
stop_wine
# Wine marks a prefix as up to date before it fills it: one whose making was broken off is filled again.
ready=$WINEPREFIX/graphics-ready
[[ -e $ready ]] || rm -f "$WINEPREFIX/.update-timestamp"
# A crash ends a test without a dialog, and windows do not wait for a window manager that is not there.
# A program that needs long to end counts as killed: what failed is tried again.
quietly 60 wineserver -p || die "the server of Wine did not start"
thrice() { quietly "$@" || quietly "$@" || quietly "$@"; }
thrice 900 wine wineboot || die "Wine did not start"
thrice 300 wine regedit /S "$scratch/quiet.reg" || die "Wine takes no settings"
touch "$ready"

"$@" {lock}>&-
