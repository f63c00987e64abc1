#!/usr/bin/env python3
"""Makes the ADPCM streams of this folder and the PCM that is expected of each: 16 bits, little-endian, interleaved.

Run by hand, with sox installed; the results are kept in the tree. The sound of sox-* is a chord that swells into noise
and clips, so that several coefficient pairs and all codes occur; the expected PCM is what sox decodes. The codes of
wild-* are random, in every other block on average first large and then small. sox and FFmpeg differ from each other in
rounding and clamping there, so the expected PCM is that of decode_block(), which follows the published formulas. The
last block is incomplete.
"""

import pathlib
import random
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


PAIRS = [(256, 0), (512, -256), (0, 0), (192, 64), (240, 0), (460, -208), (392, -232)]
FACTORS = [230, 230, 230, 230, 307, 409, 512, 614, 768, 614, 512, 409, 307, 230, 230, 230]


def decode_block(block, channels):
    """All sample frames of a block. Python's // rounds down, as the formulas do."""
    numbers = struct.unpack_from(f"<{3 * channels}h", block, channels)
    deltas, samples = list(numbers[:channels]), [*numbers[2 * channels:], *numbers[channels:2 * channels]]
    codes = [code for byte in block[7 * channels:] for code in (byte >> 4, byte & 15)]
    for place, code in enumerate(codes[:len(codes) // channels * channels]):
        channel = place % channels
        coef1, coef2 = PAIRS[block[channel]]
        predicted = (samples[-channels] * coef1 + samples[-2 * channels] * coef2) // 256
        sample = predicted + deltas[channel] * (code if code < 8 else code - 16)
        samples.append(max(-32768, min(sample, 32767)))
        deltas[channel] = max(16, min(deltas[channel] * FACTORS[code] // 256, 4194304))
    return struct.pack(f"<{len(samples)}h", *samples)


def make_wild(name, channels, align, seed):
    dice = random.Random(seed)
    blocks = []
    for size in [align] * 40 + [7 * channels + (align - 7 * channels) // 2]:
        large = dice.random() < 0.5
        codes = [dice.randrange(256) for _ in range(size - channels)]
        if large:
            # The delta rises to its limit and falls again.
            ends = [0x88 - 0x11 * dice.randrange(2) for _ in codes[:10 * channels]]
            codes = ends + [code & 0x11 for code in codes[10 * channels:]]
        blocks.append(bytes([dice.randrange(7) for _ in range(channels)] + codes))
    frames = 2 + (align - 7 * channels) * 2 // channels
    form = struct.pack("<HHIIHHHHH", 2, channels, RATE_HZ, RATE_HZ * align // frames, align, 4, 32, frames, 7)
    form += b"".join(struct.pack("<hh", *pair) for pair in PAIRS)
    data = b"".join(blocks)
    chunks = b"WAVEfmt " + struct.pack("<I", len(form)) + form + b"data" + struct.pack("<I", len(data)) + data
    (HERE / f"{name}.wav").write_bytes(b"RIFF" + struct.pack("<I", len(chunks)) + chunks)
    (HERE / f"{name}.pcm").write_bytes(b"".join(decode_block(block, channels) for block in blocks))


def main():
    with tempfile.TemporaryDirectory() as folder:
        work = pathlib.Path(folder)
        for channels, name in ((1, "mono"), (2, "stereo")):
            make_sound(work / "sound.wav", channels, 0.62 if channels == 1 else 0.4)
            run("sox", "-R", work / "sound.wav", "-e", "ms-adpcm", HERE / f"sox-{name}.wav")
    for wave in sorted(HERE.glob("sox-*.wav")):
        run("sox", wave, "-t", "raw", "-e", "signed", "-b", 16, "-L", wave.with_suffix(".pcm"))
    make_wild("wild-mono", 1, 47, 1)
    make_wild("wild-stereo", 2, 96, 2)
    make_wild("wild-tiny", 1, 7, 3)
    make_wild("wild-odd", 2, 33, 4)


if __name__ == "__main__":
    main()
