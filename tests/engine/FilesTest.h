#pragma once

#include "harmonet/engine/File.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace Quon
{

/// A root with files, and files outside the root that no name may reach.
class Files : public testing::Test
{
protected:
    Files()
    {
        folder.Write("root/inside.txt", "0123456789");
        folder.Write("root/sub/deep.txt", "deep");
        folder.Write("outside.txt", "secret");
        folder.Write("root2/sibling.txt", "sibling");
        EXPECT_TRUE(File::AddRoot(owner, folder.Path("root").c_str()));
    }
    ~Files() override { File::RemoveRoot(owner); }

    int Open(const char* name) { return file.Open(owner, name, File::modeRead).GetCode(); }

    using NameAndCode = std::pair<std::string, int>;
    void ExpectCodes(const std::vector<NameAndCode>& rows)
    {
        for (const auto& [name, code] : rows) {
            SCOPED_TRACE(name.substr(0, 100));
            FileStamp stamp;
            EXPECT_EQ(File::GetStamp(owner, name.c_str(), stamp).GetCode(), code);
            EXPECT_EQ(Open(name.c_str()), code);
            EXPECT_EQ(file.IsOpen(), code == File::Opened);
        }
    }

    const PString owner = "owner of the tests";
    TempFolder folder;
    File file;
};

} // namespace Quon
