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

/// What a host needs to read sound definitions without a running sound system: the library, loaded at run
/// time for its resource types and keywords, and a service that opens sound files.
class DefinitionHost
{
public:
    /// Throws a ToolError if the library cannot be loaded.
    DefinitionHost();
    DefinitionHost(const DefinitionHost&) = delete;
    DefinitionHost& operator=(const DefinitionHost&) = delete;
    /// Every DefinitionFile must have been destroyed.
    ~DefinitionHost();

private:
    Quon::OS os;
    std::unique_ptr<Quon::DynamicLibrary> library;
    Quon::SndFileService service;
};

/// A sound definition that is found by name in a folder and loaded as a resource. Needs a DefinitionHost.
class DefinitionFile
{
public:
    static bool IsDefinitionName(const std::string& path);

    /// `newRoot` is the folder that file names are relative to. If it is empty, that is the definition's own
    /// folder, or the current folder for a definition from standard input. Throws a ToolError if the
    /// definition does not exist, is not below the root, or has a name that is not that of a definition.
    DefinitionFile(const std::string& path, const std::string& newRoot);
    DefinitionFile(const DefinitionFile&) = delete;
    DefinitionFile& operator=(const DefinitionFile&) = delete;
    ~DefinitionFile();

    /// Reads the definition. Returns false if it does not load.
    bool Load();
    /// The settings. They are valid after Load() has succeeded.
    const Quon::SoundDefResource& GetSettings() const { return *resource; }
    /// The database to create sounds from. The resource is named GetSettings().GetName().
    const Quon::ResourceDatabase& GetDatabase() const { return database; }
    /// Returns the path at which the sound file is expected; empty if there is none. Valid after Load() has
    /// succeeded.
    std::string GetSoundPath() const;

private:
    bool IsFromStream() const;

    InputFile input;
    std::string root;
    std::string owner; ///< The owner name of the folder, unique to this definition.
    Quon::ResourceDatabase database;
    const Quon::SoundDefResource* resource = nullptr;
    bool isLocked = false;
};

} // namespace Tool
