// How a line is made, started, steered and ended.

#include "harmonet/files/SndFile.h"
#include "harmonet/kernel/SndKernel.h"
#include "tests/instances/PolylineTest.h"
#include "tests/instances/WithResources.h"

namespace Quon
{

namespace
{

using PolylineLife = PolylineTest;

// From the left to the right of a listener at (0, 0, 5): all three sources find a place.
LineSettings LineOfThree()
{
    return StraightLine(-50.0F, 50.0F, 2, 60.0F);
}

constexpr Vector3 nearby{0.0F, 0.0F, 5.0F};

TEST_F(PolylineLife, TheSourcesAreLimitedByNumberAndAngle)
{
    struct LimitRow
    {
        unsigned int numAddSounds;
        float minAngle;
        int numSources;
    };
    const LimitRow rows[] = {{7, 45.0F, 8}, {7, 46.0F, 7}, {7, -60.0F, 6}, {7, 90.0F, 4}, {2, 90.0F, 3},
        {7, 100.0F, 3}, {7, 179.0F, 2}, {7, 200.0F, 8}, {7, 180.0F, 8}, {7, 360.0F, 8}, {7, 9.99F, 1},
        {7, 10.0F, 8}, {7, std::numeric_limits<float>::quiet_NaN(), 1},
        {7, -std::numeric_limits<float>::infinity(), 1}, {0xFFFFFFFF, 30.0F, 8}};
    for (const LimitRow& row : rows) {
        SCOPED_TRACE(ToText(row.minAngle) + " for " + std::to_string(row.numAddSounds));
        const int id = Make(StraightLine(0.0F, 10.0F, row.numAddSounds, row.minAngle));
        EXPECT_EQ(GetLine(id).GetNumSounds(), row.numSources);
        group->DeleteSound(id);
    }
}

TEST_F(PolylineLife, NothingIsCreatedWithoutPointsOrAResource)
{
    const Vector3 points[] = {{0, 0, 0}, {1, 0, 0}};
    ResourceDatabase database;
    EXPECT_EQ(group->New3DSound(nullptr, 2, file, nullptr, 1, 90.0F), 0);
    EXPECT_EQ(group->New3DSound(points, 0, file, nullptr, 1, 90.0F), 0);
    EXPECT_EQ(group->New3DSound(points, 2, "missing.wav", &database, 1, 90.0F), 0);
    EXPECT_EQ(Find(names->GetLastIDBefore() + 1), nullptr);
}

// Each source begins a thousand samples after the previous one, so that they are out of phase.
TEST_F(PolylineLife, CopiesPlayOutOfPhaseAndPauseWhileNotNeeded)
{
    file = WriteWave("long", {10000});
    const int id = PlayLine(LineOfThree());
    Listen(nearby);
    for (int rank = 0; rank < 3; ++rank) {
        EXPECT_EQ(GetSource(id, rank).GetSndFile()->GetCurrentSample(), 1000 * rank) << rank;
    }
    Step(40);
    Listen({0.0F, 0.0F, 1000.0F});
    EXPECT_TRUE(Playing().empty());
    EXPECT_EQ(Emulated().size(), 4U);
    StepTimes(5, 100);
    EXPECT_EQ(GetSource(id, 1).GetSndFile()->GetCurrentSample(), 1000);
    Listen(nearby);
    EXPECT_EQ(Playing().size(), 3U);
}

TEST_F(PolylineLife, SettingsGoToAllSources)
{
    const int id = Make(LineOfThree());
    group->SetSoundPriority(id, 7);
    group->SetSoundGain(id, 0.5F);
    group->SetSoundMinMaxDistance(id, 3.0F, 33.0F, false);
    Find(id)->SetDelay(9);
    EXPECT_TRUE(group->SetFrequency(id, 2000));
    group->BindSoundAxisToDirection(id, 2);
    for (int rank = 0; rank < 3; ++rank) {
        SCOPED_TRACE(rank);
        Snd3D& source = GetSource(id, rank);
        EXPECT_EQ(source.GetPriority(), 7);
        EXPECT_EQ(source.GetGain(), rank == 0 ? 0.5F : 0.25F);
        EXPECT_EQ(source.GetMinDistance(), 3.0F);
        EXPECT_EQ(source.GetMaxDistance(), 33.0F);
        EXPECT_FALSE(source.GetCutout());
        EXPECT_EQ(source.GetDelay(), 9);
        EXPECT_EQ(source.GetNewFrequency(), 2000U);
        source.SetCone(10.0F, 20.0F, 0.5F);
    }
    EXPECT_EQ(group->GetSoundPriority(id, 0), 7);
    EXPECT_EQ(group->GetSoundGain(id), 0.5F);
    EXPECT_EQ(Find(id)->GetDelay(), 9);
    // A rate is changed only if all sources take it.
    FXGargle gargle{20, 0};
    EXPECT_TRUE(group->SetFXGargle(SourceIds(id)[1], &gargle));
    EXPECT_FALSE(group->SetFrequency(id, 3000));
    EXPECT_EQ(GetSource(id, 2).GetNewFrequency(), 3000U);
    // A line has neither a position nor a parent.
    Particle world;
    EXPECT_FALSE(group->AttachSound(id, &world, PString()));
    group->SetSoundPosition(id, {1.0F, 2.0F, 3.0F});
    EXPECT_EQ(group->GetSoundPosition(id), origin);

    ASSERT_TRUE(group->StartSound(id, 0));
    Listen(nearby);
    EXPECT_EQ(TakeLog({"c1 SetDirection", "c2 SetDirection", "c3 SetDirection"}),
        (Lines{"c1 SetDirection 0 1 0", "c2 SetDirection 0 1 0", "c3 SetDirection 0 1 0"}));
    // 3 x 30 is the reach now, in place of 100.
    Listen({0.0F, 0.0F, 89.0F});
    EXPECT_FALSE(Places(id).empty());
    Listen({0.0F, 0.0F, 91.0F});
    EXPECT_TRUE(Places(id).empty());
}

// They are for sounds without sources.
TEST_F(PolylineLife, FlagsAndFadeInOfTheStartDoNotReachTheSources)
{
    const int id = Make(LineOfThree());
    group->SetSoundFadeIn(id, 500);
    EXPECT_TRUE(group->StartSound(id,
        Sound::StartNowOrCompete | Sound::StartNoEmulation | Sound::StartQueued | Sound::StartChgFrequency |
            Sound::StartDisableMicFX));
    EXPECT_EQ(TakeLog({"CreateChannel"}), Lines());
    Listen(nearby);
    Lines calls = TakeLog({"CreateChannel", "c1 FadeIn"});
    EXPECT_EQ(calls,
        (Lines{"CreateChannel c1 7 w@0 fx", "CreateChannel c2 7 w@0 fx", "CreateChannel c3 7 w@0 fx"}));
    system.SetMaxAudibleSounds(0);
    StepTimes(6, 40);
    EXPECT_EQ(Emulated().size(), 4U);
}

TEST_F(PolylineLife, AnEndedSourceIsRemoved)
{
    const int id = PlayLine(StraightLine(-50.0F, 50.0F, 3, 50.0F));
    Listen(nearby);
    const Ids before = SourceIds(id);
    group->StopSound(before[0]);
    Listen({0.0F, 0.0F, 6.0F});
    EXPECT_EQ(SourceIds(id), (Ids{before[1], before[2], before[3]}));
    Listen(nearby);
    EXPECT_EQ(GetSource(id, 0).GetGlobalPosition(), origin);
    EXPECT_EQ(Places(id).size(), 3U);
    // More than one at once, while they are still counted as placed.
    group->StopSound(before[3]);
    group->StopSound(before[2]);
    group->SetSoundGain(id, 0.3F);
    EXPECT_EQ(SourceIds(id), Ids{before[1]});
    Listen({0.0F, 0.0F, 1000.0F});
    group->StopSound(before[1]);
    TakeLog();
    Step(40);
    EXPECT_NE(Find(id), nullptr); // Noticed when the listener moves next.
    Listen({0.0F, 0.0F, 999.0F});
    Listen(nearby);
    EXPECT_EQ(Find(id), nullptr);
    EXPECT_EQ(TakeLog({"begin", "abort", "end"}), (Lines{"abort #2 w -1"}));
}

TEST_F(PolylineLife, EveryWayToEndALineEndsItsSources)
{
    struct EndRow
    {
        const char* name;
        std::function<void(int)> end;
        bool isNotified;
    };
    const EndRow rows[] = {
        {"stop", [this](int id) { group->StopSound(id); }, true},
        {"delete", [this](int id) { group->DeleteSound(id); }, false},
        {"fade out", [this](int id) { EXPECT_FALSE(group->FadeOutSound(id, 100)); }, true},
        {"stop all", [](int) { SoundSystem::StopAll(); }, true},
        {"stop all 3D", [](int) { SoundSystem::StopAll3D(); }, true},
    };
    for (const EndRow& row : rows) {
        SCOPED_TRACE(row.name);
        const int id = PlayLine(LineOfThree());
        Listen(nearby);
        Listen({0.0F, 0.0F, 6.0F});
        TakeLog();
        row.end(id);
        EXPECT_EQ(TakeLog({"begin", "abort", "end"}),
            row.isNotified ? Lines{"abort " + names->GetName(id) + " w -1"} : Lines());
        for (int gone = id - 1; gone <= id + 2; ++gone) {
            EXPECT_EQ(Find(gone), nullptr) << gone - id;
        }
    }
    // Those of the group and of the system end lines in any state.
    Make(LineOfThree());
    const int placed = PlayLine(LineOfThree());
    Listen(nearby);
    Sound other;
    const Vector3 point{1.0F, 2.0F, 3.0F};
    other.StartSound(other.New3DSound(&point, 1, file, nullptr, 3, 90.0F), 0);
    group.reset();
    EXPECT_EQ(Find(placed), nullptr);
    system.Done();
}

// The handler is called while the source starts, and the source ends with the line.
TEST_F(PolylineLife, ANotificationAboutASourceCannotEndItsLine)
{
    const int other = PlayLine(LineOfThree());
    const int id = PlayLine(LineOfThree());
    bool wasAsked = false;
    observer->react = [&](const Note& note) {
        if (note.id != SourceIds(id)[1]) {
            return;
        }
        wasAsked = true;
        group->StopSound(id);
        group->DeleteSound(id);
        EXPECT_FALSE(group->FadeOutSound(id, 10));
        SoundSystem::StopAll3D();
    };
    Listen(nearby);
    EXPECT_TRUE(wasAsked);
    EXPECT_EQ(Find(other), nullptr);
    EXPECT_NE(Find(id), nullptr);
    observer->react = nullptr;
    Listen({0.0F, 0.0F, 6.0F});
    Listen(nearby);
    EXPECT_EQ(GetLine(id).GetNumSounds(), 1);
    group->StopSound(id);
    EXPECT_EQ(Find(id), nullptr);
}

// The handler is called while the line is being destroyed, when its id is still valid.
TEST_F(PolylineLife, ALineCanBeQueriedDuringItsEndNotification)
{
    const int id = PlayLine(LineOfThree());
    Listen(nearby);
    EXPECT_EQ(Places(id).size(), 3U);
    bool wasNotified = false;
    observer->react = [&](const Note& note) {
        wasNotified = note.kind == Note::Abort && note.id == id;
        EXPECT_LE(Places(id).size(), 3U);
        group->SetSoundGain(id, 0.5F);
        group->SetSoundMinMaxDistance(id, 1.0F, 50.0F, true);
    };
    group->StopSound(id);
    EXPECT_TRUE(wasNotified);
}

/// Lines from definitions.
class PolylineResources : public WithResources<PolylineTest>
{
protected:
    PolylineResources()
    {
        folder.Write("river.sound",
            "*SOUND_DEFINITION\n{\n*FILE w\n*GAIN 0.5\n*MIN_DISTANCE 10\n*MAX_DISTANCE 100\n*POSITION 9 9 9\n"
            "*FX_ECHO { *FEEDBACK 30 }\n"
            "*POLYLINE\n{\n*NUM_ADD_SOUNDS 2\n*ANGLE 60\n*POINT -50 0 0\n*POINT 50 0 0\n}\n}\n");
    }
};

TEST_F(PolylineResources, ADefinitionWithALineStartsALineUnlessPointsAreGiven)
{
    // Only the forms of Play3DSound with a place play a line.
    Particle world;
    EXPECT_EQ(group->Play3DSound(&world, PString(), "river.sound", &database, 0, 0, {}, 0), 0);
    EXPECT_TRUE(Waiting().empty());
    const int id = group->Play3DSound({1, 2, 3}, "river.sound", &database, 0, 4, {}, 0);
    ASSERT_TRUE(Find(id)->IsPolyline());
    EXPECT_EQ(GetSource(id, 1).GetPriority(), 4);
    EXPECT_EQ(GetSource(id, 2).GetGain(), 0.25F);
    EXPECT_EQ(Find(id)->GetSubstName(), PString("sounds"));
    Listen(nearby);
    EXPECT_EQ(Places(id).size(), 3U);
    const Vector3 points[] = {{0, 0, 100}, {0, 0, 200}};
    const int given = group->New3DSound(points, 2, "river.sound", &database, 0, 0.0F);
    ASSERT_TRUE(group->StartSound(given, 0));
    Listen({0.0F, 0.0F, 90.0F});
    EXPECT_EQ(Places(given), (std::vector<Vector3>{{0.0F, 0.0F, 100.0F}}));
}

// Effects that a line's sources have from the resource are dropped at the start. A block is reallocated with
// each record that is added: no source may keep the old one, which the address sanitizer detects.
TEST_F(PolylineResources, SourcesHaveTheEffectsOfTheirLine)
{
    const int id = group->New3DSound("river.sound", &database);
    FXEcho echo{};
    FXGargle gargle{30, 1};
    const FXChorus chorus{};
    const FXEnvReverbSourceProperties properties{};
    EXPECT_FALSE(group->GetFXEcho(id, &echo));
    EXPECT_EQ(GetSource(id, 2).GetThisFXList().GetNumEffects(), 1U);
    const auto expectGargle = [&] {
        for (const int source : SourceIds(id)) {
            FXGargle read{};
            EXPECT_TRUE(group->GetFXGargle(source, &read));
            EXPECT_EQ(read.rateHz, 30);
        }
    };
    // A source of its own list while the others share.
    EXPECT_TRUE(group->SetFXChorus(SourceIds(id)[1], &chorus));
    EXPECT_TRUE(group->SetFXGargle(id, &gargle));
    folder.Remove("w");
    EXPECT_FALSE(group->StartSound(id, 0));
    EXPECT_TRUE(group->SetFXChorus(id, &chorus));
    expectGargle();
    WriteWave("w", {1000});
    EXPECT_TRUE(group->StartSound(id, 0));
    Listen(nearby);
    EXPECT_EQ(TakeLog({"CreateChannel"}),
        (Lines{"CreateChannel c1 7 w@0 fx 7 1", "CreateChannel c2 7 w@0 fx 7 1",
            "CreateChannel c3 7 w@0 fx 7 1"}));
    expectGargle();
    EXPECT_FALSE(group->SetFXChorus(id, &chorus));
    group->SetFXEnvReverbSourceProperties(id, &properties);
    group->SetFXEnvReverbSourceProperties(SourceIds(id)[0], &properties);
    expectGargle();
    Listen({0.0F, 0.0F, 1000.0F});
    Listen(nearby);
    group->StopSound(SourceIds(id)[0]);
    Listen({0.0F, 0.0F, 6.0F});
    expectGargle();
    group->StopSound(id);
}

} // namespace

} // namespace Quon
