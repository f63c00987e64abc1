#include "BlockReaderFixture.h"

#include <cmath>
#include <random>
#include <vector>

namespace Quon
{
namespace
{

constexpr std::string_view goodText = "// A definition as a designer writes it.\r\n"
                                      "*SOUND_DEFINITION\n"
                                      "{\n"
                                      "    *FILE \"engine loop.wav\"   # quoted\n"
                                      "    *LOOPING true\n"
                                      "    *GAIN 0.8\n"
                                      "    *POSITION 1.0 -2.5e1 +3\n"
                                      "    *UNKNOWN 1 2 { *FILE lost.wav { } }\n"
                                      "    *FX_ECHO { *FEEDBACK 30.0 }\n"
                                      "    *POLYLINE\n"
                                      "    {\n"
                                      "        *POINT 0.0 0.0 0.0\n"
                                      "        *POINT 100.0 0.0 0.0\n"
                                      "    }\n"
                                      "}\n";

/// Hears everything and counts it, so that the reporting code runs as well.
class CountingListener : public BlockReaderListener
{
public:
    void OnSkipped(const Skipped& skipped) override { length += skipped.keyword.GetView().size(); }
    void OnUnreadable(const PString&, int, const char* wanted, const char* found) override
    {
        length += std::string_view(wanted).size() + (found != nullptr ? std::string_view(found).size() : 0);
    }
    void OnFault(int, const char* fault) override { length += std::string_view(fault).size(); }

    std::size_t length = 0;
};

class BlockReaderFuzz : public BlockReaders
{
protected:
    /// Calls all operations in a random order, on the reader and on those that it gave, also on those that
    /// have been left. Returns how many keywords there were.
    int UseAtRandom(BlockReader& outer, std::mt19937& random)
    {
        std::vector<BlockReader*> readers = {&outer};
        int keywords = 0;
        for (int call = 0; call < 300; ++call) {
            BlockReader& block = *readers[random() % readers.size()];
            switch (random() % 8) {
            case 0:
                if (BlockReader* const inner = block.Begin()) {
                    readers.push_back(inner);
                }
                break;
            case 1:
                block.End();
                break;
            case 2:
            case 3:
                ReadSomething(block, random);
                break;
            default:
                PString keyword;
                if (block.Next(keyword)) {
                    ++keywords;
                    EXPECT_EQ(keyword.GetText()[0], '*');
                }
                break;
            }
        }
        return keywords;
    }

    static void ReadSomething(BlockReader& block, std::mt19937& random)
    {
        PString text;
        bool truth = false;
        int number = 0;
        float values[3] = {0, 0, 0};
        switch (random() % 4) {
        case 0:
            block.ReadString(text);
            break;
        case 1:
            block.ReadBool(truth);
            break;
        case 2:
            block.ReadInt(number);
            break;
        default:
            EXPECT_LE(block.ReadFloatv(values, 3), 3);
            EXPECT_TRUE(std::isfinite(values[0]) && std::isfinite(values[1]) && std::isfinite(values[2]));
            break;
        }
    }
};

/// Noise, noise of the signs that count, and a good text with some changes, in turns.
std::string MakeText(int round, std::mt19937& random)
{
    constexpr std::string_view likely = "**** {{}}\"\"//##\n\n\r\t 01.-+eE\\ab\xFF";
    if (round % 3 != 0) {
        std::string text(random() % 6000, '\0');
        for (char& character : text) {
            character = round % 3 == 1 ? static_cast<char>(random()) : likely[random() % likely.size()];
        }
        return text;
    }
    std::string text(goodText);
    for (int change = 0; change < 5; ++change) {
        const std::size_t place = random() % text.size();
        switch (random() % 3) {
        case 0:
            text[place] = static_cast<char>(random());
            break;
        case 1:
            text.erase(place, random() % 20);
            break;
        default:
            text.insert(place, text.substr(random() % text.size(), random() % 40));
            break;
        }
    }
    return text;
}

TEST_F(BlockReaderFuzz, RandomCallsOnRandomTextsEnd)
{
    std::mt19937 random(20260701);
    int keywords = 0;
    for (int round = 0; round < 600; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        const std::string text = MakeText(round, random);
        CountingListener listener;
        reader.SetListener(&listener);
        keywords += UseAtRandom(ReaderOf(text), random);
        Tree(ReaderOf(text));
        reader.SetListener(nullptr);
    }
    EXPECT_GT(keywords, 600);
}

} // namespace
} // namespace Quon
