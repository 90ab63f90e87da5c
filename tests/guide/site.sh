#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# The site is built without a warning; every function, record, type and constant of the header has a place in it; no link
# or picture in it leads nowhere; no mark of Markdown's is left in the text of a page.
#
# usage: site.sh DOXYGEN FOLDER HEADER       in the top folder; FOLDER has the Doxyfile
set -euo pipefail

doxygen=$1 folder=$2 header=$3
rm -rf "$folder/html"
"$doxygen" "$folder/Doxyfile"

declared=$(perl -0777 -pe 's{/\*.*?\*/|//[^\n]*}{}sg' "$header" | grep -oP '\bGX[A-Z][A-Za-z0-9]*\b' | sort -u)
shown=$(grep -oP '<(name|enumvalue)\b[^>]*>\KGX[A-Z][A-Za-z0-9]*(?=</)' "$folder/graphics.tag" | sort -u)
count=$(wc -l <<<"$declared")
missing=$(comm -23 <(printf '%s\n' "$declared") <(printf '%s\n' "$shown"))
[[ -z $missing ]] || { printf 'not in the reference:\n%s\n' "$missing" >&2; exit 1; }

cd "$folder/html"
broken=$(grep -oP '(?:href|src)="\K[^"#:]+(?=[#"])' -- *.html | sort -u | while IFS=: read -r page link; do
    [[ -e ${link%%\?*} ]] || echo "$page: $link"
done)
[[ -z $broken ]] || { printf 'leads nowhere:\n%s\n' "$broken" >&2; exit 1; }
marks=$(perl -0777 -ne 's{<(pre|div class="line").*?</(pre|div)>}{}sg; print "$ARGV: $1\n" while /([^<>\n]*(?:\*\*|`)[^<>\n]*)/g' \
    md_*.html index.html)
[[ -z $marks ]] || { printf 'not read as Markdown:\n%s\n' "$marks" >&2; exit 1; }
printf '%s names, %s pages, %s pictures\n' "$count" "$(ls -- *.html | wc -l)" "$(ls -- *.png | wc -l)"
