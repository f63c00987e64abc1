// A cross-fade as it is heard: rendered through the output driver and measured on the samples.

#include "tests/instances/HeardTest.h"

#include <algorithm>
#include <cmath>

namespace Quon
{

namespace
{

constexpr int rateHz = 22050;

using MusicHeard = HeardTest;

// Of two constants, so that each sample frame shows the sum of both levels, and any gap or click.
TEST_F(MusicHeard, ACrossFadeHasNoGapNoClickAndLinearLevels)
{
    constexpr double from = 0.4;
    constexpr double to = 0.1;
    for (const double level : {from, to}) {
        folder.Write(level == from ? "from" : "to",
            BuildWave({rateHz, rateHz, 2, 16}, [level](int) { return std::lround(32768 * level); }));
    }
    const Rendering heard = Render([&](Scene& scene) {
        ASSERT_TRUE(scene.music.Play("from", true));
        StepTimes(20, 50);
        ASSERT_TRUE(scene.music.CrossFade("to", 1000, true));
        StepTimes(40, 50);
    });
    ASSERT_EQ(heard.GetFrames(), 3U * rateHz);
    // Without the end, where the piece is stopped.
    for (std::size_t i = 0; i < heard.GetFrames() - 100; ++i) {
        const double risen = std::clamp(static_cast<double>(i) / rateHz - 1.0, 0.0, 1.0);
        for (const int side : {0, 1}) {
            ASSERT_NEAR(heard.At(i, side), from + (to - from) * risen, 0.002) << i;
        }
    }
}

} // namespace

} // namespace Quon
