#pragma once

#include "harmonet/engine/OS.h"
#include "harmonet/engine/PString.h"
#include "harmonet/engine/ResourceDatabase.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WaveBytes.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Quon
{

/// What a game has on its disk: short sounds of every format, some that are broken or missing, definitions,
/// and blocks of memory. It lies in a temporary folder, which is the root of plain file names and the folder
/// "sounds" of the database. One at a time.
class GameFolder
{
public:
    GameFolder();
    GameFolder(const GameFolder&) = delete;
    GameFolder& operator=(const GameFolder&) = delete;
    ~GameFolder();

    /// Names of plain files, and names of resources. Some of each cannot be had.
    const std::vector<PString>& GetFiles() const { return files; }
    const std::vector<PString>& GetResources() const { return resources; }
    std::vector<MemoryBlock>& GetBlocks() { return blocks; }
    /// Writes one more file, or writes it anew.
    void Write(const std::string& name, std::string_view text) const { folder.Write(name, text); }
    ResourceDatabase& GetDatabase() { return *database; }
    OS& GetOS() { return os; }
    /// Makes the database forget what nobody holds.
    void DropResources();

private:
    void WriteSounds();
    void WriteDefinitions();

    OS os; ///< Its options name the null driver.
    /// Keeps the driver in memory: a fuzzer cannot bear that code which it watches goes away.
    std::unique_ptr<DynamicLibrary> driver;
    TempFolder folder;
    std::vector<PString> files;
    std::vector<PString> resources;
    std::vector<MemoryBlock> blocks;
    std::unique_ptr<ResourceDatabase> database;
};

} // namespace Quon
