// Positional sounds that were given nothing but a place, as they are heard.

#include "tests/instances/HeardTest.h"

#include <functional>

namespace Quon
{

namespace
{

using PlacedHeard = HeardTest;

TEST_F(PlacedHeard, SoundsWithoutConeAndDistancesAreHeard)
{
    constexpr int rateHz = 22050;
    const PString file = WriteWave("a", {rateHz, rateHz, 1, 16});
    MemoryBlock block({rateHz, rateHz, 1, 16});
    const Vector3 place{2.0F, 0.0F, 0.0F};
    const Vector3 points[] = {place, {2.0F, 0.0F, 9.0F}};
    const std::function<int(Sound&)> kinds[] = {
        [&](Sound& group) { return group.Play3DSound(place, file, nullptr, 0, 0, Sound::Settings(), 0); },
        [&](Sound& group) {
            const int id = group.New3DSound(block.GetData(), block.GetSize(), &block.format);
            group.SetSoundPosition(id, place);
            return group.StartSound(id, 0) ? id : 0;
        },
        [&](Sound& group) {
            const int id = group.New3DSound(points, 2, file, nullptr, 1, 45.0F);
            return group.StartSound(id, 0) ? id : 0;
        }};
    for (const auto& play : kinds) {
        SCOPED_TRACE(&play - kinds);
        const Rendering heard = Render([&](Scene& scene) {
            EXPECT_NE(play(scene.group), 0);
            StepTimes(12, 50);
        });
        EXPECT_GT(heard.Level(heard.GetFrames() / 2, heard.GetFrames(), 1), 0.01);
    }
}

// Everything moves by the same way: the listener hears no difference.
TEST_F(PlacedHeard, OnlyWhereASoundIsFromTheListenerCounts)
{
    constexpr int rateHz = 22050;
    const PString file = WriteWave("a", {rateHz, rateHz, 1, 16});
    Sound::Settings settings;
    settings.setDistance = settings.setCone = settings.cutout = true;
    settings.minDistance = 1.0F;
    settings.maxDistance = 50.0F;
    settings.innerConeAngle = 60.0F;
    settings.outerConeAngle = 200.0F;
    settings.coneGain = 0.2F;
    const auto render = [&](const Vector3& away) {
        return Render([&](Scene& scene) {
            scene.microphone.SetPosition(away);
            scene.microphone.SetOrientation({1.0F, 1.0F, 0.0F}, {0.0F, 0.0F, 1.0F});
            const int id =
                scene.group.Play3DSound(away + Vector3{2.0F, 3.0F, -1.0F}, file, nullptr, 0, 0, settings, 0);
            StepTimes(6, 50);
            scene.group.SetSoundPosition(id, away + Vector3{-1.0F, 4.0F, 2.0F});
            StepTimes(6, 50);
        });
    };
    const Rendering expected = render({0.0F, 0.0F, 0.0F});
    EXPECT_GT(expected.Level(0, expected.GetFrames(), 0), 0.005);
    for (const Vector3& away :
        {Vector3{80.0F, 0.0F, 0.0F}, Vector3{0.0F, -160.0F, 0.0F}, Vector3{0.0F, 0.0F, 320.0F}}) {
        SCOPED_TRACE(testing::Message() << away.x << ' ' << away.y << ' ' << away.z);
        const Rendering heard = render(away);
        ASSERT_EQ(heard.samples.size(), expected.samples.size());
        for (std::size_t i = 0; i < heard.samples.size(); ++i) {
            ASSERT_NEAR(heard.samples[i], expected.samples[i], 1e-3) << i;
        }
    }
}

} // namespace

} // namespace Quon
