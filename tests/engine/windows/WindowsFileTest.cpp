#include "tests/engine/FilesTest.h"

#include "harmonet/engine/HostFile.h"
#include "harmonet/engine/Options.h"

#include <memory>

namespace Quon
{
namespace
{

constexpr const char* greekName = "\u0394\u03AD\u03BB\u03C4\u03B1 \U0001D11E.wav";

std::filesystem::path FromUtf8(const std::string& text)
{
    return std::u8string(text.begin(), text.end());
}

TEST_F(Files, AcceptOnlyNamesOfRegularFilesBelowTheRoot)
{
    folder.Write("root/COM10.wav", "x");
    folder.Write("root/console.wav", "x");
    ExpectCodes({
        {"INSIDE.txt", File::Opened},
        {"Sub/Deep.TXT", File::Opened},
        {".\\sub\\.\\deep.txt", File::Opened},
        {"COM10.wav", File::Opened},
        {"console.wav", File::Opened},
        {"..\\outside.txt", File::OutsideRoot},
        {"C:outside.txt", File::OutsideRoot},
        {"c:/windows/win.ini", File::OutsideRoot},
        {"\\\\server\\share\\a.wav", File::OutsideRoot},
        {"//server/share/a.wav", File::OutsideRoot},
        {"\\\\?\\C:\\windows\\win.ini", File::OutsideRoot},
        {"\\\\.\\NUL", File::OutsideRoot},
        {"\\??\\C:\\windows\\win.ini", File::OutsideRoot},
        {"inside.txt:stream", File::BadName},
        {"inside.txt::$DATA", File::BadName},
        {"sub:x/deep.txt", File::BadName},
        {"CON", File::BadName},
        {"nul", File::BadName},
        {"NUL.txt", File::BadName},
        {"aux .wav", File::BadName},
        {"sub/COM1.wav", File::BadName},
        {"LPT\u00B9.wav", File::BadName},
        {"conin$", File::BadName},
        {"inside.txt.", File::BadName},
        {"inside.txt ", File::BadName},
        {"sub /deep.txt", File::BadName},
        {"... /outside.txt", File::BadName},
        {".. /outside.txt", File::BadName},
        {"inside.tx?", File::BadName},
        {"inside*", File::BadName},
        {"a\tb", File::BadName},
        {"\xFF.wav", File::BadName},
        {"inside.txt/", File::NotFound},
    });
}

TEST_F(Files, NamesAndRootsAreUtf8AndMayBeLong)
{
    const std::string deep =
        std::string(100, 'a') + "/" + std::string(100, 'b') + "/" + std::string(100, 'c');
    const std::filesystem::path root = folder.GetPath() / FromUtf8("\u03A1\u03AF\u03B6\u03B1");
    ASSERT_TRUE(std::filesystem::create_directory(root));
    const auto rootText = root.u8string();
    ASSERT_TRUE(File::AddRoot(owner, reinterpret_cast<const char*>(rootText.c_str())));
    const auto write = [&root](const std::string& name) {
        const std::filesystem::path path = root / FromUtf8(name);
        // Longer than what the system takes without the prefix.
        const std::filesystem::path extended =
            L"\\\\?\\" + std::filesystem::path(path).make_preferred().wstring();
        std::filesystem::create_directories(extended.parent_path());
        const auto text = path.u8string();
        const std::unique_ptr<std::FILE, int (*)(std::FILE*)> written(
            OpenHostFile(reinterpret_cast<const char*>(text.c_str()), "wb"), std::fclose);
        return written != nullptr && std::fputs("0123456789", written.get()) >= 0;
    };
    for (const std::string& name : {std::string(greekName), deep + "/" + greekName}) {
        ASSERT_TRUE(write(name)) << name;
        ASSERT_EQ(Open(name.c_str()), File::Opened) << name;
        EXPECT_EQ(file.Size(), 10U);
        file.Close();
    }
    File::RemoveRoot(owner);
    const auto deepText = (root / deep).u8string();
    ASSERT_TRUE(File::AddRoot(owner, reinterpret_cast<const char*>(deepText.c_str())));
    ASSERT_EQ(Open(greekName), File::Opened);
    file.Close();
    const std::filesystem::path extended =
        L"\\\\?\\" + std::filesystem::path(folder.GetPath()).make_preferred().wstring();
    std::error_code ignored;
    std::filesystem::remove_all(extended / FromUtf8("\u03A1\u03AF\u03B6\u03B1"), ignored);
}

TEST_F(Files, NamesInCachesIgnoreCase)
{
    const PString folded = File::FoldName("sub/deep \u03BB.txt");
    for (const char* name : {"SUB/DEEP \u039B.TXT", "Sub\\Deep \u03BB.txt", ".//sub/deep \u03BB.TXT"}) {
        EXPECT_TRUE(File::FoldName(name) == folded) << name;
    }
    EXPECT_FALSE(File::FoldName("sub/deep.wav") == folded);
}

TEST_F(Files, FollowLinksAndJunctionsWithinTheirRootOnly)
{
    std::error_code error;
    std::filesystem::create_directory_symlink(folder.Path("root2"), folder.Path("root/out"), error);
    if (error) {
        GTEST_SKIP() << "this system makes no links: " << error.message();
    }
    std::filesystem::create_directory_symlink(folder.Path("root/sub"), folder.Path("root/within"));
    ExpectCodes({{"out/sibling.txt", File::OutsideRoot}, {"within/deep.txt", File::Opened}});
}

} // namespace
} // namespace Quon
