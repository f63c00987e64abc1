#include "harmonet/definitions/EnvReverbPresets.h"
#include "tests/drivers/FormulaFile.h"
#include "tests/drivers/OfflineRig.h"
#include "tests/drivers/effects/OwnedList.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

namespace Quon
{
namespace
{

// A user's configuration that leaves no source a way into a reverb.
bool Configure()
{
    const std::string path = (GetTestFolder() / "alsoft.conf").string();
    std::ofstream(path) << "[general]\nsends = 0\n";
    return setenv("ALSOFT_CONF", path.c_str(), 1) == 0;
}

TEST(OpenALNoSends, RoomsAreRefusedAndSoundsPlayAsWithoutThem)
{
    ASSERT_TRUE(Configure());
    OfflineRig rig;
    SoundCaps caps;
    EXPECT_TRUE(rig.GetDriver().GetCaps(caps));
    EXPECT_EQ(caps.GetFlags(), 0u);
    EXPECT_FALSE(rig.GetDriver().SetFXEnvReverb(&fxEnvReverbGeneric, 2, 0));
    rig.GetDriver().ResetFXEnvReverb(0);
    const FXEnvReverbSourceProperties silent = {-10000, 0, 0, 0, 0, 0, 0, 0, 0};
    Testing::OwnedList list;
    list.Add(SndFXEnvReverbSource, silent).Add(SndFXEnvReverb, fxEnvReverbGeneric);
    const auto file = MakeFile({44100}, Constant(0.5));
    SndChannel* const channel = rig.Play(*file, ChanPositional, list.Get());
    FXEnvReverbSourceProperties properties{};
    FXEnvReverb room{};
    EXPECT_FALSE(channel->SetFXEnvReverbSourceProperties(&silent));
    EXPECT_FALSE(channel->GetFXEnvReverbSourceProperties(&properties));
    EXPECT_FALSE(channel->GetFXEnvReverbListenerProperties(&room));
    rig.Step(40);
    EXPECT_NEAR(rig.Heard().At(1000), 0.5 * 0.5957, 0.001);
}

} // namespace
} // namespace Quon
