#!/bin/sh
# Makes the two coded recordings of the scene; run by hand, with sox and lame installed. The results are kept in the
# tree.
set -e
cd "$(dirname "$0")/sounds"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
sox -n -r 22050 -c 1 -b 16 "$work/bell.wav" synth 2.4 sine 523 sine 1318 sine 2217 remix - fade l 0.005 2.4 2.3 gain -n -6
lame --quiet -m m -b 48 "$work/bell.wav" bell.mp3
sox -n -r 11025 -c 1 -e ms-adpcm radio.wav synth 3 square 440 gain -12 tremolo 4 60 lowpass 2500 gain -n -9
