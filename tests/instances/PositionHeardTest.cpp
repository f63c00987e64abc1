// Where in its data a sound is heard: rendered through the output driver, against the data themselves.

#include "tests/instances/HeardTest.h"

#include <random>

namespace Quon
{

namespace
{

constexpr int rateHz = 22050;
constexpr int stepMs = 40;
constexpr int stepFrames = rateHz * stepMs / 1000;
constexpr int noiseFrames = 2 * rateHz;
constexpr int sceneSteps = 75;
// A sound that is displaced or returns fades for 30 ms and the block that is being mixed.
constexpr int rampFrames = stepFrames;

/// A way through a file: from a place on, and round a loop.
struct Way
{
    const char* what;
    unsigned long offsetMs = 0;
    bool isLoop = true;
    int loopStart = 0;
    int loopEnd = 0;

    /// The sample frame that is heard `frames` after the one at `from`.
    int Follow(int from, int frames) const
    {
        const int end = loopEnd > 0 ? loopEnd : noiseFrames;
        int place = from;
        for (; frames > 0; --frames) {
            place = place + 1 == end && isLoop ? loopStart : place + 1;
        }
        return place;
    }
    int Begin() const { return static_cast<int>(offsetMs * rateHz / 1000); }
};

/// The passes of the last one but one are shorter than what the driver reads ahead.
constexpr Way ways[] = {{"an offset", 300, false}, {"a loop", 0}, {"a loop from an offset", 1900},
    {"a region", 0, true, 5000, 9000}, {"a region up to the end", 0, true, 30000, 0},
    {"an offset in a region", 400, true, 3000, 20000}, {"a short region", 0, true, 10000, 10500},
    {"a region from the start", 0, true, 0, 4000}};

class PositionHeard : public HeardTest
{
protected:
    PositionHeard()
    {
        std::minstd_rand random(7);
        folder.Write("noise", BuildWave({noiseFrames, rateHz, 2, 16}, [&](int frame) {
            // Newer versions of OpenAL hold the last sample for a while.
            const long sample = frame + 1 < noiseFrames ? static_cast<long>(random() % 4001) - 2000 : 0;
            noise.push_back(static_cast<double>(sample) / 32768.0);
            return sample;
        }));
    }

    /// What is heard of a scene; `act` is called before each step.
    template<class Act>
    Rendering RenderSteps(const char* outputHz, Act act)
    {
        SetOption("SoundFrequency", outputHz);
        return Render([&](Scene& scene) {
            for (int step = 0; step < sceneSteps; ++step) {
                act(step, scene.group, scene.music);
                Step(stepMs);
            }
        });
    }

    /// From step `first` to step `last` the way is heard from `place` on; 0 beyond the end of the file.
    void ExpectHeard(const Rendering& heard, const Way& way, int first, int last, int place, int silentFrames)
    {
        constexpr double lastBits = 3e-4;
        place = way.Follow(place, silentFrames);
        for (int frame = first * stepFrames + silentFrames; frame < last * stepFrames; ++frame) {
            const double expected = place < noiseFrames ? noise[static_cast<std::size_t>(place)] : 0.0;
            ASSERT_NEAR(heard.At(static_cast<std::size_t>(frame)), expected, lastBits)
                << "step " << frame / stepFrames << ", frame " << frame << ", of the file " << place;
            place = way.Follow(place, 1);
        }
    }

    std::vector<double> noise;
};

// In the middle of the scene, or before it is heard at all, it runs on for a while as a virtual voice. An
// invalid region is ignored.
TEST_F(PositionHeard, ASoundBeginsAtItsOffsetAndGoesRoundItsRegionWithoutASeam)
{
    constexpr int back = 29;
    std::vector<Way> all(std::begin(ways), std::end(ways));
    all.insert(all.end(),
        {{"a region after the end", 250, true, noiseFrames + 1, noiseFrames + 9},
            {"a region that ends before it starts", 250, true, 3000, 700},
            {"a region that starts before the file", 250, true, -5, 700}});
    for (const Way& asked : all) {
        const bool isValid = asked.loopStart >= 0 && asked.loopStart < noiseFrames &&
            (asked.loopEnd == 0 || asked.loopStart < asked.loopEnd);
        Way way = asked;
        if (!isValid) {
            way.loopStart = way.loopEnd = 0;
        }
        for (const int lost : {0, 20}) {
            SCOPED_TRACE(testing::Message() << way.what << ", lost at " << lost);
            const Rendering heard = RenderSteps("22050", [&](int step, Sound& group, Music&) {
                if (step == lost || step == back) {
                    system.SetMaxAudibleSounds(step == lost ? 0 : 20);
                }
                if (step == 0) {
                    const int id = group.New2DSound("noise", nullptr);
                    group.SetSoundStartOffset(id, way.offsetMs);
                    group.SetSoundLoopRegion(id, asked.loopStart, asked.loopEnd);
                    EXPECT_TRUE(group.StartSound(id,
                        (lost > 0 ? Sound::StartImmediately : 0) | (way.isLoop ? Sound::StartLooping : 0)));
                }
            });
            ExpectHeard(heard, way, 0, lost, way.Begin(), way.offsetMs > 0 ? rampFrames : 0);
            // One that begins without a channel moves on from the second update.
            const int passed = lost > 0 ? back + 1 : back;
            ExpectHeard(heard, way, back + 1, sceneSteps - 1, way.Follow(way.Begin(), passed * stepFrames),
                rampFrames);
        }
    }
}

// The position is asked for and set while the piece is heard, while it is paused, and in a cross-fade.
TEST_F(PositionHeard, MusicGoesOnAtThePositionThatItIsSetTo)
{
    constexpr int jump = 15;
    constexpr int pause = 30;
    constexpr int resume = 40;
    constexpr int crossFade = 55;
    constexpr unsigned long places[] = {900, 70, 1200};
    const auto toFrame = [](unsigned long ms) { return static_cast<int>(ms * rateHz / 1000); };
    for (const Way& way : ways) {
        SCOPED_TRACE(way.what);
        const auto expectNear = [&](const Music& music, int place) {
            ASSERT_NEAR(static_cast<double>(music.GetPosition()), place * 1000.0 / rateHz, 1.0);
        };
        const Music::Settings settings = {.loop = way.isLoop,
            .positionMs = way.offsetMs,
            .loopStart = way.loopStart,
            .loopEnd = way.loopEnd};
        // A position after the end of the region wraps around.
        const auto wrap = [&](int place) {
            const bool isAfter = way.isLoop && way.loopEnd > 0 && place >= way.loopEnd;
            return isAfter ? way.loopStart + (place - way.loopEnd) % (way.loopEnd - way.loopStart) : place;
        };
        const Rendering heard = RenderSteps("22050", [&](int step, Sound&, Music& music) {
            if (step == 0) {
                EXPECT_FALSE(music.SetPosition(0));
                EXPECT_TRUE(music.Play("noise", nullptr, settings));
            }
            if (step == jump) {
                expectNear(music, way.Follow(way.Begin(), jump * stepFrames));
                EXPECT_FALSE(music.SetPosition(2000));
                EXPECT_TRUE(music.SetPosition(places[0]));
                expectNear(music, wrap(toFrame(places[0])));
            }
            if (step == pause) {
                music.Pause();
            }
            if (step == pause + 3) {
                EXPECT_TRUE(music.SetPosition(places[1]));
                expectNear(music, wrap(toFrame(places[1])));
            }
            if (step == resume) {
                expectNear(music, wrap(toFrame(places[1])));
                music.Resume();
            }
            if (step == crossFade) {
                Music::Settings next = settings;
                next.fadeMs = 80;
                next.positionMs = places[2];
                EXPECT_TRUE(music.CrossFade("noise", nullptr, next));
                expectNear(music, wrap(toFrame(places[2])));
            }
        });
        ExpectHeard(heard, way, 0, jump, way.Begin(), way.offsetMs > 0 ? rampFrames : 0);
        ExpectHeard(heard, way, jump, pause, wrap(toFrame(places[0])), rampFrames);
        ExpectHeard(heard, way, resume + 1, crossFade, wrap(toFrame(places[1])), rampFrames);
        ExpectHeard(heard, way, crossFade, sceneSteps - 1, wrap(toFrame(places[2])), 3 * stepFrames);
    }
}

// An MPEG stream, whose frames depend on those before, from the cache and from the file. The sound that goes
// round its region is virtual for a while, during which its file is moved at each update.
TEST_F(PositionHeard, AnMpegStreamIsRightToTheSampleFrameToo)
{
    constexpr int mpegHz = 44100;
    constexpr unsigned long offsetMs = 400;
    const std::vector<unsigned char> once = ReadBytes(HARMONET_FILE_TESTS "/mpeg/streams/joint-44100.mp3");
    ASSERT_FALSE(once.empty());
    std::vector<unsigned char> stream;
    for (int i = 0; i < 6; ++i) {
        stream.insert(stream.end(), once.begin(), once.end());
    }
    folder.Write("stream", stream);
    const Way region = {"", 0, true, 30001, 50003};
    constexpr int lost = 20;
    constexpr int back = 39;
    constexpr int mpegStepFrames = mpegHz * stepMs / 1000;
    std::vector<Rendering> heard;
    for (const bool isMusic : {false, true}) {
        for (const bool isMoved : {false, true}) {
            heard.push_back(RenderSteps("44100", [&](int step, Sound& group, Music& music) {
                Music::Settings settings = {.loop = isMoved, .positionMs = isMoved ? offsetMs : 0};
                settings.loopStart = region.loopStart;
                settings.loopEnd = region.loopEnd;
                if (step == 0 && isMusic) {
                    EXPECT_TRUE(music.Play("stream", nullptr, settings));
                }
                else if (isMoved && !isMusic && (step == lost || step == back)) {
                    system.SetMaxAudibleSounds(step == lost ? 0 : 20);
                }
                else if (step == 0) {
                    const int id = group.New2DSound("stream", nullptr);
                    group.SetSoundStartOffset(id, settings.positionMs);
                    group.SetSoundLoopRegion(id, settings.loopStart, settings.loopEnd);
                    EXPECT_TRUE(
                        group.StartSound(id, Sound::StartImmediately | (isMoved ? Sound::StartLooping : 0)));
                }
            }));
        }
        const Rendering& plain = heard[heard.size() - 2];
        const Rendering& moved = heard.back();
        int place = static_cast<int>(offsetMs * mpegHz / 1000);
        for (int frame = 0; frame < (sceneSteps - 1) * mpegStepFrames; ++frame) {
            // After a skip the first MPEG frames lack their bit reservoir.
            const bool isAway =
                !isMusic && frame >= lost * mpegStepFrames && frame < (back + 4) * mpegStepFrames;
            if (frame > mpegStepFrames && !isAway) {
                ASSERT_NEAR(moved.At(static_cast<std::size_t>(frame)),
                    plain.At(static_cast<std::size_t>(place)), 1e-4)
                    << "music " << isMusic << ", frame " << frame << ", of the file " << place;
            }
            place = region.Follow(place, 1);
        }
    }
}

} // namespace

} // namespace Quon
