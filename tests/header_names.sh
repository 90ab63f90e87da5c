#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Every name that the public header's comments mention is declared in it.
#
# usage: header_names.sh HEADER
set -euo pipefail

# C comments go to one file, all else to another; they do not nest, and no string of the header holds their marks.
names() { grep -oE '\bGX[A-Z][A-Za-z0-9]*' | sort -u; }
comments=$(perl -0777 -ne 'print "$1\n" while m{/\*(.*?)\*/}sg' "$1" | names)
code=$(perl -0777 -pe 's{/\*.*?\*/}{}sg' "$1" | names)

missing=$(comm -23 <(printf '%s\n' "$comments") <(printf '%s\n' "$code"))
if [[ -n $missing ]]; then
    printf 'mentioned in comments of %s, declared nowhere:\n%s\n' "$1" "$missing" >&2
    exit 1
fi
