#pragma once

#include "tools/harmonet/DefinitionFile.h"
#include "tools/harmonet/FileArguments.h"

#include <memory>
#include <string>
#include <vector>

namespace Tool
{

/// What is to be played: sound files, definitions, and what lies below the root and is called by its name
/// there.
class PlayList
{
public:
    struct Item
    {
        std::string shown; ///< As the user has written it.
        Quon::PString name;
        const Quon::ResourceDatabase* database = nullptr; ///< Null for a plain file.
        const Quon::SoundDefResource* definition = nullptr; ///< Null for anything else.

        /// Whether the definition gives it a place or a line.
        bool HasPlace() const;
        /// The place of the definition or the middle of its line; else the origin.
        Quon::Vector3 GetPlace() const;
        bool IsLoop() const;
    };

    /// `root` is the folder to which the names in definitions refer; empty for that of each definition. With
    /// `isChecked` prints what there is to say about each definition. Throws a ToolError for the first that
    /// does not play.
    PlayList(const std::vector<std::string>& paths, const std::string& newRoot, bool isChecked);

    const std::vector<Item>& GetItems() const { return items; }
    /// All files that are played or read.
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
    Quon::ResourceDatabase resources; ///< Those below the root that are no definitions.
    std::vector<Item> items;
    std::vector<std::string> read;
};

} // namespace Tool
