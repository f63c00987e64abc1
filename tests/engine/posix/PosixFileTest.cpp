#include "harmonet/engine/DynamicLibrary.h"
#include "tests/engine/FilesTest.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Quon
{
namespace
{

TEST_F(Files, FollowLinksWithinTheirRootOnly)
{
    std::filesystem::create_symlink("../outside.txt", folder.Path("root/out.txt"));
    std::filesystem::create_symlink("../root2", folder.Path("root/outfolder"));
    std::filesystem::create_symlink("..", folder.Path("root/up"));
    std::filesystem::create_symlink("sub/deep.txt", folder.Path("root/within.txt"));
    std::filesystem::create_symlink(folder.Path("root/sub"), folder.Path("root/absolute"));
    std::filesystem::create_symlink("loop", folder.Path("root/loop"));
    folder.Write("root/a: name \\ of its own.", "x");
    ExpectCodes({
        {"within.txt", File::Opened},
        {"absolute/deep.txt", File::Opened},
        {"out.txt", File::OutsideRoot},
        {"outfolder/sibling.txt", File::OutsideRoot},
        {"up/root/inside.txt", File::Opened},
        {"loop", File::SystemError},
        {"..missing..", File::NotFound},
    });
}

TEST_F(Files, RefusePipesAndDevices)
{
    ASSERT_EQ(mkfifo(folder.Path("root/pipe.wav").c_str(), 0600), 0);
    std::filesystem::create_symlink("/dev/null", folder.Path("root/device.wav"));
    EXPECT_EQ(Open("pipe.wav"), File::NotAFile);
    EXPECT_EQ(Open("device.wav"), File::OutsideRoot);
}

TEST_F(Files, RefusePipesAndDanglingLinksAsLibraries)
{
    ASSERT_EQ(mkfifo(folder.Path("pipe.so").c_str(), 0600), 0);
    std::filesystem::create_symlink("dangling", folder.Path("link.so"));
    DynamicLibrary library({EngineString(folder.GetPath().c_str())});
    for (const char* name : {"pipe.so", "link.so"}) {
        EXPECT_FALSE(library.Open(name)) << name;
        EXPECT_FALSE(library.Open(folder.Path(name).c_str())) << name;
    }
}

// The superuser may read everything, so a child process opens the file as an unprivileged user.
TEST_F(Files, WithoutPermissionAreNotReadable)
{
    testing::FLAGS_gtest_death_test_style = "fast";
    const std::string path = folder.Write("root/locked.wav", "RIFF");
    ASSERT_EQ(chmod(path.c_str(), 0), 0);
    ASSERT_EQ(chmod(folder.GetPath().string().c_str(), 0755), 0);
    const auto openAsNobody = [this] {
        if (geteuid() == 0 && setuid(65534) != 0) {
            std::_Exit(99);
        }
        std::_Exit(Open("locked.wav"));
    };
    EXPECT_EXIT(openAsNobody(), testing::ExitedWithCode(File::NotReadable), "");
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
