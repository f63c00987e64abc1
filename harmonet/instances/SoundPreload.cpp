#include "harmonet/instances/SoundPreload.h"

#include "harmonet/definitions/SoundResource.h"
#include "harmonet/engine/Exception.h"
#include "harmonet/engine/File.h"
#include "harmonet/engine/Messages.h"
#include "harmonet/engine/ResourceDatabase.h"
#include "harmonet/files/SndNodeCache.h"
#include "harmonet/instances/OrNothing.h"
#include "harmonet/instances/TakenResource.h"
#include "harmonet/kernel/SndKernel.h"

#include <algorithm>
#include <cctype>
#include <string_view>

namespace Quon
{

namespace
{

bool IsSoundName(std::string_view name)
{
    const auto endsWith = [name](std::string_view ending) {
        return name.size() >= ending.size() &&
            std::equal(ending.begin(), ending.end(), name.end() - static_cast<std::ptrdiff_t>(ending.size()),
                [](char wanted, char letter) {
                    return std::tolower(static_cast<unsigned char>(letter)) == wanted;
                });
    };
    return endsWith(".wav") || endsWith(".mp3");
}

// A file whose length cannot be determined cannot be loaded.
SndNode* Hold(SndNodeCache& cache, const PString& owner, const PString& fileName)
{
    try {
        return cache.Hold(owner, fileName);
    }
    catch (const FileEx&) {
        Report(
            MessageLevel::Error, "sound file '", fileName, "' of owner '", owner, "' has an unknown length");
        return nullptr;
    }
}

bool ListPlainFiles(const char* folder, EngineVector<PString>& names)
{
    EngineVector<EngineString> files;
    const Result listed = File::List(PString(), folder, files);
    if (!listed.IsOk()) {
        Report(MessageLevel::Error, "folder '", folder, "' ", File::DescribeCode(listed.GetCode()));
        return false;
    }
    for (const EngineString& file : files) {
        if (IsSoundName(file)) {
            names.push_back(PString(std::string_view(file)));
        }
    }
    return true;
}

} // namespace

SoundPreload::~SoundPreload()
{
    Release();
}

void SoundPreload::SetProgress(ProgressCallback newCallback, void* newUser)
{
    callback = newCallback;
    user = newUser;
}

bool SoundPreload::Add(const PString& name, const ResourceDatabase* db)
{
    return OrNothing([&] { return AddAll({name}, db); });
}

bool SoundPreload::AddFolder(const char* folder, const ResourceDatabase* db)
{
    const char* const place = folder != nullptr ? folder : "";
    return OrNothing([&] {
        EngineVector<PString> names;
        const bool isListed = db != nullptr ? db->List(place, names) : ListPlainFiles(place, names);
        return AddAll(names, db) && isListed;
    });
}

bool SoundPreload::AddAll(const EngineVector<PString>& names, const ResourceDatabase* db)
{
    bool isComplete = true;
    for (std::size_t i = 0; i < names.size(); ++i) {
        isComplete = OrNothing([&] { return AddOne(names[i], db); }) && isComplete;
        if (callback != nullptr && !callback({names[i], i + 1, names.size(), GetBytes()}, user)) {
            return false;
        }
    }
    return isComplete;
}

bool SoundPreload::AddOne(const PString& name, const ResourceDatabase* db)
{
    if (theKernel == nullptr) {
        Report(MessageLevel::Error, "sound '", name, "' is not preloaded: the sound system is not running");
        return false;
    }
    if (!IsCurrent()) {
        Release();
        cacheSerial = theKernel->GetDataCache()->GetSerial();
    }
    return db != nullptr ? AddResource(name, *db) : AddFile(PString(), name);
}

bool SoundPreload::AddResource(const PString& name, const ResourceDatabase& db)
{
    const TakenResource taken(name, db, SoundLookup);
    // An observer of the load may have ended the system.
    if (!taken || !IsCurrent()) {
        return false;
    }
    const Resource* const resource = &*taken;
    if (std::find(resources.begin(), resources.end(), resource) == resources.end()) {
        resources.push_back(resource);
        resource->AddReference();
    }
    bool isComplete = AddFile(taken->GetOwnerName(), taken->GetFileName());
    for (const PString& variant : taken->GetVariation().variants) {
        isComplete = AddFile(taken->GetOwnerName(), variant) && isComplete;
    }
    return isComplete;
}

bool SoundPreload::AddFile(const PString& owner, const PString& fileName)
{
    // Allocate before the hold.
    if (nodes.size() == nodes.capacity()) {
        nodes.reserve(2 * nodes.size() + 8);
    }
    SndNodeCache& cache = *theKernel->GetDataCache();
    SndNode* const node = Hold(cache, owner, fileName);
    if (node == nullptr) {
        return false;
    }
    if (std::find(nodes.begin(), nodes.end(), node) != nodes.end()) {
        cache.Release(node);
        return true;
    }
    nodes.push_back(node);
    bytes += node->size;
    return true;
}

void SoundPreload::Release()
{
    if (IsCurrent()) {
        for (SndNode* node : nodes) {
            theKernel->GetDataCache()->Release(node);
        }
    }
    nodes.clear();
    bytes = 0;
    EngineVector<const Resource*> released;
    released.swap(resources);
    for (const Resource* resource : released) {
        resource->ReleaseReference();
    }
}

std::uint64_t SoundPreload::GetBytes() const
{
    return IsCurrent() ? bytes : 0;
}

std::size_t SoundPreload::GetFileCount() const
{
    return IsCurrent() ? nodes.size() : 0;
}

bool SoundPreload::IsCurrent() const
{
    return theKernel != nullptr && theKernel->GetDataCache()->GetSerial() == cacheSerial;
}

} // namespace Quon
