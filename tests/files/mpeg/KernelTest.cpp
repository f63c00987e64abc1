// What random streams reach by luck alone: each code of each Huffman table, and the ends of the scale.

#include "PlainStages.h"
#include "harmonet/files/mpeg/DecoderKernels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>

using namespace Quon;

namespace
{

std::vector<const DecoderKernels*> AllKernels()
{
    std::vector<const DecoderKernels*> all = {&BaselineKernels()};
    if (Avx2Kernels() != nullptr) {
        all.push_back(Avx2Kernels());
    }
    return all;
}

class Kernels : public testing::TestWithParam<const DecoderKernels*>
{
protected:
    const DecoderKernels& kernels = *GetParam();
};

} // namespace

INSTANTIATE_TEST_SUITE_P(EveryInstructionSet, Kernels, testing::ValuesIn(AllKernels()),
    [](const auto& instance) { return std::string(instance.param->name); });

// One code, then ones: full linbits and negative signs, on to whatever that gives.
TEST_P(Kernels, ReadEveryCodeOfEveryTableAsAWalkThroughTheListDoes)
{
    static const auto tables = std::make_unique<DecoderTables>();
    constexpr int budget = 60;
    for (int table = 1; table < count1TableBase; ++table) {
        const HuffmanSource& source = huffmanSources[table];
        GranuleInfo info = {};
        info.big_values = 4;
        info.region1Start = info.region2Start = linesPerGranule;
        info.table_select[0] = table;
        for (int i = source.firstCode; i < source.firstCode + source.codeCount; ++i) {
            SCOPED_TRACE("table " + std::to_string(table) + ", code " + std::to_string(i));
            std::vector<unsigned char> bytes(2308, 0xFF);
            const unsigned long long code = static_cast<unsigned long long>(huffmanCodes[i].code + 1)
                << (64 - huffmanCodes[i].length);
            for (std::size_t byte = 0; byte < 8; ++byte) {
                bytes[byte] = static_cast<unsigned char>((code - 1) >> (56 - 8 * byte));
            }
            PlainMpeg::Bits bits(bytes);
            PlainMpeg::Values values;
            const int lineCount = PlainMpeg::DecodeValues(bits, info, budget, values);
            float lines[spectrumStride];
            ASSERT_EQ(kernels.decodeLines(*tables, info, bytes.data(), 0, budget, lines), lineCount);
            for (int line = 0; line < linesPerGranule; ++line) {
                const int value = line < lineCount ? values[static_cast<std::size_t>(line)] : 0;
                const auto power = static_cast<float>(std::pow(std::abs(value), 4.0 / 3.0));
                ASSERT_FLOAT_EQ(lines[line], value < 0 ? -power : power) << "line " << line;
            }
        }
    }
}

TEST_P(Kernels, TruncateAndClipToSixteenBits)
{
    struct Row
    {
        float sample;
        int pcm;
    };
    constexpr Row table[] = {{0.0f, 0}, {1.0f, 32767}, {-1.0f, -32767}, {1.001f, 32767}, {-1.001f, -32768},
        {1.9f / 32767, 1}, {-1.9f / 32767, -1}, {1e30f, 32767}, {-1e30f, -32768}};
    for (const Row& row : table) {
        SCOPED_TRACE(row.sample);
        float left[linesPerGranule];
        float right[linesPerGranule];
        std::fill(std::begin(left), std::end(left), row.sample);
        std::fill(std::begin(right), std::end(right), 100.5f / 32767);
        unsigned char pcm[4 * linesPerGranule];
        const auto sampleAt = [&pcm](int i) { return static_cast<short>(pcm[2 * i] | pcm[2 * i + 1] << 8); };
        kernels.storePcm16(left, right, linesPerGranule, pcm);
        for (int i = 0; i < linesPerGranule; ++i) {
            ASSERT_EQ(sampleAt(2 * i), row.pcm);
            ASSERT_EQ(sampleAt(2 * i + 1), 100);
        }
        kernels.storePcm16(left, nullptr, linesPerGranule, pcm);
        for (int i = 0; i < linesPerGranule; ++i) {
            ASSERT_EQ(sampleAt(i), row.pcm);
        }
    }
}
