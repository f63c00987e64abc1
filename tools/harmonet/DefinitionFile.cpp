#include "tools/harmonet/DefinitionFile.h"

#include "harmonet/engine/PluginRegistry.h"
#include "harmonet/kernel/HarmonetStrings.h"
#include "harmonet/kernel/QuonGetPlugins.h"
#include "tools/harmonet/ToolError.h"

#include <filesystem>

namespace Tool
{

namespace
{

namespace fs = std::filesystem;

constexpr const char* owner = "assets";
constexpr const char* endings[] = {".sound", ".sound.txt"};
constexpr int lookupMode = 2;

fs::path Canonical(const std::string& shown)
{
    std::error_code error;
    fs::path path = fs::canonical(shown, error);
    if (error)
        throw ToolError("cannot reach '" + shown + "': " + error.message());
    return path;
}

} // namespace

DefinitionHost::DefinitionHost()
    : library(os.CreateDynamicLibrary())
{
    void* symbol = nullptr;
    if (!library->Open(HARMONET_LIBRARY_NAME) || !library->GetSymbol(&symbol, Quon::quonGetPluginsSymbol))
        throw ToolError("the library " HARMONET_LIBRARY_NAME " cannot be loaded");
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
        if (path.ends_with(ending))
            return true;
    }
    return false;
}

DefinitionFile::DefinitionFile(const std::string& path, const std::string& root)
{
    if (!IsDefinitionName(path))
        throw ToolError("'" + path + "' is no sound definition; their names end with .sound or .sound.txt");
    const fs::path file = Canonical(path);
    const fs::path folder = root.empty() ? file.parent_path() : Canonical(root);
    const fs::path name = file.lexically_relative(folder);
    if (name.empty() || *name.begin() == "..")
        throw ToolError("'" + path + "' does not lie below '" + root + "'");
    if (!database.AddFolder(Quon::PString(owner), folder.c_str()))
        throw ToolError("'" + folder.string() + "' is no folder");
    const Quon::Resource* found = database.Lookup(Quon::PString(name.c_str()), lookupMode);
    resource = dynamic_cast<const Quon::SoundDefResource*>(found);
    if (!resource)
        throw ToolError("'" + path + "' cannot be read");
}

DefinitionFile::~DefinitionFile()
{
    if (isLocked)
        resource->Unlock();
    if (resource)
        resource->ReleaseReference();
}

bool DefinitionFile::Load()
{
    isLocked = isLocked || resource->Lock(&database).IsOk();
    return isLocked;
}

} // namespace Tool
