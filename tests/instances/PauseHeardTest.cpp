// A pause as it is heard: rendered through the output driver, against the same scene without it.

#include "tests/instances/HeardTest.h"

#include <random>

namespace Quon
{

namespace
{

constexpr int rateHz = 22050;
constexpr int stepMs = 40;
constexpr std::size_t stepFrames = rateHz * stepMs / 1000;
constexpr int sceneSteps = 60;
// A sound that is displaced or returns fades for 30 ms and the block that is being mixed.
constexpr std::size_t rampFrames = stepFrames;
constexpr int numFiles = 9;

/// When everything is paused: before which step, and for how many.
struct Halt
{
    int step = sceneSteps + 1;
    int length = 0;
};

class PauseHeard : public HeardTest
{
protected:
    PauseHeard()
    {
        for (int file = 0; file < numFiles; ++file) {
            folder.Write("noise" + std::to_string(file), BuildNoise(file));
        }
    }

    /// What is heard of the left side.
    std::vector<double> RenderParts(const Halt& halt)
    {
        const Rendering heard = Render([&](Scene& scene) {
            int time = 0; // In steps, without the pause.
            for (int step = 1; step <= sceneSteps + halt.length; ++step) {
                if (step == halt.step) {
                    SoundSystem::PauseAll();
                }
                if (step == halt.step + halt.length) {
                    SoundSystem::ResumeAll();
                }
                if (step <= halt.step || step > halt.step + halt.length) {
                    Act(scene, ++time);
                }
                Step(stepMs);
            }
        });
        std::vector<double> left(heard.GetFrames());
        for (std::size_t i = 0; i < left.size(); ++i) {
            left[i] = heard.At(i);
        }
        return left;
    }

private:
    static std::vector<unsigned char> BuildNoise(int seed)
    {
        // The third is short: less than 500 ms are left of it at most of the pauses.
        const int frames = seed == 2 ? 13000 : 25000;
        std::minstd_rand random(static_cast<unsigned int>(seed + 1));
        return BuildWave({frames, rateHz, 1, 16}, [&](int frame) {
            const long sample = static_cast<long>(random() % 4001) - 2000;
            // Some versions of OpenAL hold the last sample for a while.
            return frame + 1 < frames ? sample : 0;
        });
    }

    /// One sound, or one piece of music, in each state that a pause can meet.
    void Act(Scene& scene, int time)
    {
        if (time == 1) {
            scene.music.FadeIn("noise4", 600, true);
            for (const int part : {0, 1, 2, 3, 5, 6}) {
                lastID = StartPart(scene.group, part);
            }
        }
        else if (time == 9) {
            scene.group.FadeOutSound(lastID, 1000);
        }
        else if (time == 14) {
            scene.music.CrossFade("noise8", 900, true);
        }
    }

    static int StartPart(Sound& group, int part)
    {
        const std::string file = "noise" + std::to_string(part);
        const int id =
            part == 5 ? group.New3DSound(file.c_str(), nullptr) : group.New2DSound(file.c_str(), nullptr);
        group.SetSoundPriority(id, -part);
        if (part == 0) {
            group.SetSoundFadeIn(id, 1200);
        }
        if (part == 1) {
            group.SetSoundDelay(id, 900);
        }
        if (part == 3) {
            group.CatSound(id, "noise7", nullptr);
        }
        if (part == 5) {
            group.SetSoundCone(id, 360.0F, 360.0F, 1.0F);
            group.SetSoundMinMaxDistance(id, 10.0F, 100.0F, false);
            group.SetSoundPosition(id, {1.0F, 0.0F, 0.0F});
        }
        group.StartSound(id, part == 0 ? Sound::StartLooping : 0);
        return id;
    }

    int lastID = 0;
};

/// The sound with the silence of a pause inserted.
std::vector<double> Insert(std::vector<double> sound, const Halt& halt)
{
    if (halt.length > 0) {
        sound.insert(sound.begin() + static_cast<std::ptrdiff_t>(halt.step * stepFrames),
            static_cast<std::size_t>(halt.length) * stepFrames, 0.0);
    }
    return sound;
}

bool IsRamp(std::size_t frame, const Halt& halt)
{
    const std::size_t begin = static_cast<std::size_t>(halt.step) * stepFrames;
    const std::size_t end = begin + static_cast<std::size_t>(halt.length) * stepFrames;
    return halt.length > 0 &&
        ((frame >= begin && frame < begin + rampFrames) || (frame >= end && frame < end + rampFrames));
}

void ExpectEqualOutsideRamps(
    const std::vector<double>& heard, const std::vector<double>& expected, const Halt& halt)
{
    constexpr double lastBits = 5e-4;
    ASSERT_GE(heard.size(), expected.size());
    std::size_t compared = 0;
    for (std::size_t i = 0; i < expected.size(); ++i) {
        if (IsRamp(i, halt)) {
            continue;
        }
        ASSERT_NEAR(heard[i], expected[i], lastBits) << "step " << i / stepFrames << ", frame " << i;
        ++compared;
    }
    EXPECT_GT(compared, expected.size() / 2);
}

// With a channel for each sound, and with fewer, for which they compete.
TEST_F(PauseHeard, APauseOfEverythingOnlyInsertsSilence)
{
    for (const char* maxSounds : {"20", "4"}) {
        SetOption("MaxSounds", maxSounds);
        const std::vector<double> undisturbed = RenderParts({});
        for (const Halt& halt : {Halt{3, 1500}, Halt{8, 30}, Halt{15, 30}, Halt{20, 30}, Halt{33, 30}}) {
            SCOPED_TRACE(std::string(maxSounds) + " channels, paused at " + std::to_string(halt.step));
            const std::vector<double> heard = RenderParts(halt);
            ExpectEqualOutsideRamps(heard, Insert(undisturbed, halt), halt);
        }
    }
}

} // namespace

} // namespace Quon
