#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# tools/wine.sh COMMAND [ARGUMENT...]: runs a command, such as `ctest --preset windows`, while Wine is up with a display of
# its own, and takes both down again. The result is the command's. A first start makes the prefix (WINEPREFIX, or
# graphics-wine in the user's cache, 700 MB) in about ten seconds.
set -euo pipefail

(($#)) || { sed -n '3,5s/^# //p' "$0" >&2; exit 2; }
export WINEPREFIX=${WINEPREFIX:-${XDG_CACHE_HOME:-$HOME/.cache}/graphics-wine} WINEARCH=win64 WINEDEBUG=${WINEDEBUG:--all}
export WINEDLLOVERRIDES=${WINEDLLOVERRIDES:-'mscoree=;mshtml=;d3dcompiler_47=n,b'}
# The server refuses a prefix directory that is not there.
mkdir -p "$WINEPREFIX"
# One session a prefix at a time: the end of one would stop the other's programs.
exec {lock}>"$WINEPREFIX.lock"
flock "$lock"

scratch=$(mktemp -d)
xvfb=
finish() {
    wineserver -k </dev/null >/dev/null 2>&1 || true
    wineserver -w </dev/null >/dev/null 2>&1 || true
    [[ -z $xvfb ]] || kill "$xvfb" 2>/dev/null || true
    rm -rf "$scratch"
}
trap finish EXIT

# A display whose number is free, told through a descriptor once it takes connections.
mkfifo "$scratch/display"
Xvfb -displayfd 3 -screen 0 1280x1024x24 +extension GLX -nolisten tcp \
    3<>"$scratch/display" </dev/null >/dev/null 2>&1 {lock}>&- &
xvfb=$!
read -r -t 30 number <>"$scratch/display" || { echo "Xvfb did not start" >&2; exit 1; }
export DISPLAY=:$number

cat >"$scratch/quiet.reg" <<'REG'
REGEDIT4

[HKEY_CURRENT_USER\Software\Wine\WineDbg]
"ShowCrashDialog"=dword:00000000

[HKEY_LOCAL_MACHINE\Software\Microsoft\Windows NT\CurrentVersion\AeDebug]
"Auto"="0"

[HKEY_CURRENT_USER\Software\Wine\X11 Driver]
"Managed"="N"
REG

# Everything that stays running has its streams closed, else it would hold the caller's pipe open. A crash ends a test
# without a dialog, and windows do not wait for a window manager that is not there.
wineserver -p </dev/null >/dev/null 2>&1 {lock}>&-
wine wineboot </dev/null >/dev/null 2>&1 {lock}>&-
wine regedit /S "$scratch/quiet.reg" </dev/null >/dev/null 2>&1 {lock}>&-

"$@" {lock}>&-
