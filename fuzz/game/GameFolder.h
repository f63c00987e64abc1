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

/// The assets of the game: short sounds of every format, some of them broken or missing, definitions, and
/// blocks of memory. They are in a temporary folder, which is the root of plain file names and the folder
/// "sounds" of the database. At most one instance may exist.
class GameFolder
{
public:
    GameFolder();
    GameFolder(const GameFolder&) = delete;
    GameFolder& operator=(const GameFolder&) = delete;
    ~GameFolder();

    /// The names of plain files and of resources. Some of each do not open.
    const std::vector<PString>& GetFiles() const { return files; }
    const std::vector<PString>& GetResources() const { return resources; }
    std::vector<MemoryBlock>& GetBlocks() { return blocks; }
    /// Writes a file, or replaces it.
    void Write(const std::string& name, std::string_view text) const { folder.Write(name, text); }
    ResourceDatabase& GetDatabase() { return *database; }
    OS& GetOS() { return os; }
    /// Drops the resources that are not referenced.
    void DropResources();

private:
    void WriteSounds();
    void WriteDefinitions();

    OS os; ///< Its options name the null driver.
    /// Keeps the driver loaded, because a fuzzer fails when instrumented code is unloaded.
    std::unique_ptr<DynamicLibrary> driver;
    TempFolder folder;
    std::vector<PString> files;
    std::vector<PString> resources;
    std::vector<MemoryBlock> blocks;
    std::unique_ptr<ResourceDatabase> database;
};

} // namespace Quon
