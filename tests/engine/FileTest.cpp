#include "harmonet/engine/File.h"

#include "harmonet/engine/Exception.h"

#include "tests/support/TempFolder.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Quon
{
namespace
{

class Files : public testing::Test
{
protected:
    Files()
    {
        folder.Write("root/inside.txt", "0123456789");
        folder.Write("root/sub/deep.txt", "deep");
        folder.Write("outside.txt", "secret");
        folder.Write("root2/sibling.txt", "sibling");
        EXPECT_TRUE(File::AddRoot(owner, folder.Path("root").c_str()));
    }
    ~Files() override { File::RemoveRoot(owner); }

    int Open(const char* name) { return file.Open(owner, name, File::modeRead).GetCode(); }

    const PString owner = "owner of the tests";
    TempFolder folder;
    File file;
};

TEST_F(Files, ReadAndSeekByBytes)
{
    ASSERT_EQ(Open("inside.txt"), File::Opened);
    EXPECT_TRUE(file.IsOpen());
    char buffer[16] = {};
    EXPECT_EQ(file.Size(), 10u);
    EXPECT_EQ(file.Read(buffer, 4, 1), 4u);
    EXPECT_STREQ(buffer, "0123");
    EXPECT_EQ(file.Seek(2, FileSeek::Current), 6u);
    EXPECT_EQ(file.Read(buffer, 2, 8), 4u);
    EXPECT_EQ(std::string_view(buffer, 4), "6789");
    EXPECT_EQ(file.Seek(-3, FileSeek::End), 7u);
    EXPECT_EQ(file.Seek(-1, FileSeek::Start), File::seekFailed);
    EXPECT_EQ(file.Read(buffer, 1, 1), 1u);
    EXPECT_EQ(buffer[0], '7');
    EXPECT_EQ(file.Seek(100, FileSeek::Start), 100u);
    EXPECT_EQ(file.Read(buffer, 1, 1), 0u);
    EXPECT_EQ(file.Read(buffer, static_cast<unsigned long>(-1), 2), 0u);
    EXPECT_EQ(file.Close(), 0u);
    EXPECT_FALSE(file.IsOpen());
    EXPECT_EQ(file.Read(buffer, 1, 1), 0u);
    EXPECT_EQ(file.Seek(0, FileSeek::Start), File::seekFailed);
}

TEST_F(Files, NamesStayBelowTheirRoot)
{
    std::filesystem::create_symlink("../outside.txt", folder.Path("root/out.txt"));
    std::filesystem::create_symlink("../root2", folder.Path("root/outfolder"));
    std::filesystem::create_symlink("..", folder.Path("root/up"));
    std::filesystem::create_symlink("sub/deep.txt", folder.Path("root/within.txt"));
    std::filesystem::create_symlink(folder.Path("root/sub"), folder.Path("root/absolute"));
    std::filesystem::create_symlink("loop", folder.Path("root/loop"));
    const std::pair<std::string, int> rows[] = {
        {"inside.txt", File::Opened},
        {"sub\\deep.txt", File::Opened},
        {"sub//deep.txt", File::Opened},
        {"within.txt", File::Opened},
        {"absolute/deep.txt", File::Opened},
        {"../outside.txt", File::OutsideRoot},
        {"sub/../inside.txt", File::OutsideRoot},
        {"sub\\..\\..\\outside.txt", File::OutsideRoot},
        {"../root2/sibling.txt", File::OutsideRoot},
        {folder.Path("root/inside.txt"), File::OutsideRoot},
        {"\\inside.txt", File::OutsideRoot},
        {"C:\\inside.txt", File::OutsideRoot},
        {"out.txt", File::OutsideRoot},
        {"outfolder/sibling.txt", File::OutsideRoot},
        {"up/root/inside.txt", File::Opened},
        {"missing.txt", File::NotFound},
        {"inside.txt/more", File::NotFound},
        {"..missing..", File::NotFound},
        {"loop", File::SystemError},
        {"sub", File::NotAFile},
        {".", File::NotAFile},
        {"", File::BadName},
        {std::string(300, 'x'), File::BadName},
        {std::string(100000, 'x'), File::BadName},
    };
    for (const auto& [name, code] : rows) {
        SCOPED_TRACE(name.substr(0, 100));
        FileStamp stamp;
        EXPECT_EQ(File::GetStamp(owner, name.c_str(), stamp).GetCode(), code);
        EXPECT_EQ(Open(name.c_str()), code);
        EXPECT_EQ(file.IsOpen(), code == File::Opened);
    }
    EXPECT_EQ(Open(nullptr), File::BadName);
    EXPECT_EQ(file.Open(owner, "inside.txt", 17).GetCode(), File::BadMode);
}

TEST_F(Files, TellWhyTheyDoNotOpen)
{
    folder.Write("root/empty.wav", "");
    folder.Write("root/large.wav", "x");
    std::filesystem::resize_file(folder.Path("root/large.wav"), std::uintmax_t{1} << 31);
    folder.Write("root/almost.wav", "x");
    std::filesystem::resize_file(folder.Path("root/almost.wav"), (std::uintmax_t{1} << 31) - 1);
    ASSERT_EQ(mkfifo(folder.Path("root/pipe.wav").c_str(), 0600), 0);
    std::filesystem::create_symlink("/dev/null", folder.Path("root/device.wav"));
    EXPECT_EQ(Open("empty.wav"), File::Empty);
    EXPECT_EQ(Open("large.wav"), File::TooLarge);
    EXPECT_EQ(Open("pipe.wav"), File::NotAFile);
    EXPECT_EQ(Open("device.wav"), File::OutsideRoot);
    ASSERT_EQ(Open("almost.wav"), File::Opened);
    EXPECT_EQ(file.Size(), 0x7FFFFFFFu);
    EXPECT_EQ(file.Seek(0x7FFFFFFE, FileSeek::Start), 0x7FFFFFFEu);
    char last = 'x';
    EXPECT_EQ(file.Read(&last, 1, 2), 1u);
    EXPECT_EQ(last, '\0');
}

// The superuser may read everything, so that the look is taken by a child process that is nobody.
TEST_F(Files, WithoutPermissionAreNotReadable)
{
    testing::FLAGS_gtest_death_test_style = "fast";
    const std::string path = folder.Write("root/locked.wav", "RIFF");
    ASSERT_EQ(chmod(path.c_str(), 0), 0);
    ASSERT_EQ(chmod(folder.GetPath().c_str(), 0755), 0);
    const auto openAsNobody = [this] {
        if (geteuid() == 0 && setuid(65534) != 0) {
            std::_Exit(99);
        }
        std::_Exit(Open("locked.wav"));
    };
    EXPECT_EXIT(openAsNobody(), testing::ExitedWithCode(File::NotReadable), "");
}

TEST_F(Files, HaveARootForEachOwner)
{
    const PString other("other owner of the tests");
    const auto open = [&](const PString& of, const char* name) {
        return file.Open(of, name, File::modeRead).GetCode();
    };
    EXPECT_FALSE(File::AddRoot(other, folder.Path("missing").c_str()));
    EXPECT_FALSE(File::AddRoot(other, folder.Path("outside.txt").c_str()));
    EXPECT_FALSE(File::AddRoot(other, nullptr));
    EXPECT_EQ(open(other, "sibling.txt"), File::NoRoot);
    EXPECT_TRUE(File::AddRoot(other, folder.Path("root2").c_str()));
    EXPECT_EQ(open(other, "inside.txt"), File::NotFound);
    EXPECT_EQ(open(other, "sibling.txt"), File::Opened);
    EXPECT_TRUE(File::AddRoot(PString(), folder.GetPath().c_str()));
    EXPECT_EQ(open(PString(), "outside.txt"), File::Opened);
    File::RemoveRoot(PString());
    EXPECT_EQ(open(PString(), "outside.txt"), File::NoRoot);
    std::filesystem::remove_all(folder.Path("root2"));
    EXPECT_EQ(open(other, "sibling.txt"), File::NoRoot);
    File::RemoveRoot(other);
}

TEST_F(Files, KeepTheLengthThatWasAskedFirstAndThrowWhenTheSystemTellsNone)
{
    ASSERT_EQ(Open("inside.txt"), File::Opened);
    EXPECT_EQ(file.Size(), 10u);
    std::filesystem::resize_file(folder.Path("root/inside.txt"), 3);
    EXPECT_EQ(file.Size(), 10u);
    char buffer[10];
    EXPECT_EQ(file.Read(buffer, 10, 1), 3u);
    file.Close();
    try {
        file.Size();
        FAIL() << "nothing was thrown";
    }
    catch (const FileEx& thrown) {
        const FileEx exception(thrown);
        EXPECT_STREQ(exception.GetMessage(), "Size() failed to get file length");
        EXPECT_STREQ(exception.GetFile(), "..\\..\\..\\Inc\\File");
        EXPECT_EQ(exception.GetLine(), 2467);
    }
}

TEST_F(Files, AreNotInheritedByProgramsThatAreStarted)
{
    ASSERT_EQ(Open("inside.txt"), File::Opened);
    struct stat wanted = {};
    ASSERT_EQ(stat(folder.Path("root/inside.txt").c_str(), &wanted), 0);
    int found = 0;
    for (int descriptor = 3; descriptor < 64; ++descriptor) {
        struct stat status = {};
        if (fstat(descriptor, &status) == 0 && status.st_ino == wanted.st_ino) {
            ++found;
            EXPECT_NE(fcntl(descriptor, F_GETFD) & FD_CLOEXEC, 0);
        }
    }
    EXPECT_EQ(found, 1);
}

} // namespace
} // namespace Quon
