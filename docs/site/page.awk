# SPDX-License-Identifier: MIT
# A Markdown page as Doxygen reads it. Links between pages become references; those of an index (docs/README.md and
# docs/guide/README.md) make its entries the pages below it. Links to files that are not on the site show their words
# alone; pages are those of docs and the ones that `others` names. Names of the interface in code letters link to the reference; `header` is the file that declares them.
BEGIN {
    count = split(others, part, " ")
    for (i = 1; i <= count; ++i) other[part[i]]
    while ((getline line <header) > 0) {
        gsub(/^ *\/?\*.*/, "", line)
        while (match(line, /GX[A-Z][A-Za-z0-9]+/)) {
            declared[substr(line, RSTART, RLENGTH)]
            line = substr(line, RSTART + RLENGTH)
        }
    }
}

function page_of(path,    part, kept, count, i, n) {
    count = split(path, part, "/")
    n = 0
    for (i = 1; i <= count; ++i) {
        if (part[i] == "..") --n
        else if (part[i] != "." && part[i] != "") kept[++n] = part[i]
    }
    path = kept[1]
    for (i = 2; i <= n; ++i) path = path "/" kept[i]
    return path
}

function link(words, target,    path) {
    if (target ~ /^https?:/ || target ~ /^#/) return "[" words "](" target ")"
    path = page_of(folder "/" target)
    if (path !~ /^docs\/.*\.md$/ && !(path in other)) {
        if (path !~ /GX\.h$/) return words
        gsub(/`/, "", words)
        return "@ref GX.h \"" words "\""
    }
    gsub(/`/, "", words)
    sub(/\.md$/, "", path)
    gsub(/[^A-Za-z0-9]/, "_", path)
    return (index_page && path !~ /^md_README/ ? "@subpage" : "@ref") " md_" path " \"" words "\""
}

FNR == 1 {
    # Seen from the top folder, which is the one of other pages.
    folder = match(FILENAME, /docs(\/[a-z]+)?\/[^\/]*$/) ? substr(FILENAME, RSTART) : ""
    for (path in other)
        if (substr(FILENAME, length(FILENAME) - length(path)) == "/" path) folder = path
    sub(/[^\/]*$/, "", folder)
    index_page = FILENAME ~ /docs\/(guide\/)?README\.md$/
}
/^```/ { fenced = !fenced }
!fenced && !/^    / {
    out = ""
    rest = $0
    while (match(rest, /!?\[[^][]*\]\([^() ]*\)/)) {
        before = substr(rest, 1, RSTART - 1)
        whole = substr(rest, RSTART, RLENGTH)
        rest = substr(rest, RSTART + RLENGTH)
        split(whole, part, /\]\(/)
        out = out before (whole ~ /^!/ ? whole : link(substr(part[1], 2), substr(part[2], 1, length(part[2]) - 1)))
    }
    rest = out rest
    out = ""
    while (match(rest, /`GX[A-Z][A-Za-z0-9]+`/)) {
        name = substr(rest, RSTART + 1, RLENGTH - 2)
        out = out substr(rest, 1, RSTART - 1) (name in declared ? "#" name : "`" name "`")
        rest = substr(rest, RSTART + RLENGTH)
    }
    $0 = out rest
}
{ print }
