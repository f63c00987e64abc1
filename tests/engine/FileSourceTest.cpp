#include "harmonet/engine/FileSource.h"
#include "harmonet/engine/Exception.h"

#include "tests/engine/FilesTest.h"
#include "tests/support/MemorySource.h"

#include <random>

namespace Quon
{
namespace
{

/// The files of a source in place of those of the folder.
class FileSources : public Files
{
protected:
    FileSources() { EXPECT_TRUE(File::AddRoot(owner, source)); }

    int Stamp(const char* name)
    {
        FileStamp stamp;
        return File::GetStamp(owner, name, stamp).GetCode();
    }

    const std::shared_ptr<MemorySource> source = std::make_shared<MemorySource>();
};

/// What a random walk over an open file gives.
std::vector<unsigned long> WalkOver(File& file, unsigned int seed)
{
    std::vector<unsigned long> seen{file.Size()};
    std::mt19937 dice(seed);
    std::vector<unsigned char> buffer(200);
    for (int i = 0; i < 300; ++i) {
        if (dice() % 2 == 0) {
            const auto origin = static_cast<FileSeek>(dice() % 3);
            seen.push_back(file.Seek(static_cast<long>(dice() % 300) - 100, origin));
        }
        const unsigned long got = file.Read(buffer.data(), dice() % 20, dice() % 10);
        seen.push_back(got);
        seen.insert(seen.end(), buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(got));
    }
    return seen;
}

// A reader does not depend on where a file comes from.
TEST_F(FileSources, ReadTheSameAsAFolder)
{
    MemorySource::Bytes bytes(150);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<unsigned char>(i);
    }
    folder.Write("root/a.bin", bytes);
    source->files["a.bin"] = bytes;
    const PString folderOwner("folder of the source tests");
    ASSERT_TRUE(File::AddRoot(folderOwner, folder.Path("root").c_str()));
    for (const std::size_t mostPerRead : {std::size_t{1}, std::size_t{7}, std::size_t{1000}}) {
        source->mostPerRead = mostPerRead;
        const auto seed = static_cast<unsigned int>(mostPerRead);
        File other;
        ASSERT_TRUE(other.Open(folderOwner, "a.bin", File::modeRead).IsOk());
        ASSERT_EQ(Open("a.bin"), File::Opened);
        EXPECT_EQ(WalkOver(file, seed), WalkOver(other, seed)) << mostPerRead << " bytes a read";
    }
    File::RemoveRoot(folderOwner);
}

TEST_F(FileSources, GetCheckedNames)
{
    source->files["sub/a.bin"] = {1};
    ExpectCodes({{"sub/a.bin", File::Opened}, {"./sub//.\\a.bin", File::Opened},
        {"sub/../sub/a.bin", File::OutsideRoot}, {"/sub/a.bin", File::OutsideRoot},
        {"C:\\sub\\a.bin", File::OutsideRoot}, {".", File::NotAFile}, {"", File::BadName}});
    EXPECT_EQ(source->opened, std::vector<std::string>(4, "sub/a.bin")) << "no other name reaches it";
}

TEST_F(FileSources, RefuseTheSameSizesAsAFolder)
{
    source->files["a.bin"] = {1, 2, 3};
    source->files["empty.bin"] = {};
    EXPECT_EQ(Open("empty.bin"), File::Empty);
    EXPECT_EQ(Stamp("empty.bin"), File::Empty);
    source->statedSize = std::int64_t{1} << 31;
    EXPECT_EQ(Open("a.bin"), File::TooLarge);
    EXPECT_EQ(Stamp("a.bin"), File::TooLarge);
    source->statedSize = -5;
    EXPECT_EQ(Stamp("a.bin"), File::SystemError);
    ASSERT_EQ(Open("a.bin"), File::Opened);
    EXPECT_THROW(file.Size(), FileEx);
    char byte = 0;
    EXPECT_EQ(file.Read(&byte, 1, 1), 0U);
}

// An archive on a failing disk, or one that is shorter than its directory states.
TEST_F(FileSources, EndOnAStreamErrorAndContinueAfterIt)
{
    source->files["a.bin"] = {1, 2, 3, 4};
    source->statedSize = 10;
    ASSERT_EQ(Open("a.bin"), File::Opened);
    unsigned char buffer[10] = {};
    EXPECT_EQ(file.Read(buffer, 10, 1), 4U);
    EXPECT_EQ(file.Seek(1, FileSeek::Start), 1U);
    source->failsToSeek = true;
    EXPECT_EQ(file.Read(buffer, 1, 1), 0U);
    source->failsToSeek = false;
    EXPECT_EQ(file.Read(buffer, 1, 1), 1U);
    EXPECT_EQ(buffer[0], 2);
    source->failsToRead = true;
    EXPECT_EQ(file.Read(buffer, 1, 1), 0U);
    source->failsToRead = false;
    source->seeks = 0;
    EXPECT_EQ(file.Read(buffer, 2, 1), 2U);
    EXPECT_EQ(buffer[0], 3);
    EXPECT_EQ(source->seeks, 1) << "where a stream that failed stands is unknown";
}

TEST_F(FileSources, OutliveTheirOpenFiles)
{
    const std::weak_ptr<MemorySource> watched = [this] {
        auto other = std::make_shared<MemorySource>();
        other->files["a.bin"] = {7};
        EXPECT_TRUE(File::AddRoot(owner, other));
        return std::weak_ptr<MemorySource>(other);
    }();
    ASSERT_EQ(Open("a.bin"), File::Opened);
    EXPECT_FALSE(File::AddRoot(owner, std::shared_ptr<FileSource>()));
    EXPECT_TRUE(File::AddRoot(owner, source));
    char byte = 0;
    EXPECT_EQ(file.Read(&byte, 1, 1), 1U);
    EXPECT_EQ(byte, 7);
    file.Close();
    EXPECT_TRUE(watched.expired());
    EXPECT_EQ(Open("a.bin"), File::NotFound) << "the new root counts";
}

} // namespace
} // namespace Quon
