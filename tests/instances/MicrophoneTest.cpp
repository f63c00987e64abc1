#include "tests/support/SoundTest.h"

#include <cmath>
#include <random>

namespace Quon
{
namespace
{

void ExpectNear(const Vector3& actual, const Vector3& expected)
{
    EXPECT_LT(LengthSquared(actual - expected), 1e-11F);
}

class MicrophoneTest : public SoundTest
{
protected:
    struct Heard
    {
        Vector3 front;
        Vector3 top;
    };

    /// The listener's orientation that the next update sends to the driver.
    Heard StepAndHear()
    {
        Heard heard;
        TakeLog();
        Step(40);
        for (const std::string& line : TakeLog()) {
            std::sscanf(line.c_str(), "SetListenerOrientation %f %f %f, %f %f %f", &heard.front.x,
                &heard.front.y, &heard.front.z, &heard.top.x, &heard.top.y, &heard.top.z);
        }
        return heard;
    }
};

TEST_F(MicrophoneTest, LooksInTheGivenDirectionWithUpNearTheHint)
{
    std::mt19937 random(7);
    std::uniform_real_distribution<float> number(-5.0F, 5.0F);
    for (int i = 0; i < 200; ++i) {
        SCOPED_TRACE(i);
        const Vector3 front = {number(random), number(random), number(random)};
        const Vector3 hint = {number(random), number(random), number(random)};
        microphone->SetOrientation(front, hint);
        const Heard heard = StepAndHear();
        ExpectNear(heard.front, front * (1.0F / std::sqrt(LengthSquared(front))));
        // A unit vector across the front, in the plane of front and hint, and on the hint's side.
        EXPECT_NEAR(LengthSquared(heard.top), 1.0F, 2e-6F);
        EXPECT_NEAR(Dot(heard.top, heard.front), 0.0F, 2e-6F);
        EXPECT_NEAR(Dot(heard.top, Cross(front, hint)), 0.0F, 1e-4F);
        EXPECT_GT(Dot(heard.top, hint), 0.0F);
    }
}

TEST_F(MicrophoneTest, UsesTheDefaultForInvalidDirections)
{
    const float nan = std::nanf("");
    const std::pair<Vector3, Vector3> rows[] = {
        // Parallel: right is X and up is Y, which fits a look along Z.
        {{0.0F, 0.0F, -1.0F}, {0.0F, 0.0F, -5.0F}},
        {{0.0F, 0.0F, -2.0F}, {0.0F, 0.0F, 0.0F}},
        {{0.0F, 0.0F, -2.0F}, {nan, 0.0F, 0.0F}},
        // No front: it stays as it was.
        {{0.0F, 0.0F, 0.0F}, {1.0F, 0.0F, 0.0F}},
        {{nan, 0.0F, 0.0F}, {1.0F, 0.0F, 0.0F}},
    };
    for (const auto& [front, top] : rows) {
        SCOPED_TRACE(ToText(front) + ", " + ToText(top));
        microphone->SetOrientation(front, top);
        microphone->SetPosition(origin);
        const Heard heard = StepAndHear();
        ExpectNear(heard.front, {0.0F, 0.0F, -1.0F});
        ExpectNear(heard.top, {0.0F, 1.0F, 0.0F});
    }
}

TEST_F(MicrophoneTest, OnlyTheActiveOneSendsAndOnlyChanges)
{
    Microphone other;
    other.SetPosition({1.0F, 2.0F, 3.0F});
    Step(40);
    EXPECT_EQ(TakeLog({"SetListener"}), Lines());
    other.Activate();
    const Lines news = {"SetListenerPosition 1 2 3", "SetListenerOrientation 0 0 -1, 0 1 0"};
    EXPECT_EQ(TakeLog(), news);
    EXPECT_FALSE(microphone->IsActive());
    microphone->SetPosition({9.0F, 9.0F, 9.0F});
    {
        Microphone copy(other);
        EXPECT_TRUE(copy.IsActive());
        copy.SetPosition({4.0F, 0.0F, 0.0F});
        Step(40);
    }
    EXPECT_EQ(TakeLog({"SetListener"}), Lines());
    // Destroying them has no effect on the active one.
    microphone.reset();
    other.SetPosition({1.0F, 2.0F, 3.0F});
    Step(40);
    EXPECT_EQ(TakeLog({"SetListener"}), news);

    Particle body;
    body.Add(&other);
    other.SetPosition({0.0F, 0.0F, -2.0F});
    body.SetPosition({5.0F, 0.0F, 0.0F});
    StepAndHear();
    // Half a turn about Y.
    body.SetOrientation({0.0F, 1.0F, 0.0F, 0.0F});
    Step(40);
    EXPECT_EQ(TakeLog({"SetListener"}),
        (Lines{"SetListenerPosition 5 0 2", "SetListenerOrientation 0 0 1, 0 1 0"}));
}

TEST_F(MicrophoneTest, SoundsBelowItTurnWithIt)
{
    const int id = group->Play3DSound(
        microphone.get(), PString(), WriteWave("a.wav", {2000}), nullptr, Sound::StartImmediately, 0, {}, 0);
    group->SetSoundPosition(id, {0.0F, 0.0F, -2.0F});
    StepTimes(3, 40);
    microphone->SetOrientation({1.0F, 0.0F, 0.0F}, {0.0F, 1.0F, 0.0F});
    Step(40);
    ExpectNear(recording.channels.at(1).position, {2.0F, 0.0F, 0.0F});
    // Half a turn from where it began.
    microphone->SetOrientation(Quaternion{0.0F, 1.0F, 0.0F, 0.0F});
    Step(40);
    ExpectNear(recording.channels.at(1).position, {0.0F, 0.0F, 2.0F});
}

TEST_F(MicrophoneTest, IsNotTheListenerOfALaterSystem)
{
    FXEnvReverb cave{};
    FXEnvReverb answer{};
    system.Done();
    EXPECT_FALSE(microphone->IsActive());
    ASSERT_TRUE(system.Init(&os, false));
    Microphone next;
    next.Activate();
    TakeLog();
    // Kept for the time when it is activated again.
    EXPECT_TRUE(microphone->SetFXEnvReverb(&cave, 2, 5));
    EXPECT_TRUE(microphone->GetFXEnvReverb(&answer));
    EXPECT_EQ(TakeLog(), Lines());
    EXPECT_TRUE(next.IsActive());
}

TEST_F(MicrophoneTest, ActivationSetsItsRoom)
{
    FXEnvReverb cave{};
    cave.roomHF = -11;
    FXEnvReverb hall{};
    hall.roomHF = -22;
    FXEnvReverb answer{};
    EXPECT_TRUE(microphone->SetFXEnvReverb(&cave, 2, 5));
    EXPECT_EQ(TakeLog(), Lines{"SetFXEnvReverb -11 2 5"});
    Microphone other;
    EXPECT_TRUE(other.SetFXEnvReverb(&hall, 3, 6));
    EXPECT_EQ(TakeLog(), Lines());
    other.Activate();
    microphone->Activate();
    EXPECT_EQ(TakeLog({"SetFX", "Reset"}), (Lines{"SetFXEnvReverb -22 3 6", "SetFXEnvReverb -11 2 5"}));

    // A refusal is remembered, and a reset reaches the driver from the active one alone.
    recording.refuseFX = true;
    EXPECT_FALSE(microphone->SetFXEnvReverb(&hall, 2, 5));
    EXPECT_FALSE(microphone->GetFXEnvReverb(&answer));
    EXPECT_TRUE(other.GetFXEnvReverb(&answer));
    EXPECT_EQ(answer.roomHF, -22);
    other.Activate();
    EXPECT_FALSE(other.GetFXEnvReverb(&answer));
    microphone->Activate();
    TakeLog();
    other.ResetFXEnvReverb(1);
    microphone->ResetFXEnvReverb(2);
    // From any of them.
    other.SetRolloffFactor(0.5F);
    EXPECT_EQ(TakeLog(), (Lines{"ResetFXEnvReverb 2", "SetRolloffFactor 0.5"}));
    EXPECT_EQ(microphone->GetRolloffFactor(), 0.5F);
}

} // namespace
} // namespace Quon
