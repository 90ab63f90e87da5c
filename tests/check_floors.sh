#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# check_floors.sh SOURCE: fails on an #include below SOURCE that points up the house, from one back end into another, at the
# public header from below the roof other than through Types.h, or at intrinsics from outside of Simd/. First it proves on a
# made-up tree that it can fail.
set -euo pipefail

# Prints every wrong arrow below the given source folder.
wrong_arrows() {
    (cd "$1" && find Graphics Interface -name '*.h' -o -name '*.cpp' | sort | xargs grep -HnE '^[[:space:]]*#[[:space:]]*include[[:space:]]*[<"]') |
        awk -v root="$1" '
        function exists(path,    line, status) {
            if (!(path in known)) {
                status = (getline line < (root "/" path))
                close(root "/" path)
                known[path] = status >= 0
            }
            return known[path]
        }
        function folder(path,    parts, count) {
            count = split(path, parts, "/")
            if (parts[1] == "Interface") return "Interface"
            return count > 2 ? parts[2] : "ground"
        }
        BEGIN {
            count = split("ground=0 Portable=1 Windows=1 Simd=1 Geometry=1 Pixels=1 Regions=1 Scan=2 Paint=2 Bitmaps=2 Text=2 Boolean=2 " \
                          "Kernels=2 " \
                          "Drawing=3 Coverage=4 Sources=4 Software=5 Direct3D11=5 Gdiplus=5 Target=6 Interface=7", pairs, " ")
            for (i = 1; i <= count; ++i) {
                split(pairs[i], pair, "=")
                floor[pair[1]] = pair[2]
            }
        }
        {
            # path:line:#include "name"
            path = $0; sub(/:.*/, "", path)
            place = $0; sub(/^[^:]*:/, "", place); sub(/:.*/, "", place)
            quoted = $0 ~ /include[ \t]*"/
            name = $0; sub(/^[^"<]*["<]/, "", name); sub(/[">].*/, "", name)
            where = path ":" place ": "
            from = folder(path)
            if (!(from in floor)) { print where "no floor is known for the folder " from; next }
            if (name == "GX/GX.h" || name == "GX.h") {
                if (from != "Interface" && path != "Graphics/Types.h") print where "only Types.h includes the public header below Interface"
                next
            }
            if (name ~ /(intrin|arm_neon|arm_acle)\.h$/ && from != "Simd") { print where "only Simd/ names the intrinsics of a processor"; next }
            if (!quoted) next
            own = path; sub(/[^\/]*$/, "", own)
            target = own name
            while (sub(/[^\/]+\/\.\.\//, "", target)) {}
            if (!exists(target)) target = "Graphics/" name
            if (!exists(target)) target = "Interface/" name
            if (!exists(target)) { print where name " is not found"; next }
            to = folder(target)
            if (!(to in floor)) print where "no floor is known for the folder " to
            else if (floor[to] > floor[from]) print where from " includes " name " of the higher floor " to
            # Software draws what hardware does not.
            else if (from == "Direct3D11" && to == "Software") next
            else if (floor[from] == 5 && floor[to] == 5 && from != to) print where "back end " from " includes " name " of back end " to
        }'
}

prove_that_it_bites() {
    local tree wrong
    tree=$(mktemp -d)
    # shellcheck disable=SC2064
    trap "rm -rf '$tree'" RETURN
    mkdir -p "$tree"/Graphics/{Scan,Geometry,Software,Gdiplus} "$tree"/Interface/GX
    touch "$tree"/Interface/{GX/GX.h,Handles.h} "$tree"/Graphics/{Scan/Rasterizer.h,Geometry/Shape.h,Gdiplus/GdipPen.h}
    echo '#include <GX/GX.h>' >"$tree/Graphics/Types.h"
    echo '#include "../Geometry/Shape.h"' >"$tree/Graphics/Scan/Good.cpp"
    echo '#include "Scan/Rasterizer.h"' >"$tree/Graphics/Geometry/Up.cpp"
    echo '#include "../Gdiplus/GdipPen.h"' >"$tree/Graphics/Software/Sideways.cpp"
    echo '#  include "GX/GX.h"' >"$tree/Graphics/Software/Header.cpp"
    echo '#include "Handles.h"' >"$tree/Graphics/Scan/Roof.cpp"
    echo '#include "Nowhere.h"' >"$tree/Graphics/Scan/Lost.cpp"
    echo '#include <emmintrin.h>' >"$tree/Graphics/Scan/Intrinsics.cpp"
    echo '#include <arm_neon.h>' >"$tree/Graphics/Geometry/Neon.cpp"
    wrong=$(wrong_arrows "$tree" | cut -d: -f1 | sort | xargs)
    [[ $wrong == "Graphics/Geometry/Neon.cpp Graphics/Geometry/Up.cpp Graphics/Scan/Intrinsics.cpp Graphics/Scan/Lost.cpp Graphics/Scan/Roof.cpp Graphics/Software/Header.cpp Graphics/Software/Sideways.cpp" ]] ||
        { echo "The check itself is broken, it found: $wrong"; return 1; }
}

prove_that_it_bites
wrong=$(wrong_arrows "$1")
[[ -z $wrong ]] || { echo "$wrong"; exit 1; }
echo "All includes point down."
