#!/bin/sh
# Makes one minute of music-like sound with sox and encodes it with lame and sox, for the decoder benchmarks.
# Usage: make_music.sh FOLDER. Existing files are kept.
set -eu
folder=$1
mkdir -p "$folder"
cd "$folder"

# Two seconds with a short sound on each beat.
beats() # name, beats, seconds of one beat, synth arguments...
{
    name=$1 count=$2 length=$3
    shift 3
    sox -n -r 44100 -c 1 hit.wav "$@" pad 0 2
    sox hit.wav beat.wav trim 0 "$length"
    sox beat.wav "$name.wav" repeat $((count - 1))
}

bar() # number, four notes
{
    sox -n -r 44100 -c 2 pluck.wav synth 4 pluck "$2" pluck "$3" pluck "$4" pluck "$5" \
        delay 0 0.5 1 1.5 remix 1,3v0.6,4v0.3 2,4v0.6,3v0.3 gain -3
    sox -n -r 44100 -c 2 strings.wav synth 4 sawtooth "$3" sawtooth "$4" \
        gain -14 lowpass 3000 tremolo 5 30 fade 0.5 4 0.5
    sox -n -r 44100 -c 2 bass.wav synth 4 triangle "$2" triangle "$2" gain -9 lowpass 500
    sox -m pluck.wav strings.wav bass.wav drums.wav "bar$1.wav" gain -n -4 reverb 30
}

if [ ! -e music.wav ]; then
    beats kick 4 0.5 synth 0.25 sine 120:45 fade 0 0.25 0.2
    beats snare 2 1 synth 0.2 pinknoise band 1800 1500 fade 0 0.2 0.18 pad 0.5
    beats hat 8 0.25 synth 0.08 whitenoise gain -6 highpass 6000 fade 0 0.08 0.07
    sox -M kick.wav snare.wav hat.wav drums.wav remix 1v0.8,2v0.6,3v0.4 1v0.8,2v0.5,3v0.6 repeat 1
    bar 1 C2 E3 G3 C4
    bar 2 A1 C3 E3 A3
    bar 3 F1 A2 C4 F4
    bar 4 G1 B2 D3 G4
    sox bar1.wav bar2.wav bar3.wav bar4.wav bar1.wav bar3.wav bar2.wav bar4.wav \
        bar1.wav bar2.wav bar3.wav bar4.wav bar2.wav bar3.wav bar1.wav all.wav
    sox all.wav -b 16 music.wav trim 0 60
    rm -f kick.wav snare.wav hat.wav hit.wav beat.wav drums.wav pluck.wav strings.wav bass.wav bar?.wav all.wav
fi

code() # file, lame arguments...
{
    name=$1
    shift
    [ -e "$name" ] || lame --quiet -t "$@" music.wav "$name"
}
code mp3-128k.mp3 -m j -b 128
code mp3-320k.mp3 -m s -b 320
code mp3-v2.mp3 -V 2
code mp3-mono.mp3 -m m -a -b 64
code mp3-mpeg2.mp3 -m j --resample 22.05 -b 64

# ADPCM, together with the PCM that sox decodes from it.
code_adpcm() # name, sox arguments for the output...
{
    name=$1
    shift
    [ -e "$name.pcm" ] && return
    sox -R music.wav "$@" -e ms-adpcm "$name.wav"
    sox "$name.wav" -t raw -e signed -b 16 -L "$name.pcm"
}
code_adpcm adpcm-stereo
code_adpcm adpcm-mono -c 1
