#include "tests/drivers/OfflineRig.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace Quon
{
namespace
{

// The only output that OpenAL may try writes a file, and it has not been told which: as if there were no
// card.
const bool isWithoutOutput = setenv("ALSOFT_DRIVERS", "wave", 1) == 0;

TEST(OpenALAbsent, AMachineWithoutASoundCardFailsToOpenAndCanStillRender)
{
    ASSERT_TRUE(isWithoutOutput);
    EXPECT_FALSE(DriverRig("HarmonetOpenAL").Open(44100, 8));
    OfflineRig rig;
    rig.Step(1000);
    EXPECT_EQ(rig.Heard().GetFrames(), 44100u);
}

} // namespace
} // namespace Quon
