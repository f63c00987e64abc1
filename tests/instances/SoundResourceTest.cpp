// What a sound takes over from a definition, and the effects that it can be given.

#include "harmonet/instances/SndBase.h"
#include "tests/instances/WithResources.h"
#include "tests/support/SoundTest.h"

#include <cstring>

namespace Quon
{
namespace
{

class SoundResources : public WithResources<SoundTest>
{
protected:
    SoundResources()
    {
        folder.Write("horn.sound",
            "*SOUND_DEFINITION\n{\n*FILE a.wav\n*GAIN 0.5\n*LOOPING true\n*DELAY 300\n*FREQUENCY 2000\n"
            "*DISABLE_ENV_FX true\n*MIN_DISTANCE 3\n*MAX_DISTANCE 40\n*INNER_CONE_ANGLE 60\n"
            "*OUTER_CONE_ANGLE 120\n*CONE_GAIN 0.25\n*POSITION 1 2 3\n}\n");
        folder.Write("more.sound", "*SOUND_DEFINITION { *FILE b.wav }");
        folder.Write("bad.sound", "*SOUND_DEFINITION { *GAIN 1 }");
    }

    template<class Record>
    using Set = bool (Sound::*)(int, const Record*);
    template<class Record>
    using Get = bool (Sound::*)(int, Record*);

    /// Gives a new sound a record full of a number that tells the effects apart, and expects it in the
    /// sound's list and as the answer, and the driver's own in its place once that has one.
    template<class Record>
    void ExpectEffect(SndFX effect, Set<Record> set, Get<Record> get)
    {
        SCOPED_TRACE(effect);
        const int id = group->New2DSound(file, nullptr);
        Record asked;
        Record answered{};
        std::memset(&asked, 0x10 + effect, sizeof asked);
        EXPECT_FALSE((group.get()->*get)(id, &answered));
        EXPECT_TRUE((group.get()->*set)(id, &asked));
        const SndFXDesc* desc = Find(id)->GetThisFXList().GetFXDesc(effect);
        ASSERT_NE(desc, nullptr);
        EXPECT_EQ(std::memcmp(desc->GetRecord(), &asked, sizeof asked), 0);
        EXPECT_TRUE((group.get()->*get)(id, &answered));
        EXPECT_EQ(std::memcmp(&answered, &asked, sizeof asked), 0);
        EXPECT_TRUE(group->StartSound(id, Sound::StartImmediately));
        recording.hasLiveFX = true;
        std::memset(&asked, Recording::liveFXByte, sizeof asked);
        EXPECT_TRUE((group.get()->*get)(id, &answered));
        EXPECT_EQ(std::memcmp(&answered, &asked, sizeof asked), 0);
        recording.hasLiveFX = false;
        group->StopSound(id);
    }

    const PString file = WriteWave("a.wav", {2000});
    const PString other = WriteWave("b.wav", {900});
};

TEST_F(SoundResources, ADefinitionAppliesItsSettingsIn2DAnd3D)
{
    const int flat = group->New2DSound("horn.sound", &database);
    const int placed =
        group->Play3DSound(Vector3{4, 5, 6}, Quaternion{0, 1, 0, 0}, "horn.sound", &database, 0, 7, {}, 50);
    for (const int id : {flat, placed}) {
        SCOPED_TRACE(id == flat ? "flat" : "placed");
        ASSERT_NE(Find(id), nullptr);
        EXPECT_EQ(Find(id)->GetFileName(), file);
        EXPECT_EQ(Find(id)->GetSubstName(), PString("sounds"));
        EXPECT_EQ(group->GetSoundGain(id), 0.5F);
        EXPECT_TRUE(Find(id)->IsLooping());
        EXPECT_EQ(Find(id)->GetSndFlags() & FlagChgFrequency, FlagChgFrequency);
        EXPECT_EQ(Find(id)->GetNewFrequency(), 2000U);
        EXPECT_EQ(Find(id)->GetDelay(), id == flat ? 300 : 50);
    }
    StepTimes(2, 50);
    EXPECT_EQ(Find(placed)->GetSndFlags() & FlagDisableMicFX, FlagDisableMicFX);
    // The place is the caller's and looks the other way by half a turn.
    EXPECT_EQ(TakeLog({"c1 Set"}),
        (Lines{"c1 SetGain 0.5", "c1 SetCone 60 120 0.25", "c1 SetMinMaxDistance 3 40 1",
            "c1 SetPosition 4 5 6", "c1 SetDirection 0 0 1", "c1 SetFrequency 2000", "c1 SetPosition 4 5 6",
            "c1 SetDirection 0 0 1"}));
}

TEST_F(SoundResources, DefinitionsAreAppendedAndMeasuredByTheirFiles)
{
    const int id = group->New2DSound(file, nullptr);
    EXPECT_TRUE(group->CatSound(id, "more.sound", &database));
    EXPECT_EQ(group->GetSoundLength(id), 2900U);
    EXPECT_EQ(Sound::CalcSoundLength("more.sound", &database), 900U);
    for (const char* name : {"missing.sound", "bad.sound"}) {
        SCOPED_TRACE(name);
        EXPECT_FALSE(group->CatSound(id, name, &database));
        EXPECT_EQ(group->New2DSound(name, &database), 0);
        EXPECT_EQ(group->New3DSound(name, &database), 0);
        EXPECT_EQ(Sound::CalcSoundLength(name, &database), 0U);
    }
    EXPECT_EQ(group->GetQueueLength(id), 1);
}

TEST_F(SoundResources, EachEffectIsStoredUnderItsOwnName)
{
    ExpectEffect<FXChorus>(SndFXChorus, &Sound::SetFXChorus, &Sound::GetFXChorus);
    ExpectEffect<FXFlanger>(SndFXFlanger, &Sound::SetFXFlanger, &Sound::GetFXFlanger);
    ExpectEffect<FXEcho>(SndFXEcho, &Sound::SetFXEcho, &Sound::GetFXEcho);
    ExpectEffect<FXDistortion>(SndFXDistortion, &Sound::SetFXDistortion, &Sound::GetFXDistortion);
    ExpectEffect<FXCompressor>(SndFXCompressor, &Sound::SetFXCompressor, &Sound::GetFXCompressor);
    ExpectEffect<FXParamEq>(SndFXParamEq, &Sound::SetFXParamEq, &Sound::GetFXParamEq);
    ExpectEffect<FXGargle>(SndFXGargle, &Sound::SetFXGargle, &Sound::GetFXGargle);
    ExpectEffect<FXWavesReverb>(SndFXWavesReverb, &Sound::SetFXWavesReverb, &Sound::GetFXWavesReverb);
}

} // namespace
} // namespace Quon
