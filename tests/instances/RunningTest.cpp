// How a sound runs along its files: the samples it skips at its start, its steps without a channel, and the
// lengths it reports.

#include "harmonet/engine/Task.h"
#include "harmonet/engine/TaskList.h"
#include "harmonet/files/SndFile.h"
#include "harmonet/instances/SndBase.h"
#include "harmonet/output/SndChannel.h"
#include "tests/support/SoundTest.h"

#include <filesystem>
#include <limits>
#include <numeric>
#include <optional>

namespace Quon
{
namespace
{

/// Files of 1000 Hz, so that a sample frame is a millisecond, named by their number of frames.
class RunningTest : public SoundTest
{
protected:
    /// A sound that has not been started, with a queue of files of these lengths.
    int NewQueue(const std::vector<int>& lengths)
    {
        const int id = group->New2DSound(FileOf(lengths[0]), nullptr);
        for (std::size_t i = 1; i < lengths.size(); ++i) {
            EXPECT_TRUE(group->CatSound(id, FileOf(lengths[i]), nullptr));
        }
        return id;
    }

    PString FileOf(int frames) { return WriteWave(std::to_string(frames) + ".wav", {frames}); }

    /// Starts it while no channel is available, so that it is virtual.
    void Displace(int id, int flags = 0)
    {
        system.SetMaxAudibleSounds(0);
        EXPECT_TRUE(group->StartSound(id, flags));
        Step(40);
        EXPECT_EQ(Emulated(), Ids{id});
    }

    /// "frame of file", followed by a plus sign for each file after it in the queue.
    std::string Where(int id) const
    {
        SndFile* file = Find(id)->GetSndFile();
        return std::to_string(file->GetCurrentSample()) + " of " + std::to_string(file->GetSoundSamples()) +
            std::string(static_cast<std::size_t>(file->GetQueueLength()), '+');
    }
};

// A start sample and, since a sample frame is a millisecond, a start offset. A sound that starts at the end
// ends as one that has run out.
TEST_F(RunningTest, AStartIsCountedAlongTheQueueOrLoop)
{
    struct Row
    {
        std::vector<int> lengths;
        unsigned long start;
        bool isLooping;
        const char* expected;
    };
    const Row rows[] = {
        {{1000}, 5000, false, "1000 of 1000"},
        {{1000, 600, 700}, 999, false, "999 of 1000++"},
        {{1000, 600, 700}, 1000, false, "0 of 600+"},
        {{1000, 600, 700}, 1601, false, "1 of 700"},
        {{1000, 0, 700}, 1000, false, "0 of 700"},
        {{1000, 600, 700}, 2147483647, false, "700 of 700"},
        {{1000}, 999, true, "999 of 1000"},
        {{1000}, 1000, true, "0 of 1000"},
        {{1000}, 2147483647, true, "647 of 1000"},
        {{0}, 700, true, "0 of 0"},
    };
    for (const Row& row : rows) {
        for (const bool isOffset : {false, true}) {
            SCOPED_TRACE(
                testing::Message() << row.start << " of " << row.lengths[0] << ", offset " << isOffset);
            const auto total = std::accumulate(row.lengths.begin(), row.lengths.end(), 0UL);
            const unsigned long left = total - std::min(row.start, total);
            // One that already loops: a queue of one file takes the flag at the start.
            const int id = NewQueue(row.lengths);
            if (isOffset) {
                group->SetSoundStartOffset(id, row.start);
                EXPECT_EQ(group->GetRemainLength(id), row.lengths.size() > 1 ? left : unknownLength);
            }
            else {
                Find(id)->SetStartSample(static_cast<int>(row.start));
            }
            TakeLog();
            EXPECT_TRUE(
                group->StartSound(id, Sound::StartImmediately | (row.isLooping ? Sound::StartLooping : 0)));
            // The driver has seen the head at its beginning, and by now has the file that the sound is on.
            EXPECT_NE(TakeLog({"CreateChannel"}).at(0).find("@0 fx"), std::string::npos);
            EXPECT_EQ(Where(id), row.expected);
            EXPECT_EQ(Find(id)->GetSndChannel()->GetSndFile(), Find(id)->GetSndFile());
            if (row.isLooping) {
                group->StopSound(id);
                continue;
            }
            EXPECT_EQ(group->GetRemainLength(id), left);
            EXPECT_EQ(group->GetCurrentLength(id), total - left);
            StepWithEnd(ChannelOf(id));
            EXPECT_EQ(TakeLog({"end"}).size(), left == 0 ? 1U : 0U);
        }
    }
}

// Counted from the previous full update, including time that the task list accumulates and the sound's delay.
TEST_F(RunningTest, TheDriverGetsTheRequestTimeOfAStart)
{
    const auto getStartTime = [this](int id) { return recording.channels.at(ChannelOf(id)).startTime; };
    // An observer starts one during an update, whose time has been counted already.
    int inner = 0;
    observer->react = [&](const Note&) {
        observer->react = nullptr;
        inner = Play(FileOf(3000), Sound::StartImmediately);
    };
    Play(FileOf(3000));
    Step(40);
    EXPECT_NEAR(static_cast<double>(*getStartTime(inner)), 40000.0, 2.0);
    SoundSystem::StopAll();
    for (const bool isHeldBack : {false, true}) {
        SCOPED_TRACE(isHeldBack);
        TaskList::Get().SetMinimumStep("HarmonetTask", isHeldBack ? 0.05F : 0.0F);
        Step(isHeldBack ? 60 : 40);
        const int first = Play(FileOf(3000));
        Step(20);
        const int second = Play(FileOf(3000));
        const int delayed = Play(FileOf(3000), 0, 0, 15);
        const int immediate = Play(FileOf(3000), Sound::StartImmediately);
        EXPECT_NEAR(static_cast<double>(*getStartTime(immediate)), 20000.0, 2.0);
        Step(20);
        Step(20);
        EXPECT_EQ(getStartTime(first), 0);
        EXPECT_NEAR(static_cast<double>(*getStartTime(second)), 20000.0, 2.0);
        EXPECT_NEAR(static_cast<double>(*getStartTime(delayed)), 35000.0, 2.0);
        SoundSystem::StopAll();
    }
    TaskList::Get().SetMinimumStep("HarmonetTask", 0.0F);
    const int id = Play(FileOf(5000));
    Step(40);
    system.SetMaxAudibleSounds(0);
    StepTimes(8, 40);
    ASSERT_EQ(Emulated(), Ids{id});
    system.SetMaxAudibleSounds(20);
    StepTimes(8, 40);
    EXPECT_EQ(getStartTime(id), std::nullopt) << "it comes back";
}

/// Writes its name into the log.
class MarkTask : public Task
{
public:
    using Task::Task;

    UpdateCode Update(float) override
    {
        GetRecording().lines.push_back(GetName().GetText());
        return UpdateContinue;
    }
};

TEST_F(RunningTest, TheUpdateRunsAtItsPlaceAmongTheTasks)
{
    const MarkTask after("after", 7.1F, true);
    const MarkTask before("before", 6.9F, true);
    Step(40);
    EXPECT_EQ(TakeLog({"before", "BeginUpdate", "after"}), (Lines{"before", "BeginUpdate 40", "after"}));
}

// The samples of a step are counted in 32 bits, as on every other machine.
TEST_F(RunningTest, ALongStepWrapsAsIn32Bits)
{
    const int id = NewQueue({3000});
    EXPECT_TRUE(group->SetFrequency(id, 100000));
    Displace(id, Sound::StartLooping);
    Step(50000);
    EXPECT_EQ(100000U * 50000U / 1000U % 3000, 32U);
    EXPECT_EQ(Where(id), "32 of 3000");
    for (const float seconds : {4294967.5F, std::numeric_limits<float>::infinity()}) {
        EXPECT_TRUE(Find(id)->SndUpdate(seconds, origin, false)) << seconds;
    }
}

TEST_F(RunningTest, RemainingAndPlayedTimeFollowTheState)
{
    const int id = group->New2DSound(FileOf(1000), nullptr);
    EXPECT_EQ(group->GetRemainLength(id), 0xFFFFFFFFU);
    EXPECT_EQ(group->GetCurrentLength(id), 0U);
    EXPECT_TRUE(group->CatSound(id, FileOf(900), nullptr));
    EXPECT_EQ(group->GetRemainLength(id), 1900U);
    group->StartSound(id, Sound::StartImmediately | Sound::StartQueued);
    recording.Read(1, 300);
    EXPECT_EQ(group->GetRemainLength(id), 1600U);
    EXPECT_EQ(group->GetCurrentLength(id), 300U);
    // The driver's answer takes precedence over what has been read.
    recording.channels.at(1).remainMs = 750;
    EXPECT_EQ(group->GetRemainLength(id), 1650U);
    EXPECT_EQ(group->GetCurrentLength(id), 250U);
    // The next file: the length of all is still the one of both.
    recording.channels.at(1).remainMs.reset();
    recording.Read(1, 700);
    StepWithNextFile(1);
    EXPECT_EQ(group->GetRemainLength(id), 900U);
    EXPECT_EQ(group->GetCurrentLength(id), 1000U);
    // A fade counts what is on its channel.
    group->FadeOutSound(id, 100);
    recording.channels.at(1).remainMs = 100;
    EXPECT_EQ(group->GetRemainLength(id), 100U);
    EXPECT_EQ(group->GetCurrentLength(id), 1800U);

    // A loop has no end, unless its fade has got through without a channel.
    const int loop = NewQueue({1000});
    group->SetSoundFadeIn(loop, 70);
    Find(loop)->AddFlags(FlagFadeOut | FlagLooping);
    EXPECT_EQ(group->GetRemainLength(loop), 70U);
    group->StartSound(loop, Sound::StartImmediately);
    group->FadeOutSound(loop, 300);
    EXPECT_EQ(group->GetRemainLength(loop), 0xFFFFFFFFU);
}

// Sounds whose data are coded run through the whole system as plain waves do, round a loop or along a queue.
TEST_F(RunningTest, CompressedFilesResumeAtTheRightSampleAfterBeingVirtual)
{
    constexpr int stepMs = 50;
    constexpr int filesAfter = 9;
    const std::filesystem::path tests = HARMONET_FILE_TESTS;
    for (const char* path : {"mpeg/streams/mono-48000.mp3", "mpeg/streams/wrapped-44100.wav",
             "adpcm/sox-mono.wav", "adpcm/sox-stereo.wav"}) {
        const std::string name = std::filesystem::path(path).filename().string();
        std::filesystem::copy_file(tests / path, folder.GetPath() / name);
        for (const bool loops : {true, false}) {
            SCOPED_TRACE(name + (loops ? ", loop" : ", queue"));
            const int id = group->New2DSound(name.c_str(), nullptr);
            for (int i = 0; i < filesAfter && !loops; ++i) {
                EXPECT_TRUE(group->CatSound(id, name.c_str(), nullptr));
            }
            Displace(id, loops ? Sound::StartLooping : Sound::StartQueued);
            const SndFile& first = *Find(id)->GetSndFile();
            EXPECT_GT(first.FileType(), SndFile::FileWav);
            const int total = first.GetSoundSamples();
            const int perStep = first.GetSampleFrequency() * stepMs / 1000;
            int passed = first.GetCurrentSample();
            for (int step = 1; step <= 40; ++step) {
                if (step == 40) {
                    system.SetMaxAudibleSounds(1);
                }
                Step(stepMs);
                passed += perStep;
                ASSERT_EQ(Find(id)->GetSndFile()->GetCurrentSample() % total, passed % total);
                ASSERT_EQ(group->GetQueueLength(id), loops ? 0 : filesAfter - passed / total);
            }
            EXPECT_EQ(Playing(), Ids{id});
            group->StopSound(id);
        }
    }
}

} // namespace
} // namespace Quon
