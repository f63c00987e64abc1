#include "harmonet/engine/Messages.h"
#include "harmonet/engine/File.h"
#include "harmonet/engine/String.h"

#include "tests/support/MessageLog.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>
#include <memory>

namespace Quon
{
namespace
{

TEST(MessageHooks, ReceiveFormattedMessagesWhileTheirOwnerLives)
{
    auto first = std::make_unique<OS>();
    OS second;
    std::string heard;
    const MessageHook hook = [](MessageLevel level, const char* text, void* user) {
        *static_cast<std::string*>(user) += std::to_string(static_cast<int>(level)) + text + ';';
    };
    Report(MessageLevel::Error, "no hook is set");
    first->SetMessageHook(hook, &heard);
    second.SetMessageHook(nullptr);
    Report(MessageLevel::Warning, "a ", PString("b"), " c ", -3, 1U, " ", 1.5F);
    second.SetMessageHook(hook, &heard);
    first.reset();
    Report(MessageLevel::Note, "still here");
    second.SetMessageHook(nullptr);
    Report(MessageLevel::Error, "no hook is set");
    EXPECT_EQ(heard, "1a b c -31 1.5;0still here;");
    EXPECT_FALSE(Messages::AreWanted());
}

// A game that answers a failure with a sound, which fails as well.
TEST(MessageHooks, MayCauseFailuresThemselves)
{
    OS os;
    int count = 0;
    os.SetMessageHook(
        [](MessageLevel, const char*, void* user) {
            ++*static_cast<int*>(user);
            EXPECT_FALSE(File::AddRoot("owner", "/no such folder"));
        },
        &count);
    EXPECT_FALSE(File::AddRoot("owner", "/no such folder"));
    EXPECT_FALSE(File::AddRoot("owner", "/no such folder"));
    EXPECT_EQ(count, 2);
}

TEST(MessageHooks, ReportOptionsWithTheirValues)
{
    OS os;
    MessageLog log(os);
    const TempFolder folder;
    Options& options = *os.GetOptions();
    options.Set("MaxSound", "40");
    options.Set("Unset", nullptr);
    int value = 0;
    String text;
    EXPECT_FALSE(options.Get("Missing", value, 22050));
    options.ReportUnread();
    EXPECT_EQ(log.Take(), "N option MaxSound=40: no option of this name has been read so far\n");
    EXPECT_TRUE(options.Get("MaxSound", text, nullptr));
    options.ReportUnread();
    EXPECT_EQ(log.Take(), "");
    EXPECT_FALSE(options.SetFromText("Loud"));
    const char* const arguments[] = {"game", "--option", "Louder", "--option=Loudest", "--option"};
    EXPECT_FALSE(options.ReadCommandLine(5, arguments));
    EXPECT_EQ(log.Take(),
        "E option 'Loud' does not have the form Key=Value\n"
        "E option 'Louder' does not have the form Key=Value\n"
        "E option 'Loudest' does not have the form Key=Value\n"
        "E option '' does not have the form Key=Value\n");
    const std::string path = folder.Write("options.txt", "A = 1\nB 2\n\nC 3\n");
    EXPECT_FALSE(options.ReadFile(path.c_str()));
    EXPECT_EQ(log.Take(),
        "W option file '" + path + "', line 2: 'B 2' does not have the form Key=Value\n" + "W option file '" +
            path + "', line 4: 'C 3' does not have the form Key=Value\n");
}

TEST(MessageHooks, ReportWhyALibraryDoesNotLoad)
{
    OS os;
    MessageLog log(os);
    const TempFolder folder;
    os.AddDriverFolder(folder.GetPath().string().c_str());
    const std::unique_ptr<DynamicLibrary> library(os.CreateDynamicLibrary());
    folder.Write("torn.lib", "no library");
    EXPECT_FALSE(library->Open("torn.lib"));
    EXPECT_NE(log.Take().find("torn.lib' is not a library, or is truncated"), std::string::npos);
    EXPECT_FALSE(library->Open("missing.lib"));
    const std::string reason = log.Take();
    EXPECT_TRUE(reason.starts_with("W library 'missing.lib' cannot be loaded: ")) << reason;
    EXPECT_GT(reason.size(), std::string("W library 'missing.lib' cannot be loaded: \n").size());
    EXPECT_FALSE(library->Open("no folder/missing.lib"));
    EXPECT_EQ(log.Take(), "W library 'no folder/missing.lib' does not exist\n");
}

} // namespace
} // namespace Quon
