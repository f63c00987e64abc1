#pragma once

#include "tools/harmonet/DefinitionFile.h"
#include "tools/harmonet/FileArguments.h"

#include <memory>
#include <string>
#include <vector>

namespace Tool
{

/// The sounds to play: sound files, definitions, and other resources below the root, which are found by name.
class PlayList
{
public:
    struct Item
    {
        std::string shown; ///< As the user wrote it.
        Quon::PString name;
        const Quon::ResourceDatabase* database = nullptr; ///< Null for a plain file.
        const Quon::SoundDefResource* definition = nullptr; ///< Null for anything else.

        /// Returns whether the definition sets a position or a line.
        bool HasPlace() const;
        /// Returns the position in the definition, or the centre of its line, or otherwise the origin.
        Quon::Vector3 GetPlace() const;
        bool IsLoop() const;
    };

    /// `newRoot` is the folder that the names in definitions are relative to; empty for the folder of each
    /// definition. With `isChecked`, prints the findings for each definition. Throws a ToolError for the
    /// first sound that cannot be played.
    PlayList(const std::vector<std::string>& paths, const std::string& newRoot, bool isChecked);

    const std::vector<Item>& GetItems() const { return items; }
    /// Returns all files that are played or read.
    const std::vector<std::string>& GetFiles() const { return read; }

private:
    void AddFiles(const std::vector<std::string>& paths);
    void AddDefinition(const std::string& path, const std::string& shown, bool isChecked);
    void AddResource(const std::string& name);
    bool IsBelowRoot(const std::string& name) const;

    std::string root;
    DefinitionHost host;
    std::unique_ptr<FileArguments> files;
    std::vector<std::unique_ptr<DefinitionFile>> definitions;
    Quon::ResourceDatabase resources; ///< The resources below the root that are not definitions.
    std::vector<Item> items;
    std::vector<std::string> read;
};

} // namespace Tool
