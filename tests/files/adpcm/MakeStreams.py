#!/usr/bin/env python3
"""Makes the ADPCM streams of this folder and the PCM that is expected of each.

Run by hand, with sox and ffmpeg installed; the results are kept in the tree. The sound is a chord that swells
into noise and over the limit, so that several coefficient pairs and all codes come up. The expected PCM is what
sox decodes: 16 bits, little-endian, interleaved.
"""

import pathlib
import struct
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


def chunks(wave):
    at = 12
    while at + 8 <= len(wave):
        name, size = wave[at:at + 4], struct.unpack_from("<I", wave, at + 4)[0]
        yield name, wave[at + 8:at + 8 + size]
        at += 8 + (size + 1) // 2 * 2


def write_wave(path, parts):
    body = b"WAVE"
    for name, content in parts:
        body += name + struct.pack("<I", len(content)) + content + b"\0" * (len(content) % 2)
    path.write_bytes(b"RIFF" + struct.pack("<I", len(body)) + body)


def reblock(source, target, block_bytes, last_bytes):
    """Cuts the tail off each block, which leaves blocks of another size, and more off the last one."""
    parts = dict(chunks(source.read_bytes()))
    layout = bytearray(parts[b"fmt "])
    channels = struct.unpack_from("<H", layout, 2)[0]
    old_bytes = struct.unpack_from("<H", layout, 12)[0]
    head_bytes = 7 * channels
    frames = 2 + (block_bytes - head_bytes) * 2 // channels
    struct.pack_into("<H", layout, 12, block_bytes)
    struct.pack_into("<H", layout, 18, frames)
    data = parts[b"data"]
    blocks = [data[at:at + block_bytes] for at in range(0, len(data) - old_bytes + 1, old_bytes)]
    # The pad byte behind data of an odd size would be read for one code more.
    last_bytes -= (block_bytes * (len(blocks) - 1) + last_bytes) % 2
    blocks[-1] = blocks[-1][:last_bytes]
    write_wave(target, [(b"fmt ", bytes(layout)), (b"data", b"".join(blocks))])


def main():
    with tempfile.TemporaryDirectory() as folder:
        work = pathlib.Path(folder)
        for channels, name, odd_sizes in ((1, "mono", (131, 76)), (2, "stereo", (229, 115))):
            make_sound(work / "sound.wav", channels, 0.62 if channels == 1 else 0.4)
            run("sox", "-R", work / "sound.wav", "-e", "ms-adpcm", HERE / f"sox-{name}.wav")
            run("ffmpeg", "-loglevel", "error", "-y", "-i", work / "sound.wav", "-c:a", "adpcm_ms", "-bitexact",
                "-block_size", 256, HERE / f"ffmpeg-{name}.wav")
            reblock(HERE / f"sox-{name}.wav", HERE / f"odd-{name}.wav", *odd_sizes)
    for wave in sorted(HERE.glob("*.wav")):
        run("sox", wave, "-t", "raw", "-e", "signed", "-b", 16, "-L", wave.with_suffix(".pcm"))


if __name__ == "__main__":
    main()
