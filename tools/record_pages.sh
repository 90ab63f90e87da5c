#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# tools/record_pages.sh --checksums   draws the recordings of tests/pages/recordings anew and rewrites their CHECKSUMS:
#                                     after a change of the library that is meant to change pixels
# tools/record_pages.sh               also makes the recordings anew from tests/pages/corpus: after a change of the format,
#                                     of the page host or of the list below
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."
source tools/setup.sh
folder=tests/pages/recordings
bin=build/release/bin

pages=(
    blend_images:1 blend_modes:1 blend_modes:2 blend_modes:3 broken_xref:1 cad_pcb:1 cad_pcb:4 charts_dashed:1 form_tax:1
    group_artwork:1 group_knockout:1 group_knockout:2 group_knockout:3 images_1bit:1 images_cmyk:1 images_masked:1
    map_globe:1 page_huge_map:1:40 page_rotated:2 page_tiny:1 scan_page:1 shading_axial:1 shading_freeform:1
    shading_function:1 shading_lattice:2 shading_radial:2 shading_radial:3 slides:1 softmask_alpha:1 softmask_alpha:2
    softmask_backdrop:1 softmask_luminosity:1 solids_clipped:1 stroke_dash_degenerate:1 text_clip:1 text_clip:2
    text_dense:1 text_pattern:1 text_type3_bitmap:1 tiling:1 vector_tiger:1
)

case ${1:-} in
'')
    gx_build release -- pdfpage gxreplay
    rm -f "$folder"/*.gxr
    for entry in "${pages[@]}"; do
        IFS=: read -r name page dpi <<<"$entry"
        "$bin/pdfpage" "tests/pages/corpus/$name.pdf" "$page" --dpi "${dpi:-150}" --record "$folder/$name-$page.gxr"
    done
    ;;
--checksums) gx_build release -- gxreplay ;;
*)
    sed -n '3,6s/^# //p' "$0" >&2
    exit 2
    ;;
esac

for file in "$folder"/*.gxr; do
    printf '%s  %s\n' "$("$bin/gxreplay" "$file" --checksum)" "$(basename "$file")"
done >"$folder/CHECKSUMS.new"
mv "$folder/CHECKSUMS.new" "$folder/CHECKSUMS"
gx_say "$(wc -l <"$folder/CHECKSUMS") recordings, $(du -sh "$folder" | cut -f1)"
