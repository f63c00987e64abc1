#include "tools/harmonet/PlayList.h"

#include "tools/harmonet/DefinitionCheck.h"
#include "tools/harmonet/PathText.h"
#include "tools/harmonet/SoundData.h"
#include "tools/harmonet/ToolError.h"

#include <filesystem>

namespace Tool
{

namespace
{

namespace fs = std::filesystem;

constexpr const char* resourceOwner = "resources";

} // namespace

bool PlayList::Item::HasPlace() const
{
    if (!definition) {
        return false;
    }
    const Quon::Vector3 place = GetPlace();
    return definition->GetPolyline() || place.x != 0.0F || place.y != 0.0F || place.z != 0.0F;
}

Quon::Vector3 PlayList::Item::GetPlace() const
{
    if (!definition) {
        return {0.0F, 0.0F, 0.0F};
    }
    const int count = definition->GetPolyline() ? definition->GetNumPoints() : 0;
    if (count == 0) {
        return definition->GetPosition();
    }
    Quon::Vector3 sum{0.0F, 0.0F, 0.0F};
    for (int i = 0; i < count; ++i) {
        const Quon::Vector3& point = definition->GetPolyline()[i];
        sum = {sum.x + point.x, sum.y + point.y, sum.z + point.z};
    }
    const auto number = static_cast<float>(count);
    return {sum.x / number, sum.y / number, sum.z / number};
}

bool PlayList::Item::IsLoop() const
{
    return definition && (definition->GetLooping() || definition->GetPolyline());
}

PlayList::PlayList(const std::vector<std::string>& paths, const std::string& newRoot, bool isChecked)
    : root(newRoot)
{
    std::vector<std::string> plain;
    for (const std::string& path : paths) {
        std::error_code ignored;
        const bool isName = !fs::exists(ToPath(path), ignored) && IsBelowRoot(path);
        if (DefinitionFile::IsDefinitionName(path)) {
            AddDefinition(isName ? ToText(ToPath(root) / ToPath(path)) : path, path, isChecked);
        }
        else if (isName) {
            AddResource(path);
        }
        else {
            plain.push_back(path);
        }
    }
    if (!plain.empty()) {
        AddFiles(plain);
    }
}

bool PlayList::IsBelowRoot(const std::string& name) const
{
    std::error_code ignored;
    return !root.empty() && fs::is_regular_file(ToPath(root) / ToPath(name), ignored);
}

void PlayList::AddFiles(const std::vector<std::string>& paths)
{
    files = std::make_unique<FileArguments>(paths);
    for (const FileArguments::File& file : files->GetFiles()) {
        OpenSoundData(file);
        items.push_back({file.shown, file.name});
        read.push_back(file.shown);
    }
}

void PlayList::AddDefinition(const std::string& path, const std::string& shown, bool isChecked)
{
    definitions.push_back(std::make_unique<DefinitionFile>(path, root));
    DefinitionFile& file = *definitions.back();
    read.push_back(path);
    if (isChecked) {
        PrintFindings(shown, DefinitionCheck().Run(file));
    }
    if (!file.Load()) {
        throw ToolError("'" + shown + "' does not load; `harmonet check` shows why", ExitCode::BadInput);
    }
    const Quon::SoundDefResource& settings = file.GetSettings();
    items.push_back({shown, settings.GetName(), &file.GetDatabase(), &settings});
    read.push_back(file.GetSoundPath());
}

void PlayList::AddResource(const std::string& name)
{
    resources.AddFolder(Quon::PString(resourceOwner), root.c_str());
    const Quon::Resource* const found = resources.Lookup(Quon::PString(name.c_str()), 0);
    if (!found) {
        throw ToolError("'" + name + "' is not a resource of a known type", ExitCode::BadInput);
    }
    found->ReleaseReference();
    items.push_back({name, Quon::PString(name.c_str()), &resources});
    read.push_back(ToText(ToPath(root) / ToPath(name)));
}

} // namespace Tool
