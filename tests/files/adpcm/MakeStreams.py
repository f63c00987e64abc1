#!/usr/bin/env python3
"""Makes the ADPCM streams of this folder and the PCM that is expected of each.

Run by hand, with sox installed; the results are kept in the tree. The sound is a chord that swells
into noise and over the limit, so that several coefficient pairs and all codes come up. The expected PCM is what
sox decodes: 16 bits, little-endian, interleaved.
"""

import pathlib
import subprocess
import tempfile

HERE = pathlib.Path(__file__).resolve().parent
RATE_HZ = 11025


def run(*command):
    subprocess.run([str(part) for part in command], check=True)


def make_sound(path, channels, seconds):
    tones = ["sine", "220", "sine", "1100-4400"][: 2 * channels] if channels == 2 else ["sine", "330-3300"]
    run("sox", "-R", "-D", "-n", "-r", RATE_HZ, "-c", channels, "-b", 16, path, "synth", seconds, *tones,
        "synth", seconds, "noise", "mix", "brownnoise" if channels == 1 else "pinknoise",
        "fade", "t", seconds, "gain", "7")


def main():
    with tempfile.TemporaryDirectory() as folder:
        work = pathlib.Path(folder)
        for channels, name in ((1, "mono"), (2, "stereo")):
            make_sound(work / "sound.wav", channels, 0.62 if channels == 1 else 0.4)
            run("sox", "-R", work / "sound.wav", "-e", "ms-adpcm", HERE / f"sox-{name}.wav")
    for wave in sorted(HERE.glob("*.wav")):
        run("sox", wave, "-t", "raw", "-e", "signed", "-b", 16, "-L", wave.with_suffix(".pcm"))


if __name__ == "__main__":
    main()
