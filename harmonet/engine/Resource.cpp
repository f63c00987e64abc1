#include "harmonet/engine/Resource.h"

#include "harmonet/engine/ResourceDatabase.h"
#include "harmonet/engine/ResourceObserver.h"
#include "harmonet/engine/ResourceTypeBase.h"

#include <algorithm>

namespace Quon
{

Resource::Resource(const PString& newName, const ResourceDatabase* database)
    : resourceName(newName)
{
    if (database != nullptr && database->FindOwner(resourceName, ownerName)) {
        SetType(ResourceDatabase::FindType(resourceName));
    }
}

Resource::Resource(const Resource& other)
    : Allocated(other)
    , resourceName(other.resourceName)
    , ownerName(other.ownerName)
{
    SetType(other.type);
}

Resource::~Resource()
{
    SetType(nullptr);
}

Result Resource::Lock(const ResourceDatabase* database, unsigned long) const
{
    if (!loaded) {
        const Result result = LoadContent(database);
        if (!result.IsOk()) {
            return result;
        }
    }
    ++locks;
    touched = true;
    return Loaded;
}

Result Resource::Lock(const ResourceDatabase* database) const
{
    return Lock(database, 0);
}

void Resource::Unlock() const
{
    if (locks == 0) {
        return;
    }
    --locks;
    if (locks == 0 && outdated) {
        GiveUpContent();
    }
}

void Resource::SetPriority(float newPriority) const
{
    priority = newPriority;
}

void Resource::AddObserver(const ResourceObserver* observer) const
{
    if (observer != nullptr) {
        observers.push_back(observer);
    }
}

void Resource::RemoveObserver(const ResourceObserver* observer) const
{
    const auto found = std::find(observers.begin(), observers.end(), observer);
    if (observer == nullptr || found == observers.end()) {
        return;
    }
    // During a notification the entries must not move.
    if (notifications > 0) {
        *found = nullptr;
    }
    else {
        observers.erase(found);
    }
}

Resource* Resource::CreateInstance(const PString&) const
{
    return nullptr;
}

Result Resource::Load(File&, bool) const
{
    return OtherEntry;
}

Result Resource::Load(const ResourceDatabase*, char*) const
{
    return OtherEntry;
}

Result Resource::LoadTxt(const ResourceDatabase*, char*) const
{
    return OtherEntry;
}

void Resource::Unload() const {}

void Resource::OnLoad() const {}

Result Resource::LoadSectionBegin(int, const char*) const
{
    return OtherEntry;
}

Result Resource::LoadSectionEnd(int, const char*) const
{
    return OtherEntry;
}

Result Resource::LoadKey(const ResourceDatabase*, int, char*) const
{
    return OtherEntry;
}

void Resource::ReleaseChildren() const {}

void Resource::CaptureChildren() const {}

unsigned long Resource::CalculateSize() const
{
    return 0;
}

unsigned long Resource::CalculateDataSize() const
{
    return 0;
}

const Resource* Resource::GetRedirection() const
{
    return nullptr;
}

bool Resource::ReleaseReference() const
{
    if (references > 0) {
        --references;
    }
    if (references > 0) {
        return false;
    }
    Touch();
    if (leftBehind) {
        GiveUpContent();
        delete this;
    }
    return true;
}

Result Resource::LoadContent(const ResourceDatabase* database) const
{
    // The stamp before the load, so that a change during it is detected.
    FileStamp stamp;
    File::GetStamp(ownerName, resourceName.GetText(), stamp);

    const std::string_view nameText = resourceName.GetView();
    EngineVector<char> path(nameText.begin(), nameText.end());
    path.push_back('\0');

    Result result = OtherEntry;
    if (type == nullptr || !type->IsText()) {
        result = Load(database, path.data());
    }
    if (result.GetCode() == OtherEntry) {
        result = LoadTxt(database, path.data());
    }
    if (result.IsOk()) {
        loaded = true;
        outdated = false;
        loadedStamp = stamp;
        OnLoad();
        NotifyObservers([this](const ResourceObserver& observer) { observer.OnResourceLoaded(*this); });
    }
    return result;
}

void Resource::GiveUpContent() const
{
    outdated = false;
    if (!loaded) {
        return;
    }
    NotifyObservers([this](const ResourceObserver& observer) { observer.OnResourceUnloaded(*this); });
    loaded = false;
    Unload();
}

void Resource::NoteChange() const
{
    if (locks > 0) {
        outdated = true;
    }
    else {
        GiveUpContent();
    }
}

void Resource::SetType(const ResourceTypeBase* newType)
{
    if (newType != nullptr) {
        newType->AddReference();
    }
    if (type != nullptr) {
        type->ReleaseReference();
    }
    type = newType;
}

template<class Notice>
void Resource::NotifyObservers(Notice notice) const
{
    ++notifications;
    // By index, and only up to the current size: an observer may add others.
    const std::size_t count = observers.size();
    for (std::size_t i = 0; i < count; ++i) {
        if (observers[i] != nullptr) {
            notice(*observers[i]);
        }
    }
    --notifications;
    if (notifications == 0) {
        std::erase(observers, nullptr);
    }
}

} // namespace Quon
