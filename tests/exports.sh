#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# exports.sh HEADER NM LIBRARY: fails unless the shared object exports exactly the functions that the header declares.
# exports.sh HEADER OBJDUMP LIBRARY.dll NM IMPORT-LIBRARY...: the same for a DLL; it may need DLLs of the system only, and
# its import libraries must offer the same names.
set -euo pipefail
export LC_ALL=C
header=$1 tool=$2 library=$3

declared=$(grep -oE '^GX_API GXResult GX[A-Za-z0-9]+' "$header" | awk '{ print $3 }' | sort)
count=$(wc -l <<<"$declared")
if [[ $count != 121 || $(uniq <<<"$declared" | wc -l) != 121 ]]; then
    echo "The header declares $count functions instead of 121."
    exit 1
fi

# compare WHAT NAMES
compare() {
    local difference
    if ! difference=$(diff <(echo "$declared") <(echo "$2")); then
        echo "The functions of $1 are not those of the header (< missing, > too much):"
        grep '^[<>]' <<<"$difference"
        exit 1
    fi
}

if [[ $library != *.dll ]]; then
    # A version node of a linker script is listed as an absolute symbol of type A: it is a name, not an entry.
    compare "$library" "$("$tool" -D --defined-only "$library" | awk '$2 != "A" { sub(/@.*/, "", $NF); print $NF }' | sort -u)"
else
    compare "$library" "$("$tool" -p "$library" | tr -d '\r' |
        awk '/Ordinal\/Name Pointer/ { on = 1; next } on && !NF { exit } on { print $NF }' | sort)"
    foreign=$("$tool" -p "$library" | awk '/DLL Name/ { print tolower($3) }' |
        grep -vxE '(kernel32|msvcrt|user32|gdi32|gdiplus|ole32|d3d11|dxgi|winspool)\.(dll|drv)|api-ms-win-.*' || true)
    [[ -z $foreign ]] || { echo "Needs more than the system: $foreign"; exit 1; }
    nm=$4
    for import in "${@:5}"; do
        compare "$import" "$("$nm" "$import" 2>/dev/null | awk '$2 == "T" && $3 ~ /^GX/ { print $3 }' | sort -u)"
    done
fi
echo "$count functions exported, nothing else."
