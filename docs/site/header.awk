# SPDX-License-Identifier: MIT
# The public header as Doxygen reads it. A comment of one line that stands alone, as the header heads its sections with,
# becomes a group; the comment of a function that `pictures` lists gets its picture and the page of the guide about it; a
# comment of several fields stands before each of them.
BEGIN {
    while ((getline line <pictures) > 0) {
        if (split(line, field, "\t") < 3 || line ~ /^#/) continue
        gsub(/-/, "_", field[3])
        addition[field[1]] = (field[2] == "-" ? "" : "@image html " field[2] ".png\n\n") "@see @ref md_docs_guide_" field[3] "\n"
        used[field[1]] = 0
    }
}

# Names of the interface as references.
function linked(text,    out) {
    out = ""
    while (match(text, /[#A-Za-z0-9_]*GX[A-Z][A-Za-z0-9]+/)) {
        out = out substr(text, 1, RSTART - 1) (substr(text, RSTART, 2) == "GX" ? "#" : "") substr(text, RSTART, RLENGTH)
        text = substr(text, RSTART + RLENGTH)
    }
    return out text
}

function flush_comment(name,    text) {
    text = linked(comment)
    comment = ""
    if (text == "") return
    if (name in addition) {
        used[name] = 1
        sub(/ *\*\/\n$/, "\n\n" addition[name] "*/\n", text)
    }
    printf "%s", text
}

/^\/\* .* \*\/$/ {
    title = substr($0, 4, length($0) - 6)
    id = tolower(title)
    gsub(/[^a-z0-9]+/, "_", id)
    if (group++) print "/** @} */"
    print "/** @defgroup " id " " title "\n * @{ */"
    next
}
/^#ifdef __cplusplus$/ && group { print "/** @} */"; group = 0 }
/^ *\/\*\*/ { comment = $0 "\n"; inside = $0 !~ /\*\/$/; next }
inside { comment = comment $0 "\n"; if (/\*\/$/) inside = 0; next }
comment != "" && /^    [a-zA-Z0-9_]+ [a-zA-Z0-9, ]+;$/ {
    match($0, /^    [a-zA-Z0-9_]+ /)
    type = substr($0, 1, RLENGTH)
    count = split(substr($0, RLENGTH + 1, length($0) - RLENGTH - 1), names, ", ")
    for (i = 1; i <= count; ++i) printf "%s%s%s;\n", linked(comment), type, names[i]
    comment = ""
    next
}
{
    match($0, /GX[A-Z][A-Za-z0-9]* *\(/)
    name = substr($0, RSTART, RLENGTH)
    sub(/ *\($/, "", name)
    flush_comment(/^GX_API / ? name : "")
    print
}

END {
    for (name in used)
        if (!used[name]) print "#warning docs/site/pictures.txt names " name ", which the header does not declare"
}
