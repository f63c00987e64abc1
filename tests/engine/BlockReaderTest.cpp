#include "BlockReaderFixture.h"

#include <algorithm>
#include <clocale>
#include <vector>

namespace Quon
{
namespace
{

/// Writes everything down that a listener hears, one text for each.
class Listener : public BlockReaderListener
{
public:
    void OnSkipped(const Skipped& skipped) override
    {
        std::string text = std::to_string(skipped.line) + " skipped " + skipped.keyword.GetText();
        text += skipped.valueCount > 0 ? " values " + std::to_string(skipped.valueCount) : "";
        text += skipped.hasBlock ? " block" : "";
        text += skipped.wasAsked ? " asked" : "";
        text += skipped.isBehindEnd ? " behind" : "";
        heard.push_back(text);
    }
    void OnUnreadable(const PString& keyword, int line, const char* wanted, const char* found) override
    {
        heard.push_back(std::to_string(line) + " wanted " + wanted + " of " + keyword.GetText() + ", found " +
            (found != nullptr ? found : "nothing"));
    }
    void OnFault(int line, const char* fault) override
    {
        heard.push_back(std::to_string(line) + " fault: " + fault);
    }

    std::vector<std::string> heard;
};

using Heard = std::vector<std::string>;

TEST_F(BlockReaders, ReadTheTextForm)
{
    struct Row
    {
        const char* what;
        std::string_view text;
        const char* tree;
    };
    const std::string_view withZero("*A 1\0002\n*B\0", 10);
    const Row rows[] = {
        {"values", "*A 1 two \"three and four\" 5.0\n", "*A(1,two,three and four,5.0 "},
        {"no last line end", "*A 1", "*A(1 "},
        {"no value from the next line", "*A\n1 2\n*B 3", "*A *B(3 "},
        {"one keyword a line", "*A *B 2\n*C", "*A(*B,2 *C "},
        {"block behind", "*A {\n*B 1\n}\n*C", "*A{*B(1 } *C "},
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
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        EXPECT_EQ(TreeOf(row.text), row.tree);
    }
}

TEST_F(BlockReaders, PassOverWhatNobodyAsksFor)
{
    PString keyword;
    BlockReader& outer = ReaderOf("*UNKNOWN 1 2 { *IN { *DEEP } *KNOWN }\n"
                                  "*KNOWN {\n*A 1 2\n*B { *C }\n*LAST\n}\n*BEHIND 3\n");
    ASSERT_TRUE(outer.Next(keyword));
    ASSERT_TRUE(outer.Next(keyword));
    EXPECT_TRUE(keyword == PString("*KNOWN"));
    BlockReader* const inner = outer.Begin();
    ASSERT_NE(inner, nullptr);
    ASSERT_TRUE(inner->Next(keyword));
    ASSERT_TRUE(inner->Next(keyword));
    EXPECT_TRUE(keyword == PString("*B"));
    outer.End();
    EXPECT_FALSE(inner->Next(keyword));
    ASSERT_TRUE(outer.Next(keyword));
    EXPECT_TRUE(keyword == PString("*BEHIND"));
    int value = 0;
    EXPECT_TRUE(outer.ReadInt(value));
    EXPECT_EQ(value, 3);
    EXPECT_FALSE(outer.Next(keyword));
    EXPECT_FALSE(outer.Next(keyword));
}

TEST_F(BlockReaders, StaySafeWhenTheCallsComeOutOfOrder)
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

TEST_F(BlockReaders, TakeWholeNumbersOf32BitsOnly)
{
    struct Row
    {
        const char* word;
        bool isGood;
        int value;
    };
    const Row rows[] = {{"0", true, 0}, {"-1", true, -1}, {"+12", true, 12}, {"007", true, 7},
        {"2147483647", true, 2147483647}, {"-2147483648", true, -2147483647 - 1}, {"2147483648", false, 0},
        {"-2147483649", false, 0}, {"99999999999999999999", false, 0}, {"1.0", false, 0}, {"1e3", false, 0},
        {"0x10", false, 0}, {"+-1", false, 0}, {"+", false, 0}, {"1a", false, 0}, {"\"1\"", false, 0},
        {"", false, 0}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.word);
        PString keyword;
        BlockReader& block = ReaderOf("*A " + std::string(row.word));
        ASSERT_TRUE(block.Next(keyword));
        int value = 55;
        EXPECT_EQ(block.ReadInt(value), row.isGood);
        EXPECT_EQ(value, row.isGood ? row.value : 55);
    }
}

TEST_F(BlockReaders, TakeFiniteFloatsWhateverTheLocale)
{
    struct Row
    {
        const char* word;
        bool isGood;
        float value;
    };
    const Row rows[] = {{"0.8", true, 0.8f}, {"-50.0", true, -50.0f}, {"1e3", true, 1000.0f},
        {"+.5", true, 0.5f}, {"5.", true, 5.0f}, {"12", true, 12.0f}, {"3.4028234e38", true, 3.4028234e38f},
        {"3.5e38", false, 0}, {"1e999", false, 0}, {"nan", false, 0}, {"inf", false, 0}, {"-inf", false, 0},
        {"infinity", false, 0}, {"0,5", false, 0}, {"1.0f", false, 0}, {"1.2.3", false, 0}, {"-", false, 0},
        {".", false, 0}, {"\"1\"", false, 0}, {"", false, 0}};
    for (const char* locale : {"C", "de_DE.UTF-8", "de_DE"}) {
        // A machine without the German locales still tests the first round.
        if (std::setlocale(LC_ALL, locale) == nullptr) {
            continue;
        }
        for (const Row& row : rows) {
            SCOPED_TRACE(row.word);
            PString keyword;
            BlockReader& block = ReaderOf("*A " + std::string(row.word));
            ASSERT_TRUE(block.Next(keyword));
            float value = 55.0f;
            EXPECT_EQ(block.ReadFloat(value), row.isGood);
            EXPECT_EQ(value, row.isGood ? row.value : 55.0f);
        }
    }
    std::setlocale(LC_ALL, "C");
}

TEST_F(BlockReaders, KnowTheTruthValues)
{
    for (const char* word : {"true", "TRUE", "yes", "On", "1"}) {
        PString keyword;
        bool value = false;
        BlockReader& block = ReaderOf("*A " + std::string(word));
        EXPECT_TRUE(block.Next(keyword) && block.ReadBool(value) && value) << word;
    }
    for (const char* word : {"false", "False", "no", "OFF", "0"}) {
        PString keyword;
        bool value = true;
        BlockReader& block = ReaderOf("*A " + std::string(word));
        EXPECT_TRUE(block.Next(keyword) && block.ReadBool(value) && !value) << word;
    }
    for (const char* word : {"truer", "2", "t", "\"true\"", "", "[rue"}) {
        PString keyword;
        bool value = true;
        BlockReader& block = ReaderOf("*A " + std::string(word));
        EXPECT_TRUE(block.Next(keyword) && !block.ReadBool(value) && value) << word;
    }
}

TEST_F(BlockReaders, LeaveAValueOfAnotherKindForTheNextRead)
{
    PString keyword;
    BlockReader& block = ReaderOf("*A 1 2.5 x 4\n*B 1");
    ASSERT_TRUE(block.Next(keyword));
    float values[4] = {9, 9, 9, 9};
    EXPECT_EQ(block.ReadFloatv(values, 4), 2);
    EXPECT_EQ(values[1], 2.5f);
    EXPECT_EQ(values[2], 9.0f);
    bool truth = false;
    int number = 0;
    EXPECT_FALSE(block.ReadBool(truth));
    EXPECT_FALSE(block.ReadInt(number));
    PString text;
    EXPECT_TRUE(block.ReadString(text));
    EXPECT_STREQ(text.GetText(), "x");
    EXPECT_EQ(block.ReadFloatv(values, 0), 0);
    EXPECT_TRUE(block.ReadInt(number));
    EXPECT_EQ(number, 4);
    EXPECT_FALSE(block.ReadString(text));
    EXPECT_STREQ(text.GetText(), "x");
}

TEST_F(BlockReaders, BoundTheLengthOfWords)
{
    const std::string longest(BlockReader::maxTokenLength, 'x');
    EXPECT_EQ(TreeOf("*A " + longest + " 1"), "*A(" + longest + ",1 ");
    EXPECT_EQ(TreeOf("*A \"" + longest + "\" 1"), "*A(" + longest + ",1 ");
    EXPECT_EQ(TreeOf("*A " + longest + "x 1\n*B"), "*A *B ");
    EXPECT_EQ(TreeOf("*A \"" + longest + "x\" 1\n*B"), "*A *B ");
    EXPECT_EQ(TreeOf("*" + longest + " { *IN }\n*B 1"), "*B(1 ");
}

TEST_F(BlockReaders, BoundTheDepthOfBlocks)
{
    std::string text = "*BOTTOM 1 { *UNSEEN }";
    std::string tree = "*BOTTOM(1 ";
    for (int depth = 0; depth < BlockReader::maxDepth; ++depth) {
        text = "*B { " + text + " }\n*C";
        tree = "*B{" + tree + "} *C ";
    }
    EXPECT_EQ(TreeOf(text), tree);
    const std::string deep(1000000, '{');
    EXPECT_EQ(TreeOf("*A 1 {" + deep), "*A(1{} ");
    EXPECT_EQ(TreeOf("*A {" + deep + std::string(1000001, '}') + "*B 2"), "*A{} *B(2 ");
}

TEST_F(BlockReaders, TellTheirListenerWhatIsPassedOver)
{
    Listener listener;
    reader.SetListener(&listener);
    BlockReader& outer = ReaderOf("*UNKNOWN 1 2\n"
                                  "*BARE\n"
                                  "*BLOCK {\n"
                                  "  *READ 1\n"
                                  "  *MORE 1 2\n"
                                  "  *BAD x\n"
                                  "  *LOST 5 { *IN }\n"
                                  "  *LOST\n"
                                  "}\n"
                                  "*NONE\n");
    PString keyword;
    int value = 0;
    ASSERT_TRUE(outer.Next(keyword));
    ASSERT_TRUE(outer.Next(keyword));
    ASSERT_TRUE(outer.Next(keyword));
    BlockReader* const block = outer.Begin();
    ASSERT_NE(block, nullptr);
    EXPECT_TRUE(block->Next(keyword) && block->ReadInt(value));
    EXPECT_TRUE(block->Next(keyword) && block->ReadInt(value));
    EXPECT_TRUE(block->Next(keyword) && !block->ReadInt(value));
    EXPECT_EQ(outer.GetLine(), 6);
    outer.End();
    EXPECT_EQ(outer.GetLine(), 6);
    EXPECT_TRUE(outer.Next(keyword) && !outer.ReadInt(value));
    EXPECT_EQ(outer.Begin(), nullptr);
    EXPECT_FALSE(outer.Next(keyword));
    EXPECT_EQ(listener.heard,
        (Heard{"1 skipped *UNKNOWN values 2", "2 skipped *BARE", "5 skipped *MORE values 1 asked",
            "6 wanted a whole number of *BAD, found x", "6 skipped *BAD values 1 asked",
            "7 skipped *LOST values 1 block behind", "8 skipped *LOST behind",
            "10 wanted a whole number of *NONE, found nothing"}));
}

TEST_F(BlockReaders, TellTheirListenerWhatIsWrongInTheText)
{
    struct Row
    {
        const char* text;
        Heard heard;
    };
    const Row rows[] = {
        {"*A\n\"open\n", {"2 fault: a text has no closing quote in its line"}},
        {"\nstray *B\n*A", {"2 fault: text without a keyword"}},
        {"*A\n}\n*B", {"2 fault: a closing brace without a block"}},
        {"*A {}\n{}\n*B", {"2 fault: a block without a keyword"}},
        {"*A {\n*B {\n*C\n", {"4 fault: the file ends inside a block"}},
        {"{\n*B\n", {"1 fault: a block without a keyword", "3 fault: the file ends inside a block"}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.text);
        Listener listener;
        reader.SetListener(&listener);
        TreeOf(row.text);
        std::erase_if(
            listener.heard, [](const std::string& text) { return text.find(" wanted ") != text.npos; });
        EXPECT_EQ(listener.heard, row.heard);
    }
}

// The parts of a text lie across the borders of whatever pieces a reader takes from the disk.
TEST_F(BlockReaders, ReadLongFilesWithoutASeam)
{
    std::string text;
    std::string tree;
    for (int i = 0; text.size() < 100000; ++i) {
        const std::string number = std::to_string(i * 7919);
        text += "*KEY" + number + " " + number + " \"" + number + " q\" // " + number + "\r\n";
        tree += "*KEY" + number + "(" + number + "," + number + " q ";
    }
    EXPECT_EQ(TreeOf(text), tree);
    EXPECT_EQ(reader.GetLine(), static_cast<int>(std::count(text.begin(), text.end(), '\n')));
}

// Signs of two characters at each place around the border of a piece.
TEST_F(BlockReaders, KeepSignsOfTwoCharactersTogetherAcrossASeam)
{
    for (std::size_t padding = 4060; padding < 4100; ++padding) {
        SCOPED_TRACE("padding " + std::to_string(padding));
        const std::string text = std::string(padding, ' ') + "*A 1//2\r\n*B 3\r\n\r\n*C a/b/c//d";
        EXPECT_EQ(TreeOf(text), "*A(1 *B(3 *C(a/b/c ");
        EXPECT_EQ(reader.GetLine(), 4);
    }
}

TEST_F(BlockReaders, LeaveNoMemoryBehind)
{
    const std::size_t before = Alloc::LiveBlocks();
    {
        File other;
        folder.Write("other.txt", "*SOMETHING new { *INNER here { *DEEP } } *AND");
        ASSERT_TRUE(other.Open(owner, "other.txt", File::modeRead).IsOk());
        BlockReader local;
        local.Init(other);
        EXPECT_EQ(Tree(local), "*SOMETHING(new{*INNER(here{*DEEP } } *AND ");
    }
    EXPECT_EQ(Alloc::LiveBlocks(), before);
}

} // namespace
} // namespace Quon
