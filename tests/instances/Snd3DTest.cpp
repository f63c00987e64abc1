#include "harmonet/instances/Snd3D.h"
#include "harmonet/engine/Particle.h"
#include "tests/support/SoundTest.h"

#include <cmath>

namespace Quon
{
namespace
{

/// Axis and angle to a unit quaternion, from the definition.
Quaternion TurnAbout(const Vector3& axis, double degrees)
{
    const double half = degrees * 3.14159265358979323846 / 360.0;
    const auto s = static_cast<float>(std::sin(half));
    return {axis.x * s, axis.y * s, axis.z * s, static_cast<float>(std::cos(half))};
}

constexpr Vector3 axisX{1.0F, 0.0F, 0.0F};
constexpr Vector3 axisY{0.0F, 1.0F, 0.0F};
constexpr Vector3 axisZ{0.0F, 0.0F, 1.0F};

class Snd3DTest : public SoundTest
{
protected:
    Snd3D& Get(int id) { return static_cast<Snd3D&>(*Find(id)); }

    /// The last direction that a channel has been given.
    static Vector3 ReadDirection(const Lines& lines)
    {
        Vector3 direction;
        for (const std::string& line : lines)
            std::sscanf(line.c_str(), "%*s SetDirection %f %f %f", &direction.x, &direction.y, &direction.z);
        return direction;
    }

    const PString file = WriteWave("a.wav", {20000});
};

// With a maximum of 10 the borders of the squared distance are 100 and 102, and 10² + 1² + 1² is the latter.
TEST_F(Snd3DTest, TheRangeHasABandInWhichASoundStaysAsItIs)
{
    struct Row
    {
        Vector3 position;
        bool cutout;
        std::uint32_t flags;
    };
    const float justAbove1 = 1.000004F;
    const Row rows[] = {
        {{std::nextafter(10.0F, 0.0F), 0.0F, 0.0F}, true, FlagDistLTMax},
        {{10.0F, 0.0F, 0.0F}, true, 0},
        {{10.0F, 1.0F, -1.0F}, true, 0},
        {{10.0F, 1.0F, justAbove1}, true, FlagDistGTMax},
        {{10.0F, 1.0F, justAbove1}, false, FlagDistLTMax},
        {{1.0e30F, 0.0F, 0.0F}, true, FlagDistGTMax},
    };
    EXPECT_EQ(100.0F * 1.02F, 102.0F);
    EXPECT_GT(100.0F + 1.0F + justAbove1 * justAbove1, 102.0F);
    const int id = group->New3DSound(file, nullptr);
    for (const Row& row : rows) {
        SCOPED_TRACE(ToText(row.position));
        Get(id).SetMinMaxDistance(1.0F, 10.0F, row.cutout);
        Get(id).SetPosition(row.position);
        Get(id).CalcDistSqr(origin);
        EXPECT_EQ(Get(id).GetSndFlags() & (FlagDistLTMax | FlagDistGTMax), row.flags);
    }
    Get(id).SetMinMaxDistance(0.0F, 0.0F, false);
    Get(id).CalcDistSqr(origin);
    EXPECT_TRUE(Get(id).IsDistLTMax());
}

TEST_F(Snd3DTest, OnlyAConeInUseCostsCalls)
{
    struct Row
    {
        float inner;
        float coneGain;
        bool isInUse;
    };
    const Row rows[] = {{179.9F, 0.9F, true}, {180.0F, 0.5F, false}, {90.0F, 1.0F, false},
        {std::nanf(""), 0.5F, false}, {90.0F, std::nanf(""), false}, {0.0F, 0.0F, true}};
    for (const Row& row : rows) {
        SCOPED_TRACE(ToText(row.inner) + ' ' + ToText(row.coneGain));
        const int id = group->New3DSound(file, nullptr);
        group->SetSoundCone(id, row.inner, 360.0F, row.coneGain);
        TakeLog();
        EXPECT_TRUE(group->StartSound(id, Sound::StartImmediately));
        std::string all;
        for (const std::string& line : TakeLog())
            all += line;
        EXPECT_EQ(all.find("SetCone") != std::string::npos, row.isInUse);
        EXPECT_EQ(all.find("SetDirection") != std::string::npos, row.isInUse);
        group->StopSound(id);
    }
    // The setter does not ask.
    const int id = group->New3DSound(file, nullptr);
    group->SetSoundCone(id, 180.0F, 180.0F, 1.0F);
    group->StartSound(id, Sound::StartImmediately);
    TakeLog();
    group->SetSoundCone(id, 180.0F, 180.0F, 1.0F);
    group->SetSoundMinMaxDistance(id, 2.0F, 3.0F, false);
    const std::string channel = 'c' + std::to_string(ChannelOf(id));
    EXPECT_EQ(TakeLog(), (Lines{channel + " SetCone 180 180 1", channel + " SetMinMaxDistance 2 3 0"}));
}

// Turns by right angles, whose results one can see in front of oneself.
TEST_F(Snd3DTest, TheConePointsAlongTheChosenAxisOfTheNode)
{
    struct Row
    {
        int axis;
        Quaternion turn;
        Vector3 direction;
    };
    const Quaternion none{0.0F, 0.0F, 0.0F, 1.0F};
    const Row rows[] = {
        {0, none, -axisZ},
        {1, TurnAbout(axisZ, 90), axisY},
        {2, TurnAbout(axisX, 90), axisZ},
        {3, TurnAbout(axisY, 90), axisX},
        {-1, TurnAbout(axisZ, 90), -axisY},
        {-2, TurnAbout(axisX, 90), -axisZ},
        {-3, TurnAbout(axisY, 90), -axisX},
        {2, TurnAbout(axisX, 180), -axisY},
    };
    const int id = group->New3DSound(file, nullptr);
    group->StartSound(id, Sound::StartImmediately);
    for (const Row& row : rows) {
        SCOPED_TRACE(row.axis);
        Get(id).BindAxisToDirection(row.axis);
        group->SetSoundOrientation(id, row.turn);
        TakeLog();
        Step(40);
        const Vector3 direction = ReadDirection(TakeLog());
        EXPECT_NEAR(direction.x, row.direction.x, 1e-6);
        EXPECT_NEAR(direction.y, row.direction.y, 1e-6);
        EXPECT_NEAR(direction.z, row.direction.z, 1e-6);
    }
}

TEST_F(Snd3DTest, TheGroupsAxisIsForItsNewSounds)
{
    const int before = group->New3DSound(file, nullptr);
    group->BindAxisToDirection(2);
    const int after = group->New3DSound(file, nullptr);
    for (const auto& [id, expected] : {std::pair(before, -axisZ), std::pair(after, axisY)}) {
        TakeLog();
        group->StartSound(id, Sound::StartImmediately);
        EXPECT_EQ(ReadDirection(TakeLog()), expected);
    }
    group->StopSound(before);
    // -3 is not passed on, wherever the axis has got to.
    group->BindSoundAxisToDirection(after, -3);
    group->SetSoundPosition(after, axisX);
    Step(40);
    EXPECT_EQ(ReadDirection(TakeLog()), axisY);
}

TEST_F(Snd3DTest, ASoundFollowsTheNodesAboveIt)
{
    Particle body;
    Particle hand;
    hand.SetName(PString("hand"));
    body.Add(&hand);
    hand.SetPosition({0.0F, 0.0F, -2.0F});
    body.SetPosition({10.0F, 0.0F, 0.0F});
    const int id =
        group->Play3DSound(&body, PString("hand"), file, nullptr, Sound::StartImmediately, 0, {}, 0);
    EXPECT_EQ(recording.channels.at(1).position, (Vector3{10.0F, 0.0F, -2.0F}));
    TakeLog();
    Step(40);
    Step(40);
    // The first update after the start looks once more; then a sound at rest costs nothing.
    EXPECT_EQ(TakeLog({"c1"}), (Lines{"c1 SetPosition 10 0 -2", "c1 SetDirection 0 0 -1"}));
    body.SetOrientation(TurnAbout(axisY, 90));
    Step(40);
    EXPECT_NEAR(recording.channels.at(1).position.x, 8.0F, 1e-5);
    EXPECT_NEAR(recording.channels.at(1).position.z, 0.0F, 1e-5);
    EXPECT_NEAR(ReadDirection(TakeLog()).x, -1.0F, 1e-6);
    EXPECT_NEAR(Find(id)->GetDistSqr(), 64.0F, 1e-3);
    hand.RemoveAllChildren();
    Step(40);
    EXPECT_EQ(recording.channels.at(1).position, origin);
}

TEST_F(Snd3DTest, SourcePropertiesNeedADriverThatTakesThem)
{
    FXEnvReverbSourceProperties asked{};
    asked.direct = -7;
    FXEnvReverbSourceProperties answered{};
    const int id = group->New3DSound(file, nullptr);
    EXPECT_FALSE(group->SetFXEnvReverbSourceProperties(id, &asked));
    EXPECT_FALSE(group->GetFXEnvReverbSourceProperties(id, &answered));
    EXPECT_EQ(Find(id)->GetThisFXList().GetNumEffects(), 0U);

    // What a driver can do is asked once, at the start.
    system.Done();
    recording.caps = capEnvReverbSource;
    EXPECT_TRUE(Start());
    microphone->Activate();
    const int able = group->New3DSound(file, nullptr);
    EXPECT_TRUE(group->SetFrequency(able, 900));
    EXPECT_TRUE(group->SetFXEnvReverbSourceProperties(able, &asked));
    EXPECT_EQ(Find(able)->GetNewFrequency(), 900U);
    EXPECT_TRUE(group->GetFXEnvReverbSourceProperties(able, &answered));
    EXPECT_EQ(answered.direct, -7);
    group->StartSound(able, Sound::StartImmediately);
    TakeLog();
    asked.direct = -8;
    EXPECT_TRUE(group->SetFXEnvReverbSourceProperties(able, &asked));
    recording.refuseFX = true;
    EXPECT_FALSE(group->SetFXEnvReverbSourceProperties(able, &asked));
    EXPECT_EQ(
        TakeLog(), (Lines{"c1 SetFXEnvReverbSourceProperties -8", "c1 SetFXEnvReverbSourceProperties -8"}));
    EXPECT_EQ(Find(able)->GetThisFXList().GetNumEffects(), 1U);
    const int flat = group->New2DSound(file, nullptr);
    EXPECT_FALSE(group->SetFXEnvReverbSourceProperties(flat, &asked));
}

} // namespace
} // namespace Quon
