// The Huffman tables in both their forms, beside the list of codes and beside a walk bit by bit.

#include "PlainStages.h"
#include "harmonet/files/mpeg/DecoderKernels.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <random>

using namespace Quon;

namespace
{

const DecoderTables& Tables()
{
    static const auto tables = std::make_unique<DecoderTables>();
    return *tables;
}

/// The value that the jump and value arrays give for a code, which has to take all of its bits.
int WalkArrays(const HuffmanTable& table, const HuffmanCode& code)
{
    int entry = 0;
    for (int bit = code.length - 1; bit >= 0; --bit) {
        const int jump = table.jump[entry];
        if (jump == 255) {
            return -1;
        }
        const int right = jump == 254 ? table.value[entry] + 255 : jump + 1;
        entry += (code.code >> bit & 1) != 0 ? right : 1;
    }
    return table.jump[entry] == 255 ? table.value[entry] : -1;
}

/// Decodes with each kernel and expects the powers of the plain walk's values in every line.
void ExpectAsPlain(
    const std::vector<unsigned char>& bytes, const GranuleInfo& info, int bitPosition, int budget)
{
    PlainMpeg::Bits bits(bytes);
    bits.SetPosition(bitPosition);
    PlainMpeg::Values values;
    const int lineCount = PlainMpeg::DecodeValues(bits, info, budget, values);
    for (const DecoderKernels* kernels : {&BaselineKernels(), Avx2Kernels()}) {
        if (kernels == nullptr) {
            continue;
        }
        SCOPED_TRACE(kernels->name);
        float lines[spectrumStride];
        ASSERT_EQ(kernels->decodeLines(Tables(), info, bytes.data(), bitPosition, budget, lines), lineCount);
        for (int i = 0; i < linesPerGranule; ++i) {
            const int value = i < lineCount ? values[static_cast<std::size_t>(i)] : 0;
            const float power = static_cast<float>(std::pow(std::abs(value), 4.0 / 3.0));
            ASSERT_FLOAT_EQ(lines[i], value < 0 ? -power : power) << "line " << i;
        }
    }
}

GranuleInfo OneTable(int table, int bigValues)
{
    GranuleInfo info = {};
    info.big_values = bigValues;
    info.region1Start = linesPerGranule;
    info.region2Start = linesPerGranule;
    info.table_select[0] = table;
    return info;
}

constexpr int bufferBytes = 2308;

} // namespace

TEST(Huffman, EveryCodeLeadsToItsLeafInTheArrays)
{
    int codes = 0;
    for (int number = 1; number < huffmanTableCount; ++number) {
        const HuffmanSource& source = huffmanSources[number];
        for (int i = source.firstCode; i < source.firstCode + source.codeCount; ++i) {
            const HuffmanCode& code = huffmanCodes[i];
            EXPECT_EQ(WalkArrays(Tables().huffman.tables[number], code), 16 * code.first + code.second)
                << "table " << number << ", code " << i;
            ++codes;
        }
    }
    // The 1410 codes once each, and those of the linked tables once more.
    EXPECT_EQ(codes, huffmanCodeCount + 9 + 256 + (7 + 7) * 256);
}

TEST(Huffman, LinkedTablesShareArraysAndKeepTheirLinbits)
{
    const HuffmanTable* tables = Tables().huffman.tables;
    EXPECT_EQ(tables[4].jump, tables[3].jump);
    EXPECT_EQ(tables[14].jump, tables[13].jump);
    EXPECT_EQ(tables[23].value, tables[16].value);
    EXPECT_EQ(tables[31].value, tables[24].value);
    EXPECT_EQ(tables[16].linbits, 1);
    EXPECT_EQ(tables[23].linbits, 13);
    EXPECT_EQ(tables[24].linbits, 4);
    EXPECT_EQ(tables[30].linbits, 11);
}

TEST(Huffman, LookUpsGiveWhatTheWalkGivesOverRandomBits)
{
    std::mt19937 random(4);
    const auto pick = [&random](int from, int to) { return std::uniform_int_distribution(from, to)(random); };
    std::vector<unsigned char> bytes(bufferBytes);
    for (int round = 0; round < 800; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        // Now and then long runs of one bit, which lead to the longest codes and to full linbits.
        for (unsigned char& byte : bytes) {
            const int kind = pick(0, 9);
            byte = static_cast<unsigned char>(round % 3 != 0 || kind > 6 ? pick(0, 255)
                    : kind > 3                                           ? 0xFF
                                                                         : 0);
        }
        GranuleInfo info = {};
        info.big_values = pick(0, 350);
        info.region1Start = 2 * pick(1, 150);
        info.region2Start = std::min(info.region1Start + 2 * pick(1, 150), linesPerGranule);
        for (int& table : info.table_select) {
            table = pick(0, 31);
        }
        info.count1table_select = pick(0, 1);
        ExpectAsPlain(bytes, info, pick(0, 63), round % 4 == 0 ? pick(-130, 100) : pick(0, 4095));
    }
}

TEST(Huffman, EveryTableReadsItsLargestValue)
{
    for (int table = 1; table < count1TableBase; ++table) {
        const HuffmanSource& source = huffmanSources[table];
        for (int i = source.firstCode; i < source.firstCode + source.codeCount; ++i) {
            // One code, then ones: full linbits and negative signs, on to whatever that gives.
            std::vector<unsigned char> bytes(bufferBytes, 0xFF);
            const unsigned long long code = static_cast<unsigned long long>(huffmanCodes[i].code + 1)
                << (64 - huffmanCodes[i].length);
            for (std::size_t byte = 0; byte < 8; ++byte) {
                bytes[byte] = static_cast<unsigned char>((code - 1) >> (56 - 8 * byte));
            }
            SCOPED_TRACE("table " + std::to_string(table) + ", code " + std::to_string(i));
            ExpectAsPlain(bytes, OneTable(table, 4), 0, 60);
        }
    }
}

TEST(Huffman, NoBitsGiveNoLines)
{
    const std::vector<unsigned char> bytes(bufferBytes, 0x55);
    float lines[spectrumStride];
    GranuleInfo info = OneTable(24, 288);
    EXPECT_EQ(BaselineKernels().decodeLines(Tables(), info, bytes.data(), 0, 0, lines), 0);
    EXPECT_EQ(BaselineKernels().decodeLines(Tables(), info, bytes.data(), 0, -17, lines), 0);
    for (int i = 0; i < linesPerGranule; ++i) {
        ASSERT_EQ(lines[i], 0.0f);
    }
}

TEST(Huffman, BigValuesAboveTheLastLineStopThere)
{
    // Table 1's code for (0, 0) is a single 1.
    const std::vector<unsigned char> bytes(bufferBytes, 0xFF);
    float lines[spectrumStride];
    EXPECT_EQ(BaselineKernels().decodeLines(Tables(), OneTable(1, 511), bytes.data(), 0, 4000, lines), 576);
}

TEST(Huffman, TheValuesOfACodeBeyondTheBudgetAreDropped)
{
    // Count1 table B: four bits each, 0000 for all ones, then four sign bits.
    std::vector<unsigned char> bytes(bufferBytes, 0x00);
    GranuleInfo info = OneTable(0, 0);
    info.count1table_select = 1;
    float lines[spectrumStride];
    EXPECT_EQ(BaselineKernels().decodeLines(Tables(), info, bytes.data(), 0, 16, lines), 8);
    EXPECT_EQ(BaselineKernels().decodeLines(Tables(), info, bytes.data(), 0, 15, lines), 4);
    EXPECT_EQ(lines[3], 1.0f);
    EXPECT_EQ(lines[4], 0.0f);
    EXPECT_EQ(BaselineKernels().decodeLines(Tables(), info, bytes.data(), 0, 17, lines), 8);
}

TEST(Huffman, ATableWithoutCodesTakesNoBits)
{
    // Table 0 up to line 20, then table 1: 000 0 0 is (1, 1).
    const std::vector<unsigned char> bytes(bufferBytes, 0x00);
    GranuleInfo info = OneTable(0, 11);
    info.region1Start = 20;
    info.table_select[1] = 1;
    float lines[spectrumStride];
    EXPECT_EQ(BaselineKernels().decodeLines(Tables(), info, bytes.data(), 0, 5, lines), 22);
    EXPECT_EQ(lines[19], 0.0f);
    EXPECT_EQ(lines[20], 1.0f);
    EXPECT_EQ(lines[21], 1.0f);
}
