#include "tests/drivers/DriverRig.h"
#include "tests/drivers/FormulaFile.h"

#include <gtest/gtest.h>

#include <random>

namespace Quon
{
namespace
{

/// What a sound on the null driver does, sample frame by sample frame.
class PlainSound
{
public:
    PlainSound(std::vector<FormulaFile*> newFiles, int start, bool isLooping)
        : files(std::move(newFiles))
        , position(start)
        , looping(isLooping)
        , rateHz(files.front()->GetSampleFrequency())
    {
    }

    void SetRate(int hz) { rateHz = hz != 0 ? hz : files.front()->GetSampleFrequency(); }
    void FadeOut(long ms) { fadeLeftMs = ms; }
    void Append(FormulaFile* file) { files.push_back(file); }

    void PlayFor(long ms)
    {
        for (; ms > 0 && fadeLeftMs != 0; --ms) {
            PlayMillisecond();
        }
        MoveOn();
    }

    bool IsOver() const { return fadeLeftMs == 0 || (!looping && IsAtEnd() && current + 1 == files.size()); }
    size_t GetCurrent() const { return current; }
    FormulaFile* GetFile(size_t index) const { return files[index]; }
    FormulaFile* GetHead() const { return files.front(); }
    int GetPosition() const { return position; }

private:
    void PlayMillisecond()
    {
        fadeLeftMs -= fadeLeftMs > 0;
        for (thousandths += rateHz; thousandths >= 1000; thousandths -= 1000) {
            MoveOn();
            position += !IsAtEnd();
        }
    }

    void MoveOn()
    {
        for (; IsAtEnd() && !looping && current + 1 < files.size(); ++current) {
            position = 0;
        }
        if (looping && IsAtEnd()) {
            position = 0;
        }
    }

    // While the loop of MoveOn() counts on, the position is that of the next file.
    bool IsAtEnd() const { return position == files[current]->GetSoundSamples(); }

    std::vector<FormulaFile*> files;
    size_t current = 0;
    int position;
    bool looping;
    long rateHz;
    long thousandths = 0;
    long fadeLeftMs = -1; ///< Negative: no fade.
};

struct PlayedSound
{
    SndChannel* channel;
    PlainSound model;
    size_t reported = 0;
};

/// Plays random sounds on the driver and on the model and compares them after each update.
class RandomScene : public testing::Test
{
protected:
    static constexpr int channelCount = 6;

    RandomScene()
        : rig("HarmonetNull")
    {
        EXPECT_TRUE(rig.Open(22050, channelCount));
    }

    int Draw(int below) { return std::uniform_int_distribution<>(0, below - 1)(random); }

    FormulaFile* NewFile(int rateHz)
    {
        const int length = Draw(5) == 0 ? Draw(3) : Draw(30000);
        files.push_back(MakeFile({length, rateHz, 1 + Draw(2), 1 + Draw(4)}, Constant(0.5)));
        return files.back().get();
    }

    void Start()
    {
        const int rates[] = {8000, 11025, 22050, 44100};
        const int rateHz = rates[Draw(4)];
        std::vector<FormulaFile*> queue = {NewFile(rateHz)};
        const bool looping = Draw(3) == 0 && queue.front()->GetSoundSamples() > 0;
        const int start = Draw(4) == 0 ? Draw(queue.front()->GetSoundSamples() + 1) : 0;
        queue.front()->SkipSamples(start);
        for (int more = looping ? 0 : Draw(3); more > 0; --more) {
            queue.push_back(NewFile(rateHz));
            queue.front()->Add(queue.back());
        }
        SndChannel* const channel = rig.Create(*queue.front(), looping ? ChanLooping : 0u);
        ASSERT_EQ(channel != nullptr, sounds.size() < channelCount);
        if (channel) {
            channel->Play();
            sounds.push_back({channel, PlainSound(std::move(queue), start, looping)});
            isLooping.push_back(looping);
        }
    }

    void ChangeSomething()
    {
        if (sounds.empty() || Draw(3) == 0) {
            Start();
            return;
        }
        const auto index = static_cast<size_t>(Draw(static_cast<int>(sounds.size())));
        PlayedSound& sound = sounds[index];
        switch (Draw(5)) {
        case 0: {
            const int hz = Draw(4) == 0 ? 0 : 100 + Draw(50000);
            EXPECT_TRUE(sound.channel->SetFrequency(static_cast<unsigned long>(hz)));
            sound.model.SetRate(hz);
            break;
        }
        case 1:
            sound.channel->Stop();
            sounds.erase(sounds.begin() + static_cast<std::ptrdiff_t>(index));
            isLooping.erase(isLooping.begin() + static_cast<std::ptrdiff_t>(index));
            break;
        case 2: {
            const int ms = Draw(400);
            sound.channel->FadeOut(ms);
            sound.model.FadeOut(ms);
            break;
        }
        default:
            if (!isLooping[index]) {
                FormulaFile* const next = NewFile(sound.model.GetHead()->GetSampleFrequency());
                rig.Append(*sound.channel, *sound.model.GetFile(sound.reported), *next);
                sound.model.Append(next);
            }
        }
    }

    // What has to be reported, in no particular order among the channels.
    std::vector<std::string> ExpectEvents()
    {
        std::vector<std::string> expected;
        for (PlayedSound& sound : sounds) {
            for (; sound.reported < sound.model.GetCurrent(); ++sound.reported) {
                expected.push_back(Describe({SndFileChanged, sound.channel,
                    sound.model.GetFile(sound.reported), sound.model.GetFile(sound.reported + 1), 0}));
            }
        }
        for (const PlayedSound& sound : sounds) {
            if (sound.model.IsOver()) {
                expected.push_back(Describe({SndChannelEnded, sound.channel, nullptr, nullptr, 0}));
            }
        }
        std::sort(expected.begin(), expected.end());
        return expected;
    }

    static std::string Describe(const DriverEvent& event)
    {
        std::ostringstream text;
        text << event.kind << ' ' << event.channel << ' ' << event.oldFile << ' ' << event.newFile;
        return text.str();
    }

    void DropEnded()
    {
        for (size_t i = sounds.size(); i-- > 0;) {
            if (sounds[i].model.IsOver()) {
                sounds.erase(sounds.begin() + static_cast<std::ptrdiff_t>(i));
                isLooping.erase(isLooping.begin() + static_cast<std::ptrdiff_t>(i));
            }
        }
    }

    void CompareSounds()
    {
        for (PlayedSound& sound : sounds) {
            const FormulaFile* const file = sound.model.GetFile(sound.model.GetCurrent());
            EXPECT_EQ(sound.channel->GetSndFile(), file);
            EXPECT_EQ(file->GetCurrentSample(), sound.model.GetPosition());
            const long left = file->GetSoundSamples() - sound.model.GetPosition();
            EXPECT_EQ(sound.channel->GetRemainLength(),
                static_cast<unsigned long>(left * 1000 / file->GetSampleFrequency()));
        }
    }

    DriverRig rig;
    std::mt19937 random{20261};
    std::vector<std::unique_ptr<FormulaFile>> files;
    std::vector<PlayedSound> sounds;
    std::vector<bool> isLooping;
};

TEST_F(RandomScene, EverySoundIsWhereCountingSampleFramesOneByOneHasIt)
{
    for (int update = 0; update < 3000 && !HasFailure(); ++update) {
        SCOPED_TRACE("update " + std::to_string(update));
        const int ms = 40 + Draw(Draw(10) == 0 ? 800 : 60);
        if (Draw(2) == 0) {
            ChangeSomething();
        }
        for (PlayedSound& sound : sounds) {
            sound.model.PlayFor(ms);
        }
        std::vector<std::string> expected;
        rig.Step(static_cast<unsigned long>(ms), [&] {
            if (Draw(2) == 0) {
                ChangeSomething();
            }
            expected = ExpectEvents();
        });
        std::vector<std::string> seen;
        int lastKind = SndFileChanged;
        for (const DriverEvent& event : rig.TakeEvents()) {
            EXPECT_LE(event.kind, lastKind) << "an end was reported before a change of file";
            lastKind = event.kind;
            seen.push_back(Describe(event));
        }
        std::sort(seen.begin(), seen.end());
        EXPECT_EQ(seen, expected);
        DropEnded();
        CompareSounds();
    }
}

class NullDriver : public testing::Test
{
protected:
    NullDriver()
        : rig("HarmonetNull")
    {
        EXPECT_TRUE(rig.Open(22050, 4));
    }

    DriverRig rig;
};

TEST_F(NullDriver, AnHourOfUnevenStepsReadsEverySampleFrameThatIsDueAndNoMore)
{
    const auto file = MakeFile({100 * 3600 * 1000, 11025}, Constant(0.0));
    rig.Play(*file);
    long elapsed = 0;
    for (unsigned long ms = 40; elapsed < 3600 * 1000; ms = 40 + (ms * 7 + 3) % 31) {
        rig.Step(ms);
        elapsed += static_cast<long>(ms);
    }
    EXPECT_EQ(file->GetFramesRead(), elapsed * 11025 / 1000);
}

TEST_F(NullDriver, ChannelsBeyondTheLimitAreRefusedUntilOneIsFree)
{
    std::vector<std::unique_ptr<FormulaFile>> files;
    std::vector<SndChannel*> channels;
    for (int i = 0; i < 4; ++i) {
        files.push_back(MakeFile({1000}, Constant(0.0)));
        channels.push_back(rig.Play(*files.back()));
    }
    const auto extra = MakeFile({1000}, Constant(0.0));
    EXPECT_EQ(rig.Create(*extra), nullptr);
    channels[2]->Stop();
    EXPECT_EQ(rig.Create(*extra), channels[2]);
    EXPECT_EQ(rig.Create(*files[2]), nullptr);
}

TEST_F(NullDriver, FilesOfNoPlayableFormAreRefused)
{
    const FormulaFile::Form forms[] = {{1000, 0, 1, 2}, {1000, -1, 1, 2}, {1000, 22050, 0, 2},
        {1000, 22050, 65535, 2}, {1000, 22050, 1, 0}, {1000, 22050, 1, 8}, {1000, 2000000000, 1, 2}};
    for (size_t i = 0; i < std::size(forms); ++i) {
        EXPECT_EQ(rig.Create(*MakeFile(forms[i], Constant(0.0))), nullptr) << "row " << i;
    }
}

TEST_F(NullDriver, RatesBeyondTheRangeAreRefusedAndTheOldOneStays)
{
    const auto file = MakeFile({1000, 22050}, Constant(0.0));
    SndChannel* const channel = rig.Play(*file);
    EXPECT_TRUE(channel->SetFrequency(100));
    EXPECT_FALSE(channel->SetFrequency(99));
    EXPECT_FALSE(channel->SetFrequency(100001));
    EXPECT_EQ(channel->GetFrequency(), 100u);
    EXPECT_TRUE(channel->SetFrequency(0));
    EXPECT_EQ(channel->GetFrequency(), 22050u);
}

TEST_F(NullDriver, AFileThatGivesLessThanItStatesIsLeftWhereItsDataEnd)
{
    const auto file = MakeFile({44100}, Constant(0.0));
    file->BreakOffAt(2000);
    rig.Play(*file);
    rig.Step(40);
    EXPECT_TRUE(rig.TakeEvents().empty());
    rig.Step(40);
    EXPECT_EQ(rig.TakeEvents().size(), 1u);
    EXPECT_EQ(file->GetFramesRead(), 2000);
}

// A coded stream that changes its channels half-way ends a read at the change.
TEST_F(NullDriver, AReadThatComesShortInTheMiddleIsNotTheEndOfTheData)
{
    const auto file = MakeFile({4000}, Constant(0.0));
    file->PauseAt(1000);
    rig.Play(*file);
    rig.StepTimes(2, 40);
    EXPECT_TRUE(rig.TakeEvents().empty());
    rig.Step(40);
    EXPECT_EQ(rig.TakeEvents().size(), 1u);
    EXPECT_EQ(file->GetFramesRead(), 4000);
}

TEST_F(NullDriver, ALoopThatHasNoDataEndsInsteadOfRunningForEver)
{
    const auto stated = MakeFile({44100}, Constant(0.0));
    stated->BreakOffAt(0);
    const auto empty = MakeFile({0}, Constant(0.0));
    rig.Play(*stated, ChanLooping);
    rig.Play(*empty, ChanLooping);
    rig.StepTimes(2, 40);
    EXPECT_EQ(rig.TakeEvents().size(), 2u);
}

TEST_F(NullDriver, AFileAppendedAfterTheLastSampleFrameAndBeforeTheReportGoesOn)
{
    const auto first = MakeFile({1000}, Constant(0.0));
    const auto second = MakeFile({1000}, Constant(0.0));
    SndChannel* const channel = rig.Play(*first);
    rig.Step(100, [&] { rig.Append(*channel, *first, *second); });
    EXPECT_TRUE(rig.TakeEvents().empty());
    rig.Step(40);
    const std::vector<DriverEvent> expected = {{SndFileChanged, channel, first.get(), second.get(), 140},
        {SndChannelEnded, channel, nullptr, nullptr, 140}};
    EXPECT_EQ(rig.TakeEvents(), expected);
    EXPECT_EQ(second->GetFramesRead(), 1000);
}

TEST_F(NullDriver, StopHandsBackTheOldestFileThatWasNotReportedAsLeft)
{
    const auto first = MakeFile({1000}, Constant(0.0));
    const auto second = MakeFile({9000}, Constant(0.0));
    first->Add(second.get());
    SndChannel* const channel = rig.Play(*first);
    rig.Step(100, [&] {
        EXPECT_EQ(channel->GetSndFile(), second.get());
        channel->Stop();
        EXPECT_EQ(channel->GetSndFile(), first.get());
        first->Forbid();
        second->Forbid();
    });
    rig.StepTimes(3, 100);
    EXPECT_TRUE(rig.TakeEvents().empty());
    EXPECT_EQ(first->GetForbiddenTouches() + second->GetForbiddenTouches(), 0);
}

TEST_F(NullDriver, ACallbackMayStopOtherChannelsAndUseThemAnew)
{
    const auto brief = MakeFile({100}, Constant(0.0));
    const auto other = MakeFile({100}, Constant(0.0));
    const auto fresh = MakeFile({44100}, Constant(0.0));
    SndChannel* const first = rig.Play(*brief);
    SndChannel* const second = rig.Play(*other);
    SndChannel* restarted = nullptr;
    rig.onEvent = [&](const DriverEvent& event) {
        ASSERT_EQ(event.channel, first);
        second->Stop();
        restarted = rig.Play(*fresh);
    };
    rig.Step(40);
    EXPECT_EQ(rig.TakeEvents().size(), 1u);
    EXPECT_EQ(restarted, second) << "the channel whose end is being reported is not free yet";
    rig.Step(40);
    EXPECT_EQ(fresh->GetFramesRead(), 1764);
}

TEST_F(NullDriver, ALoopIsNotReadThroughTimeAfterTimeAfterALongHalt)
{
    const auto file = MakeFile({1000, 10000}, Constant(0.0));
    rig.Play(*file, ChanLooping);
    rig.Step(24ul * 3600 * 1000 + 12);
    EXPECT_EQ(file->GetCurrentSample(), 120);
    EXPECT_LE(file->GetFramesRead(), 1000);
}

} // namespace
} // namespace Quon
