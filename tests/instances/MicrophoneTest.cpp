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

    /// What the next update tells the driver of the listener's orientation.
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

TEST_F(MicrophoneTest, LooksWhereItIsToldWithUpAsNearToTheHintAsCanBe)
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

TEST_F(MicrophoneTest, SpecialDirectionsHaveTheirAnswers)
{
    struct Row
    {
        Vector3 front;
        Vector3 top;
        Vector3 expectedFront;
        Vector3 expectedTop;
    };
    const Vector3 ahead{0.0F, 0.0F, -1.0F};
    const Vector3 up{0.0F, 1.0F, 0.0F};
    const float nan = std::nanf("");
    const Row rows[] = {
        {{1.0F, 0.0F, 0.0F}, {0.0F, 2.0F, 0.0F}, {1.0F, 0.0F, 0.0F}, up},
        // Parallel: right is X and up is Y, which fits a look along Z.
        {{0.0F, 0.0F, -1.0F}, {0.0F, 0.0F, -5.0F}, ahead, up},
        {{0.0F, 0.0F, -2.0F}, {0.0F, 0.0F, 0.0F}, ahead, up},
        {{0.0F, 0.0F, -2.0F}, {nan, 0.0F, 0.0F}, ahead, up},
        // No direction: it stays as it was.
        {{0.0F, 0.0F, 0.0F}, {0.0F, 1.0F, 0.0F}, ahead, up},
        {{nan, 0.0F, 0.0F}, {0.0F, 1.0F, 0.0F}, ahead, up},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(ToText(row.front) + ", " + ToText(row.top));
        microphone->SetOrientation(row.front, row.top);
        microphone->SetPosition(origin);
        const Heard heard = StepAndHear();
        ExpectNear(heard.front, row.expectedFront);
        ExpectNear(heard.top, row.expectedTop);
    }
}

TEST_F(MicrophoneTest, OnlyAChangeIsSentAndOnlyByTheActiveOne)
{
    Step(40);
    EXPECT_EQ(TakeLog({"SetListener"}), Lines());
    Microphone other;
    other.SetPosition({1.0F, 2.0F, 3.0F});
    Step(40);
    EXPECT_EQ(TakeLog({"SetListener"}), Lines());
    other.Activate();
    const Lines news = {"SetListenerPosition 1 2 3", "SetListenerOrientation 0 0 -1, 0 1 0"};
    EXPECT_EQ(TakeLog(), news);
    EXPECT_FALSE(microphone->IsActive());
    microphone->SetPosition({9.0F, 9.0F, 9.0F});
    Step(40);
    EXPECT_EQ(TakeLog({"SetListener"}), Lines());
    other.SetPosition({1.0F, 2.0F, 3.0F});
    Step(40);
    EXPECT_EQ(TakeLog({"SetListener"}), news);
    // The older one goes, and that is no loss.
    microphone.reset();
    other.SetPosition(origin);
    Step(40);
    EXPECT_EQ(TakeLog({"SetListener"}).size(), 2U);
}

TEST_F(MicrophoneTest, FollowsTheNodesAboveIt)
{
    Particle body;
    body.Add(microphone.get());
    microphone->SetPosition({0.0F, 0.0F, -2.0F});
    StepAndHear();
    body.SetPosition({5.0F, 0.0F, 0.0F});
    // Half a turn about Y.
    body.SetOrientation({0.0F, 1.0F, 0.0F, 0.0F});
    Step(40);
    EXPECT_EQ(TakeLog({"SetListener"}),
        (Lines{"SetListenerPosition 5 0 2", "SetListenerOrientation 0 0 1, 0 1 0"}));
}

TEST_F(MicrophoneTest, BringsItsRoomAlongWhenItIsActivated)
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
    EXPECT_EQ(TakeLog({"SetFX"}), Lines{"SetFXEnvReverb -22 3 6"});
    microphone->Activate();
    EXPECT_EQ(TakeLog({"SetFX", "Reset"}), Lines{"SetFXEnvReverb -11 2 5"});

    // A refusal is remembered, and a reset reaches the driver from the active one alone.
    recording.refuseFX = true;
    EXPECT_FALSE(microphone->SetFXEnvReverb(&hall, 2, 5));
    EXPECT_FALSE(microphone->GetFXEnvReverb(&answer));
    EXPECT_TRUE(other.GetFXEnvReverb(&answer));
    EXPECT_EQ(answer.roomHF, -22);
    TakeLog();
    other.ResetFXEnvReverb(1);
    EXPECT_FALSE(other.GetFXEnvReverb(&answer));
    EXPECT_EQ(TakeLog(), Lines());
    microphone->ResetFXEnvReverb(2);
    EXPECT_EQ(TakeLog(), Lines{"ResetFXEnvReverb 2"});
    // From any of them.
    other.SetRolloffFactor(0.5F);
    EXPECT_EQ(TakeLog(), Lines{"SetRolloffFactor 0.5"});
    EXPECT_EQ(microphone->GetRolloffFactor(), 0.5F);
}

TEST_F(MicrophoneTest, ACopyDoesNotListen)
{
    {
        Microphone copy(*microphone);
        EXPECT_TRUE(copy.IsActive());
        copy.SetPosition({4.0F, 0.0F, 0.0F});
        Step(40);
        EXPECT_EQ(TakeLog({"SetListener"}), Lines());
    }
    // Nor does its end end the listening.
    const int id = Play3D(WriteWave("a.wav", {2000}), 1.0F);
    Step(40);
    EXPECT_EQ(Playing(), Ids{id});
}

} // namespace
} // namespace Quon
