#include "harmonet/engine/ResourceDatabase.h"

#include "harmonet/engine/Messages.h"
#include "harmonet/engine/PluginRegistry.h"
#include "harmonet/engine/Resource.h"
#include "harmonet/engine/ResourceTypeBase.h"

#include <algorithm>
#include <utility>

namespace Quon
{

ResourceDatabase::ResourceDatabase() = default;

ResourceDatabase::~ResourceDatabase()
{
    Resources going;
    going.swap(resources);
    for (const auto& [name, resource] : going) {
        if (resource->GetReferenceCount() > 0) {
            resource->leftBehind = true;
        }
        else {
            Delete(resource);
        }
    }
    for (const PString& owner : owners) {
        File::RemoveRoot(owner);
    }
}

bool ResourceDatabase::AddFolder(const PString& owner, const char* folder)
{
    return File::AddRoot(owner, folder) && AddOwner(owner);
}

bool ResourceDatabase::AddFolder(const PString& owner, std::shared_ptr<FileSource> source)
{
    return File::AddRoot(owner, std::move(source)) && AddOwner(owner);
}

bool ResourceDatabase::AddOwner(const PString& owner)
{
    if (std::find(owners.begin(), owners.end(), owner) == owners.end()) {
        owners.push_back(owner);
    }
    return true;
}

const Resource* ResourceDatabase::Lookup(const PString& name, int) const
{
    const auto known = resources.find(name);
    if (known != resources.end()) {
        known->second->AddReference();
        return known->second;
    }
    PString owner;
    const ResourceTypeBase* const type = FindType(name);
    if (type == nullptr || !FindOwner(name, owner)) {
        return nullptr;
    }
    // Insert the entry first: after the resource has been created, nothing can fail.
    const auto place = resources.emplace(name, nullptr).first;
    Resource* resource = nullptr;
    try {
        resource = type->Create(name, this);
    }
    catch (...) {
        resources.erase(place);
        throw;
    }
    if (resource == nullptr) {
        resources.erase(place);
        return nullptr;
    }
    resource->ownerName = owner;
    resource->SetType(type);
    place->second = resource;
    resource->AddReference();
    return resource;
}

bool ResourceDatabase::List(const char* folder, EngineVector<PString>& names) const
{
    EngineVector<EngineString> files;
    int code = owners.empty() ? File::NoRoot : File::NotFound;
    bool isListed = false;
    for (const PString& owner : owners) {
        const Result listed = File::List(owner, folder, files);
        isListed = isListed || listed.IsOk();
        // A folder missing in one root may exist in another; any other error is returned.
        code = listed.IsOk() || listed.GetCode() == File::NotFound ? code : listed.GetCode();
    }
    std::sort(files.begin(), files.end());
    files.erase(std::unique(files.begin(), files.end()), files.end());
    for (const EngineString& file : files) {
        PString name{std::string_view(file)};
        if (FindType(name) != nullptr) {
            names.push_back(std::move(name));
        }
    }
    const bool isWhole = isListed && code == File::NotFound;
    if (!isWhole) {
        Report(MessageLevel::Error, "folder '", folder, "' of the resources ", File::DescribeCode(code));
    }
    return isWhole;
}

void ResourceDatabase::ReloadChanged()
{
    // Observers may look up other resources, so do not notify them while iterating over the table.
    EngineVector<const Resource*> changed;
    for (const auto& [name, resource] : resources) {
        FileStamp stamp;
        if (resource->IsLoaded() && File::GetStamp(resource->GetOwnerName(), name.GetText(), stamp).IsOk() &&
            stamp != resource->loadedStamp) {
            resource->AddReference();
            changed.push_back(resource);
        }
    }
    for (const Resource* resource : changed) {
        resource->NoteChange();
        resource->ReleaseReference();
    }
}

void ResourceDatabase::DropUnused()
{
    EngineVector<Resource*> unused;
    std::erase_if(resources, [&unused](const Resources::value_type& entry) {
        Resource* const resource = entry.second;
        if (resource->references > 0 || resource->locks > 0 || std::exchange(resource->touched, false)) {
            return false;
        }
        unused.push_back(resource);
        return true;
    });
    for (Resource* resource : unused) {
        Delete(resource);
    }
}

void ResourceDatabase::Delete(Resource* resource)
{
    resource->GiveUpContent();
    delete resource;
}

const ResourceTypeBase* ResourceDatabase::FindType(const PString& name)
{
    const ResourceTypeBase* best = nullptr;
    for (const PluginType* plugin : PluginRegistry::Get().GetTypes()) {
        const auto* const type = dynamic_cast<const ResourceTypeBase*>(plugin);
        if (type == nullptr || !type->Takes(name.GetView())) {
            continue;
        }
        if (best == nullptr || type->GetName().GetView().size() > best->GetName().GetView().size()) {
            best = type;
        }
    }
    return best;
}

bool ResourceDatabase::FindOwner(const PString& name, PString& owner) const
{
    for (const PString& candidate : owners) {
        FileStamp stamp;
        const int code = File::GetStamp(candidate, name.GetText(), stamp).GetCode();
        // A file that cannot be opened still exists; Lock() reports the error.
        if (code == File::Opened || code == File::Empty || code == File::TooLarge) {
            owner = candidate;
            return true;
        }
    }
    return false;
}

} // namespace Quon
