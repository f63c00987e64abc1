// Sounds whose data are coded run through the whole system as plain waves do: unheard at the right sample,
// and on along their queue.

#include "harmonet/files/SndFile.h"
#include "harmonet/instances/SndBase.h"
#include "tests/support/SoundTest.h"

#include <cstdint>
#include <filesystem>

namespace Quon
{
namespace
{

constexpr int stepMs = 50;

struct CodedFile
{
    const char* path; ///< Below the folder of the readers' tests.
    SndFile::Snd_FileType type;
};

std::ostream& operator<<(std::ostream& stream, const CodedFile& file)
{
    return stream << file.path;
}

class CodedSounds : public SoundTest, public testing::WithParamInterface<CodedFile>
{
protected:
    CodedSounds()
    {
        const std::filesystem::path source = std::filesystem::path(HARMONET_FILE_TESTS) / GetParam().path;
        name = PString(source.filename().c_str());
        std::filesystem::copy_file(source, folder.GetPath() / name.GetText());
    }

    SndFile& FileOf(int id) const { return *Find(id)->GetSndFile(); }

    void Displace(int id, int flags)
    {
        system.SetMaxAudibleSounds(0);
        ASSERT_TRUE(group->StartSound(id, flags));
        Step(stepMs);
        ASSERT_EQ(Emulated(), Ids{id});
        ASSERT_EQ(FileOf(id).FileType(), GetParam().type);
    }

    PString name;
};

TEST_P(CodedSounds, RunOnUnheardRoundTheLoopAndComeBackAtTheRightSample)
{
    const int id = group->New2DSound(name, nullptr);
    Displace(id, Sound::StartLooping);
    const int total = FileOf(id).GetSoundSamples();
    const int perStep = FileOf(id).GetSampleFrequency() * stepMs / 1000;
    const int start = FileOf(id).GetCurrentSample();
    for (int step = 1; step <= 40; ++step) {
        Step(stepMs);
        const std::int64_t passed = start + static_cast<std::int64_t>(step) * perStep;
        ASSERT_EQ(FileOf(id).GetCurrentSample() % total, passed % total) << "step " << step;
    }
    const int place = FileOf(id).GetCurrentSample() + perStep;
    system.SetMaxAudibleSounds(4);
    Step(stepMs);
    ASSERT_EQ(Playing(), Ids{id});
    EXPECT_EQ(FileOf(id).GetCurrentSample() % total, place % total);
}

TEST_P(CodedSounds, GoOnAlongTheirQueueUnheard)
{
    const int id = group->New2DSound(name, nullptr);
    for (int i = 0; i < 9; ++i)
        ASSERT_TRUE(group->CatSound(id, name, nullptr));
    Displace(id, Sound::StartQueued);
    const int total = FileOf(id).GetSoundSamples();
    const int perStep = FileOf(id).GetSampleFrequency() * stepMs / 1000;
    int passed = FileOf(id).GetCurrentSample();
    while (group->GetQueueLength(id) > 5) {
        Step(stepMs);
        passed += perStep;
        ASSERT_EQ(9 - group->GetQueueLength(id), passed / total);
        ASSERT_EQ(FileOf(id).GetCurrentSample(), passed % total);
    }
}

INSTANTIATE_TEST_SUITE_P(Kinds, CodedSounds,
    testing::Values(CodedFile{"mpeg/streams/mono-48000.mp3", SndFile::FileMP3},
        CodedFile{"mpeg/streams/wrapped-44100.wav", SndFile::FileMP3},
        CodedFile{"adpcm/sox-mono.wav", SndFile::FileAdpcm},
        CodedFile{"adpcm/sox-stereo.wav", SndFile::FileAdpcm}));

} // namespace
} // namespace Quon
