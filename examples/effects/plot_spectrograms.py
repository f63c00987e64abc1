"""Plots the spectrograms of sounds in one picture: plot_spectrograms.py FOLDER OUT.png NAME..."""
import sys
import wave

import matplotlib
matplotlib.use("Agg")
import matplotlib.pyplot as plt
import numpy
from PIL import Image

SECONDS = 3
MAX_KHZ = 8
LOUDEST_DB = -30
RANGE_DB = 90
COLUMNS = 3


def read_left(path):
    with wave.open(path) as file:
        assert file.getsampwidth() == 2
        frames = numpy.frombuffer(file.readframes(SECONDS * file.getframerate()), "<i2")
        return frames[:: file.getnchannels()] / 32768, file.getframerate()


def main():
    folder, out, *names = sys.argv[1:]
    rows = -(-len(names) // COLUMNS)
    figure, axes = plt.subplots(rows, COLUMNS, sharex=True, sharey=True, figsize=(9.6, 1.75 * rows), layout="constrained")
    for axis, name in zip(axes.flat, names):
        samples, rate = read_left(f"{folder}/{name}.wav")
        with numpy.errstate(divide="ignore"):  # Silence has no level in dB.
            image = axis.specgram(samples, NFFT=1024, Fs=rate, noverlap=512, scale="dB", cmap="inferno")[3]
        image.set_clim(LOUDEST_DB - RANGE_DB, LOUDEST_DB)
        axis.set_title(name, fontsize=9, pad=3)
        axis.set_ylim(0, 1000 * MAX_KHZ)
        axis.set_xlim(0, SECONDS)
        axis.set_facecolor("black")
        axis.set_yticks(range(0, 1000 * MAX_KHZ + 1, 2000), range(0, MAX_KHZ + 1, 2))
        axis.tick_params(labelsize=8)
    figure.supxlabel("time, s", fontsize=9)
    figure.supylabel("frequency, kHz", fontsize=9)
    figure.savefig(out, dpi=100, metadata={"Software": None})
    with Image.open(out) as picture:
        picture.convert("RGB").quantize(96).save(out, optimize=True)


main()
