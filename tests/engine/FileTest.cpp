#include "harmonet/engine/File.h"

#include "harmonet/engine/Exception.h"

#include "tests/engine/FilesTest.h"

namespace Quon
{
namespace
{

TEST_F(Files, ReadAndSeekByBytes)
{
    ASSERT_EQ(Open("inside.txt"), File::Opened);
    EXPECT_TRUE(file.IsOpen());
    char buffer[16] = {};
    EXPECT_EQ(file.Size(), 10U);
    EXPECT_EQ(file.Read(buffer, 4, 1), 4U);
    EXPECT_STREQ(buffer, "0123");
    EXPECT_EQ(file.Seek(2, FileSeek::Current), 6U);
    EXPECT_EQ(file.Read(buffer, 2, 8), 4U);
    EXPECT_EQ(std::string_view(buffer, 4), "6789");
    EXPECT_EQ(file.Seek(-3, FileSeek::End), 7U);
    EXPECT_EQ(file.Seek(-1, FileSeek::Start), +File::seekFailed);
    EXPECT_EQ(file.Read(buffer, 1, 1), 1U);
    EXPECT_EQ(buffer[0], '7');
    EXPECT_EQ(file.Seek(100, FileSeek::Start), 100U);
    EXPECT_EQ(file.Read(buffer, 1, 1), 0U);
    EXPECT_EQ(file.Read(buffer, static_cast<unsigned long>(-1), 2), 0U);
    EXPECT_EQ(file.Close(), 0U);
    EXPECT_FALSE(file.IsOpen());
    EXPECT_EQ(file.Read(buffer, 1, 1), 0U);
    EXPECT_EQ(file.Seek(0, FileSeek::Start), +File::seekFailed);
}

TEST_F(Files, NamesCannotLeaveTheRoot)
{
    const std::vector<NameAndCode> rows = {
        {"inside.txt", File::Opened},
        {"sub\\deep.txt", File::Opened},
        {"sub//deep.txt", File::Opened},
        {"../outside.txt", File::OutsideRoot},
        {"sub/../inside.txt", File::OutsideRoot},
        {"sub\\..\\..\\outside.txt", File::OutsideRoot},
        {"../root2/sibling.txt", File::OutsideRoot},
        {folder.Path("root/inside.txt"), File::OutsideRoot},
        {"\\inside.txt", File::OutsideRoot},
        {"C:\\inside.txt", File::OutsideRoot},
        {"missing.txt", File::NotFound},
        {"inside.txt/more", File::NotFound},
        {"sub", File::NotAFile},
        {".", File::NotAFile},
        {"", File::BadName},
        {std::string(300, 'x'), File::BadName},
        {std::string(100000, 'x'), File::BadName},
    };
    ExpectCodes(rows);
    EXPECT_EQ(Open(nullptr), File::BadName);
    EXPECT_EQ(file.Open(owner, "inside.txt", 17).GetCode(), File::BadMode);
}

TEST_F(Files, AreListedBelowAFolderWithTheNamesByWhichTheyOpen)
{
    folder.Write("root/sub/a/b.txt", "b");
    using Names = EngineVector<EngineString>;
    struct Row
    {
        const char* folder;
        int code;
        Names names;
    };
    const Row rows[] = {
        {"", File::Opened, {"inside.txt", "sub/a/b.txt", "sub/deep.txt"}},
        {".", File::Opened, {"inside.txt", "sub/a/b.txt", "sub/deep.txt"}},
        {nullptr, File::Opened, {"inside.txt", "sub/a/b.txt", "sub/deep.txt"}},
        {"sub", File::Opened, {"sub/a/b.txt", "sub/deep.txt"}},
        {"sub\\a/", File::Opened, {"sub/a/b.txt"}},
        {"missing", File::NotFound, {}},
        {"inside.txt", File::NotAFile, {}},
        {"..", File::OutsideRoot, {}},
        {"sub/../..", File::OutsideRoot, {}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.folder != nullptr ? row.folder : "null");
        Names names;
        EXPECT_EQ(File::List(owner, row.folder, names).GetCode(), row.code);
        EXPECT_EQ(names, row.names);
        for (const EngineString& name : names) {
            EXPECT_EQ(Open(name.c_str()), File::Opened) << name;
        }
    }
    Names names;
    EXPECT_EQ(File::List("nobody", "", names).GetCode(), File::NoRoot);
}

TEST_F(Files, ReportWhyTheyDoNotOpen)
{
    folder.Write("root/empty.wav", "");
    folder.Write("root/large.wav", "x");
    std::filesystem::resize_file(folder.Path("root/large.wav"), std::uintmax_t{1} << 31);
    folder.Write("root/almost.wav", "x");
    std::filesystem::resize_file(folder.Path("root/almost.wav"), (std::uintmax_t{1} << 31) - 1);
    EXPECT_EQ(Open("empty.wav"), File::Empty);
    EXPECT_EQ(Open("large.wav"), File::TooLarge);
    ASSERT_EQ(Open("almost.wav"), File::Opened);
    EXPECT_EQ(file.Size(), 0x7FFFFFFFU);
    EXPECT_EQ(file.Seek(0x7FFFFFFE, FileSeek::Start), 0x7FFFFFFEU);
    char last = 'x';
    EXPECT_EQ(file.Read(&last, 1, 2), 1U);
    EXPECT_EQ(last, '\0');
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
    EXPECT_TRUE(File::AddRoot(PString(), folder.GetPath().string().c_str()));
    EXPECT_EQ(open(PString(), "outside.txt"), File::Opened);
    File::RemoveRoot(PString());
    EXPECT_EQ(open(PString(), "outside.txt"), File::NoRoot);
    std::filesystem::remove_all(folder.Path("root2"));
    EXPECT_EQ(open(other, "sibling.txt"), File::NoRoot);
    File::RemoveRoot(other);
}

TEST_F(Files, KeepTheFirstLengthAndThrowWhenItIsUnknown)
{
    ASSERT_EQ(Open("inside.txt"), File::Opened);
    EXPECT_EQ(file.Size(), 10U);
    std::filesystem::resize_file(folder.Path("root/inside.txt"), 3);
    EXPECT_EQ(file.Size(), 10U);
    char buffer[10];
    EXPECT_EQ(file.Read(buffer, 10, 1), 3U);
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

} // namespace
} // namespace Quon
