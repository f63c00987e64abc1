// What is decoded, beside references that other decoders have made (streams/syntax/README.md) and beside the
// conformance streams of the standard. Each on the kernels of every instruction set that this processor runs,
// and on those for compilers without vector types.

#include "MemoryStream.h"
#include "harmonet/files/mpeg/SideInfo.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <sstream>

using namespace Quon;

namespace
{

/// The references contain every 11th value.
constexpr std::size_t stride = 11;

template<class Action>
void OnAllKernels(Action action)
{
    int count = 0;
    for (const DecoderKernels* kernels : {&BaselineKernels(), &PlainKernels(), Avx2Kernels()}) {
        if (kernels != nullptr) {
            SCOPED_TRACE(kernels->name);
            SndFileMP3::UseKernels(kernels);
            action(*kernels);
            ++count;
        }
    }
    EXPECT_EQ(count, Avx2Kernels() != nullptr ? 3 : 2);
    SndFileMP3::UseKernels(nullptr);
}

const DecoderTables& Tables()
{
    static const auto tables = std::make_unique<DecoderTables>();
    return *tables;
}

/// Whether this library decodes the stream by its own rules as by the standard: not at 24 kHz, where its
/// table of bands differs, and not with the intensity stereo of MPEG-2. Only streams that it plays count.
bool IsLikeStandard(const Bytes& stream)
{
    for (std::size_t at = 0; at + frameHeaderBytes <= stream.size();) {
        const FrameHeader header = SplitFrameHeader(LoadFrameHeader(stream.data() + at));
        if (SampleRateHz(header) == 24000 || (!header.IsMpeg1() && header.IntensityStereo())) {
            return false;
        }
        at += static_cast<std::size_t>(FrameBytes(header) + frameHeaderBytes);
    }
    return true;
}

void ExpectConformance(const std::vector<int>& pcm, const std::vector<int>& reference)
{
    // One of the references lacks the last frame.
    ASSERT_GE(pcm.size(), reference.size());
    ASSERT_LE(pcm.size(), reference.size() + 2304);
    ASSERT_GT(reference.size(), 0U);
    double squares = 0;
    int largest = 0;
    for (std::size_t i = 0; i < reference.size(); ++i) {
        const int error = std::abs(pcm[i] - reference[i]);
        largest = std::max(largest, error);
        squares += static_cast<double>(error) * error;
    }
    EXPECT_LE(largest, 2);
    EXPECT_LE(std::sqrt(squares / static_cast<double>(reference.size())), 0.80);
}

} // namespace

TEST(Decoding, IsWithinTwoStepsOnConformanceStreams)
{
    const char* folder = std::getenv("HARMONET_VECTORS");
    if (folder == nullptr || !std::filesystem::is_directory(folder)) {
        GTEST_SKIP() << "HARMONET_VECTORS names no folder with conformance streams (*.bit and *.pcm)";
    }
    int streams = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        const Bytes stream = entry.path().extension() == ".bit" ? ReadBytes(entry.path().string()) : Bytes();
        if (MemoryStream(stream).Get() == nullptr) {
            continue;
        }
        SCOPED_TRACE(entry.path().filename().string());
        const auto referencePath = std::filesystem::path(entry.path()).replace_extension(".pcm");
        const std::vector<int> reference = ToValues(ReadBytes(referencePath.string()));
        OnAllKernels([&](const DecoderKernels&) {
            ExpectConformance(DecodeAll(stream, 1152, true), reference);
            if (IsLikeStandard(stream)) {
                ExpectConformance(DecodeAll(stream), reference);
            }
        });
        ++streams;
    }
    EXPECT_GT(streams, 0);
}

// What an encoder has made, and in syntax/ every kind of block, table, scale factor and stereo mode, valid
// streams and random bits.
TEST(Decoding, MatchesOtherDecoders)
{
    int streams = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(MPEG_STREAMS)) {
        const std::filesystem::path& path = entry.path();
        if (path.extension() != ".mp3" || path.stem().string().starts_with("departure")) {
            continue;
        }
        SCOPED_TRACE(path.stem().string());
        const auto read = [&path](const char* extension) {
            return ToValues(ReadBytes(std::filesystem::path(path).replace_extension(extension)));
        };
        const Bytes stream = ReadBytes(path);
        const std::vector<int> reference = read("ref");
        const std::vector<int> standard = read("standard");
        OnAllKernels([&](const DecoderKernels&) {
            ExpectSameSound(DecodeAll(stream), reference, stride);
            ExpectSameSound(DecodeAll(stream, 1152, true), standard.empty() ? reference : standard, stride);
        });
        ++streams;
    }
    EXPECT_GT(streams, 55);
}

// Each of these streams contains one departure from the standard (streams/make_departures.py).
TEST(Decoding, DepartsFromTheStandardOnlyAsDocumented)
{
    for (const std::string name : {"24000-bands", "22050-intensity", "22050-mixed", "32000-short"}) {
        SCOPED_TRACE(name);
        const Bytes stream = ReadStream("departure-" + name + ".mp3");
        const std::vector<int> reference = ToValues(ReadStream("departure-" + name + ".ref"));
        ASSERT_GT(reference.size(), 400U);
        const std::vector<int> own = DecodeAll(stream);
        std::vector<int> standard = DecodeAll(stream, 1152, true);
        ExpectSameSound(own, ToValues(ReadStream("departure-" + name + ".own")), stride);
        ASSERT_EQ(standard.size(), own.size());
        int largest = 0;
        for (std::size_t i = 0; i < own.size(); ++i) {
            largest = std::max(largest, std::abs(own[i] - standard[i]));
        }
        EXPECT_GT(largest, 100);
        // One of the references lacks the last frames.
        standard.resize(std::min(standard.size(), stride * reference.size()));
        ExpectSameSound(standard, reference, stride);
    }
}

TEST(Decoding, TruncatesAndClipsToSixteenBits)
{
    const std::pair<float, int> rows[] = {{0.0F, 0}, {1.0F, 32767}, {-1.0F, -32767}, {1.001F, 32767},
        {-1.001F, -32768}, {1.9F / 32767, 1}, {-1.9F / 32767, -1}, {1e30F, 32767}, {-1e30F, -32768}};
    OnAllKernels([&](const DecoderKernels& kernels) {
        for (const auto& [sample, expected] : rows) {
            SCOPED_TRACE(sample);
            const std::vector<float> left(linesPerGranule, sample);
            const std::vector<float> right(linesPerGranule, 100.5F / 32767);
            Bytes pcm(4 * linesPerGranule);
            kernels.storePcm16(left.data(), right.data(), linesPerGranule, pcm.data());
            const std::vector<int> stereo = ToValues(pcm);
            kernels.storePcm16(left.data(), nullptr, linesPerGranule, pcm.data());
            const std::vector<int> mono = ToValues(pcm);
            for (int i = 0; i < linesPerGranule; ++i) {
                ASSERT_EQ(stereo[2 * i], expected);
                ASSERT_EQ(stereo[2 * i + 1], 100);
                ASSERT_EQ(mono[i], expected);
            }
        }
    });
}

// The tangent of position 9 of MPEG-1 is -1: its factors would be a division by nearly 0.
TEST(Tables, IntensityPositionsWithoutAFiniteFactorAreSilent)
{
    const IntensityTables& factors = Tables().intensity;
    for (int position = 0; position < 16; ++position) {
        SCOPED_TRACE(position);
        EXPECT_NEAR(factors.mpeg1Left[position] + factors.mpeg1Right[position], position == 9 ? 0 : 1, 1e-6);
        EXPECT_LT(std::abs(factors.mpeg1Left[position]), 3);
    }
}

// Each row: table, v, w, x, y, length, code; the pairs have no v and w.
TEST(Tables, HoldTheHuffmanCodesOfTheList)
{
    std::ifstream list(MPEG_TABLES "/huffman.csv");
    std::string row;
    std::getline(list, row);
    int count = 0;
    for (; std::getline(list, row); ++count) {
        SCOPED_TRACE(row);
        ASSERT_LT(count, huffmanCodeCount);
        std::vector<std::string> cells;
        std::istringstream stream(row);
        for (std::string cell; std::getline(stream, cell, ',');) {
            cells.push_back(cell);
        }
        ASSERT_EQ(cells.size(), 7U);
        const bool isPair = cells[1].empty();
        const std::string quadruple = cells[1] + cells[2] + cells[3] + cells[4];
        const HuffmanCode& code = huffmanCodes[count];
        EXPECT_EQ(code.first, isPair ? std::stoi(cells[3]) : std::stoi(quadruple, nullptr, 2));
        EXPECT_EQ(code.second, isPair ? std::stoi(cells[4]) : 0);
        EXPECT_EQ(code.length, std::stoi(cells[5]));
        EXPECT_EQ(static_cast<int>(code.code), std::stoi(cells[6], nullptr, 2));
    }
    EXPECT_EQ(count, huffmanCodeCount);
}

TEST(Tables, HoldTheNumbersOfTheStandard)
{
    constexpr int longCounts[6][4] = {
        {6, 5, 5, 5}, {6, 5, 7, 3}, {11, 10, 0, 0}, {7, 7, 7, 0}, {6, 6, 6, 3}, {8, 8, 5, 0}};
    for (int row = 0; row < 6; ++row) {
        EXPECT_TRUE(std::ranges::equal(lsfScaleFactorRows[row].counts[0], longCounts[row])) << row;
    }
    constexpr int bitrates[2][2] = {{32, 320}, {8, 160}};
    for (int version = 0; version < 2; ++version) {
        EXPECT_EQ(bitratesKbps[version][1], bitrates[version][0]);
        EXPECT_EQ(bitratesKbps[version][14], bitrates[version][1]);
    }
}
