#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# exports.sh NM LIBRARY HEADER: fails unless the library exports exactly the functions that the header declares.
set -euo pipefail
export LC_ALL=C
nm=$1 library=$2 header=$3

# A version node of a linker script is listed as an absolute symbol of type A: it is a name, not an entry.
exported=$("$nm" -D --defined-only "$library" | awk '$2 != "A" { sub(/@.*/, "", $NF); print $NF }' | sort -u)
declared=$(grep -oE '^GX_API GXResult GX[A-Za-z0-9]+' "$header" | awk '{ print $3 }' | sort)

count=$(wc -l <<<"$declared")
if [[ $count != 121 || $(uniq <<<"$declared" | wc -l) != 121 ]]; then
    echo "The header declares $count functions instead of 121."
    exit 1
fi
if ! difference=$(diff <(echo "$declared") <(echo "$exported")); then
    echo "The library's exports are not those of the header (< missing, > too much):"
    grep '^[<>]' <<<"$difference"
    exit 1
fi
echo "$count functions exported, nothing else."
