#include "tests/drivers/EveryDriver.h"

namespace Quon
{
namespace
{

TEST_P(EveryDriver, ChannelsBeyondTheLimitAreRefusedUntilOneIsFree)
{
    for (const int limit : {1, 24, 400}) {
        rig = GetParam()(limit);
        FormulaFile& file = Make(44100);
        std::vector<SndChannel*> channels(static_cast<size_t>(limit));
        unsigned int flags = 0;
        for (SndChannel*& channel : channels) {
            channel = rig->Play(Make(44100), flags ^= ChanPositional);
        }
        EXPECT_EQ(rig->Create(file), nullptr);
        rig->Step(40);
        for (SndChannel* const channel : channels) {
            channel->Stop();
        }
        for (int i = 0; i < limit; ++i) {
            EXPECT_NE(rig->Create(file), nullptr) << "the sounds that are falling silent do not count";
        }
        EXPECT_EQ(rig->Create(file), nullptr);
    }
}

TEST_P(EveryDriver, UnsupportedFormatsAreRefused)
{
    const FormulaFile::Form forms[] = {{1000, 0, 1, 2}, {1000, -1, 1, 2}, {1000, 22050, 0, 2},
        {1000, 22050, 65535, 2}, {1000, 22050, 1, 0}, {1000, 22050, 1, 8}, {1000, 2000000000, 1, 2}};
    for (const FormulaFile::Form& form : forms) {
        EXPECT_EQ(rig->Create(*MakeFile(form, Constant(0.0))), nullptr) << "row " << &form - forms;
    }
}

TEST_P(EveryDriver, RatesOutOfRangeAreRefusedAndChangeNothing)
{
    SndChannel* const channel = rig->Play(Make(1000));
    EXPECT_TRUE(channel->SetFrequency(100000));
    EXPECT_TRUE(channel->SetFrequency(100));
    EXPECT_FALSE(channel->SetFrequency(99));
    EXPECT_FALSE(channel->SetFrequency(100001));
    EXPECT_EQ(channel->GetFrequency(), 100U);
    EXPECT_TRUE(channel->SetFrequency(0));
    EXPECT_EQ(channel->GetFrequency(), 44100U);
}

// A read that comes short is not the end by itself: a coded stream that changes its channels midway ends a
// read at the change.
TEST_P(EveryDriver, TruncatedFilesPlayTheirDataAndAnEmptyLoopEnds)
{
    struct Row
    {
        const char* name;
        int stated, pauseAt, dataEnd;
        unsigned int flags;
    };
    const Row rows[] = {{"a pause", 4000, 1000, 4000, 0}, {"torn", 44100, 0, 2000, 0},
        {"torn at once", 44100, 0, 0, 0}, {"empty", 0, 0, 0, 0},
        {"loop without data", 44100, 0, 0, ChanLooping}, {"empty loop", 0, 0, 0, ChanLooping}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        FormulaFile& file = Make(row.stated);
        file.PauseAt(row.pauseAt);
        file.BreakOffAt(row.dataEnd);
        FormulaFile& next = Make(500);
        if (row.flags == 0) {
            file.Add(&next);
        }
        rig->Play(file, row.flags);
        rig->StepTimes(4, 40);
        EXPECT_EQ(rig->TakeEvents().back().kind, SndChannelEnded);
        EXPECT_EQ(file.GetFramesRead(), row.dataEnd);
        EXPECT_EQ(next.GetFramesRead(), row.flags == 0 ? 500 : 0);
    }
}

TEST_P(EveryDriver, QueueStepsAndEndsAreReportedInTheUpdateTheyAreHeard)
{
    const std::vector<int> lengths = {5000, 1, 0, 12345, 0, 3, 3, 4000, 441};
    const std::vector<FormulaFile*> files = MakeQueue(lengths);
    SndChannel* const channel = rig->Play(*files.front());
    std::vector<DriverEvent> events;
    int end = 0;
    for (size_t i = 0; i < lengths.size(); ++i) {
        end += lengths[i];
        const long heardMs = (end * 1000L + 44099) / 44100;
        const long reportMs = (heardMs + 39) / 40 * 40;
        events.push_back(i + 1 < lengths.size()
                ? DriverEvent{SndFileChanged, channel, files[i], files[i + 1], reportMs}
                : DriverEvent{SndChannelEnded, channel, nullptr, nullptr, reportMs});
    }
    rig->StepTimes(15, 40);
    EXPECT_EQ(rig->TakeEvents(), events);
}

TEST_P(EveryDriver, RemainingLengthIsExactOverThreeFilesAtAnySpeed)
{
    for (const unsigned long speed : {1, 3}) {
        SCOPED_TRACE("speed " + std::to_string(speed));
        SndChannel* const channel = rig->Create(*MakeQueue({22050, 7350, 44100}, 22050).front());
        const double endsMs[] = {1000, 1333.3, 3333.3};
        channel->SetFrequency(speed * 22050);
        EXPECT_EQ(channel->GetRemainLength(), 1000U) << "before the start";
        channel->Play();
        size_t current = 0;
        rig->onEvent = [&](const DriverEvent& event) { current += event.kind == SndFileChanged; };
        for (unsigned long heardMs = 0; heardMs < 3180; heardMs += 45 * speed) {
            EXPECT_NEAR(static_cast<double>(channel->GetRemainLength() + heardMs), endsMs[current], 1.0);
            rig->Step(45);
        }
        EXPECT_EQ(current, 2U);
        channel->Stop();
    }
}

TEST_P(EveryDriver, RemainingLengthOfALoopCountsToTheEndOfThePass)
{
    SndChannel* const brief = rig->Play(Make(441), ChanLooping);
    SndChannel* const lengthy = rig->Play(Make(44100), ChanLooping);
    for (int ms = 43; ms < 4000; ms += 43) {
        rig->Step(43);
        EXPECT_NEAR(static_cast<double>(brief->GetRemainLength()), 10 - ms % 10, 1.0);
        EXPECT_NEAR(static_cast<double>(lengthy->GetRemainLength()), 1000 - ms % 1000, 1.0);
    }
}

TEST_P(EveryDriver, AFadeOutEndsAChannelAndLeavesNoState)
{
    rig = GetParam()(1);
    SndChannel* const channel = rig->Play(Make(4410), ChanLooping);
    channel->SetFrequency(11025);
    rig->Step(40);
    channel->FadeOut(80);
    rig->Step(40);
    EXPECT_TRUE(rig->TakeEvents().empty());
    rig->Step(40);
    EXPECT_EQ(
        rig->TakeEvents(), (std::vector<DriverEvent>{{SndChannelEnded, channel, nullptr, nullptr, 120}}));
    ASSERT_EQ(rig->Play(Make(22050)), channel);
    EXPECT_EQ(channel->GetFrequency(), 44100U);
    rig->StepTimes(13, 40);
    EXPECT_EQ(
        rig->TakeEvents(), (std::vector<DriverEvent>{{SndChannelEnded, channel, nullptr, nullptr, 640}}));
}

TEST_P(EveryDriver, AFileAppendedBeforeTheEndIsReportedContinues)
{
    FormulaFile& first = Make(2000);
    FormulaFile& second = Make(2000);
    SndChannel* const brief = rig->Play(Make(10));
    SndChannel* const channel = rig->Play(first);
    // The other sound's end is reported first, in the same update.
    rig->onEvent = [&](const DriverEvent& event) {
        if (event.channel == brief) {
            rig->Append(*channel, first, second);
        }
    };
    rig->Step(80);
    EXPECT_EQ(rig->TakeEvents().size(), 1U);
    rig->Step(80);
    const std::vector<DriverEvent> expected = {
        {SndFileChanged, channel, &first, &second, 160}, {SndChannelEnded, channel, nullptr, nullptr, 160}};
    EXPECT_EQ(rig->TakeEvents(), expected);
    EXPECT_EQ(second.GetFramesRead(), 2000);
}

TEST_P(EveryDriver, ACallbackMayStopAndReuseOtherChannels)
{
    FormulaFile& fresh = Make(44100);
    SndChannel* const first = rig->Play(Make(100));
    SndChannel* const second = rig->Play(Make(100));
    rig->onEvent = [&](const DriverEvent& event) {
        ASSERT_EQ(event.channel, first);
        second->Stop();
        EXPECT_EQ(rig->Play(fresh), second) << "the channel whose end is being reported is not free yet";
    };
    rig->StepTimes(2, 40);
    EXPECT_EQ(rig->TakeEvents().size(), 1U);
    EXPECT_GE(fresh.GetFramesRead(), 1764);
}

TEST_P(EveryDriver, AfterStopFilesAreNotTouchedAndTheQueueIsReturned)
{
    SndChannel* const other = rig->Play(*MakeQueue({100, 44100}).front());
    const std::vector<FormulaFile*> queue = MakeQueue({100, 44100});
    SndChannel* const channel = rig->Play(*queue[0]);
    rig->onEvent = [&](const DriverEvent& event) {
        ASSERT_EQ(event.channel, other) << "the other channel's change comes first";
        EXPECT_EQ(channel->GetSndFile(), queue[1]) << "it is being read, and not reported";
        channel->Stop();
        EXPECT_EQ(channel->GetSndFile(), queue[0]);
        queue[0]->Forbid();
        queue[1]->Forbid();
    };
    rig->StepTimes(5, 40);
    EXPECT_EQ(rig->TakeEvents().size(), 1U);
    EXPECT_EQ(queue[0]->GetForbiddenTouches() + queue[1]->GetForbiddenTouches(), 0);
}

} // namespace
} // namespace Quon
