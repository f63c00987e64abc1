#include "tests/drivers/FormulaFile.h"
#include "tests/drivers/OfflineRig.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <optional>

namespace Quon
{
namespace
{

constexpr int rateHz = OfflineRig::rateHz;

TEST(OpenALStream, ALoopGoesFromItsLastSampleFrameToItsFirst)
{
    for (const int length : {1, 7, 1000, 4410, 20000}) {
        SCOPED_TRACE(length);
        OfflineRig rig;
        const auto file = MakeFile({length, rateHz, 2}, Scatter());
        rig.Play(*file, ChanLooping);
        rig.StepTimes(12, 93);
        const Rendering heard = rig.Heard();
        for (size_t i = 0; i < heard.GetFrames(); ++i) {
            ASSERT_EQ(heard.At(i, 1), file->GetStored(static_cast<int>(i) % length, 1)) << i;
        }
        EXPECT_TRUE(rig.TakeEvents().empty());
    }
}

TEST(OpenALStream, AQueueIsHeardWithoutASeamAndEachStepIsReportedInTheUpdateInWhichItIsHeard)
{
    OfflineRig rig;
    const int lengths[] = {5000, 1, 0, 12345, 0, 3, 3, 4000, 441};
    std::vector<std::unique_ptr<FormulaFile>> files;
    std::vector<double> expected;
    std::vector<size_t> ends;
    for (const int length : lengths) {
        const int offset = static_cast<int>(expected.size());
        files.push_back(MakeFile({length, rateHz, 2},
            [=](int sampleFrame, int channel) { return Scatter()(sampleFrame + offset, channel); }));
        for (int i = 0; i < length; ++i) {
            expected.push_back(files.back()->GetStored(i, 0));
        }
        ends.push_back(expected.size());
        if (files.size() > 1) {
            files.front()->Add(files.back().get());
        }
    }
    SndChannel* const channel = rig.Play(*files.front());
    std::vector<DriverEvent> events;
    for (long ms = 40; ms <= 600; ms += 40) {
        rig.Step(40);
        const auto heardFrames = static_cast<size_t>(ms * rateHz / 1000);
        for (size_t i = 0; i + 1 < files.size(); ++i) {
            if (ends[i] <= heardFrames && ends[i] + 1764 > heardFrames) {
                events.push_back({SndFileChanged, channel, files[i].get(), files[i + 1].get(), ms});
            }
        }
        if (ends.back() <= heardFrames && ends.back() + 1764 > heardFrames) {
            events.push_back({SndChannelEnded, channel, nullptr, nullptr, ms});
        }
    }
    EXPECT_EQ(rig.TakeEvents(), events);
    const Rendering heard = rig.Heard();
    for (size_t i = 0; i < heard.GetFrames(); ++i) {
        ASSERT_EQ(heard.At(i), i < expected.size() ? expected[i] : 0.0) << i;
    }
}

TEST(OpenALStream, BlocksOfAFewMillisecondsAppendedJustInTimeMakeOneSound)
{
    OfflineRig rig;
    std::vector<std::unique_ptr<FormulaFile>> files;
    SndFile* oldest = nullptr;
    const auto makeBlock = [&] {
        const int offset = static_cast<int>(files.size()) * 200;
        files.push_back(MakeFile(
            {200, rateHz}, [=](int sampleFrame, int) { return Scatter()(sampleFrame + offset, 0); }));
        return files.back().get();
    };
    oldest = makeBlock();
    SndChannel* const channel = rig.Play(*oldest);
    rig.onEvent = [&](const DriverEvent& event) { oldest = event.newFile; };
    for (int update = 0; update < 50; ++update) {
        while (static_cast<int>(files.size()) * 200 < (update + 1) * 1764 + 500) {
            rig.Append(*channel, *oldest, *makeBlock());
        }
        rig.Step(40);
    }
    const Rendering heard = rig.Heard();
    for (size_t i = 0; i < heard.GetFrames(); ++i) {
        const double expected = files[i / 200]->GetStored(static_cast<int>(i % 200), 0);
        ASSERT_EQ(heard.At(i), expected) << i;
    }
}

TEST(OpenALStream, AFileAppendedToAQueueThatHasRunOutIsStillPlayed)
{
    OfflineRig rig;
    const auto first = MakeFile({2000, rateHz}, Constant(0.5));
    const auto second = MakeFile({2000, rateHz}, Constant(0.25));
    const auto other = MakeFile({10, rateHz}, Constant(0.0));
    rig.Play(*other);
    SndChannel* const channel = rig.Play(*first);
    // The other sound's end is reported first, in the same update.
    rig.onEvent = [&](const DriverEvent& event) {
        if (event.channel != channel && !first->GetNext()) {
            rig.Append(*channel, *first, *second);
        }
    };
    rig.Step(80);
    EXPECT_EQ(rig.TakeEvents().size(), 1u);
    rig.Step(80);
    const std::vector<DriverEvent> expected = {{SndFileChanged, channel, first.get(), second.get(), 160},
        {SndChannelEnded, channel, nullptr, nullptr, 160}};
    EXPECT_EQ(rig.TakeEvents(), expected);
    const Rendering heard = rig.Heard();
    EXPECT_EQ(heard.At(1999), 0.5);
    EXPECT_EQ(heard.At(3528), 0.25);
    EXPECT_EQ(heard.At(3528 + 1999), 0.25);
    EXPECT_EQ(heard.At(3528 + 2000), 0.0);
}

TEST(OpenALStream, RemainingLengthIsRightToTheMillisecondOverThreeFilesAndAtAnySpeed)
{
    for (const int speed : {1, 2, 3}) {
        SCOPED_TRACE("speed " + std::to_string(speed));
        OfflineRig rig;
        const int fileHz = 22050;
        std::vector<std::unique_ptr<FormulaFile>> files;
        std::vector<double> endsMs;
        for (const int length : {fileHz, fileHz / 3, 2 * fileHz}) {
            files.push_back(MakeFile({length, fileHz}, Constant(0.1)));
            endsMs.push_back((endsMs.empty() ? 0.0 : endsMs.back()) + 1000.0 * length / fileHz);
            if (files.size() > 1) {
                files.front()->Add(files.back().get());
            }
        }
        SndChannel* const channel = rig.Create(*files.front());
        channel->SetFrequency(static_cast<unsigned long>(speed * fileHz));
        EXPECT_EQ(channel->GetRemainLength(), 1000u) << "before the start";
        channel->Play();
        size_t current = 0;
        rig.onEvent = [&](const DriverEvent& event) { current += event.kind == SndFileChanged; };
        for (double heardMs = 0; heardMs < endsMs.back() - 150; heardMs += 45 * speed) {
            EXPECT_NEAR(static_cast<double>(channel->GetRemainLength()), endsMs[current] - heardMs, 1.0);
            rig.Step(45);
        }
        EXPECT_EQ(current, 2u);
    }
}

TEST(OpenALStream, RemainingLengthOfALoopCountsToTheEndOfThePassThatIsHeard)
{
    OfflineRig rig;
    const auto brief = MakeFile({441, rateHz}, Constant(0.1));
    const auto lengthy = MakeFile({rateHz, rateHz}, Constant(0.1));
    SndChannel* const one = rig.Play(*brief, ChanLooping);
    SndChannel* const other = rig.Play(*lengthy, ChanLooping);
    for (unsigned long ms = 43; ms < 4000; ms += 43) {
        rig.Step(43);
        EXPECT_NEAR(static_cast<double>(one->GetRemainLength()), 10.0 - static_cast<double>(ms % 10), 1.0);
        EXPECT_NEAR(
            static_cast<double>(other->GetRemainLength()), 1000.0 - static_cast<double>(ms % 1000), 1.0);
    }
}

TEST(OpenALStream, AfterStopNobodyTouchesTheFilesAndTheChainIsFoundFromItsOldestFile)
{
    OfflineRig rig;
    const auto first = MakeFile({1764 + 100, rateHz}, Sine(100, 0.5, rateHz));
    const auto second = MakeFile({rateHz, rateHz}, Sine(100, 0.5, rateHz));
    first->Add(second.get());
    SndChannel* const channel = rig.Play(*first);
    rig.Step(40);
    EXPECT_TRUE(rig.TakeEvents().empty()) << "the step has not been heard yet";
    EXPECT_EQ(channel->GetSndFile(), second.get()) << "but the next file is being read";
    channel->Stop();
    EXPECT_EQ(channel->GetSndFile(), first.get());
    first->Forbid();
    second->Forbid();
    rig.StepTimes(5, 40);
    EXPECT_TRUE(rig.TakeEvents().empty());
    EXPECT_EQ(first->GetForbiddenTouches() + second->GetForbiddenTouches(), 0);
}

TEST(OpenALStream, AtStopTheFileStandsNoMoreThanTwelveMillisecondsAheadOfWhatWasHeard)
{
    for (const unsigned long hz : {8000ul, 22050ul, 44100ul}) {
        OfflineRig rig;
        const auto file = MakeFile({100 * 44100, static_cast<int>(hz)}, Constant(0.1));
        SndChannel* const channel = rig.Play(*file);
        rig.StepTimes(7, 51);
        channel->Stop();
        const double aheadMs =
            1000.0 * static_cast<double>(file->GetFramesRead()) / static_cast<double>(hz) - 7 * 51;
        EXPECT_GE(aheadMs, 5.0) << hz;
        EXPECT_LE(aheadMs, 12.0 + 64000.0 / static_cast<double>(hz)) << hz;
    }
}

TEST(OpenALStream, ACallbackMayStopOtherChannelsAndUseThemAnew)
{
    OfflineRig rig;
    const auto brief = MakeFile({100, rateHz}, Constant(0.0));
    const auto alsoBrief = MakeFile({100, rateHz}, Constant(0.0));
    const auto fresh = MakeFile({rateHz, rateHz}, Constant(0.5));
    SndChannel* const first = rig.Play(*brief);
    SndChannel* const second = rig.Play(*alsoBrief);
    rig.onEvent = [&](const DriverEvent& event) {
        ASSERT_EQ(event.channel, first);
        second->Stop();
        alsoBrief->Forbid();
        EXPECT_EQ(rig.Play(*fresh), second);
    };
    rig.Step(40);
    EXPECT_EQ(rig.TakeEvents().size(), 1u);
    rig.Step(40);
    EXPECT_EQ(rig.Heard().At(1764), 0.5);
    EXPECT_EQ(alsoBrief->GetForbiddenTouches(), 0);
}

TEST(OpenALStream, FilesThatGiveLessThanTheyStateEndEarlyAndLoopsWithoutDataEnd)
{
    OfflineRig rig;
    const auto torn = MakeFile({rateHz, rateHz}, Constant(0.5));
    torn->BreakOffAt(1000);
    const auto empty = MakeFile({0, rateHz}, Constant(0.5));
    const auto emptyLoop = MakeFile({0, rateHz}, Constant(0.5));
    const auto brokenLoop = MakeFile({rateHz, rateHz}, Constant(0.5));
    brokenLoop->BreakOffAt(0);
    rig.Play(*torn);
    rig.Play(*empty);
    rig.Play(*emptyLoop, ChanLooping);
    rig.Play(*brokenLoop, ChanLooping);
    rig.Step(40);
    EXPECT_EQ(rig.TakeEvents().size(), 4u);
    EXPECT_EQ(rig.Heard().At(999), 0.5);
    EXPECT_EQ(rig.Heard().At(1000), 0.0);
}

// Fades.

TEST(OpenALFade, AFadeInIsAStraightLineFromTheStartToTheSetGain)
{
    for (const int fileHz : {rateHz, 22050}) {
        OfflineRig rig;
        const auto file = MakeFile({2 * rateHz, fileHz}, Constant(0.8));
        SndChannel* const channel = rig.Create(*file);
        channel->FadeIn(300);
        channel->SetGain(0.5f);
        channel->Play();
        rig.StepTimes(10, 41);
        const Rendering heard = rig.Heard();
        for (size_t i = 0; i < heard.GetFrames(); ++i) {
            const double ms = 1000.0 * static_cast<double>(i) / rateHz;
            ASSERT_NEAR(heard.At(i), 0.4 * std::min(ms / 300, 1.0), 1e-4) << i;
        }
    }
}

TEST(OpenALFade, AFadeOutIsAStraightLineToSilenceAndThenTheChannelEnds)
{
    OfflineRig rig;
    const auto file = MakeFile({4410, rateHz}, Constant(0.8));
    SndChannel* const channel = rig.Play(*file, ChanLooping);
    rig.StepTimes(2, 50);
    channel->FadeOut(500);
    rig.StepTimes(9, 50);
    EXPECT_TRUE(rig.TakeEvents().empty());
    rig.Step(50);
    const std::vector<DriverEvent> expected = {{SndChannelEnded, channel, nullptr, nullptr, 600}};
    EXPECT_EQ(rig.TakeEvents(), expected);
    file->Forbid();
    rig.StepTimes(2, 50);
    EXPECT_EQ(file->GetForbiddenTouches(), 0);
    const Rendering heard = rig.Heard();
    for (size_t i = 0; i < heard.GetFrames(); ++i) {
        const double ms = 1000.0 * static_cast<double>(i) / rateHz;
        ASSERT_NEAR(heard.At(i), 0.8 * std::clamp(1 - (ms - 100) / 500, 0.0, 1.0), 1e-4) << i;
    }
}

TEST(OpenALFade, GainSetDuringAFadeOutCountsInIt)
{
    OfflineRig rig;
    const auto file = MakeFile({rateHz, rateHz}, Constant(0.8));
    SndChannel* const channel = rig.Play(*file);
    rig.Step(40);
    channel->FadeOut(400);
    rig.StepTimes(5, 40);
    channel->SetGain(0.5f);
    rig.Step(40);
    EXPECT_NEAR(rig.Heard().At(40 * 6 * 441 / 10 + 1763), 0.8 * 0.5 * 0.4, 1e-3);
}

TEST(OpenALFade, TheEndOfAFadeHandsBackFilesThatWereReadAheadAndNeverHeard)
{
    OfflineRig rig;
    const auto first = MakeFile({1764 + 100, rateHz}, Constant(0.5));
    const auto second = MakeFile({rateHz, rateHz}, Constant(0.5));
    first->Add(second.get());
    SndChannel* const channel = rig.Play(*first);
    rig.Step(40);
    channel->FadeOut(0);
    ASSERT_EQ(channel->GetSndFile(), second.get());
    rig.Step(1);
    ASSERT_EQ(rig.TakeEvents().size(), 1u);
    EXPECT_EQ(rig.GetFileAtEnd(), first.get());
}

// Clicks: the steps of a 100 Hz tone at 0.8 of full scale, cut or taken up in the middle of its wave.

struct ToneRow
{
    const char* name;
    int fileHz;
    unsigned int flags;
    double level; ///< At which OpenAL plays it.
};

const ToneRow toneRows[] = {{"flat", rateHz, 0, 1.0}, {"flat, at half the rate", 22050, 0, 1.0},
    {"flat, at a low rate", 8000, 0, 1.0}, {"positional", rateHz, ChanPositional, 0.5957},
    {"positional, at half the rate", 22050, ChanPositional, 0.5957}};

double SteepestStep(const ToneRow& row)
{
    return row.level * 0.8 * 2 * std::numbers::pi * 100 / rateHz;
}

TEST(OpenALClick, AStopInTheMiddleOfAWaveStaysBelowTwiceTheWavesOwnSteepestStep)
{
    for (const ToneRow& row : toneRows) {
        // From one peak of the tone over its zero to the other, and after steps of several lengths.
        for (unsigned long ms = 40; ms <= 50; ++ms) {
            SCOPED_TRACE(row.name + std::string(", stopped after ") + std::to_string(ms) + " ms");
            OfflineRig rig;
            const auto file = MakeFile({row.fileHz, row.fileHz}, Sine(100, 0.8, row.fileHz));
            SndChannel* const channel = rig.Play(*file, row.flags);
            rig.Step(ms);
            rig.Step(53, [&] {
                channel->Stop();
                file->Forbid();
            });
            rig.StepTimes(2, ms);
            const Rendering heard = rig.Heard();
            EXPECT_LT(heard.LargestStep(1, heard.GetFrames()), 2 * SteepestStep(row));
            EXPECT_EQ(heard.Level(heard.GetFrames() - 441, heard.GetFrames(), 0), 0.0);
            EXPECT_EQ(file->GetForbiddenTouches(), 0);
        }
    }
}

TEST(OpenALClick, AStopInsideAnEventDoesNotClickEither)
{
    OfflineRig rig;
    const auto tone = MakeFile({rateHz, rateHz}, Sine(100, 0.8, rateHz));
    const auto brief = MakeFile({100, rateHz}, Constant(0.0));
    SndChannel* const channel = rig.Play(*tone);
    rig.Play(*brief);
    rig.onEvent = [&](const DriverEvent&) { channel->Stop(); };
    rig.Step(42);
    rig.StepTimes(2, 40);
    const Rendering heard = rig.Heard();
    EXPECT_EQ(rig.TakeEvents().size(), 1u);
    EXPECT_LT(heard.LargestStep(1, heard.GetFrames()), 2 * SteepestStep(toneRows[0]));
}

TEST(OpenALClick, ASoundThatComesBackInTheMiddleOfAWaveRisesAndOneAtItsStartKeepsItsAttack)
{
    for (const ToneRow& row : toneRows) {
        for (int quarter = 0; quarter < 4; ++quarter) {
            SCOPED_TRACE(row.name + std::string(", quarter ") + std::to_string(quarter));
            OfflineRig rig;
            const auto file = MakeFile({row.fileHz, row.fileHz}, Sine(100, 0.8, row.fileHz));
            file->SkipSamples(row.fileHz / 10 + quarter * row.fileHz / 400);
            rig.Play(*file, row.flags);
            rig.StepTimes(2, 40);
            const Rendering heard = rig.Heard();
            EXPECT_LT(std::abs(heard.At(0)), 2 * SteepestStep(row));
            EXPECT_LT(heard.LargestStep(1, heard.GetFrames()), 2 * SteepestStep(row));
            EXPECT_NEAR(heard.Level(441, 441 + 882, 0), row.level * 0.8 / std::numbers::sqrt2, 0.02);
        }
    }
    OfflineRig rig;
    const auto hard = MakeFile({rateHz, rateHz}, Constant(0.8));
    rig.Play(*hard);
    rig.Step(40);
    EXPECT_NEAR(rig.Heard().At(0), 0.8, 1e-4);
}

TEST(OpenALClick, ASoundThatIsStoppedAndTakenUpAtOnceDoesNotClick)
{
    OfflineRig rig;
    const auto file = MakeFile({10 * rateHz, rateHz}, Sine(100, 0.8, rateHz));
    SndChannel* channel = rig.Play(*file);
    for (int i = 0; i < 20; ++i) {
        rig.Step(static_cast<unsigned long>(40 + i), [&] {
            channel->Stop();
            channel = rig.Play(*file);
        });
    }
    const Rendering heard = rig.Heard();
    EXPECT_LT(heard.LargestStep(1, heard.GetFrames()), 2 * SteepestStep(toneRows[0]));
}

} // namespace
} // namespace Quon
