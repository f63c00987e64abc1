#pragma once

#include "harmonet/files/mpeg/StandardTables.h"

namespace Quon
{

/// The Huffman codes in the forms used by the decoder. Part of the decoder's shared tables: built once, then
/// read by any thread.
///
/// The complete form consists of two byte arrays for each table: the binary tree of its codes in depth-first
/// order, left before right, so that the left child of an inner entry is always the next entry:
/// - jump 255: a leaf; its value is first x 16 + second.
/// - jump j below 254: a 1 bit moves on by j + 1 entries, a 0 bit by 1.
/// - jump 254: a 1 bit moves on by the entry's value + 255, a 0 bit by 1.
///
/// It is preceded by a look-up by the next bits of the stream, computed from the arrays. It resolves most
/// codes in one step together with their sign bits. Other codes, which are too long with their signs or have
/// linbits, continue in the arrays from the entry that the look-up has reached. Both forms read the same bits
/// and yield the same values.

inline constexpr unsigned char huffmanLeaf = 255;
inline constexpr unsigned char huffmanFarJump = 254;

/// The result for `lookUpBits` bits of the stream, in 16 bits: bits 0 to 3, the number of bits read; bits 4
/// to 13, the payload; bits 14 and 15, the kind.
using HuffmanLookUp = unsigned short;

inline constexpr int maxLookUpBits = 11;
/// Enough for every code of the count1 tables with its four signs.
inline constexpr int count1LookUpBits = 10;
static_assert(count1LookUpBits <= maxLookUpBits);
inline constexpr unsigned lookUpLengthMask = 15;
inline constexpr int lookUpPayloadShift = 4;
inline constexpr unsigned lookUpPayloadMask = 1023;
/// Without kind bits, the payload is an index into `pairPowers` or `quadPowers`. With this kind, it is the
/// leaf's value, whose sign bits and linbits are still to be read.
inline constexpr unsigned lookUpLeaf = 0x8000;
/// With this kind, the payload is the entry of the arrays that the bits lead to.
inline constexpr unsigned lookUpInner = 0xC000;

struct HuffmanTable
{
    /// The table whose arrays this one shares; its own number if it does not share any.
    int link;
    int linbits;
    const unsigned char* jump; ///< Null for table 0, which has no codes and yields (0, 0).
    const unsigned char* value;
    const HuffmanLookUp* lookUp;
    int lookUpBits;
};

/// Maximum magnitude with a power in `pairPowers`.
inline constexpr int maxPairValue = 15;
/// The row of a pair (x, y) of that table.
constexpr int PairIndex(int x, int y)
{
    return (x + 16) * 32 + y + 16;
}

struct HuffmanTables
{
    HuffmanTable tables[huffmanTableCount];
    /// For the pair index above, x and y to the power of 4/3 with their signs.
    float pairPowers[1024][2];
    /// The same for a quadruple of -1, 0 and 1, at 27(v + 1) + 9(w + 1) + 3(x + 1) + y + 1.
    float quadPowers[81][4];

    /// Trees of n leaves have 2n - 1 entries.
    unsigned char jumps[2 * huffmanCodeCount];
    unsigned char values[2 * huffmanCodeCount];
    HuffmanLookUp lookUps[17 << maxLookUpBits];
};

/// Fills in everything. `power` gives i to the power of 4/3 for i from 0 to 15.
void BuildHuffmanTables(HuffmanTables& tables, const float* power);

} // namespace Quon
