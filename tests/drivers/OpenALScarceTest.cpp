#include "harmonet/definitions/EnvReverbPresets.h"
#include "tests/drivers/OfflineRig.h"
#include "tests/drivers/effects/OwnedList.h"
#include "tests/support/Environment.h"

#include <gtest/gtest.h>

#include <fstream>
#include <utility>

namespace Quon
{
namespace
{

constexpr int rateHz = OfflineRig::rateHz;
// Newer versions of OpenAL Soft take no smaller limit.
constexpr int sources = 16;

// A user's configuration that has few sources, and leaves none of them a way into a reverb.
bool Configure()
{
    const std::string path = (GetTestFolder() / "alsoft.conf").string();
    std::ofstream(path) << "[general]\nsends = 0\nsources = " << sources << "\n";
    return SetEnvironment("ALSOFT_CONF", path) && SetEnvironment("ALSOFT_DRIVERS", "null");
}

const bool isScarce = Configure();

TEST(OpenALScarce, RoomsAreRefusedAndSoundsPlayWithoutThem)
{
    ASSERT_TRUE(isScarce);
    OfflineRig rig;
    SoundCaps caps;
    EXPECT_TRUE(rig.GetDriver().GetCaps(caps));
    EXPECT_EQ(caps.GetFlags(), 0U);
    EXPECT_FALSE(rig.GetDriver().SetFXEnvReverb(&fxEnvReverbGeneric, 2, 0));
    const FXEnvReverbSourceProperties silent = {-10000, 0, 0, 0, 0, 0, 0, 0, 0};
    Testing::OwnedList list;
    list.Add(SndFXEnvReverbSource, silent).Add(SndFXEnvReverb, fxEnvReverbGeneric);
    const auto file = MakeFile({rateHz}, Constant(0.5));
    SndChannel* const channel = rig.Play(*file, ChanPositional, list.Get());
    FXEnvReverb room{};
    EXPECT_FALSE(channel->SetFXEnvReverbSourceProperties(&silent));
    EXPECT_FALSE(channel->GetFXEnvReverbListenerProperties(&room));
    rig.Step(40);
    EXPECT_NEAR(rig.Heard().At(1000), 0.5 * 0.5957, 0.001);
}

// There are no spare sources for sounds that are falling silent, so that a stop in favour of another sound is
// a cut.
TEST(OpenALScarce, EverySourceIsUsedAndReusedAtOnce)
{
    constexpr double level = 1.0 / 32;
    OfflineRig rig(24);
    std::vector<SndChannel*> channels;
    for (int round = 0; round < 3; ++round) {
        SCOPED_TRACE(round);
        for (SndChannel* const channel : std::exchange(channels, {})) {
            channel->Stop();
        }
        while (SndChannel* const channel = rig.Create(rig.Make({10 * rateHz}, Constant(level)))) {
            channel->Play();
            channels.push_back(channel);
        }
        EXPECT_EQ(channels.size(), static_cast<size_t>(sources));
        rig.Step(40);
        EXPECT_EQ(rig.Heard().samples.back(), sources * level);
    }
}

} // namespace
} // namespace Quon
