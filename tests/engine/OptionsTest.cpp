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

TEST(Options, Give32BitIntegersAndTheDefaultOtherwise)
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

TEST(Options, IterateAListOnceAndAgainAfterTheSeparatorsChange)
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
        options.Set("Sound", nullptr);
        EXPECT_EQ(Items(options, "Sound"), List());
        EXPECT_EQ(Items(options, nullptr), List());
    }
}

/// Each key with what it is set to; "-" if it is not.
std::string Texts(Options& options, std::initializer_list<const char*> keys)
{
    std::string all;
    for (const char* key : keys) {
        String text;
        options.Get(key, text, "-");
        all += std::string(key) + '=' + text.GetText() + ';';
    }
    return all;
}

TEST(Options, ComeFromATextFileAndReportInvalidLines)
{
    const TempFolder folder;
    const struct
    {
        const char* content;
        int badLine;
        const char* texts;
    } rows[] = {
        {"# a comment\r\n// another\n\nA = x, y\r\nB=32\n  C = \" with blanks \"  \nB = 33\nD =", 0,
            "A=x, y;B=33;C= with blanks ;D=;"},
        {"A = 1\nno option\n= 3\nB = 2\n", 2, "A=1;B=2;C=-;D=-;"},
        {"= 1\nB = 2", 1, "A=-;B=2;C=-;D=-;"},
        {"B = 2\n\n\nnone", 4, "A=-;B=2;C=-;D=-;"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.content);
        Options options;
        int badLine = -1;
        EXPECT_EQ(options.ReadFile(folder.Write("options", row.content).c_str(), &badLine), row.badLine == 0);
        EXPECT_EQ(badLine, row.badLine);
        EXPECT_EQ(Texts(options, {"A", "B", "C", "D"}), row.texts);
    }
    Options options;
    int badLine = -1;
    EXPECT_FALSE(options.ReadFile(folder.Path("missing").c_str(), &badLine));
    EXPECT_EQ(badLine, 0);
    EXPECT_FALSE(options.ReadFile(folder.GetPath().string().c_str()));
    EXPECT_FALSE(options.ReadFile(nullptr));
    EXPECT_TRUE(options.ReadFile(folder.Write("largest", std::string(1 << 20, '\n')).c_str()));
    EXPECT_FALSE(options.ReadFile(folder.Write("large", std::string((1 << 20) + 1, '\n')).c_str()));
}

TEST(Options, ComeFromTheCommandLine)
{
    const char* arguments[] = {"play", "a.wav", "--option", "A=8", "--option=B=x,y", "--optional=C=1",
        "--option=none", "--", "--option", "A=9"};
    Options options;
    EXPECT_FALSE(options.ReadCommandLine(static_cast<int>(std::size(arguments)), arguments));
    EXPECT_EQ(Texts(options, {"A", "B", "C"}), "A=8;B=x,y;C=-;");
    EXPECT_TRUE(options.ReadCommandLine(6, arguments));
    const char* torn[] = {"play", "--option"};
    EXPECT_FALSE(options.ReadCommandLine(2, torn));
}

} // namespace
} // namespace Quon
