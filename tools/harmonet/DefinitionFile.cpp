#include "tools/harmonet/DefinitionFile.h"

#include "harmonet/engine/PluginRegistry.h"
#include "harmonet/kernel/HarmonetStrings.h"
#include "harmonet/kernel/QuonGetPlugins.h"
#include "tools/harmonet/PathText.h"
#include "tools/harmonet/ToolError.h"

#include <filesystem>

namespace Tool
{

namespace
{

namespace fs = std::filesystem;

constexpr const char* endings[] = {".sound", ".sound.txt"};
constexpr const char* nameForStream = "stdin.sound";
constexpr int lookupMode = 2;

fs::path Canonical(const std::string& shown)
{
    std::error_code error;
    fs::path path = fs::canonical(ToPath(shown), error);
    if (error) {
        throw ToolError("cannot access '" + shown + "': " + error.message(), ExitCode::NoInput);
    }
    return path;
}

/// Each definition has its own folder, and an owner name refers to one folder at a time.
std::string MakeOwner()
{
    static int count = 0;
    return "assets" + std::to_string(++count);
}

} // namespace

DefinitionHost::DefinitionHost()
    : library(os.CreateDynamicLibrary())
{
    void* symbol = nullptr;
    if (!library->Open(HARMONET_LIBRARY_NAME) || !library->GetSymbol(&symbol, Quon::quonGetPluginsSymbol)) {
        throw ToolError("the library " HARMONET_LIBRARY_NAME " cannot be loaded");
    }
    reinterpret_cast<Quon::QuonGetPluginsFunction>(symbol)();
    Quon::HarmonetStrings::Init();
}

DefinitionHost::~DefinitionHost()
{
    Quon::PluginRegistry::Get().ReleaseAll();
}

bool DefinitionFile::IsDefinitionName(const std::string& path)
{
    for (const std::string ending : endings) {
        if (path.ends_with(ending)) {
            return true;
        }
    }
    return false;
}

DefinitionFile::DefinitionFile(const std::string& path, const std::string& newRoot)
    : input(path, nameForStream)
    , root(newRoot)
    , owner(MakeOwner())
{
    if (!IsDefinitionName(input.GetPath())) {
        throw ToolError("'" + path + "' is not a sound definition; their names end with .sound or .sound.txt",
            ExitCode::BadInput);
    }
    const fs::path file = Canonical(input.GetPath());
    const fs::path folder = root.empty() || IsFromStream() ? file.parent_path() : Canonical(root);
    const fs::path name = file.lexically_relative(folder);
    if (name.empty() || *name.begin() == "..") {
        throw ToolError("'" + path + "' is not below '" + root + "'", ExitCode::BadArguments);
    }
    if (!database.AddFolder(Quon::PString(owner.c_str()), ToText(folder).c_str())) {
        throw ToolError("'" + ToText(folder) + "' is not a folder", ExitCode::NoInput);
    }
    const Quon::Resource* found =
        database.Lookup(Quon::PString(ToText(name.generic_u8string()).c_str()), lookupMode);
    resource = dynamic_cast<const Quon::SoundDefResource*>(found);
    if (!resource) {
        throw ToolError("'" + path + "' cannot be read", ExitCode::NoInput);
    }
}

DefinitionFile::~DefinitionFile()
{
    if (isLocked) {
        resource->Unlock();
    }
    if (resource) {
        resource->ReleaseReference();
    }
}

bool DefinitionFile::Load()
{
    isLocked = isLocked || resource->Lock(&database).IsOk();
    // The definition has been read from the temporary folder. The names in it refer to the root.
    if (IsFromStream()) {
        database.AddFolder(Quon::PString(owner.c_str()), root.empty() ? "." : root.c_str());
    }
    return isLocked;
}

std::string DefinitionFile::GetSoundPath() const
{
    const std::string name(resource->GetFileName().GetView());
    fs::path folder = ToPath(root);
    if (root.empty() && !IsFromStream()) {
        folder = ToPath(input.GetPath()).parent_path();
    }
    return name.empty() ? "" : ToText(folder / ToPath(name));
}

bool DefinitionFile::IsFromStream() const
{
    return input.GetPath() != input.GetShown();
}

} // namespace Tool
