#include "fuzz/FuzzTarget.h"
#include "fuzz/game/Dice.h"
#include "harmonet/engine/BlockReader.h"
#include "harmonet/engine/File.h"
#include "tests/support/TempFolder.h"

#include <string>
#include <vector>

namespace Quon
{

namespace
{

/// A text file in a temporary folder.
class TextFile
{
public:
    explicit TextFile(std::string_view text)
    {
        folder.Write("text", text);
        File::AddRoot(owner, folder.GetPath().string().c_str());
        // An empty file does not open, so the reader has no file.
        if (file.Open(owner, "text", File::modeRead).IsOk()) {
            reader.Init(file);
        }
    }
    ~TextFile() { File::RemoveRoot(owner); }
    TextFile(const TextFile&) = delete;
    TextFile& operator=(const TextFile&) = delete;

    BlockReader& GetReader() { return reader; }

private:
    const PString owner{"fuzz"};
    TempFolder folder;
    File file;
    BlockReader reader;
};

/// Counts the calls and accesses all arguments.
class Listener final : public BlockReaderListener
{
public:
    void OnSkipped(const Skipped& skipped) override { Touch(skipped.keyword, skipped.line); }
    void OnUnreadable(const PString& keyword, int line, const char* wanted, const char* found) override
    {
        Touch(keyword, line);
        length += std::string_view(wanted).size() + std::string_view(found ? found : "").size();
    }
    void OnFault(int line, const char* fault) override
    {
        Require(line >= 1, "lines count from 1");
        length += std::string_view(fault).size();
    }

private:
    void Touch(const PString& keyword, int line)
    {
        Require(line >= 1, "lines count from 1");
        length += keyword.GetView().size();
    }

    std::size_t length = 0;
};

/// Prints all keywords, values and blocks in canonical form.
void Print(BlockReader& reader, std::string& text)
{
    PString keyword;
    while (reader.Next(keyword)) {
        text.append(keyword.GetView());
        PString value;
        while (reader.ReadString(value)) {
            text.append(" \"").append(value.GetView()).append("\"");
        }
        text += '\n';
        if (BlockReader* const block = reader.Begin()) {
            text += "{\n";
            Print(*block, text);
            text += "}\n";
            reader.End();
        }
    }
}

std::string PrintText(std::string_view text)
{
    TextFile file(text);
    std::string printed;
    Print(file.GetReader(), printed);
    return printed;
}

/// Calls random functions on random readers, before and after entering and leaving blocks.
class Wander
{
public:
    Wander(BlockReader& outermost, Dice& newDice)
        : dice(newDice)
    {
        readers.push_back(&outermost);
    }

    void Step()
    {
        BlockReader& reader = *readers[static_cast<std::size_t>(dice.Draw(static_cast<int>(readers.size())))];
        PString text;
        bool truth = false;
        int number = 0;
        float numbers[3] = {};
        switch (dice.Draw(9)) {
        case 0:
            reader.ReadBool(truth);
            break;
        case 1:
            reader.ReadInt(number);
            break;
        case 2:
            reader.ReadFloat(numbers[0]);
            break;
        case 3:
            number = reader.ReadFloatv(numbers, 3);
            Require(number >= 0 && number <= 3, "at most as many floats as requested");
            break;
        case 4:
            reader.ReadString(text);
            break;
        case 5:
            reader.End();
            break;
        case 6:
            Enter(reader);
            break;
        default:
            CheckNext(reader);
        }
    }

private:
    void Enter(BlockReader& reader)
    {
        BlockReader* const block = reader.Begin();
        if (block && readers.size() < 80) {
            readers.push_back(block);
        }
    }

    void CheckNext(BlockReader& reader)
    {
        PString keyword;
        if (!reader.Next(keyword)) {
            return;
        }
        Require(keyword.GetView().starts_with('*'), "a keyword begins with an asterisk");
        Require(reader.GetLine() >= line, "the lines ascend");
        line = reader.GetLine();
    }

    Dice& dice;
    std::vector<BlockReader*> readers;
    int line = 1;
};

} // namespace

void FuzzBlockReader(FuzzBytes bytes)
{
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    const std::string printed = PrintText(text);
    Require(PrintText(printed) == printed, "the printed text reads back as the same text");

    Digest digest;
    digest.Add(bytes);
    SeededDice dice(digest.Get());
    Listener listener;
    TextFile file(text);
    file.GetReader().SetListener(&listener);
    Wander wander(file.GetReader(), dice);
    const std::size_t steps = bytes.size() + 20;
    for (std::size_t step = 0; step < steps; ++step) {
        wander.Step();
    }
}

} // namespace Quon
