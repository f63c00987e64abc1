#!/usr/bin/env bash
# Makes what docs/effects.md and docs/3d.md show from what the example renders: make_docs.sh [HARMONET_EFFECTS]
#
# The spectrograms go to docs/effects.png, the tables between the marks "<!-- rooms -->" and "<!-- places -->"
# and the next "<!-- end -->".
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
program=${1:-build/release/bin/harmonet_effects}

for tool in sox montage "$program"; do
    if ! command -v "$tool" >/dev/null; then
        echo "make_docs.sh: '$tool' is missing; sox and imagemagick are packages of Debian," \
            "harmonet_effects is a target of the build" >&2
        exit 1
    fi
done

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# --- The sheet of spectrograms ------------------------------------------------------------------------------------

# One side of three seconds, up to 8 kHz, 90 dB from dark to bright, without axes.
make_picture() {
    sox "$work/sounds/$1.wav" -n remix 1 gain -3 rate 16k spectrogram -r -x 300 -y 129 -z 90 -o "$work/$1.png"
}

"$program" sounds "$work/sounds"
order=(dry chorus flanger echo distortion compressor equaliser gargle wavesreverb
    room-room room-bathroom room-stonecorridor room-cave room-hangar room-underwater)
pictures=()
for name in "${order[@]}"; do
    make_picture "$name"
    pictures+=(-label "$name" "$work/$name.png")
done
montage -font DejaVu-Sans -pointsize 12 "${pictures[@]}" -tile 3x -geometry +6+4 -depth 8 -colors 200 \
    -define png:exclude-chunks=date,time -strip PNG8:docs/effects.png

# --- The tables ------------------------------------------------------------------------------------------------------

# insert_table MARK PAGE: puts the table that the program prints for MARK into the page.
insert_table() {
    local mark=$1 page=$2
    "$program" "$mark" "$work" >"$work/$mark.md"
    awk -v mark="<!-- $mark -->" -v table="$work/$mark.md" '
        $0 == "<!-- end -->" { inside = 0 }
        !inside { print }
        $0 == mark {
            inside = 1
            print ""
            while ((getline line < table) > 0)
                print line
            print ""
        }' "$page" >"$work/page.md"
    cp "$work/page.md" "$page"
}

insert_table rooms docs/effects.md
insert_table places docs/3d.md
