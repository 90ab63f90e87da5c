#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# tests/package/manual_page.sh PROGRAM PAGE: the manual page has an entry for each option that the program's --help names and
# for no other, and man formats it without a complaint.
set -euo pipefail

program=$1 page=$2
options() { grep -oE -- '(^|[^[:alnum:]-])--[a-z][a-z-]*' | grep -oE -- '--.*' | sort -u; }
help=$("$program" --help)
helped=$(options <<<"$help --help")
# An entry is the line after .TP.
entries=$(awk 'entry { print } { entry = $1 == ".TP" }' "$page" | sed 's/\\-/-/g' | options)
diff <(printf '%s\n' "$helped") <(printf '%s\n' "$entries") || {
    echo "< only in $(basename "$program") --help, > only in $(basename "$page")"
    exit 1
}
if command -v groff >/dev/null; then
    said=$(groff -man -Tascii -ww -z "$page" 2>&1)
    [[ -z $said ]] || { echo "$said"; exit 1; }
fi
