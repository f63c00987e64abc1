#pragma once

namespace Quon
{

/// The number tables of the MPEG audio standards for Layer III, as constant data that any thread may read.
/// Their definitions are written by tables/generate_tables.py from the CSV files beside that script; the
/// decoder's own tables (DecoderTables.h) are worked out from them.

/// One code word. The codes of a table stand together in `huffmanCodes`; in the two tables of the count1
/// region `first` holds the four bits of a quadruple (8v + 4w + 2x + y) and `second` is 0.
struct HuffmanCode
{
    unsigned char first;
    unsigned char second;
    unsigned char length; ///< In bits.
    unsigned int code; ///< The lowest `length` bits, the first bit of the stream on top.
};

/// Where a table's codes stand. Entries 0 to 31 are selected by `table_select`, 32 and 33 are the count1
/// tables A and B. Entries with the same `codesOf` share codes and differ in `linbits`; 0 has none.
struct HuffmanSource
{
    int codesOf;
    int linbits;
    int firstCode;
    int codeCount;
};

inline constexpr int huffmanTableCount = 34;
inline constexpr int count1TableBase = 32;
inline constexpr int huffmanCodeCount = 1410;

/// The scale factor bands at one sample frequency, in spectral lines. Short boundaries are those of one
/// window times 3, which is where a band begins among the 576 lines.
struct BandTable
{
    int longWidth[22];
    int longStart[23];
    int shortWidth[13];
    int shortStart[14];
};

/// One row of the rules by which MPEG-2 packs four lengths of scale factors into `scalefac_compress`.
///
/// Rows 0 to 2 hold for the value itself, rows 3 to 5 for half of it (`halving` 1). A row holds up to the
/// value `last`; length i is ((value - offset) / divisor[i]) % modulus[i].
struct LsfScaleFactorRow
{
    int halving;
    int last;
    int offset;
    int divisor[4];
    int modulus[4];
    int preflag;
    int counts[3][4]; ///< Factors read with each length: long, short, mixed blocks.
};

extern const HuffmanCode huffmanCodes[huffmanCodeCount];
extern const HuffmanSource huffmanSources[huffmanTableCount];
/// At 44.1, 48, 32 kHz (MPEG-1) and 22.05, 24, 16 kHz (MPEG-2).
extern const BandTable bandTables[6];
/// At 24 kHz as the standard has it, with the boundary of long bands 17 and 18 at line 332 instead of 330.
extern const BandTable standardBands24kHz;
/// The two lengths for each `scalefac_compress` of MPEG-1.
extern const unsigned char scaleFactorLengths[16][2];
extern const LsfScaleFactorRow lsfScaleFactorRows[6];
/// What `preflag` adds to the scale factor of each long band: row 0 nothing, row 1 the standard's list.
extern const int pretabRows[2][22];
extern const double aliasConstants[8];
/// The standard's coefficients D[i], times 65536.
extern const int synthesisWindow[512];
/// By version (MPEG-1, MPEG-2) and index; index 0 is the free format, which is not played.
extern const int bitratesKbps[2][15];
extern const int sampleRatesHz[2][3];

} // namespace Quon
