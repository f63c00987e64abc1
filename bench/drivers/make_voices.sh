#!/bin/sh
# Makes the sounds of the driver benchmarks from the music of the decoder benchmarks: mono at 22.05 kHz, typical of games,
# stereo at 44.1 kHz, and a long one.
# Usage: make_voices.sh FOLDER MUSIC_FOLDER.
set -eu
folder=$1 music=$2
mkdir -p "$folder"
sox "$music/music.wav" -r 22050 -c 1 "$folder/wave.wav"
lame --quiet -t -m m -b 64 "$folder/wave.wav" "$folder/mp3.mp3"
cp "$music/music.wav" "$folder/wave-stereo.wav"
cp "$music/mp3-128k.mp3" "$folder/mp3-stereo.mp3"
# Ten minutes.
sox "$music/music.wav" "$folder/long.wav" repeat 9
lame --quiet -t -b 128 "$folder/long.wav" "$folder/mp3-long.mp3"
rm "$folder/long.wav"
