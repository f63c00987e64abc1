// The low-pass of a sound, its group and everything, as it is heard.

#include "tests/instances/HeardTest.h"

#include <cmath>
#include <functional>
#include <numbers>

namespace Quon
{

namespace
{

constexpr int rateHz = 44100;
constexpr double toneHz = 8820.0;
constexpr double cornerHz = 1000.0;
constexpr int stepMs = 50;
constexpr std::size_t stepFrames = rateHz * stepMs / 1000;

double Warp(double hz)
{
    return std::tan(std::numbers::pi * hz / rateHz);
}

/// What is left of the tone.
double CalcGain(double lowPass)
{
    const double w4 = std::pow(Warp(toneHz) / Warp(cornerHz), 4);
    return std::sqrt((1 + lowPass * lowPass * w4) / (1 + w4));
}

struct Row
{
    float own, parent, all;
    bool losesChannel = false;
};

class LowPassHeard : public HeardTest
{
protected:
    LowPassHeard()
    {
        SetOption("SoundFrequency", "44100");
        folder.Write("tone", BuildWave({rateHz, rateHz, 1, 16}, [](int frame) {
            return std::lround(9000 * std::sin(2 * std::numbers::pi * toneHz * frame / rateHz));
        }));
    }
};

TEST_F(LowPassHeard, FactorsMultiplyForEveryKindOfSoundAndOutlastItsChannel)
{
    constexpr int settleSteps = 4;
    const Row rows[] = {{1, 1, 1}, {0.5F, 1, 1}, {0.5F, 0.5F, 1}, {0.5F, 0.5F, 0.5F}, {0.25F, 1, 0.5F, true},
        {7, -1, 1}, {1, 1, 1}};
    const Vector3 points[] = {{3, 0, -3}, {3, 0, 3}};
    Sound::Settings near;
    near.setDistance = true;
    near.minDistance = near.maxDistance = 10.0F;
    const std::function<int(Sound&, Music&)> kinds[] = {
        [](Sound& group, Music&) { return group.Play2DSound("tone", nullptr, Sound::StartLooping, 0, 0); },
        [&](Sound& group, Music&) {
            return group.Play3DSound(points[0], "tone", nullptr, Sound::StartLooping, 0, near, 0);
        },
        [&](Sound& group, Music&) {
            const int id = group.New3DSound(points, 2, "tone", nullptr, 0, 0.0F);
            return group.StartSound(id, 0) ? id : 0;
        },
        [](Sound&, Music& music) { return music.Play("tone", true) ? -1 : 0; }};
    for (const auto& play : kinds) {
        const Rendering heard = Render([&](Scene& scene) {
            const int id = play(scene.group, scene.music);
            ASSERT_NE(id, 0);
            // A line is heard from the first move on.
            scene.microphone.SetPosition({0.0F, 0.0F, 0.01F});
            for (const Row& row : rows) {
                if (row.losesChannel) {
                    SoundSystem::PauseAll();
                    Step(stepMs);
                }
                scene.group.SetSoundLowPass(id, row.own);
                scene.group.SetLowPass(row.parent);
                scene.music.SetLowPass(row.parent);
                SoundSystem::SetLowPass(row.all);
                SoundSystem::ResumeAll();
                StepTimes(settleSteps, stepMs);
            }
        });
        const bool isMusic = &play == std::end(kinds) - 1;
        std::size_t end = 0;
        double full = 0.0;
        for (const Row& row : rows) {
            end += stepFrames * (settleSteps + (row.losesChannel ? 1 : 0));
            const double level = heard.Level(end - stepFrames, end, 1);
            full = &row == rows ? level : full;
            const double own = isMusic ? 1.0 : std::fmin(row.own, 1.0F);
            EXPECT_NEAR(level / full, CalcGain(own * std::fmax(row.parent, 0.0F) * row.all), 0.002)
                << "kind " << &play - kinds << ", row " << &row - rows;
        }
        EXPECT_GT(full, 0.05);
    }
}

} // namespace

} // namespace Quon
