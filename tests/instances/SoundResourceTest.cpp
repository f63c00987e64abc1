// The settings that a sound takes from a definition, and its effects.

#include "harmonet/engine/Particle.h"
#include "harmonet/files/SndFile.h"
#include "harmonet/instances/SndBase.h"
#include "tests/instances/WithResources.h"
#include "tests/support/SoundTest.h"

#include <cstring>
#include <functional>

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
            "*SOUND_DEFINITION\n{\n*FILE a.wav\n*GAIN 0.5\n*LOOPING true\n*LOOP_END 600\n"
            "*DELAY 300\n*FREQUENCY 2000\n"
            "*DISABLE_ENV_FX true\n*MIN_DISTANCE 3\n*MAX_DISTANCE 40\n*INNER_CONE_ANGLE 60\n"
            "*OUTER_CONE_ANGLE 120\n*CONE_GAIN 0.25\n*POSITION 1 2 3\n}\n");
        folder.Write("fx.sound", "*SOUND_DEFINITION {\n*FILE a.wav\n*FX_ECHO\n*FX_GARGLE\n}\n");
        folder.Write("more.sound", "*SOUND_DEFINITION { *FILE b.wav }");
        folder.Write("bad.sound", "*SOUND_DEFINITION { *GAIN 1 }");
    }

    /// The calls on the channel of a sound since the last time, from its creation, with "c" as its name.
    Lines TakeChannelCalls(int id)
    {
        const std::string name = 'c' + std::to_string(ChannelOf(id)) + ' ';
        Lines calls;
        for (std::string line : TakeLog({"CreateChannel ", name.c_str()})) {
            const std::size_t at = line.find(name);
            calls.push_back(at == 0 ? line.substr(name.size()) : line.replace(at, name.size(), "c "));
        }
        return calls;
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

TEST_F(SoundResources, EveryWayToStartGivesTheDriverTheSettings)
{
    Sound::Settings own;
    own.minDistance = 2.0F;
    own.maxDistance = 20.0F;
    own.innerConeAngle = 30.0F;
    own.outerConeAngle = 90.0F;
    own.coneGain = 0.5F;
    Sound::Settings both = own;
    both.setDistance = both.setCone = true;
    const Vector3 place{4.0F, 5.0F, 6.0F};
    const Quaternion turned{0.0F, 1.0F, 0.0F, 0.0F}; // Half a turn about Y.
    Particle node;
    node.SetPosition({7.0F, 8.0F, 9.0F});
    constexpr int now = Sound::StartImmediately;
    const auto prepare = [this](int id) { return group->StartSound(id, now) ? id : 0; };
    struct Row
    {
        const char* what;
        std::function<int()> start;
        Lines calls;
    };
    const Row rows[] = {
        {"a definition in 2D", [&] { return group->Play2DSound("horn.sound", &database, now, 0, 0); },
            {"CreateChannel c 18 a.wav@0 fx", "SetGain 0.5", "SetFrequency 2000", "Play"}},
        {"a definition in 3D", [&] { return prepare(group->New3DSound("horn.sound", &database)); },
            {"CreateChannel c 55 a.wav@0 fx", "SetGain 0.5", "SetCone 60 120 0.25",
                "SetMinMaxDistance 3 40 1", "SetPosition 1 2 3", "SetDirection 0 0 -1", "SetFrequency 2000",
                "Play"}},
        {"at another place, turned",
            [&] { return group->Play3DSound(place, turned, "horn.sound", &database, now, 0, own, 0); },
            {"CreateChannel c 55 a.wav@0 fx", "SetGain 0.5", "SetCone 60 120 0.25",
                "SetMinMaxDistance 3 40 1", "SetPosition 4 5 6", "SetDirection 0 0 1", "SetFrequency 2000",
                "Play"}},
        {"with other settings",
            [&] { return group->Play3DSound(place, "horn.sound", &database, now, 0, both, 0); },
            {"CreateChannel c 51 a.wav@0 fx", "SetGain 0.5", "SetCone 30 90 0.5", "SetMinMaxDistance 2 20 0",
                "SetPosition 4 5 6", "SetDirection 0 0 -1", "SetFrequency 2000", "Play"}},
        {"on a node with other settings",
            [&] { return group->Play3DSound(&node, PString(), "horn.sound", &database, now, 0, both, 0); },
            {"CreateChannel c 51 a.wav@0 fx", "SetGain 0.5", "SetCone 30 90 0.5", "SetMinMaxDistance 2 20 0",
                "SetPosition 8 10 12", "SetDirection 0 0 -1", "SetFrequency 2000", "Play"}},
        {"a file on a node",
            [&] { return group->Play3DSound(&node, PString(), file, nullptr, now, 0, own, 0); },
            {"CreateChannel c 1 a.wav@0 fx", "SetCone 0 0 0", "SetMinMaxDistance 0 0 0", "SetPosition 7 8 9",
                "SetDirection 0 0 -1", "Play"}},
        {"effects through the mask", [&] { return group->Play2DSound("fx.sound", &database, now, 0, 0); },
            {"CreateChannel c 0 a.wav@0 fx 3", "Play"}},
    };
    system.DisableResourceFX(1U << SndFXGargle);
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        TakeLog();
        const int id = row.start();
        ASSERT_NE(id, 0);
        EXPECT_EQ(TakeChannelCalls(id), row.calls);
        const SndBase& sound = *Find(id);
        EXPECT_EQ(sound.GetSndFile()->GetPassEnd(), sound.IsLooping() ? 600 : 2000);
        EXPECT_EQ(sound.IsDisableMicFX(), sound.IsLooping() && sound.Is3D());
        group->StopSound(id);
    }
}

TEST_F(SoundResources, DefinitionsAreAppendedAndMeasuredByTheirFiles)
{
    const int id = group->New2DSound(file, nullptr);
    EXPECT_TRUE(group->CatSound(id, "more.sound", &database));
    EXPECT_EQ(group->GetSoundLength(id), 2900U);
    EXPECT_EQ(Sound::CalcSoundLength("more.sound", &database), 900U);
    // Of a folder that only resources find.
    const TempFolder pak;
    pak.Write("far.sound", "*SOUND_DEFINITION { *FILE far.wav }");
    pak.Write("far.wav", BuildWave({100}));
    EXPECT_TRUE(database.AddFolder("pak", pak.GetPath().string().c_str()));
    EXPECT_TRUE(group->CatSound(id, "far.sound", &database));
    EXPECT_EQ(group->GetSoundLength(id), 3000U);
    EXPECT_EQ(Sound::CalcSoundLength("far.sound", &database), 100U);
    for (const char* name : {"missing.sound", "bad.sound"}) {
        SCOPED_TRACE(name);
        EXPECT_FALSE(group->CatSound(id, name, &database));
        EXPECT_EQ(group->New2DSound(name, &database), 0);
        EXPECT_EQ(group->New3DSound(name, &database), 0);
        EXPECT_EQ(Sound::CalcSoundLength(name, &database), 0U);
    }
    EXPECT_EQ(group->GetQueueLength(id), 2);
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
