#include "tests/files/SoundFolder.h"

#include "harmonet/engine/Exception.h"
#include "harmonet/files/SndFileHandle.h"
#include "harmonet/files/SndFileWav.h"
#include "harmonet/instances/Sound.h"
#include "harmonet/instances/SoundObserver.h"

#include <functional>

using namespace Quon;

namespace
{

using Freed = std::vector<std::pair<int, void*>>;

/// Records which blocks are returned to which sound, and responds if requested.
class Witness : public SoundObserver
{
public:
    void OnBufferFree(int soundID, void* block) override
    {
        freed.emplace_back(soundID, block);
        if (answer) {
            answer();
        }
    }

    Freed freed;
    std::function<void()> answer;
};

class SndFileBase : public SoundFolder
{
protected:
    SndFileBase() { sound.AddObserver(&witness); }
    ~SndFileBase() override { sound.RemoveObserver(&witness); }

    /// A reader of one of the caller's blocks.
    SndFile* OpenBlock(int index)
    {
        WaveFormatEx format = {waveTagPcm, 1, 8000, 0, 0, 8, 0};
        return SndFile::OpenFile(blocks[index], sizeof blocks[index], &format);
    }

    unsigned char blocks[4][16] = {};
    Sound sound;
    Witness witness;
};

TEST_F(SndFileBase, OpensFailWithoutAListOfOpenFiles)
{
    SndFile::SetSndFileCache(nullptr);
    EXPECT_EQ(OpenBytes(PcmWave(1, 8000, 8, Counting(4))), nullptr);
}

// What an owner appends in answer is kept: a game hands over its next block as soon as it gets one back.
TEST_F(SndFileBase, AQueueGoesFromTheLastFileForward)
{
    const std::unique_ptr<SndFile> head(OpenBlock(0));
    head->Add(OpenBlock(1));
    head->Add(OpenBlock(2));
    SndFile* appended = nullptr;
    witness.answer = [&] {
        if (appended == nullptr) {
            head->Add(appended = OpenBlock(3));
        }
    };
    head->DeleteQueue(7, &sound);
    EXPECT_EQ(witness.freed, (Freed{{7, blocks[2]}, {7, blocks[1]}}));
    EXPECT_EQ(head->GetNext(), appended);
    EXPECT_EQ(head->FileType(), SndFile::FileWav);
    head->DeleteQueue(7, &sound);
    EXPECT_EQ(witness.freed.back(), (std::pair<int, void*>{7, blocks[3]}));
}

TEST_F(SndFileBase, AQueueOfAnyLengthIsFreedWithoutRecursion)
{
    const std::unique_ptr<SndFile> head(OpenBlock(0));
    SndFile* last = head.get();
    for (int i = 0; i < 200'000; ++i) {
        SndFile* const following = OpenBlock(1);
        last->Add(following);
        last = following;
    }
    head->DeleteQueue(0, nullptr);
    EXPECT_EQ(head->GetQueueLength(), 0);
}

TEST_F(SndFileBase, ABlockIsReturnedOnceToItsOwner)
{
    const std::unique_ptr<SndFile> withOwner(OpenBlock(0));
    withOwner->CloseFile(9, &sound);
    withOwner->CloseFile(9, &sound);
    EXPECT_EQ(withOwner->FileType(), SndFile::FileNone);
    const std::unique_ptr<SndFile> withoutOwner(OpenBlock(1));
    withoutOwner->CloseFile(9, nullptr);
    withoutOwner->CloseFile(9, &sound);
    EXPECT_EQ(witness.freed, (Freed{{9, blocks[0]}}));
}

TEST_F(SndFileBase, LoadClosesTheFileAndKeepsTheData)
{
    const auto file = OpenGood(Wave(
        Chunk("fmt ", PcmFormat(1, 8000, 8)) + Chunk("data", Counting(9)) + Chunk("LIST", Bytes(20, 0xEE))));
    EXPECT_EQ(file->GetFileName(), PString("sound"));
    file->SkipSamples(2);
    unsigned char* const data = file->Load();
    ASSERT_NE(data, nullptr);
    EXPECT_EQ(openFiles.GetCount(), 0);
    EXPECT_EQ(Bytes(data, data + 9), Counting(9));
    EXPECT_EQ(file->Load(), data);
    EXPECT_EQ(ReadAll(*file), (Bytes{3, 4, 5, 6, 7, 8, 9}));
    EXPECT_FALSE(file->IsCached());
}

TEST_F(SndFileBase, AFileWithoutALengthThrowsWithoutLeaking)
{
    folder.Write("sound", PcmWave(1, 8000, 8, Counting(4)));
    SndFileHandle* const handle = openFiles.Acquire(owner, "sound");
    handle->GetFile().Close();
    EXPECT_THROW(Open("sound"), FileEx);
    EXPECT_EQ(handle->GetUseCount(), 1);
    SndFileWav file;
    EXPECT_FALSE(file.OpenHandle(handle)) << "a file that is not open is refused before its length is asked";
    openFiles.Release(handle);
}

} // namespace
