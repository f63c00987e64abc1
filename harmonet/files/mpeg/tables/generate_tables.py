#!/usr/bin/env python3
"""Writes StandardTables.cpp, the number tables of MPEG audio Layer III, from the CSV files in this folder.

Run it in this folder without arguments after a change of a CSV file, and commit what it writes.
"""
import csv
import pathlib

FOLDER = pathlib.Path(__file__).resolve().parent
RATES = ["44100", "48000", "32000", "22050", "24000", "16000"]
BIG_VALUE_TABLES = 32
TABLE_COUNT = 34


def rows(name):
    with open(FOLDER / (name + ".csv"), newline="") as file:
        return list(csv.DictReader(file))


def wrapped(items, width=104):
    """Returns the items as comma-separated lines of at most `width` columns."""
    lines, line = [], ""
    for item in items:
        if line and len(line) + 2 + len(item) > width:
            lines.append(line + ",")
            line = item
        else:
            line = line + ", " + item if line else item
    return "\n".join("    " + text for text in lines + [line])


def table_index(name):
    return {"A": 32, "B": 33}.get(name) or int(name)


def huffman_codes():
    """Returns all codes, table by table, and the first code and the number of codes of each of the 34 tables."""
    codes, ranges = [], {}
    for row in rows("huffman"):
        table = table_index(row["table"])
        first = int(row["x"])
        second = int(row["y"])
        if row["table"] in "AB":
            first = 8 * int(row["v"]) + 4 * int(row["w"]) + 2 * int(row["x"]) + int(row["y"])
            second = 0
        assert len(row["code"]) == int(row["length"])
        start, count = ranges.get(table, (len(codes), 0))
        assert start + count == len(codes), "the codes of a table are contiguous"
        ranges[table] = (start, count + 1)
        codes.append("{%d, %d, %s, 0x%x}" % (first, second, row["length"], int(row["code"], 2)))
    return codes, ranges


def huffman_sources(ranges):
    links = []
    for row in rows("huffman_select"):
        target = int(row["codes_of_table"])
        start, count = ranges.get(target, (0, 0))
        links.append("{%d, %s, %d, %d}" % (target, row["linbits"], start, count))
    for table in range(BIG_VALUE_TABLES, TABLE_COUNT):
        links.append("{%d, 0, %d, %d}" % ((table,) + ranges[table]))
    assert len(links) == TABLE_COUNT
    return links


def band_set(long_name, short_name):
    long_row = next(row for row in rows("bands_long") if row["sample_rate"] == long_name)
    short_row = next(row for row in rows("bands_short") if row["sample_rate"] == short_name)
    long_edges = [int(long_row["b%d" % i]) for i in range(23)]
    short_edges = [int(short_row["b%d" % i]) for i in range(14)]
    parts = [
        [b - a for a, b in zip(long_edges, long_edges[1:])],
        long_edges,
        [b - a for a, b in zip(short_edges, short_edges[1:])],
        [3 * edge for edge in short_edges],
    ]
    text = ",\n".join("     {" + ", ".join(map(str, part)) + "}" for part in parts)
    return "    {" + text.lstrip() + "}"


def lsf_rows():
    result = []
    for row in rows("lsf_scalefac"):
        shift = 1 if row["special_form"] == "1" else 0
        divisors = ", ".join(row["div%d" % i] for i in range(1, 5))
        moduli = ", ".join(row["mod%d" % i] for i in range(1, 5))
        counts = ", ".join(
            "{" + ", ".join(row["%s%d" % (kind, i)] for i in range(1, 5)) + "}" for kind in ("long", "short", "mixed")
        )
        result.append(
            "    {%d, %d, %s, {%s}, {%s}, %s, {%s}}"
            % (shift, int(row["last"]) >> shift, row["offset"], divisors, moduli, row["preflag"], counts)
        )
    return ",\n".join(result)


def rates_of(column_prefix, table, count):
    by_version = []
    for version in ("mpeg1", "mpeg2"):
        values = [row["%s_%s" % (version, column_prefix)] for row in table]
        assert len(values) == count
        by_version.append("{" + ", ".join(values) + "}")
    return ",\n".join("    " + text for text in by_version)


def main():
    codes, ranges = huffman_codes()
    window = [str(round(65536 * float(row["D"]))) for row in rows("synthesis_window")]
    lengths = rows("scalefac_lengths")
    bitrates = [{"mpeg1_kbps": "0", "mpeg2_kbps": "0"}] + rows("bitrates")
    pretab = ", ".join(row["pretab"] for row in rows("pretab"))
    text = f"""// Written by tables/generate_tables.py from the CSV files next to it. To change a number, change the CSV file
// and run the script again.
// clang-format off

#include "harmonet/files/mpeg/StandardTables.h"

namespace Quon
{{

const HuffmanCode huffmanCodes[{len(codes)}] = {{
{wrapped(codes)}}};

const HuffmanSource huffmanSources[{TABLE_COUNT}] = {{
{wrapped(huffman_sources(ranges))}}};

const BandTable bandTables[{len(RATES)}] = {{
{("," + chr(10)).join(band_set(rate, rate) for rate in RATES)}}};

const BandTable standardBands24kHz =
{band_set("24000 standard", "24000")};

const unsigned char scaleFactorLengths[{len(lengths)}][2] = {{
{wrapped(["{%s, %s}" % (row["slen1"], row["slen2"]) for row in lengths])}}};

const LsfScaleFactorRow lsfScaleFactorRows[6] = {{
{lsf_rows()}}};

const int pretabRows[2][22] = {{
    {{{", ".join(["0"] * 22)}}},
    {{{pretab}}}}};

const double aliasConstants[8] = {{{", ".join(row["c"] for row in rows("alias_coefficients"))}}};

const int synthesisWindow[512] = {{
{wrapped(window)}}};

const int bitratesKbps[2][15] = {{
{rates_of("kbps", bitrates, 15)}}};

const int sampleRatesHz[2][3] = {{
{rates_of("hz", rows("samplerates"), 3)}}};

}} // namespace Quon
"""
    (FOLDER.parent / "StandardTables.cpp").write_text(text)


if __name__ == "__main__":
    main()
