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

} // namespace

} // namespace Quon
