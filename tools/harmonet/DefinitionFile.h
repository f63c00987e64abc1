#pragma once

#include "harmonet/definitions/SoundDefResource.h"
#include "harmonet/engine/DynamicLibrary.h"
#include "harmonet/engine/OS.h"
#include "harmonet/engine/ResourceDatabase.h"
#include "harmonet/files/SndFileService.h"
#include "tools/harmonet/InputFile.h"

#include <memory>
#include <string>

namespace Tool
{

/// What a host needs to have sound definitions read: the library, loaded at run time and asked for its types
/// of resources, the keywords, and a way to open sound files. No sound system runs.
class DefinitionHost
{
public:
    /// Throws a ToolError if the library cannot be loaded.
    DefinitionHost();
    DefinitionHost(const DefinitionHost&) = delete;
    DefinitionHost& operator=(const DefinitionHost&) = delete;
    /// No DefinitionFile may be left.
    ~DefinitionHost();

private:
    Quon::OS os;
    std::unique_ptr<Quon::DynamicLibrary> library;
    Quon::SndFileService service;
};

/// A sound definition, found by name in a folder and loaded as a resource. Needs a DefinitionHost.
class DefinitionFile
{
public:
    static bool IsDefinitionName(const std::string& path);

    /// `newRoot` is the folder to which names of files refer; empty for the definition's own folder, which
    /// for one from the standard input is the current folder. Throws a ToolError if the definition is not
    /// there, does not lie below the root or is none by its name.
    DefinitionFile(const std::string& path, const std::string& newRoot);
    DefinitionFile(const DefinitionFile&) = delete;
    DefinitionFile& operator=(const DefinitionFile&) = delete;
    ~DefinitionFile();

    /// Reads it. False if it does not load.
    bool Load();
    /// The settings; they count once it has been loaded.
    const Quon::SoundDefResource& GetSettings() const { return *resource; }
    /// To make sounds from it: the resource GetSettings().GetName().
    const Quon::ResourceDatabase& GetDatabase() const { return database; }
    /// Where its sound file has to lie; empty without one. Counts once it has been loaded.
    std::string GetSoundPath() const;

private:
    bool IsFromStream() const;

    InputFile input;
    std::string root;
    std::string owner; ///< Of the folder, for this definition alone.
    Quon::ResourceDatabase database;
    const Quon::SoundDefResource* resource = nullptr;
    bool isLocked = false;
};

} // namespace Tool
