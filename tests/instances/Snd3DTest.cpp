#include "harmonet/instances/Snd3D.h"
#include "harmonet/engine/Particle.h"
#include "tests/support/SoundTest.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

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
        for (const std::string& line : lines) {
            std::sscanf(line.c_str(), "%*s SetDirection %f %f %f", &direction.x, &direction.y, &direction.z);
        }
        return direction;
    }

    const PString file = WriteWave("a.wav", {20000});
};

// With a maximum of 10 the borders of the squared distance are 100 and 102, and 10² + 1² + 1² is the latter.
TEST_F(Snd3DTest, TheRangeHasABandInWhichASoundStaysAsItIs)
{
    const std::pair<Vector3, std::uint32_t> rows[] = {
        {{std::nextafter(10.0F, 0.0F), 0.0F, 0.0F}, FlagDistLTMax},
        {{10.0F, 0.0F, 0.0F}, 0},
        {{10.0F, 1.0F, -1.0F}, 0},
        {{10.0F, 1.0F, 1.000004F}, FlagDistGTMax},
    };
    Snd3D& sound = Get(group->New3DSound(file, nullptr));
    sound.SetMinMaxDistance(1.0F, 10.0F, true);
    for (const auto& [position, flags] : rows) {
        SCOPED_TRACE(ToText(position));
        sound.SetPosition(position);
        sound.CalcDistSqr(origin);
        EXPECT_EQ(sound.GetSndFlags() & (FlagDistLTMax | FlagDistGTMax), flags);
    }
    sound.SetMinMaxDistance(0.0F, 0.0F, false);
    sound.CalcDistSqr(origin);
    EXPECT_TRUE(sound.IsDistLTMax());
}

// The scene is destroyed from the top, so the node has already moved when it is destroyed.
TEST_F(Snd3DTest, ASoundStaysWhereItWasHeardWhenItsNodeIsDestroyed)
{
    auto world = std::make_unique<Particle>();
    auto node = std::make_unique<Particle>();
    world->Add(node.get());
    world->SetPosition({3.0F, 0.0F, 0.0F});
    node->SetPosition({4.0F, 0.0F, 0.0F});
    node->SetOrientation(TurnAbout(axisZ, 90.0));
    const int id = group->New3DSound(file, nullptr);
    group->SetSoundPosition(id, {0.0F, -1.0F, 0.0F});
    ASSERT_TRUE(group->AttachSound(id, node.get(), PString()));
    group->StartSound(id, 0);
    StepTimes(2, 40);
    const float heardAt = Get(id).GetGlobalPosition().x;
    world.reset();
    node.reset();
    StepTimes(2, 40);
    EXPECT_EQ(group->GetSoundPosition(id).x, heardAt);
    EXPECT_NEAR(Find(id)->GetDistSqr(), heardAt * heardAt, 1e-4);
    EXPECT_NEAR(group->GetSoundOrientation(id).z, std::sqrt(0.5), 1e-6);
}

// With many heard sounds an update goes through them in memory order, with few in the order of the list. Idle
// sounds make the same ones few.
TEST_F(Snd3DTest, ManyHeardSoundsAreUpdatedLikeAFew)
{
    constexpr int numHeard = 40;
    system.SetMaxAudibleSounds(2 * numHeard);
    const auto run = [this](int numIdle) {
        std::vector<int> ids;
        for (int i = 0; i < numIdle; ++i) {
            group->New3DSound(file, nullptr);
        }
        for (int i = 0; i < numHeard; ++i) {
            ids.push_back(Play3D(file, 1.0F + static_cast<float>(i)));
        }
        Lines lines;
        for (int update = 0; update < 12; ++update) {
            if (update % 4 == 1) {
                microphone->SetPosition({0.0F, static_cast<float>(update), 0.0F});
            }
            for (std::size_t i = update % 3; update % 4 != 3 && i < ids.size(); i += 3) {
                // One goes out of reach and comes back, one stays at the edge.
                const bool isFar = i == 7 && update > 2 && update < 10;
                const float x = isFar ? 200.0F : i == 8 ? 100.0F : 9.0F;
                group->SetSoundPosition(ids[i], {x, static_cast<float>(update) / 2.0F, 1.0F});
            }
            if (update == 11) {
                microphone.reset();
            }
            Step(50);
            if (update % 4 == 2) {
                // It is inserted among sounds that have moved since the list was sorted.
                ids.push_back(Play3D(file, 9.03F));
                Step(50);
            }
            for (const std::string& line : TakeLog()) {
                if (line.find("Set") != std::string::npos) {
                    lines.push_back(line.substr(line.find(' ')));
                }
            }
            for (const int id : Playing()) {
                lines.push_back("order " + std::to_string(std::ranges::find(ids, id) - ids.begin()));
            }
            for (const int id : ids) {
                const SoundState state = Sound::GetState(id);
                lines.push_back(ToText(state.distance) + ' ' + DescribeReason(state.reason) + ' ' +
                    std::to_string(Find(id)->GetStateTime()) + ' ' + std::to_string(Find(id)->GetSndFlags()));
            }
        }
        system.StopAll();
        microphone = std::make_unique<Microphone>();
        microphone->Activate();
        Step(50);
        TakeLog();
        return lines;
    };
    const Lines many = run(0);
    EXPECT_GT(std::ranges::count_if(many,
                  [](const std::string& line) { return line.find("SetPosition") != std::string::npos; }),
        100);
    EXPECT_EQ(many, run(2000));
}

TEST_F(Snd3DTest, OnlyAConeInUseCostsCalls)
{
    struct Row
    {
        float inner;
        float coneGain;
        bool isInUse;
    };
    const float nan = std::nanf("");
    const Row rows[] = {{179.9F, 0.9F, true}, {180.0F, 0.5F, false}, {90.0F, 1.0F, false}, {nan, 0.5F, false},
        {90.0F, nan, false}};
    for (const Row& row : rows) {
        SCOPED_TRACE(ToText(row.inner) + ' ' + ToText(row.coneGain));
        const int id = group->New3DSound(file, nullptr);
        group->SetSoundCone(id, row.inner, 360.0F, row.coneGain);
        TakeLog();
        EXPECT_TRUE(group->StartSound(id, Sound::StartImmediately));
        const std::string channel = 'c' + std::to_string(ChannelOf(id));
        const Lines calls = TakeLog({(channel + " SetCone").c_str(), (channel + " SetDirection").c_str()});
        EXPECT_EQ(calls.size(), row.isInUse ? 2U : 0U);
        // The setter always calls the driver.
        group->SetSoundCone(id, 180.0F, 170.0F, 1.0F);
        EXPECT_EQ(TakeLog(), Lines{channel + " SetCone 180 170 1"});
    }
}

// Turns by right angles, whose results are easy to check.
TEST_F(Snd3DTest, TheConePointsAlongTheChosenAxisOfTheNode)
{
    struct Row
    {
        int axis;
        Quaternion turn;
        Vector3 direction;
    };
    const Row rows[] = {
        {0, TurnAbout(axisX, 0), -axisZ},
        {1, TurnAbout(axisZ, 90), axisY},
        {2, TurnAbout(axisX, 90), axisZ},
        {3, TurnAbout(axisY, 90), axisX},
        {-1, TurnAbout(axisZ, 90), -axisY},
        {-2, TurnAbout(axisX, 90), -axisZ},
        {-3, TurnAbout(axisY, 90), -axisX},
    };
    // The group's axis is for its new sounds.
    const int id = group->New3DSound(file, nullptr);
    group->BindAxisToDirection(2);
    group->StartSound(id, Sound::StartImmediately);
    EXPECT_EQ(ReadDirection(TakeLog()), -axisZ);
    for (const Row& row : rows) {
        SCOPED_TRACE(row.axis);
        Get(id).BindAxisToDirection(row.axis);
        group->SetSoundOrientation(id, row.turn);
        TakeLog();
        Step(40);
        EXPECT_LT(LengthSquared(ReadDirection(TakeLog()) - row.direction), 1e-12F);
    }
    group->StopSound(id);
    const int later = group->New3DSound(file, nullptr);
    // -3 is not passed on.
    group->BindSoundAxisToDirection(later, -3);
    group->StartSound(later, Sound::StartImmediately);
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
    TakeLog();
    Step(40);
    Step(40);
    // The first update after the start sends them once more; then a sound at rest causes no calls.
    EXPECT_EQ(TakeLog({"c1"}), (Lines{"c1 SetPosition 10 0 -2", "c1 SetDirection 0 0 -1"}));
    body.SetOrientation(TurnAbout(axisY, 90));
    Step(40);
    EXPECT_LT(LengthSquared(recording.channels.at(1).position - Vector3{8.0F, 0.0F, 0.0F}), 1e-10F);
    EXPECT_LT(LengthSquared(ReadDirection(TakeLog()) + axisX), 1e-12F);
    EXPECT_NEAR(Find(id)->GetDistSqr(), 64.0F, 1e-3);
    hand.RemoveAllChildren();
    Step(40);
    EXPECT_EQ(recording.channels.at(1).position, origin);
}

// Straight towards the listener, at 30 units a second.
TEST_F(Snd3DTest, PitchGoesToEachChannelWhileTheDopplerEffectIsOn)
{
    constexpr int stepMs = 50;
    constexpr float shifted = 343.0F / (343.0F - 30.0F);
    const auto pitch = [this] { return recording.channels.begin()->second.pitch; };
    float x = 90.0F;
    const int id = Play3D(file, x);
    const auto approach = [&](int steps) {
        for (; steps > 0; --steps) {
            x -= 1.5F;
            group->SetSoundPosition(id, {x, 0.0F, 0.0F});
            Step(stepMs);
        }
    };
    SoundSystem::SetDopplerFactor(1.0F);
    approach(4);
    EXPECT_NEAR(pitch(), shifted, 1e-3F);

    SoundSystem::PauseAll();
    approach(2);
    SoundSystem::ResumeAll();
    approach(1);
    EXPECT_NEAR(pitch(), shifted, 1e-3F);
    EXPECT_EQ(TakeLog({"c2"}).back(), "c2 Play") << "sent before it plays";

    SoundSystem::SetDopplerFactor(0.0F);
    EXPECT_EQ(TakeLog(), Lines{"c2 SetPitch 1"});
    SoundSystem::SetDopplerFactor(1.0F);
    approach(3);
    StepTimes(60, stepMs);
    EXPECT_EQ(pitch(), 1.0F) << "at rest";
    Microphone other;
    other.SetPosition({20.0F, 0.0F, 0.0F});
    other.Activate();
    StepTimes(2, stepMs);
    EXPECT_EQ(pitch(), 1.0F) << "another listener is no motion";
    other.SetPosition({19.0F, 0.0F, 0.0F});
    Step(stepMs);
    EXPECT_NE(pitch(), 1.0F);
    group->StopSound(id);

    const Vector3 points[] = {{19.0F, 0.0F, 5.0F}, {90.0F, 0.0F, 5.0F}};
    group->StartSound(group->New3DSound(points, 2, file, nullptr, 1, 45.0F), 0);
    for (int i = 0; i < 4; ++i) {
        other.SetPosition({20.0F + static_cast<float>(i), 0.0F, 0.0F});
        Step(stepMs);
    }
    EXPECT_EQ(pitch(), 1.0F) << "along a line";
}

TEST_F(Snd3DTest, SourcePropertiesNeedADriverThatTakesThem)
{
    FXEnvReverbSourceProperties properties{};
    properties.direct = -7;
    const int id = group->New3DSound(file, nullptr);
    EXPECT_FALSE(group->SetFXEnvReverbSourceProperties(id, &properties));
    EXPECT_FALSE(group->GetFXEnvReverbSourceProperties(id, &properties));
    EXPECT_EQ(Find(id)->GetThisFXList().GetNumEffects(), 0U);

    // What a driver can do is asked once, at the start.
    system.Done();
    recording.caps = capEnvReverbSource;
    EXPECT_TRUE(Start());
    microphone->Activate();
    const int able = group->New3DSound(file, nullptr);
    EXPECT_TRUE(group->SetFrequency(able, 900));
    EXPECT_TRUE(group->SetFXEnvReverbSourceProperties(able, &properties));
    EXPECT_EQ(Find(able)->GetNewFrequency(), 900U);
    group->StartSound(able, Sound::StartImmediately);
    TakeLog();
    properties.direct = -8;
    EXPECT_TRUE(group->SetFXEnvReverbSourceProperties(able, &properties));
    recording.refuseFX = true;
    properties.direct = -9;
    EXPECT_FALSE(group->SetFXEnvReverbSourceProperties(able, &properties));
    EXPECT_EQ(
        TakeLog(), (Lines{"c1 SetFXEnvReverbSourceProperties -8", "c1 SetFXEnvReverbSourceProperties -9"}));
    properties.direct = 0;
    EXPECT_TRUE(group->GetFXEnvReverbSourceProperties(able, &properties));
    EXPECT_EQ(properties.direct, -9);
    EXPECT_EQ(Find(able)->GetThisFXList().GetNumEffects(), 1U);
    EXPECT_FALSE(group->SetFXEnvReverbSourceProperties(group->New2DSound(file, nullptr), &properties));
}

} // namespace
} // namespace Quon
