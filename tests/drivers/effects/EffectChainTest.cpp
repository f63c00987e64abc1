#include "drivers/openal/effects/EffectChain.h"

#include "drivers/openal/effects/DistortionEffect.h"
#include "drivers/openal/effects/EchoEffect.h"
#include "drivers/openal/effects/GargleEffect.h"
#include "tests/drivers/effects/OwnedList.h"
#include "tests/drivers/effects/Signals.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace Quon::Testing
{
namespace
{

constexpr int rateHz = 8000;
constexpr FXEcho echo = {50, 50, 100, 100, 0};
constexpr FXGargle gargle = {40, 1};
constexpr FXDistortion distortion = {-6, 80, 1000, 2000, 2000};

class Chain : public testing::Test
{
protected:
    void Build(const OwnedList& list, int channels = 1) { chain.Build(list.Get(), {rateHz, channels}); }

    /// The tail in steps of `blockFrames`, as a driver asks for it; for ever, if it does not end.
    Pcm CollectTail(std::size_t blockFrames, std::size_t channels = 1)
    {
        Pcm tail;
        Pcm block(blockFrames * channels);
        std::size_t given = 0;
        do {
            given = chain.ProcessTail(block);
            const auto samples = static_cast<std::ptrdiff_t>(given * channels);
            tail.insert(tail.end(), block.begin(), block.begin() + samples);
        } while (given == blockFrames);
        return tail;
    }

    EffectChain chain;
};

TEST_F(Chain, ProcessesInListOrderAndSkipsRoomsAndInvalidRecords)
{
    const Pcm noise = MakeNoise(4000, 0.8F);
    DistortionEffect distortionAlone(distortion, {rateHz, 1});
    GargleEffect gargleAlone(gargle, {rateHz, 1});
    EchoEffect echoAlone(echo, {rateHz, 1});
    const Pcm expected = Through(echoAlone, Through(gargleAlone, Through(distortionAlone, noise)));

    OwnedList list;
    list.Add(SndFXEnvReverb, FXEnvReverb{}).Add(SndFXChorus, std::int32_t{0});
    Build(list);
    EXPECT_TRUE(chain.IsEmpty());
    list.Add(SndFXDistortion, distortion).Add(SndFXGargle, gargle).Add(SndFXEcho, echo);
    Build(list);
    EXPECT_EQ(Through(chain, noise), expected);
}

// An echo of 100 ms halves each time: the ninth, of 0.5 ^ 9, is the last above -60 dB. After it the tail
// waits for the delay and another 20 ms.
TEST_F(Chain, GivesATailUntilSilentAndAgainAfterMoreSound)
{
    for (const std::size_t blockFrames : {1U, 7U, 80U, 100000U}) {
        SCOPED_TRACE(blockFrames);
        Build(OwnedList().Add(SndFXEcho, echo));
        Through(chain, Pcm{1.0F});
        const Pcm tail = CollectTail(blockFrames);
        EXPECT_EQ(tail.size(), 9U * 800 + 800 + 160);
        for (std::size_t i = 0; i < tail.size(); ++i) {
            const std::size_t place = i + 1;
            EXPECT_EQ(tail[i], place % 800 == 0 ? std::pow(0.5F, static_cast<float>(place) / 800) : 0.0F);
        }
        Through(chain, Pcm{1.0F});
        // What is left of the first sound is below -60 dB and stays there.
        EXPECT_EQ(CollectTail(blockFrames).size(), tail.size());
    }
}

TEST_F(Chain, LimitsAnEndlessTail)
{
    Build(OwnedList().Add(SndFXEcho, FXEcho{50, 100, 10, 10, 0}), 2);
    Through(chain, Pcm{1.0F, 1.0F});
    EXPECT_EQ(CollectTail(160, 2).size(), 2U * 3 * rateHz);
    Pcm block(320);
    EXPECT_EQ(chain.ProcessTail(block), 0U);
}

// A slow gargle is silent for half a second while the echoes continue.
TEST_F(Chain, WaitsForDelayedOutputOfEarlierEffects)
{
    Build(OwnedList().Add(SndFXEcho, FXEcho{50, 90, 50, 50, 0}).Add(SndFXGargle, FXGargle{1, 1}));
    Through(chain, Pcm(400, 1.0F));
    const Pcm tail = CollectTail(160);
    const auto loud = [](float sample) { return std::fabs(sample) > 0.001F; };
    EXPECT_FALSE(std::any_of(tail.begin() + 4000, tail.begin() + 7500, loud));
    EXPECT_TRUE(std::any_of(tail.begin() + 8000, tail.end(), loud));
}

} // namespace
} // namespace Quon::Testing
