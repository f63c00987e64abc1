// Streams from an encoder beside the PCM of another decoder, and the conformance streams of the standard.

#include "MemoryStream.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>

using namespace Quon;

namespace
{

constexpr const char* streamNames[] = {
    "joint-44100", "crc-44100", "mono-48000", "vbr-32000", "joint-22050", "mono-16000", "joint-24000"};

std::vector<const DecoderKernels*> AllKernels()
{
    std::vector<const DecoderKernels*> all = {&BaselineKernels()};
    if (Avx2Kernels() != nullptr) {
        all.push_back(Avx2Kernels());
    }
    return all;
}

/// Whether this library decodes the stream as the reference does: not at 24 kHz, where its table of bands
/// differs, not with the intensity stereo of MPEG-2, and no free format.
bool IsInScope(const std::vector<unsigned char>& stream)
{
    for (std::size_t at = 0; at + frameHeaderBytes <= stream.size();) {
        const FrameHeader header = SplitFrameHeader(LoadFrameHeader(stream.data() + at));
        if (!IsPlayable(header) || SampleRateHz(header) == 24000 ||
            (!header.IsMpeg1() && header.IntensityStereo())) {
            return false;
        }
        at += static_cast<std::size_t>(FrameBytes(header) + frameHeaderBytes);
    }
    return true;
}

class ReferenceStreams : public testing::TestWithParam<const DecoderKernels*>
{
protected:
    ReferenceStreams() { SndFileMP3::UseKernels(GetParam()); }
    ~ReferenceStreams() override { SndFileMP3::UseKernels(nullptr); }

    static std::vector<int> Decode(const std::vector<unsigned char>& stream)
    {
        MemoryStream file(stream);
        return file.Get() != nullptr ? file.ReadAll() : std::vector<int>();
    }
};

} // namespace

INSTANTIATE_TEST_SUITE_P(EveryInstructionSet, ReferenceStreams, testing::ValuesIn(AllKernels()),
    [](const auto& instance) { return std::string(instance.param->name); });

TEST_P(ReferenceStreams, DecodeAsAnotherDecoderDoes)
{
    // The references hold every 11th value (streams/make_streams.sh).
    constexpr std::size_t stride = 11;
    for (const std::string name : streamNames) {
        SCOPED_TRACE(name);
        const std::vector<int> pcm = Decode(ReadStream(name + ".mp3"));
        const std::vector<int> reference = ToValues(ReadStream(name + ".ref"));
        ASSERT_GT(reference.size(), 900u);
        ASSERT_EQ((pcm.size() + stride - 1) / stride, reference.size());
        for (std::size_t i = 0; i < reference.size(); ++i) {
            ASSERT_LE(std::abs(pcm[stride * i] - reference[i]), 1) << "value " << stride * i;
        }
    }
}

TEST_P(ReferenceStreams, ConformanceStreamsStayWithinTwoSteps)
{
    const char* folder = std::getenv("HARMONET_VECTORS");
    if (folder == nullptr || !std::filesystem::is_directory(folder)) {
        GTEST_SKIP() << "HARMONET_VECTORS names no folder with conformance streams (*.bit and *.pcm)";
    }
    int streams = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().extension() != ".bit") {
            continue;
        }
        SCOPED_TRACE(entry.path().filename());
        const std::vector<unsigned char> stream = ReadBytes(entry.path());
        if (!IsInScope(stream)) {
            continue;
        }
        const std::vector<int> pcm = Decode(stream);
        const std::vector<int> reference =
            ToValues(ReadBytes(std::filesystem::path(entry.path()).replace_extension(".pcm")));
        // One of the references lacks the last frame.
        ASSERT_GE(pcm.size(), reference.size());
        ASSERT_LE(pcm.size(), reference.size() + 2304);
        ASSERT_GT(reference.size(), 0u);
        double squares = 0;
        int largest = 0;
        for (std::size_t i = 0; i < reference.size(); ++i) {
            const int error = std::abs(pcm[i] - reference[i]);
            largest = std::max(largest, error);
            squares += static_cast<double>(error) * error;
        }
        EXPECT_LE(largest, 2);
        EXPECT_LE(std::sqrt(squares / static_cast<double>(reference.size())), 0.80);
        ++streams;
    }
    EXPECT_GT(streams, 0);
}
