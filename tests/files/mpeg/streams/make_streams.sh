#!/bin/sh
# Makes the coded streams of this folder with sox, lame and ffmpeg, and for each the PCM that ffmpeg's float
# decoder gives: every 11th value of the interleaved channels, times 32767, truncated, as 16 bits. Run it by
# hand in this folder; the results are committed.
set -eu
sound=$(mktemp -d)
trap 'rm -rf "$sound"' EXIT

# Plucked strings and bursts of noise, different left and right, so that every kind of block is used.
sox -n -r 48000 -c 2 "$sound/strings.wav" synth 0.6 pluck A3 pluck E4 gain -6
sox -n -r 48000 -c 1 "$sound/burst.wav" synth 0.04 whitenoise fade 0 0.04 0.038 gain -10 pad 0.06 0.1
sox "$sound/burst.wav" "$sound/bursts.wav" repeat 2 remix 1 1v0.3
sox -m "$sound/strings.wav" "$sound/bursts.wav" "$sound/both.wav"

make() # name, rate in Hz, lame arguments...
{
    name=$1 rate=$2
    shift 2
    sox "$sound/both.wav" -r "$rate" -b 16 "$sound/in.wav"
    lame --quiet -t "$@" "$sound/in.wav" "$name.mp3"
    ffmpeg -loglevel error -y -c:a mp3float -i "$name.mp3" -f f32le "$sound/pcm.raw"
    python3 - "$sound/pcm.raw" "$name.ref" <<'END'
import array, sys
values = array.array("f", open(sys.argv[1], "rb").read())[::11]
steps = (max(-32768, min(32767, int(value * 32767))) for value in values)
open(sys.argv[2], "wb").write(array.array("h", steps).tobytes())
END
}

make joint-44100 44100 -m j -b 128
make crc-44100 44100 -m s -b 112 -p
make mono-48000 48000 -m m -a -b 64
make vbr-32000 32000 -m j -V 4
make joint-22050 22050 -m j -b 56
make mono-16000 16000 -m m -a -b 24
# Below the line from which the band tables of decoders differ at this rate.
make joint-24000 24000 -m j -b 56 --resample 24 --lowpass 6
ffmpeg -loglevel error -y -i joint-44100.mp3 -c copy -f wav -bitexact wrapped-44100.wav
