#include "harmonet/engine/BlockReader.h"

#include "tests/support/TempFolder.h"

#include <clocale>
#include <gtest/gtest.h>
#include <optional>

namespace Quon
{
namespace
{

/// Opens texts as files, and writes down what a reader finds in them.
class BlockReaders : public testing::Test
{
protected:
    BlockReaders() { EXPECT_TRUE(File::AddRoot(owner, folder.GetPath().string().c_str())); }
    ~BlockReaders() override { File::RemoveRoot(owner); }

    /// A reader on a file of that content. An empty content cannot be opened and leaves the reader on a
    /// closed file.
    BlockReader& ReaderOf(std::string_view content)
    {
        folder.Write("text.txt", content);
        file.Open(owner, "text.txt", File::modeRead);
        reader.Init(file);
        return reader;
    }

    /// The whole tree as one line: `*KEY(value,value){...}`.
    static std::string Tree(BlockReader& block)
    {
        std::string tree;
        PString keyword;
        while (block.Next(keyword)) {
            tree += keyword.GetText();
            PString value;
            for (const char* separator = "("; block.ReadString(value); separator = ",") {
                tree += separator + std::string(value.GetView());
            }
            if (BlockReader* const inner = block.Begin()) {
                tree += "{" + Tree(*inner) + "}";
                block.End();
            }
            tree += " ";
        }
        return tree;
    }

    std::string TreeOf(std::string_view content) { return Tree(ReaderOf(content)); }

    /// What the word after a keyword is read as, if it can be; otherwise the old value has to stay.
    template<class Value>
    std::optional<Value> Read(
        const std::string& word, bool (BlockReader::*read)(Value&), Value before = Value(55))
    {
        PString keyword;
        BlockReader& block = ReaderOf("*A " + word);
        EXPECT_TRUE(block.Next(keyword));
        Value value = before;
        if ((block.*read)(value)) {
            return value;
        }
        EXPECT_EQ(value, before);
        return {};
    }

    const PString owner = "owner of the texts";
    TempFolder folder;
    File file;
    BlockReader reader;
};

TEST_F(BlockReaders, ReadTheTextForm)
{
    const std::string_view withZero("*A 1\0002\n*B\0", 10);
    const struct
    {
        const char* what;
        std::string_view text;
        const char* tree;
    } rows[] = {
        {"values", "*A 1 two \"three and four\" 5.0\n", "*A(1,two,three and four,5.0 "},
        {"no last line end", "*A 1", "*A(1 "},
        {"no value from the next line", "*A\n1 2\n*B 3", "*A *B(3 "},
        {"one keyword a line", "*A *B 2\n*C", "*A(*B,2 *C "},
        {"block after", "*A {\n*B 1\n}\n*C", "*A{*B(1 } *C "},
        {"block below", "*A 7\n\n// here\n{\n*B 1\n}\n*C", "*A(7{*B(1 } *C "},
        {"block in one line", "*A{*B 1}*C 2", "*A{*B(1 } *C(2 "},
        {"nested", "*A { *B { *C 1 } *D } *E", "*A{*B{*C(1 } *D } *E "},
        {"empty block", "*A {}\n*B", "*A{} *B "},
        {"slashes", "*A 1 // *B 2\n// *C\n*D 3//x\n*E a//b c", "*A(1 *D(3 *E(a "},
        {"hashes", "*A 1 # *B\n#*C\n*D c#minor.wav #", "*A(1 *D(c#minor.wav "},
        {"comment marks in quotes", "*A \"a//b # c\" d", "*A(a//b # c,d "},
        {"braces in quotes", "*A \"{ }\" {*B}", "*A({ }{*B } "},
        {"single slashes", "*A a/b/c /d", "*A(a/b/c,/d "},
        {"quote ends a word", "*A\"x\"y\"z\"", "*A(x,y,z "},
        {"empty quotes", "*A \"\" b", "*A(,b "},
        {"open quote", "*A x \"y z\n*B", "*A(x *B "},
        {"line ends", "*A 1\r\n*B 2\r*C 3\n\r*D", "*A(1 *B(2 *C(3 *D "},
        {"blanks", "\t *A \v1\f2\t\n", "*A(1,2 "},
        {"zero bytes", withZero, "*A(1,2 *B "},
        {"byte order mark", "\xEF\xBB\xBF*A 1", "*A(1 "},
        {"letters beyond ASCII", "*\xC3\x84 \xC3\xB6.wav", "*\xC3\x84(\xC3\xB6.wav "},
        {"stray text", "hello *A\n5\n\"*B\"\n*C 1", "*C(1 "},
        {"stray braces", "}\n*A\n} }\n*B {\n}\n}\n*C", "*A *B{} *C "},
        {"block without keyword", "{ *A { *B } }\n*C {} { *D }\n*E", "*C{} *E "},
        {"file ends inside", "*A { *B { *C 1", "*A{*B{*C(1 } } "},
        {"case", "*a *A\n*A", "*a(*A *A "},
        {"asterisk alone", "* 1", "*(1 "},
        {"only comment", "// nothing", ""},
        {"nothing", "", ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        EXPECT_EQ(TreeOf(row.text), row.tree);
    }
}

TEST_F(BlockReaders, AreSafeWhenCalledOutOfOrder)
{
    PString keyword;
    int value = 0;
    EXPECT_FALSE(reader.Next(keyword));
    EXPECT_FALSE(reader.ReadInt(value));
    EXPECT_EQ(reader.Begin(), nullptr);
    reader.End();
    EXPECT_EQ(reader.GetLine(), 0);

    BlockReader& outer = ReaderOf("*A { *B { *C 1 } *D 2 }\n*E 3");
    EXPECT_FALSE(outer.ReadInt(value));
    EXPECT_EQ(outer.Begin(), nullptr);
    outer.End();
    ASSERT_TRUE(outer.Next(keyword));
    BlockReader* const second = outer.Begin();
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(outer.Begin(), nullptr);
    EXPECT_FALSE(outer.ReadInt(value));
    ASSERT_TRUE(second->Next(keyword));
    BlockReader* const third = second->Begin();
    ASSERT_NE(third, nullptr);
    third->End();
    // Next() on the outermost leaves both blocks.
    ASSERT_TRUE(outer.Next(keyword));
    EXPECT_TRUE(keyword == PString("*E"));
    EXPECT_FALSE(second->Next(keyword));
    EXPECT_FALSE(third->Next(keyword));
    EXPECT_FALSE(third->ReadInt(value));
    EXPECT_TRUE(outer.ReadInt(value));
}

TEST_F(BlockReaders, AcceptOnly32BitIntegersAndBooleans)
{
    const std::pair<const char*, int> numbers[] = {{"0", 0}, {"-1", -1}, {"+12", 12}, {"007", 7},
        {"2147483647", 2147483647}, {"-2147483648", -2147483647 - 1}};
    for (const auto& [word, value] : numbers) {
        EXPECT_EQ(Read(word, &BlockReader::ReadInt), value) << word;
    }
    for (const char* word : {"2147483648", "-2147483649", "99999999999999999999", "1.0", "1e3", "0x10", "+-1",
             "+", "1a", "\"1\"", ""}) {
        EXPECT_EQ(Read(word, &BlockReader::ReadInt), std::nullopt) << word;
    }
    const std::pair<const char*, bool> truths[] = {{"true", true}, {"TRUE", true}, {"yes", true},
        {"On", true}, {"1", true}, {"False", false}, {"no", false}, {"OFF", false}, {"0", false}};
    for (const auto& [word, value] : truths) {
        EXPECT_EQ(Read(word, &BlockReader::ReadBool, !value), value) << word;
    }
    for (const char* word : {"truer", "2", "t", "\"true\"", "", "[rue"}) {
        EXPECT_EQ(Read(word, &BlockReader::ReadBool, true), std::nullopt) << word;
    }
}

TEST_F(BlockReaders, AcceptFiniteFloatsInAnyLocale)
{
    const std::pair<const char*, float> good[] = {{"0.8", 0.8F}, {"-50.0", -50.0F}, {"1e3", 1000.0F},
        {"+.5", 0.5F}, {"5.", 5.0F}, {"12", 12.0F}, {"3.4028234e38", 3.4028234e38F}};
    for (const char* locale : {"C", "de_DE.UTF-8", "de_DE"}) {
        // A machine without the German locales still tests the first round.
        if (std::setlocale(LC_ALL, locale) == nullptr) {
            continue;
        }
        for (const auto& [word, value] : good) {
            EXPECT_EQ(Read(word, &BlockReader::ReadFloat), value) << word;
        }
        for (const char* word : {"3.5e38", "1e999", "nan", "inf", "-inf", "infinity", "0,5", "1.0f", "1.2.3",
                 "-", ".", "\"1\"", ""}) {
            EXPECT_EQ(Read(word, &BlockReader::ReadFloat), std::nullopt) << word;
        }
    }
    std::setlocale(LC_ALL, "C");
}

TEST_F(BlockReaders, LeaveAValueOfAnotherTypeForTheNextRead)
{
    PString text;
    BlockReader& block = ReaderOf("*A 1 2.5 x 4\n*B 1");
    ASSERT_TRUE(block.Next(text));
    float values[4] = {9, 9, 9, 9};
    EXPECT_EQ(block.ReadFloatv(values, 4), 2);
    EXPECT_EQ(values[1], 2.5F);
    EXPECT_EQ(values[2], 9.0F);
    bool truth = false;
    int number = 0;
    EXPECT_FALSE(block.ReadBool(truth) || block.ReadInt(number));
    EXPECT_TRUE(block.ReadString(text));
    EXPECT_EQ(block.ReadFloatv(values, 0), 0);
    EXPECT_TRUE(block.ReadInt(number));
    EXPECT_EQ(number, 4);
    EXPECT_FALSE(block.ReadString(text));
    EXPECT_STREQ(text.GetText(), "x");
}

TEST_F(BlockReaders, LimitTheLengthOfWords)
{
    const std::string longest(BlockReader::maxTokenLength, 'x');
    EXPECT_EQ(TreeOf("*A " + longest + " 1"), "*A(" + longest + ",1 ");
    EXPECT_EQ(TreeOf("*A \"" + longest + "\" 1"), "*A(" + longest + ",1 ");
    EXPECT_EQ(TreeOf("*A " + longest + "x 1\n*B"), "*A *B ");
    EXPECT_EQ(TreeOf("*A \"" + longest + "x\" 1\n*B"), "*A *B ");
    EXPECT_EQ(TreeOf("*" + longest + " { *IN }\n*B 1"), "*B(1 ");
}

TEST_F(BlockReaders, LimitTheDepthOfBlocks)
{
    std::string text = "*BOTTOM 1 { *UNSEEN }";
    std::string tree = "*BOTTOM(1 ";
    for (int depth = 0; depth < BlockReader::maxDepth; ++depth) {
        text.insert(0, "*B { ").append(" }\n*C");
        tree.insert(0, "*B{").append("} *C ");
    }
    EXPECT_EQ(TreeOf(text), tree);
    const std::string deep(1000000, '{');
    EXPECT_EQ(TreeOf("*A 1 {" + deep), "*A(1{} ");
    EXPECT_EQ(TreeOf("*A {" + deep + std::string(1000001, '}') + "*B 2"), "*A{} *B(2 ");
}

// Signs of two characters at each place around the border of a piece.
TEST_F(BlockReaders, KeepTwoCharacterTokensTogetherAcrossBuffers)
{
    for (std::size_t padding = 4060; padding < 4100; ++padding) {
        SCOPED_TRACE("padding " + std::to_string(padding));
        const std::string text = std::string(padding, ' ') + "*A 1//2\r\n*B 3\r\n\r\n*C a/b/c//d";
        EXPECT_EQ(TreeOf(text), "*A(1 *B(3 *C(a/b/c ");
        EXPECT_EQ(reader.GetLine(), 4);
    }
}

} // namespace
} // namespace Quon
