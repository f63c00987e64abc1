#include "harmonet/files/mpeg/HuffmanTables.h"

#include <algorithm>

namespace Quon
{

namespace
{

/// The binary tree of one table's codes, from which its arrays are built.
class CodeTree
{
public:
    void Add(const HuffmanCode& code)
    {
        int node = 0;
        for (int bit = code.length - 1; bit >= 0; --bit) {
            int& child = nodes[node].child[code.code >> bit & 1];
            if (child == none) {
                child = nodeCount++;
            }
            node = child;
        }
        nodes[node].leafValue = code.first * 16 + code.second;
    }

    /// Numbers the nodes below `node` in depth-first order and writes their entries; returns the next number.
    int Write(unsigned char* jump, unsigned char* value, int node = 0, int number = 0) const
    {
        const Node& entry = nodes[node];
        if (entry.leafValue != none) {
            jump[number] = huffmanLeaf;
            value[number] = static_cast<unsigned char>(entry.leafValue);
            return number + 1;
        }
        const int right = Write(jump, value, entry.child[0], number + 1);
        const int distance = right - number;
        const bool far = distance - 1 >= huffmanFarJump;
        jump[number] = far ? huffmanFarJump : static_cast<unsigned char>(distance - 1);
        value[number] = far ? static_cast<unsigned char>(distance + 1) : 0;
        return Write(jump, value, entry.child[1], right);
    }

private:
    static constexpr int none = -1;
    static constexpr int maxNodes = 2 * 256 - 1;

    struct Node
    {
        int child[2] = {none, none};
        int leafValue = none;
    };

    Node nodes[maxNodes];
    int nodeCount = 1;
};

constexpr HuffmanLookUp MakeLookUp(unsigned kind, int payload, int length)
{
    return static_cast<HuffmanLookUp>(
        kind | static_cast<unsigned>(payload) << lookUpPayloadShift | static_cast<unsigned>(length));
}

/// Walks a table's arrays over the bits of one look-up index.
class LookUpBuilder
{
public:
    LookUpBuilder(const HuffmanTable& newTable, unsigned newBits, int newBitCount)
        : table(newTable)
        , bits(newBits)
        , bitCount(newBitCount)
    {
    }

    HuffmanLookUp Pair()
    {
        const int entry = Walk();
        if (table.jump[entry] != huffmanLeaf) {
            return MakeLookUp(lookUpInner, entry, taken);
        }
        const int leaf = table.value[entry];
        const int codeLength = taken;
        int x = leaf >> 4;
        int y = leaf & 15;
        const int signs = (x != 0) + (y != 0);
        const bool mayHaveLinbits = HasLinbits() && (x == maxPairValue || y == maxPairValue);
        if (mayHaveLinbits || taken + signs > bitCount) {
            return MakeLookUp(lookUpLeaf, leaf, codeLength);
        }
        x = Signed(x);
        y = Signed(y);
        return MakeLookUp(0, PairIndex(x, y), taken);
    }

    HuffmanLookUp Quadruple()
    {
        const int leaf = table.value[Walk()];
        int index = 0;
        for (int bit = 7; bit >= 4; --bit) {
            index = index * 3 + Signed(leaf >> bit & 1) + 1;
        }
        return MakeLookUp(0, index, taken);
    }

private:
    /// Whether the tables that share these arrays have linbits: those based on 16 and 24 do.
    bool HasLinbits() const { return table.linbits != 0; }

    int TakeBit() { return static_cast<int>(bits >> (bitCount - ++taken) & 1); }

    int Signed(int magnitude) { return magnitude != 0 && TakeBit() != 0 ? -magnitude : magnitude; }

    /// Returns the leaf, or the inner entry at which the bits are exhausted.
    int Walk()
    {
        int entry = 0;
        while (table.jump[entry] != huffmanLeaf && taken < bitCount) {
            const int jump = table.jump[entry];
            const int right = jump == huffmanFarJump ? table.value[entry] + 255 : jump + 1;
            entry += TakeBit() != 0 ? right : 1;
        }
        return entry;
    }

    const HuffmanTable& table;
    unsigned bits;
    int bitCount;
    int taken = 0;
};

/// The maximum length of a code of the table with its sign bits.
int LongestWithSigns(const HuffmanSource& source)
{
    int longest = 0;
    for (int i = 0; i < source.codeCount; ++i) {
        const HuffmanCode& code = huffmanCodes[source.firstCode + i];
        longest = std::max(longest, code.length + (code.first != 0) + (code.second != 0));
    }
    return longest;
}

void FillPowers(HuffmanTables& tables, const float* power)
{
    const auto signedPower = [power](int value) { return value < 0 ? -power[-value] : power[value]; };
    for (int x = -maxPairValue; x <= maxPairValue; ++x) {
        for (int y = -maxPairValue; y <= maxPairValue; ++y) {
            float* pair = tables.pairPowers[PairIndex(x, y)];
            pair[0] = signedPower(x);
            pair[1] = signedPower(y);
        }
    }
    for (int index = 0; index < 81; ++index) {
        for (int place = 3, rest = index; place >= 0; --place, rest /= 3) {
            tables.quadPowers[index][place] = signedPower(rest % 3 - 1);
        }
    }
}

} // namespace

void BuildHuffmanTables(HuffmanTables& tables, const float* power)
{
    FillPowers(tables, power);
    int entryCount = 0;
    int lookUpCount = 0;
    for (int number = 0; number < huffmanTableCount; ++number) {
        const HuffmanSource& source = huffmanSources[number];
        HuffmanTable& table = tables.tables[number];
        table = {source.codesOf, source.linbits, nullptr, nullptr, nullptr, 0};
        if (source.codeCount == 0 || source.codesOf != number) {
            continue;
        }
        CodeTree tree;
        for (int i = 0; i < source.codeCount; ++i) {
            tree.Add(huffmanCodes[source.firstCode + i]);
        }
        table.jump = tables.jumps + entryCount;
        table.value = tables.values + entryCount;
        entryCount += tree.Write(tables.jumps + entryCount, tables.values + entryCount);

        const bool isCount1 = number >= count1TableBase;
        const int bits = isCount1 ? count1LookUpBits : std::min(maxLookUpBits, LongestWithSigns(source));
        table.lookUp = tables.lookUps + lookUpCount;
        table.lookUpBits = bits;
        for (unsigned index = 0; index < 1U << bits; ++index) {
            LookUpBuilder builder(table, index, bits);
            tables.lookUps[lookUpCount++] = isCount1 ? builder.Quadruple() : builder.Pair();
        }
    }
    for (HuffmanTable& table : tables.tables) {
        const HuffmanTable& target = tables.tables[table.link];
        table = {table.link, table.linbits, target.jump, target.value, target.lookUp, target.lookUpBits};
    }
}

} // namespace Quon
