#!/usr/bin/env bash
# Updates the measured content of docs/effects.md and docs/3d.md with the example: make_docs.sh
# [HARMONET_EFFECTS]
#
# The spectrograms go to docs/effects.png. The tables go between the marks "<!-- rooms -->" or "<!-- places
# -->" and the next "<!-- end -->".
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
program=${1:-build/release/bin/harmonet_effects}

if ! command -v "$program" >/dev/null; then
    echo "make_docs.sh: '$program' is missing; harmonet_effects is a target of the build" >&2
    exit 1
fi

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# --- The sheet of spectrograms ------------------------------------------------------------------------------------

"$program" sounds "$work/sounds"
order=(dry chorus flanger echo distortion compressor equaliser gargle wavesreverb
    room-room room-bathroom room-stonecorridor room-cave room-hangar room-underwater)
# The system's Python, which has Debian's python3-matplotlib.
/usr/bin/python3 examples/effects/plot_spectrograms.py "$work/sounds" docs/effects.png "${order[@]}"

# --- The tables ------------------------------------------------------------------------------------------------------

# insert_table MARK PAGE: replaces the table after MARK in the page with the one that the program prints.
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
