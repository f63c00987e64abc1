// Each stage of the decoder, in every form that this machine can run, beside its plain formula.

#include "PlainStages.h"
#include "harmonet/files/mpeg/HybridStage.h"
#include "harmonet/files/mpeg/SpectrumStage.h"
#include "harmonet/files/mpeg/StereoStage.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <random>

using namespace Quon;

namespace
{

constexpr double largestRelativeError = 1e-5;

std::vector<const DecoderKernels*> AllKernels()
{
    std::vector<const DecoderKernels*> all = {&BaselineKernels()};
    if (Avx2Kernels() != nullptr) {
        all.push_back(Avx2Kernels());
    }
    return all;
}

class Stages : public testing::TestWithParam<const DecoderKernels*>
{
protected:
    const DecoderKernels& kernels = *GetParam();
    static inline const std::unique_ptr<DecoderTables> tables = std::make_unique<DecoderTables>();
    std::mt19937 random{20011};

    int Pick(int from, int to) { return std::uniform_int_distribution(from, to)(random); }

    /// Noise up to the line `end`, the same in single and double precision.
    void FillNoise(float* xr, PlainMpeg::Line& plain, int end)
    {
        std::uniform_real_distribution<float> noise(-1, 1);
        for (int i = 0; i < linesPerGranule; ++i) {
            xr[i] = i < end ? noise(random) : 0.0f;
            plain[static_cast<std::size_t>(i)] = xr[i];
        }
    }

    GranuleInfo BlockOf(int blockType, bool mixed)
    {
        GranuleInfo info = {};
        info.window_switching_flag = blockType != 0;
        info.block_type = blockType;
        info.mixed_block_flag = mixed;
        return info;
    }
};

/// The error is measured against the largest value of the whole result.
template<class Result>
double RelativeError(const float* ours, const Result& plain)
{
    double largest = 0;
    double error = 0;
    for (std::size_t i = 0; i < plain.size(); ++i) {
        largest = std::max(largest, std::abs(plain[i]));
        error = std::max(error, std::abs(ours[i] - plain[i]));
    }
    return largest > 0 ? error / largest : error;
}

struct BlockKind
{
    int blockType;
    bool mixed;
};

constexpr BlockKind blockKinds[] = {{0, false}, {1, false}, {2, false}, {3, false}, {2, true}, {1, true}};

} // namespace

INSTANTIATE_TEST_SUITE_P(EveryInstructionSet, Stages, testing::ValuesIn(AllKernels()),
    [](const auto& instance) { return std::string(instance.param->name); });

TEST_P(Stages, RequantisationFollowsItsFormula)
{
    for (int round = 0; round < 400; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        const BandTable& bands = bandTables[round % 6];
        GranuleInfo info = BlockOf(Pick(0, 3), Pick(0, 1) != 0);
        info.scalefac_scale = Pick(0, 1);
        info.preflag = Pick(0, 1);
        for (int& gain : info.gain) {
            gain = Pick(150, 255);
        }
        ScaleFactors scaleFactors = {};
        for (int band = 0; band < 21; ++band) {
            scaleFactors.longBands[band] = Pick(0, 15);
            scaleFactors.shortBands[band % 3][band / 3] = Pick(0, 31);
        }
        const int lineCount = std::min(2 * Pick(0, 300), linesPerGranule);
        PlainMpeg::Values values = {};
        float lines[spectrumStride] = {};
        for (int i = 0; i < lineCount; ++i) {
            const int value = Pick(0, 3) == 0 ? Pick(-maxSpectralValue, maxSpectralValue) : Pick(-1, 1);
            values[static_cast<std::size_t>(i)] = value;
            lines[i] = value < 0 ? -tables->power[-value] : tables->power[value];
        }
        PlainMpeg::Limits plainLimits;
        const PlainMpeg::Line plain =
            PlainMpeg::Requantise(info, scaleFactors, bands, values, lineCount, plainLimits);
        float xr[spectrumStride];
        const SpectrumLimits limits =
            Requantise(*tables, kernels, {info, scaleFactors, bands, lineCount}, lines, xr);
        for (std::size_t i = 0; i < plain.size(); ++i) {
            ASSERT_NEAR(xr[i], plain[i], std::abs(plain[i]) * largestRelativeError) << "line " << i;
        }
        EXPECT_TRUE(std::equal(plainLimits.band.begin(), plainLimits.band.end(), limits.bandLimit));
        EXPECT_EQ(limits.subbandLimit, plainLimits.subband);
    }
}

TEST_P(Stages, StereoFollowsItsFormula)
{
    for (int round = 0; round < 400; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        const bool isMpeg1 = round % 2 == 0;
        const BandTable& bands = bandTables[(isMpeg1 ? 0 : 3) + round % 3];
        GranuleInfo first = BlockOf(Pick(0, 3), Pick(0, 1) != 0);
        first.scalefac_compress = Pick(0, 15);
        ScaleFactors positions = {};
        for (int band = 0; band < 21; ++band) {
            // Positions 8 and up exist in MPEG-1 too, but 9 has no finite factor.
            positions.longBands[band] = Pick(0, isMpeg1 ? 8 : 31);
            positions.shortBands[band % 3][band / 3 + 5] = Pick(0, isMpeg1 ? 8 : 31);
        }
        SpectrumLimits limits = {{Pick(-1, 21), Pick(-1, 12), Pick(-1, 12), Pick(-1, 12)}, 31};
        const PlainMpeg::Limits plainLimits = {
            {limits.bandLimit[0], limits.bandLimit[1], limits.bandLimit[2], limits.bandLimit[3]}, 31};
        float xr[2 * spectrumStride];
        PlainMpeg::Line left;
        PlainMpeg::Line right;
        FillNoise(xr, left, linesPerGranule);
        FillNoise(xr + spectrumStride, right, linesPerGranule);
        const PlainMpeg::StereoMode mode = {isMpeg1, Pick(0, 1) != 0, round % 8 != 0};
        PlainMpeg::Stereo(mode, first, positions, plainLimits, bands, left, right);
        if (mode.intensityStereo) {
            ApplyIntensityStereo(tables->intensity, {isMpeg1, mode.msStereo, first, positions, limits, bands},
                xr, xr + spectrumStride);
        }
        else {
            kernels.midSide(xr, xr + spectrumStride, linesPerGranule);
        }
        EXPECT_LT(RelativeError(xr, left), largestRelativeError);
        EXPECT_LT(RelativeError(xr + spectrumStride, right), largestRelativeError);
    }
}

TEST_P(Stages, AliasReductionFollowsItsFormula)
{
    for (const BlockKind& kind : blockKinds) {
        for (int limit = -1; limit < subbandCount; ++limit) {
            SCOPED_TRACE("block type " + std::to_string(kind.blockType) + ", limit " + std::to_string(limit));
            const GranuleInfo info = BlockOf(kind.blockType, kind.mixed);
            float xr[spectrumStride];
            PlainMpeg::Line plain;
            FillNoise(xr, plain, (limit + 1) * linesPerSubband);
            PlainMpeg::AliasReduction(info, plain);
            ReduceAlias(*tables, kernels, info, limit, xr);
            EXPECT_LT(RelativeError(xr, plain), largestRelativeError);
        }
    }
}

TEST_P(Stages, HybridTransformFollowsItsFormulaThroughTheOverlap)
{
    PlainMpeg::Subbands plainOverlap = {};
    float overlap[slotsPerGranule * subbandCount] = {};
    for (int round = 0; round < 60; ++round) {
        const BlockKind& kind = blockKinds[round % 7 % 6];
        const int limit = Pick(-1, 31);
        SCOPED_TRACE("block type " + std::to_string(kind.blockType) + ", limit " + std::to_string(limit));
        const GranuleInfo info = BlockOf(kind.blockType, kind.mixed);
        float xr[spectrumStride];
        PlainMpeg::Line line;
        // The alias reduction may have left something in one further subband.
        FillNoise(xr, line, std::min(limit + 2, subbandCount) * linesPerSubband);
        const PlainMpeg::Subbands plain = PlainMpeg::Hybrid(info, limit, line, plainOverlap);
        float out[slotsPerGranule * subbandCount];
        TransformHybrid(*tables, kernels, info, limit, xr, overlap, out);

        std::vector<double> expected;
        std::vector<double> expectedOverlap;
        for (std::size_t slot = 0; slot < slotsPerGranule; ++slot) {
            for (std::size_t subband = 0; subband < subbandCount; ++subband) {
                const double inversion = slot % 2 != 0 && subband % 2 != 0 ? -1 : 1;
                expected.push_back(inversion * plain[subband][slot]);
                expectedOverlap.push_back(inversion * plainOverlap[subband][slot]);
            }
        }
        EXPECT_LT(RelativeError(out, expected), largestRelativeError);
        EXPECT_LT(RelativeError(overlap, expectedOverlap), largestRelativeError);
    }
}

TEST_P(Stages, PolyphaseFollowsItsFormulaThroughTheHistory)
{
    PlainMpeg::Polyphase plain;
    float history[synthesisHistorySize] = {};
    std::uniform_real_distribution<float> noise(-1, 1);
    for (int round = 0; round < 6; ++round) {
        SCOPED_TRACE("granule " + std::to_string(round));
        PlainMpeg::Subbands subbands;
        float ours[slotsPerGranule * subbandCount];
        for (std::size_t slot = 0; slot < slotsPerGranule; ++slot) {
            for (std::size_t subband = 0; subband < subbandCount; ++subband) {
                const float value = noise(random);
                subbands[subband][slot] = value;
                ours[slot * subbandCount + subband] = slot % 2 != 0 && subband % 2 != 0 ? -value : value;
            }
        }
        float samples[spectrumStride];
        kernels.synthesis(tables->synthesis, ours, history, samples);
        EXPECT_LT(RelativeError(samples, plain.Run(subbands)), largestRelativeError);
    }
}

TEST_P(Stages, SilenceDecaysToExactZeros)
{
    const GranuleInfo info = BlockOf(0, false);
    float overlap[slotsPerGranule * subbandCount] = {};
    float history[synthesisHistorySize] = {};
    float xr[spectrumStride];
    float out[slotsPerGranule * subbandCount];
    float samples[spectrumStride];
    PlainMpeg::Line unused;
    FillNoise(xr, unused, linesPerGranule);
    for (int granule = 0; granule < 3; ++granule) {
        TransformHybrid(*tables, kernels, info, granule == 0 ? 31 : -1, xr, overlap, out);
        kernels.synthesis(tables->synthesis, out, history, samples);
        std::fill(xr, xr + spectrumStride, 0.0f);
    }
    // The overlap lasts one granule more and the history 15 time slots of 32 samples.
    EXPECT_TRUE(std::any_of(samples, samples + 15 * 32, [](float sample) { return sample != 0.0f; }));
    EXPECT_TRUE(std::all_of(samples + 15 * 32, samples + 576, [](float sample) { return sample == 0.0f; }));
}

TEST_P(Stages, ConversionTruncatesAndClips)
{
    struct Row
    {
        float sample;
        int pcm;
    };
    constexpr Row table[] = {{0.0f, 0}, {1.0f, 32767}, {-1.0f, -32767}, {1.001f, 32767}, {-1.001f, -32768},
        {0.5f, 16383}, {-0.5f, -16383}, {1.9f / 32767, 1}, {-1.9f / 32767, -1}, {1e30f, 32767},
        {-1e30f, -32768}};
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
        left[7] = 100.5f / 32767;
        kernels.storePcm16(left, nullptr, linesPerGranule, pcm);
        for (int i = 0; i < linesPerGranule; ++i) {
            ASSERT_EQ(sampleAt(i), i == 7 ? 100 : row.pcm);
        }
    }
}
