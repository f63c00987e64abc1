// Streams of random frames, which hold every syntax that an encoder could use and some that none does, beside
// a plain decoder in double precision.

#include "MemoryStream.h"
#include "PlainDecoder.h"
#include "StreamMaker.h"

#include <gtest/gtest.h>

#include <cstdlib>

using namespace Quon;

namespace
{

void ExpectAsPlain(const StreamMaker::Bytes& stream)
{
    const std::vector<int> plain = PlainMpeg::Decoder().Decode(stream);
    for (const DecoderKernels* kernels : {&BaselineKernels(), Avx2Kernels()}) {
        if (kernels == nullptr) {
            continue;
        }
        SCOPED_TRACE(kernels->name);
        SndFileMP3::UseKernels(kernels);
        MemoryStream ours(stream);
        ASSERT_NE(ours.Get(), nullptr);
        const std::vector<int> pcm = ours.ReadAll();
        ASSERT_EQ(pcm.size(), plain.size());
        for (std::size_t i = 0; i < pcm.size(); ++i) {
            ASSERT_LE(std::abs(pcm[i] - plain[i]), 1) << "value " << i;
        }
    }
    SndFileMP3::UseKernels(nullptr);
}

} // namespace

TEST(RandomStreams, DecodeAsThePlainDecoderDoes)
{
    std::mt19937 random(1992);
    for (const bool isMpeg1 : {true, false}) {
        for (int rateIndex = 0; rateIndex < 3; ++rateIndex) {
            for (const int mode : {0, 1, 3}) {
                for (int round = 0; round < 4; ++round) {
                    StreamMaker::Header header;
                    header.isMpeg1 = isMpeg1;
                    header.rateIndex = rateIndex;
                    header.mode = mode;
                    header.bitrateIndex = 14 - 2 * round;
                    header.hasCrc = round == 1;
                    header.padding = round == 2;
                    SCOPED_TRACE(testing::Message() << "MPEG-" << (isMpeg1 ? 1 : 2) << ", rate " << rateIndex
                                                    << ", mode " << mode << ", round " << round);
                    ExpectAsPlain(StreamMaker::MakeRandomStream(random, header, 6));
                }
            }
        }
    }
}
