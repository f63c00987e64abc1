#!/usr/bin/env bash
# Updates the measured content of docs/effects.md and docs/3d.md with the example: make_docs.sh
# [HARMONET_EFFECTS]
#
# The spectrograms go to docs/effects.png. The tables go between the marks "<!-- rooms -->" or "<!-- places
# -->" and the next "<!-- end -->".
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
program=${1:-build/release/bin/harmonet_effects}
. docs/insert_table.sh

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

insert_table rooms docs/effects.md "$program" rooms "$work"
insert_table places docs/3d.md "$program" places "$work"
