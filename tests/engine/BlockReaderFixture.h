#pragma once

#include "harmonet/engine/BlockReader.h"

#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>
#include <string>
#include <string_view>

namespace Quon
{

/// Opens texts as files, and writes down what a reader finds in them.
class BlockReaders : public testing::Test
{
protected:
    BlockReaders() { EXPECT_TRUE(File::AddRoot(owner, folder.GetPath().c_str())); }
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

    const PString owner = "owner of the texts";
    TempFolder folder;
    File file;
    BlockReader reader;
};

} // namespace Quon
