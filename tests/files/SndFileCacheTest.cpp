#include "tests/files/SoundFolder.h"

#include "harmonet/files/SndFileHandle.h"

#include <atomic>
#include <latch>
#include <thread>

using namespace Quon;

namespace
{

class OpenFiles : public SoundFolder
{
protected:
    OpenFiles() { folder.Write("sound", Counting(1000)); }
};

TEST_F(OpenFiles, AFileIsOpenedOncePerOwnerAndClosedWithItsLastUse)
{
    SndFileHandle* const first = openFiles.Acquire(owner, "sound");
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(openFiles.Acquire(owner, "sound"), first);
    EXPECT_EQ(first->GetUseCount(), 2);
    const PString other("other owner");
    ASSERT_TRUE(File::AddRoot(other, folder.GetPath().string().c_str()));
    SndFileHandle* const ofOther = openFiles.Acquire(other, "sound");
    ASSERT_NE(ofOther, nullptr);
    EXPECT_NE(ofOther, first);
    EXPECT_EQ(ofOther->GetSubstName(), other);
    EXPECT_EQ(openFiles.GetCount(), 2);
    openFiles.Release(first);
    openFiles.Release(first);
    EXPECT_EQ(openFiles.GetCount(), 1);

    // Another file of that name: the one that was open before is not found again.
    folder.Write("sound", Bytes{42, 43});
    SndFileHandle* const anew = openFiles.Acquire(owner, "sound");
    unsigned char bytes[4] = {};
    EXPECT_EQ(anew->ReadAt(bytes, 4, 0), 2);
    EXPECT_EQ(bytes[0], 42);
    openFiles.ReleaseAll();
    EXPECT_EQ(openFiles.GetCount(), 0);
    File::RemoveRoot(other);
}

// Readers may have been opened before the sound system started and installed its own list.
TEST_F(OpenFiles, AFileOfAnotherListStaysOpenForItsOtherReaders)
{
    folder.Write("long", PcmWave(1, 8000, 8, Counting(20)));
    auto first = Open("long");
    const auto second = Open("long");
    SndFileCache later;
    SndFile::SetSndFileCache(&later);
    first.reset();
    EXPECT_EQ(ReadFrames(*second, 2), (Bytes{1, 2}));
    EXPECT_EQ(openFiles.GetCount(), 1);
    second->CloseFile(0, nullptr);
    EXPECT_EQ(openFiles.GetCount(), 0);
    EXPECT_EQ(later.GetCount(), 0);
}

TEST_F(OpenFiles, ReadsEndWithTheFileAndFailedOpensLeaveNoTrace)
{
    const std::size_t before = Alloc::LiveBlocks();
    EXPECT_EQ(openFiles.Acquire(owner, "missing"), nullptr);
    EXPECT_EQ(openFiles.Acquire(owner, PString()), nullptr);
    EXPECT_EQ(openFiles.Acquire("nobody", "sound"), nullptr);
    openFiles.Release(nullptr);
    EXPECT_EQ(openFiles.GetCount(), 0);
    EXPECT_EQ(Alloc::LiveBlocks(), before);
    SndFileHandle* const handle = openFiles.Acquire(owner, "sound");
    unsigned char bytes[10] = {};
    EXPECT_EQ(handle->ReadAt(bytes, 10, 0), 10);
    EXPECT_EQ(bytes[9], 10);
    EXPECT_EQ(handle->ReadAt(bytes, 10, 995), 5);
    EXPECT_EQ(handle->ReadAt(bytes, 10, 1000), 0);
    EXPECT_EQ(handle->ReadAt(bytes, 10, ~0UL), 0) << "no system takes such an offset";
    EXPECT_EQ(handle->ReadAt(bytes, 0, 0), 0);
    EXPECT_EQ(handle->ReadAt(bytes, -1, 0), 0);
    openFiles.Release(handle);
}

// A driver's thread reads one sound while the task thread reads and opens others of the same file. A seek of
// one between the seek and the read of the other would give it the other's bytes.
TEST_F(OpenFiles, SoundsOnTwoThreadsShareOneFile)
{
    const Bytes samples = Counting(4'000);
    folder.Write("long", PcmWave(2, 8000, 16, samples));
    const auto played = Open("long");
    const auto emulated = Open("long");
    ASSERT_EQ(openFiles.GetCount(), 1);
    std::atomic<int> wrong = 0;
    std::latch start(2);
    const auto readOver = [&](SndFile& file) {
        start.arrive_and_wait();
        for (int round = 0; round < 40; ++round) {
            wrong += ReadAll(file, 1) == samples ? 0 : 1;
            file.Rewind();
        }
    };
    std::thread driver([&] { readOver(*played); });
    readOver(*emulated);
    for (int round = 0; round < 20; ++round) {
        wrong += Open("long") != nullptr ? 0 : 1;
    }
    driver.join();
    EXPECT_EQ(wrong, 0);
}

} // namespace
