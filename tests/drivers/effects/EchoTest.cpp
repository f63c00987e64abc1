#include "drivers/openal/effects/EchoEffect.h"
#include "tests/drivers/effects/Signals.h"

#include <gtest/gtest.h>

#include <map>

namespace Quon::Testing
{
namespace
{

constexpr int rateHz = 8000;
constexpr std::size_t length = 1000;

using Taps = std::map<std::size_t, float>;

Taps FindTaps(const Pcm& pcm)
{
    Taps taps;
    for (std::size_t i = 0; i < pcm.size(); ++i) {
        if (pcm[i] != 0.0f) {
            taps[i] = pcm[i];
        }
    }
    return taps;
}

void ExpectTaps(const Pcm& pcm, const Taps& expected)
{
    const Taps taps = FindTaps(pcm);
    ASSERT_EQ(taps.size(), expected.size());
    for (const auto& [place, level] : expected) {
        SCOPED_TRACE("sample frame " + std::to_string(place));
        ASSERT_EQ(taps.count(place), 1u);
        EXPECT_NEAR(taps.at(place), level, 1e-6f);
    }
}

// 30 ms are 240 sample frames.
TEST(Echo, RepeatsWithTheFeedbackAndSharesTheLevelByTheMix)
{
    EchoEffect echo({40.0f, 50.0f, 30.0f, 500.0f, 0}, {rateHz, 1});
    ExpectTaps(
        Through(echo, MakeImpulse(length)), {{0, 0.6f}, {240, 0.4f}, {480, 0.2f}, {720, 0.1f}, {960, 0.05f}});
}

TEST(Echo, KeepsTheSidesApartWithADelayEach)
{
    EchoEffect echo({100.0f, 50.0f, 30.0f, 50.0f, 0}, {rateHz, 2});
    const Pcm out = Through(echo, MakeStereo(MakeImpulse(length), MakeImpulse(length, 0.5f)));
    ExpectTaps(TakeSide(out, 0), {{240, 1.0f}, {480, 0.5f}, {720, 0.25f}, {960, 0.125f}});
    ExpectTaps(TakeSide(out, 1), {{400, 0.5f}, {800, 0.25f}});
}

TEST(Echo, ChangesSidesAtEachEchoWhenPanned)
{
    EchoEffect echo({100.0f, 50.0f, 30.0f, 50.0f, 1}, {rateHz, 2});
    const Pcm out = Through(echo, MakeStereo(MakeImpulse(length), MakeSilence(length)));
    ExpectTaps(TakeSide(out, 0), {{240, 1.0f}, {240 + 400 + 240, 0.25f}});
    ExpectTaps(TakeSide(out, 1), {{240 + 400, 0.5f}});
}

} // namespace
} // namespace Quon::Testing
