// Sounds that are loaded when the game chooses.

#include "harmonet/instances/Music.h"
#include "harmonet/instances/SoundPreload.h"

#include "harmonet/files/SndFile.h"
#include "harmonet/files/SndNodeCache.h"
#include "harmonet/instances/SndBase.h"
#include "harmonet/kernel/SndKernel.h"
#include "tests/instances/WithResources.h"
#include "tests/support/MemorySource.h"
#include "tests/support/MessageLog.h"
#include "tests/support/SoundTest.h"

namespace Quon
{
namespace
{

class Preload : public WithResources<SoundTest>
{
protected:
    Preload()
    {
        source->files["level/a.wav"] = BuildWave({2000});
        source->files["level/b.wav"] = BuildWave({1000});
        source->files["level/adpcm.wav"] = ReadBytes(HARMONET_FILE_TESTS "/adpcm/sox-mono.wav");
        source->files["level/mpeg.mp3"] = ReadBytes(HARMONET_FILE_TESTS "/mpeg/streams/joint-22050.mp3");
        source->files["level/wrapped.wav"] = ReadBytes(HARMONET_FILE_TESTS "/mpeg/streams/wrapped-44100.wav");
        Define("level/step.sound", "*FILE level/a.wav\n*VARIANT level/b.wav\n*VARIANT_ORDER sequence");
        Define("level/deep/ring.sound.txt", "*FILE level/mpeg.mp3\n*LOOPING true");
        source->files["level/read.me"] = {1, 2, 3};
        source->files["other.wav"] = BuildWave({500});
        EXPECT_TRUE(database.AddFolder("pak", source));
        EXPECT_TRUE(File::AddRoot(PString(), source));
    }

    void Define(const std::string& name, const std::string& keywords)
    {
        const std::string text = "*SOUND_DEFINITION\n{\n" + keywords + "\n}\n";
        source->files[name] = {text.begin(), text.end()};
    }

    /// Whether the sound runs and has data, without a call of the source.
    void ExpectPlays(int id)
    {
        ASSERT_NE(Find(id), nullptr);
        EXPECT_NE(group->GetSoundLength(id), 0xFFFFFFFFU);
        SndFile* const file = Find(id)->GetSndFile();
        ASSERT_NE(file, nullptr);
        unsigned char pcm[8] = {};
        EXPECT_EQ(file->ReadSamples(pcm, 1), 1);
    }

    SndNodeCache& Cache() const { return *GetRunningKernel()->GetDataCache(); }

    const std::shared_ptr<MemorySource> source = std::make_shared<MemorySource>();
};

TEST_F(Preload, LeavesNothingToReadForAnyStart)
{
    const unsigned long budget = Cache().GetFreeBytes();
    std::string seen;
    SoundPreload level;
    level.SetProgress(
        [](const SoundPreload::Progress& progress, void* user) {
            *static_cast<std::string*>(user) += std::string(progress.name.GetView()) + ' ' +
                std::to_string(progress.done) + '/' + std::to_string(progress.count) + '\n';
            return true;
        },
        &seen);
    EXPECT_TRUE(level.AddFolder("level", &database));
    EXPECT_EQ(seen,
        "level/a.wav 1/7\nlevel/adpcm.wav 2/7\nlevel/b.wav 3/7\nlevel/deep/ring.sound.txt 4/7\n"
        "level/mpeg.mp3 5/7\nlevel/step.sound 6/7\nlevel/wrapped.wav 7/7\n");
    EXPECT_EQ(level.GetFileCount(), 5U);
    const std::uint64_t bytes = level.GetBytes();
    EXPECT_GT(bytes, source->files["level/mpeg.mp3"].size() + 2 * (2000U + 1000U));
    // The same once more, and by plain names, which are other entries.
    EXPECT_TRUE(level.Add("level/step.sound", &database));
    EXPECT_EQ(level.GetBytes(), bytes);
    EXPECT_TRUE(level.AddFolder("", nullptr));
    EXPECT_EQ(level.GetFileCount(), 11U);
    EXPECT_EQ(Cache().GetFreeBytes(), budget);

    source->opened.clear();
    source->failsToRead = true;
    const Sound::Settings settings;
    for (const char* name : {"level/step.sound", "level/step.sound", "level/deep/ring.sound.txt",
             "level/adpcm.wav", "level/mpeg.mp3", "level/wrapped.wav"}) {
        SCOPED_TRACE(name);
        ExpectPlays(group->Play2DSound(name, &database, Sound::StartImmediately, 0, 0));
        ExpectPlays(group->Play3DSound(
            Vector3{1.0F, 0.0F, 0.0F}, name, &database, Sound::StartImmediately, 0, settings, 0));
    }
    ExpectPlays(Play("level/wrapped.wav", Sound::StartImmediately));
    const int queue = Play("level/a.wav", Sound::StartQueued | Sound::StartImmediately);
    EXPECT_TRUE(group->CatSound(queue, "level/step.sound", &database));
    for (const char* name : {"level/deep/ring.sound.txt", "level/wrapped.wav"}) {
        Music music;
        EXPECT_TRUE(music.Play(name, &database, false));
        EXPECT_TRUE(music.CrossFade("level/mpeg.mp3", &database, 100, false));
        ExpectPlays(music.GetState().id);
    }
    EXPECT_NE(Sound::CalcSoundLength("level/mpeg.mp3", &database), 0U);
    StepTimes(3, 200);
    EXPECT_EQ(source->opened, std::vector<std::string>());
    EXPECT_EQ(Play("level/missing.wav", Sound::StartImmediately), 0);
    EXPECT_EQ(source->opened, std::vector<std::string>{"level/missing.wav"});
}

TEST_F(Preload, ReleasesWhatNoSetHolds)
{
    const unsigned long budget = Cache().GetFreeBytes();
    SoundPreload first;
    auto second = std::make_unique<SoundPreload>();
    EXPECT_TRUE(first.Add("level/a.wav", &database));
    EXPECT_TRUE(second->AddFolder("level", &database));
    EXPECT_EQ(first.GetBytes(), 4000U);
    database.DropUnused();
    database.DropUnused();
    EXPECT_EQ(database.GetCount(), 7U);
    second.reset();
    EXPECT_EQ(database.GetCount(), 7U);
    database.DropUnused();
    database.DropUnused();
    EXPECT_EQ(database.GetCount(), 1U);
    // Released data count as cached and can be dropped; preloaded data cannot.
    EXPECT_LT(Cache().GetFreeBytes(), budget);
    Cache().Evict(1000000);
    EXPECT_EQ(Cache().GetFreeBytes(), budget);
    source->failsToRead = true;
    const int id = group->Play2DSound("level/a.wav", &database, Sound::StartImmediately, 0, 0);
    ExpectPlays(id);
    // A sound that plays keeps its data.
    first.Release();
    EXPECT_EQ(first.GetFileCount(), 0U);
    Cache().Evict(1000000);
    ExpectPlays(id);
    SoundSystem::StopAll();
    Cache().Evict(1000000);
    EXPECT_EQ(group->Play2DSound("level/a.wav", &database, Sound::StartImmediately, 0, 0), 0);
}

TEST_F(Preload, LoadsTheRestAndReportsFailures)
{
    source->files["level/bad.wav"] = {'R', 'I', 'F', 'F'};
    Define("level/lost.sound", "*FILE level/a.wav\n*VARIANT level/none.wav");
    MessageLog log(os);
    SoundPreload level;
    EXPECT_FALSE(level.AddFolder("level", &database));
    EXPECT_EQ(log.Take(),
        "E sound file 'level/bad.wav' is neither a RIFF/WAVE file nor MPEG Layer III audio\n"
        "E sound file 'level/none.wav' of owner 'pak' does not exist\n");
    EXPECT_EQ(level.GetFileCount(), 5U);
    EXPECT_FALSE(level.Add("nothing.sound", &database));
    EXPECT_FALSE(level.Add("nothing.wav", nullptr));
    EXPECT_NE(log.Take(), "");
    EXPECT_FALSE(level.AddFolder("nowhere", &database));
    EXPECT_EQ(log.Take(), "E folder 'nowhere' of the resources does not exist\n");
    EXPECT_FALSE(level.AddFolder("../level", nullptr));
    EXPECT_EQ(log.Take(), "E folder '../level' is outside its root\n");
    source->statedSize = -1;
    EXPECT_FALSE(level.Add("other.wav", nullptr));
    EXPECT_EQ(log.Take(), "E sound file 'other.wav' of owner '' has an unknown length\n");
    source->statedSize = 0;
    source->isListed = false;
    EXPECT_FALSE(level.AddFolder("level", &database));
    EXPECT_NE(log.Take().find("cannot be listed"), std::string::npos);
    EXPECT_EQ(level.GetFileCount(), 5U);
}

TEST_F(Preload, CanBeCancelledAndIsEmptyWithoutItsSystem)
{
    SoundPreload level;
    level.SetProgress(
        [](const SoundPreload::Progress& progress, void*) { return progress.done < 2; }, nullptr);
    EXPECT_FALSE(level.AddFolder("level", &database));
    EXPECT_EQ(level.GetFileCount(), 2U);
    group.reset();
    microphone.reset();
    system.Done();
    EXPECT_EQ(level.GetFileCount(), 0U);
    EXPECT_EQ(level.GetBytes(), 0U);
    EXPECT_FALSE(level.Add("level/a.wav", nullptr));
    ASSERT_TRUE(Start());
    group = std::make_unique<Sound>();
    EXPECT_EQ(level.GetFileCount(), 0U) << "another cache knows nothing of it";
    EXPECT_TRUE(level.Add("level/a.wav", &database));
    EXPECT_EQ(level.GetBytes(), 4000U);
}

} // namespace
} // namespace Quon
