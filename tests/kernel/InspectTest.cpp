// What tools see: snapshots of sounds, and the trace.

#include "harmonet/instances/Music.h"
#include "harmonet/instances/SndBase.h"
#include "harmonet/kernel/SoundTrace.h"
#include "tests/support/SoundTest.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

namespace Quon
{

namespace
{

class InspectTest : public SoundTest
{
protected:
    InspectTest()
    {
        for (const char* name : {"a", "b", "far", "late"}) {
            WriteWave(name, {5000});
        }
    }
};

// One sound for each reason that a player of a game may ask about.
TEST_F(InspectTest, StateGivesTheReasonForEachSound)
{
    system.SetMaxAudibleSounds(1);
    group->SetGain(0.5F);
    SoundSystem::Set2DMainGain(0.5F);
    const int heard = Play("a", 0, 7);
    const int beaten = Play("b", 0, 3);
    const int far = Play3D("far", 300.0F);
    const int late = Play("late", 0, 0, 1000);
    Step(100);

    struct Expected
    {
        int id;
        SoundPhase phase;
        SoundReason reason;
        int priority;
        float distance;
        float gain;
        const char* fileName;
    };
    for (const Expected& expected :
        {Expected{heard, SoundPhase::Heard, SoundReason::Won, 7, 0.0F, 0.25F, "a"},
            Expected{beaten, SoundPhase::Virtual, SoundReason::LostByPriority, 3, 0.0F, 0.25F, "b"},
            Expected{far, SoundPhase::Virtual, SoundReason::BeyondReach, 0, 300.0F, 0.5F, "far"},
            Expected{late, SoundPhase::Waiting, SoundReason::Delayed, 0, 0.0F, 0.25F, "late"}}) {
        SCOPED_TRACE(expected.fileName);
        const SoundState state = Sound::GetState(expected.id);
        EXPECT_EQ(state.id, expected.id);
        EXPECT_EQ(state.phase, expected.phase);
        EXPECT_EQ(state.reason, expected.reason) << DescribeReason(state.reason);
        EXPECT_EQ(state.hasChannel, expected.phase == SoundPhase::Heard);
        EXPECT_EQ(state.priority, expected.priority);
        EXPECT_FLOAT_EQ(state.distance, expected.distance);
        EXPECT_FLOAT_EQ(state.gain, expected.gain);
        EXPECT_EQ(state.fileName, PString(expected.fileName));
    }
    EXPECT_EQ(Sound::GetState(late).delayMs, 900);
    EXPECT_EQ(Sound::GetState(-1).id, 0);
}

// A virtual sound is counted on its row while its file lags; looking must neither move the file nor change
// what is heard later.
TEST_F(InspectTest, InspectingAVirtualSoundDoesNotTouchItsFile)
{
    system.SetMaxAudibleSounds(0);
    const int id = Play("a");
    StepTimes(5, 100);
    const std::uint32_t positionMs = Sound::GetState(id).positionMs;
    std::vector<SoundState> states(4);
    for (int look = 0; look < 3; ++look) {
        ASSERT_EQ(SoundSystem::Inspect(states), 1U);
    }
    EXPECT_EQ(states[0].positionMs, positionMs);
    EXPECT_EQ(positionMs, group->GetCurrentLength(id));
    EXPECT_EQ(positionMs, 400U) << "it has run for all updates but the one that started it";
    EXPECT_EQ(states[0].lengthMs, 5000U);
    EXPECT_EQ(states[0].ageMs, 500U);
}

TEST_F(InspectTest, InspectionIncludesMusicAndLinesAndCountsBeyondTheBuffer)
{
    Music music;
    music.SetGain(0.25F);
    ASSERT_TRUE(music.Play("a", true));
    const Vector3 points[] = {{-10.0F, 0.0F, 5.0F}, {10.0F, 0.0F, 5.0F}};
    const int line = group->New3DSound(points, 2, "b", nullptr, 1, 45.0F);
    group->SetSoundMinMaxDistance(line, 1.0F, 100.0F, true);
    ASSERT_TRUE(group->StartSound(line, 0));
    StepTimes(2, 100);
    microphone->SetPosition({1.0F, 0.0F, 0.0F});
    StepTimes(2, 100);

    std::map<SoundKind, int> kinds;
    std::vector<SoundState> states(10);
    const std::size_t count = SoundSystem::Inspect(states);
    for (std::size_t i = 0; i < std::min(count, states.size()); ++i) {
        ++kinds[states[i].kind];
    }
    const std::map<SoundKind, int> expected = {
        {SoundKind::Music, 1}, {SoundKind::Line, 1}, {SoundKind::LineSource, 2}};
    EXPECT_EQ(kinds, expected);
    EXPECT_EQ(SoundSystem::Inspect(std::span(states).first(1)), count);
    EXPECT_FLOAT_EQ(music.GetState().gain, 0.25F);
    EXPECT_EQ(music.GetState().phase, SoundPhase::Heard);
    const SoundState ofLine = Sound::GetState(line);
    EXPECT_EQ(ofLine.phase, SoundPhase::Heard);
    EXPECT_FLOAT_EQ(ofLine.distance, 5.0F) << "of the point that is nearest to the listener";
    EXPECT_EQ(ofLine.ageMs, 400U);
    system.Done();
    EXPECT_EQ(SoundSystem::Inspect(states), 0U);
}

/// Follows the phases of each sound as a tool would, from the reports alone.
class FollowingTrace : public SoundTrace
{
public:
    void OnStart(const SoundState& state) override
    {
        EXPECT_TRUE(phases.emplace(state.id, state).second) << state.id << " starts twice";
    }
    void OnChange(const SoundState& state) override
    {
        ASSERT_EQ(phases.count(state.id), 1U);
        const SoundState& before = phases[state.id];
        EXPECT_TRUE(before.phase != state.phase || before.reason != state.reason ||
            before.isFadingOut != state.isFadingOut);
        phases[state.id] = state;
    }
    void OnEnd(const SoundState& state) override
    {
        EXPECT_EQ(phases.erase(state.id), 1U) << state.id << " ends without a start";
        lastReason = state.reason;
    }
    void OnNotice(SoundNotice notice, int soundID, const PString&) override
    {
        notices.emplace_back(notice, soundID);
    }
    void OnUpdate(const UpdateRecord& record) override
    {
        const std::uint32_t clockMs = SoundSystem::GetClockMs();
        if (lastMs != 0) {
            EXPECT_EQ(record.elapsedMs, clockMs - lastMs);
        }
        lastMs = clockMs;
        EXPECT_GT(record.cost.count(), 0);
    }

    std::map<int, SoundState> phases;
    std::vector<std::pair<SoundNotice, int>> notices;
    SoundReason lastReason = SoundReason::None;
    std::uint32_t lastMs = 0;
};

// After each update the trace must agree with what inspection shows: a state that any path of the kernel sets
// without a report is found here.
TEST_F(InspectTest, TraceAgreesWithInspectionAfterEachUpdate)
{
    auto trace = std::make_unique<FollowingTrace>();
    SoundSystem::SetTrace(trace.get());
    system.SetMaxAudibleSounds(2);
    const Vector3 points[] = {{-10.0F, 0.0F, 5.0F}, {10.0F, 0.0F, 5.0F}};
    const int line = group->New3DSound(points, 2, "late", nullptr, 1, 45.0F);
    group->SetSoundMinMaxDistance(line, 1.0F, 20.0F, true);
    ASSERT_TRUE(group->StartSound(line, 0));
    std::vector<SoundState> states(40);
    for (int step = 0; step < 60; ++step) {
        if (step % 3 == 0) {
            Play3D(step % 2 == 0 ? "a" : "b", static_cast<float>(step * 37 % 130));
        }
        if (step % 7 == 0) {
            Play("far", step % 2 == 0 ? Sound::StartImmediately : Sound::StartNoEmulation, step % 4 - 2);
        }
        if (step == 20) {
            microphone->SetPosition({50.0F, 0.0F, 0.0F});
        }
        if (step == 30) {
            group->FadeOutSound(Playing().front(), 500);
        }
        Step(100);
        std::set<int> seen;
        const std::size_t count = SoundSystem::Inspect(states);
        ASSERT_LE(count, states.size());
        for (const SoundState& state : std::span(states).first(count)) {
            SCOPED_TRACE("step " + std::to_string(step) + ", sound " + std::to_string(state.id));
            seen.insert(state.id);
            ASSERT_EQ(trace->phases.count(state.id), 1U);
            EXPECT_EQ(trace->phases[state.id].phase, state.phase);
            EXPECT_EQ(trace->phases[state.id].reason, state.reason);
        }
        EXPECT_EQ(seen.size(), trace->phases.size());
    }
    group.reset();
    EXPECT_TRUE(trace->phases.empty());
    // The source of a line has a begin and nothing else.
    std::map<int, int> open;
    for (const auto& [notice, id] : trace->notices) {
        open[id] += notice == SoundNotice::Begin ? 1 : -1;
    }
    int stillOpen = 0;
    for (const auto& [id, count] : open) {
        stillOpen += count;
    }
    EXPECT_EQ(stillOpen, 2);
    // A destroyed trace is no longer called.
    trace.reset();
    Step(100);
}

TEST_F(InspectTest, TraceGivesTheReasonOfAnEnd)
{
    FollowingTrace trace;
    const int id = Play("a", Sound::StartNoEmulation);
    Step(100);
    SoundSystem::SetTrace(&trace);
    Step(100);
    EXPECT_EQ(trace.phases.count(id), 1U) << "a sound that ran before the trace was attached";
    system.SetMaxAudibleSounds(0);
    StepTimes(4, 100);
    EXPECT_TRUE(trace.phases.empty());
    EXPECT_EQ(trace.lastReason, SoundReason::NotEmulated);
    // One that was virtual all the time ends when less than half a second is left.
    Play("b");
    StepTimes(50, 100);
    EXPECT_TRUE(trace.phases.empty());
    EXPECT_EQ(trace.lastReason, SoundReason::TooShort);
}

} // namespace

} // namespace Quon
