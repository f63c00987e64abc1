#!/bin/sh
# Makes the two compressed recordings of the scene. Run manually; needs sox and lame. The results are
# committed.
set -e
cd "$(dirname "$0")/sounds"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
sox -n -r 22050 -c 1 -b 16 "$work/bell.wav" synth 2.4 sine 523 sine 1318 sine 2217 remix - fade l 0.005 2.4 2.3 gain -n -6
lame --quiet -m m -b 48 "$work/bell.wav" bell.mp3
sox -n -r 11025 -c 1 -e ms-adpcm radio.wav synth 3 square 440 gain -12 tremolo 4 60 lowpass 2500 gain -n -9
