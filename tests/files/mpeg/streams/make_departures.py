#!/usr/bin/env python3
"""Makes the streams departure-*.mp3, in which this library's rules and those of the standard differ, and syntax/sparse-*.mp3,
which hold every kind of block and stereo mode with spectra that end early.

Run it in this folder. The references of the departures hold every 11th value of what another decoder makes of them: mpg123, and for
intensity stereo sox, whose decoder (libmad) follows the standard there.
"""
import array
import csv
import pathlib
import random
import subprocess

TABLES = pathlib.Path(__file__).resolve().parents[4] / "harmonet/files/mpeg/tables"
FRAMES = 8
STRIDE = 11
MPEG1_LENGTHS = [(int(row["slen1"]), int(row["slen2"])) for row in csv.DictReader(open(TABLES / "scalefac_lengths.csv"))]
# Factors by row of the rules for `scalefac_compress` of MPEG-2: in long, short, mixed blocks.
LSF_ROWS = list(csv.DictReader(open(TABLES / "lsf_scalefac.csv")))


def read_codes():
    codes = {}
    for row in csv.DictReader(open(TABLES / "huffman.csv")):
        count1 = row["table"] in "AB"
        values = tuple(int(row[name]) for name in ("vwxy" if count1 else "xy"))
        codes[(row["table"],) + values] = row["code"]
    return codes


CODES = read_codes()
BANDS = {row["sample_rate"]: [int(row["b%d" % i]) for i in range(23)] for row in csv.DictReader(open(TABLES / "bands_long.csv"))}


def bits(value, count):
    return format(value, "0%db" % count) if count else ""


def spectrum(pick, lines, content, region_starts, tables, count1):
    """Values of -1, 0 and 1 with zeros from the line `content` on; returns big_values and the bits."""
    values = [pick.choice([0, 0, 1, -1]) if i < content else 0 for i in range(lines)]
    big = pick.randrange(lines // 4 + 1) * 4
    text = ""
    for i in range(0, lines):
        if i < big and i % 2 == 0:
            group, table = values[i : i + 2], str(tables[sum(i >= start for start in region_starts)])
        elif i >= big and i % 4 == 0:
            group, table = values[i : i + 4], "AB"[count1]
        else:
            continue
        text += CODES[(table,) + tuple(map(abs, group))] + "".join("01"[v < 0] for v in group if v)
    return big // 2, text


def lsf_groups(compress, intensity, kind):
    """Pairs of a count of factors and their length in bits."""
    value = compress >> 1 if intensity else compress
    row = next(r for r in LSF_ROWS[3 if intensity else 0 :] if compress <= int(r["last"]))
    lengths = [(value - int(row["offset"])) // int(row["div%d" % i]) % int(row["mod%d" % i]) for i in range(1, 5)]
    return [(int(row[kind + str(i + 1)]), lengths[i]) for i in range(4)]


class Stream:
    def __init__(self, seed, rate, mode, blocks, limits, content=576, mpeg1=False, extension="01", bitrate=None):
        self.pick = random.Random(seed)
        self.content = content
        self.extension = extension if mode == 1 else "00"
        self.bitrate = bitrate or (320000 if mpeg1 else 160000)
        self.rate, self.mode, self.blocks, self.limits, self.mpeg1 = rate, mode, blocks, limits, mpeg1

    def factors(self, groups):
        return "".join(bits(self.pick.choice([0, (1 << n) - 1, self.pick.randrange(1 << n)]), n) for count, n in groups for _ in range(count))

    def granule(self, block, mixed, right):
        """Side information and main data of one granule and channel."""
        pick = self.pick
        kind = "long" if block != 2 else "mixed" if mixed else "short"
        tables, count1 = [pick.choice([1, 2, 5]), pick.choice([3, 6, 7]), pick.choice([1, 8, 9])], pick.randrange(2)
        counts = pick.randrange(16), pick.randrange(8)
        edges = BANDS["24000 standard" if self.rate == 24000 else str(self.rate)]
        starts = edges[min(counts[0] + 1, 22)], edges[min(sum(counts) + 2, 22)]
        big, spectral = spectrum(pick, pick.choice(self.limits[right]), self.content, (36, 576) if block else starts, tables, count1)
        if self.mpeg1:
            compress = pick.randrange(16)
            groups = [(18, MPEG1_LENGTHS[compress][0]), (18, MPEG1_LENGTHS[compress][1])]
        else:
            compress = pick.randrange(500)
            while right and any(count and not n for count, n in lsf_groups(compress, right, kind)):
                compress = pick.randrange(500)
            groups = lsf_groups(compress, right, kind)
        main = self.factors(groups) + spectral
        side = bits(len(main), 12) + bits(big, 9) + bits(176 + pick.randrange(8), 8) + bits(compress, 4 if self.mpeg1 else 9)
        if block:
            side += "1" + bits(block, 2) + str(mixed) + bits(tables[0], 5) + bits(tables[1], 5)
            side += "".join(bits(pick.randrange(3), 3) for _ in range(3))
        else:
            side += "0" + "".join(bits(table, 5) for table in tables) + bits(counts[0], 4) + bits(counts[1], 3)
        return side + ("0" if self.mpeg1 else "") + str(pick.randrange(2)) + str(count1), main

    def frame(self):
        channels = 1 if self.mode == 3 else 2
        size = (144 if self.mpeg1 else 72) * self.bitrate // self.rate
        rate_index = {44100: 0, 22050: 0, 48000: 1, 24000: 1, 16000: 2, 32000: 2}[self.rate]
        bitrate_index = {320000: 14, 160000: 14, 128000: 9, 64000: 8}[self.bitrate]
        start = "1" * 11 + ("11" if self.mpeg1 else "10") + "011" + bits(bitrate_index, 4) + bits(rate_index, 2) + "00"
        start += bits(self.mode, 2) + self.extension + "0000"
        # No reservoir, private bits of 0, and no shared scale factors.
        start += "0" * (9 + (5 if channels == 1 else 3) + 4 * channels if self.mpeg1 else 8 + channels)
        main = None
        while main is None or len(head + main) > 8 * size:
            head, main = start, ""
            for _ in range(2 if self.mpeg1 else 1):
                block, mixed = self.pick.choice(self.blocks)
                for channel in range(channels):
                    granule_side, granule_main = self.granule(block, mixed, channel == 1 and self.extension != "10")
                    head += granule_side
                    main += granule_main
        return int((head + main).ljust(8 * size, "0"), 2).to_bytes(size, "big")


def make_sparse(seed, name, rate, mode, extension):
    mpeg1 = rate >= 32000
    lines = [0, 4, 12, 20, 36, 40, 60, 100, 148, 200]
    stream = Stream(seed, rate, mode, [(0, 0), (2, 0), (2, 1), (1, 0), (3, 0)], [lines, lines], 0, mpeg1, extension,
                    128000 if mpeg1 else 64000)
    frames = b""
    for _ in range(6):
        stream.content = stream.pick.choice([0, 1, 2, 5, 17, 18, 19, 36, 37, 70, 120, 200])
        frames += stream.frame()
    pathlib.Path("syntax/sparse-%s-%d.mp3" % (name, rate)).write_bytes(frames)


def make(name, stream, decoder):
    path = "departure-%s.mp3" % name
    pathlib.Path(path).write_bytes(b"".join(stream.frame() for _ in range(FRAMES)))
    pcm = subprocess.run([part.replace("IN", path) for part in decoder], check=True, stdout=subprocess.PIPE).stdout
    values = array.array("f", pcm)[::STRIDE]
    steps = (max(-32768, min(32767, int(value * 32767))) for value in values)
    pathlib.Path(path).with_suffix(".ref").write_bytes(array.array("h", steps).tobytes())


MPG123 = ["mpg123", "-q", "-s", "-e", "f32", "--no-gapless", "IN"]
SOX = ["sox", "-D", "IN", "-t", "raw", "-b", "32", "-e", "float", "-"]

make("24000-bands", Stream(1, 24000, 3, [(0, 0), (1, 0), (3, 0)], [[576], []]), MPG123)
make("22050-intensity", Stream(5, 22050, 1, [(2, 0)], [[520], [0, 40, 100, 200]]), SOX)
make("22050-mixed", Stream(3, 22050, 3, [(2, 1)], [[200, 576], []]), MPG123)
make("32000-short", Stream(4, 32000, 3, [(2, 0)], [[552], []], 540, True), MPG123)

seed = 100
for rate in (44100, 48000, 32000, 22050, 24000, 16000):
    for name, mode, extension in (("mono", 3, "00"), ("sides", 1, "10"), ("intensity", 1, "01"), ("both", 1, "11")):
        seed += 1
        make_sparse(seed, name, rate, mode, extension)
