#include "harmonet/engine/OS.h"

#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace Quon
{
namespace
{

std::vector<std::string> Items(const Options& options, const char* key)
{
    std::vector<std::string> items;
    String item;
    while (options.GetNext(key, item)) {
        items.push_back(item.GetText());
    }
    return items;
}

using List = std::vector<std::string>;

TEST(Options, GiveWholeNumbersOf32BitsAndTheDefaultForAllElse)
{
    const auto read = [](const char* text) {
        Options options;
        options.Set("Key", text);
        int value = 1;
        const bool isNumber = options.Get("Key", value, 99);
        return std::pair(isNumber, value);
    };
    const std::pair<const char*, int> good[] = {{"22050", 22050}, {" -1 ", -1}, {"+7", 7},
        {"2147483647", 2147483647}, {"-2147483648", -2147483647 - 1}};
    for (const auto& [text, value] : good) {
        EXPECT_EQ(read(text), std::pair(true, value)) << text;
    }
    for (const char* text : {"2147483648", "", "+-1", "12x", "1.5", "0x10", "nan"}) {
        EXPECT_EQ(read(text), std::pair(false, 99)) << text;
    }
    EXPECT_EQ(read(nullptr), std::pair(false, 99));
}

TEST(Options, WalkAListOnceAndAnewAfterItsSeparatorsAreSet)
{
    const struct
    {
        const char* separators;
        const char* text;
        List items;
    } rows[] = {
        {",", "HarmonetOpenAL,HarmonetNull", {"HarmonetOpenAL", "HarmonetNull"}},
        {",", " a , b c ,", {"a", "b c"}},
        {",", ",,a,,", {"a"}},
        {",;", "a;b,c", {"a", "b", "c"}},
        {",", "", {}},
        {",", " , ", {}},
        {nullptr, "a,b", {"a,b"}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        Options options;
        options.SetSeperators("Sound", row.separators);
        options.Set("Sound", row.text);
        EXPECT_EQ(Items(options, "Sound"), row.items);
        EXPECT_EQ(Items(options, "Sound"), List());
        options.SetSeperators("Sound", row.separators);
        EXPECT_EQ(Items(options, "Sound"), row.items);
        options.Set("Sound", row.text);
        EXPECT_EQ(Items(options, "Sound"), row.items);
    }
}

TEST(Options, HaveNoItemsAndNoTextWhenTheyAreNotSet)
{
    Options options;
    options.SetSeperators("Sound", ",");
    String text;
    EXPECT_FALSE(options.GetNext("Sound", text));
    EXPECT_FALSE(options.GetNext(nullptr, text));
    EXPECT_FALSE(options.Get("Sound", text, "default"));
    EXPECT_STREQ(text.GetText(), "default");
    options.Set("Sound", "a");
    options.Set("Sound", nullptr);
    EXPECT_FALSE(options.GetNext("Sound", text));
}

TEST(Options, ComeFromATextFile)
{
    const TempFolder folder;
    const std::string path = folder.Write("options.txt",
        "# a comment\r\n"
        "// another\n"
        "\n"
        "Sound = HarmonetOpenAL, HarmonetNull\r\n"
        "MaxSounds=32\n"
        "  Quoted = \" with blanks \"  \n"
        "Empty =\n"
        "MaxSounds = 33");
    Options options;
    EXPECT_TRUE(options.ReadFile(path.c_str()));
    options.SetSeperators("Sound", ",");
    EXPECT_EQ(Items(options, "Sound"), (List{"HarmonetOpenAL", "HarmonetNull"}));
    int number = 0;
    EXPECT_TRUE(options.Get("MaxSounds", number, 0));
    EXPECT_EQ(number, 33);
    String text;
    EXPECT_TRUE(options.Get("Quoted", text, nullptr));
    EXPECT_STREQ(text.GetText(), " with blanks ");
    EXPECT_TRUE(options.Get("Empty", text, "default"));
    EXPECT_STREQ(text.GetText(), "");
}

TEST(Options, TellWhichLineOfAFileIsNoOption)
{
    const TempFolder folder;
    const std::pair<const char*, int> rows[] = {
        {"A = 1\nno option\n= 3\nB = 2\n", 2}, {"= 1\nB = 2", 1}, {"B = 2\n\n\nnone", 4}};
    for (const auto& [content, expectedLine] : rows) {
        SCOPED_TRACE(content);
        Options options;
        int badLine = -1;
        EXPECT_FALSE(options.ReadFile(folder.Write("bad.txt", content).c_str(), &badLine));
        EXPECT_EQ(badLine, expectedLine);
        int number = 0;
        EXPECT_TRUE(options.Get("B", number, 0));
        EXPECT_EQ(number, 2);
    }
    Options options;
    int badLine = -1;
    EXPECT_FALSE(options.ReadFile(folder.Path("missing").c_str(), &badLine));
    EXPECT_EQ(badLine, 0);
    EXPECT_FALSE(options.ReadFile(folder.GetPath().c_str()));
    EXPECT_FALSE(options.ReadFile(nullptr));
    EXPECT_TRUE(options.ReadFile(folder.Write("largest", std::string(1 << 20, '\n')).c_str()));
    EXPECT_FALSE(options.ReadFile(folder.Write("large", std::string((1 << 20) + 1, '\n')).c_str()));
}

TEST(Options, ComeFromTheCommandLine)
{
    const char* arguments[] = {"play", "a.wav", "--option", "MaxSounds=8", "--option=Sound=A,B",
        "--optional=C=1", "--", "--option", "MaxSounds=9"};
    Options options;
    EXPECT_TRUE(options.ReadCommandLine(static_cast<int>(std::size(arguments)), arguments));
    int number = 0;
    EXPECT_TRUE(options.Get("MaxSounds", number, 0));
    EXPECT_EQ(number, 8);
    String text;
    EXPECT_TRUE(options.Get("Sound", text, nullptr));
    EXPECT_STREQ(text.GetText(), "A,B");
    EXPECT_FALSE(options.Get("C", number, 0));

    const char* torn[] = {"play", "--option=none", "--option=D=4", "--option"};
    EXPECT_FALSE(options.ReadCommandLine(static_cast<int>(std::size(torn)), torn));
    EXPECT_TRUE(options.Get("D", number, 0));
}

} // namespace
} // namespace Quon
