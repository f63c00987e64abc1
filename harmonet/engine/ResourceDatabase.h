#pragma once

#include "harmonet/engine/Alloc.h"
#include "harmonet/engine/PString.h"

#include <list>
#include <memory>
#include <unordered_map>

namespace Quon
{

class FileSource;
class Resource;
class ResourceTypeBase;

/// Finds resources by name in the folders that the host has added, and caches them. The host owns it, and it
/// must outlive the sounds that use it; a resource that is still referenced when it is destroyed exists until
/// it is released. Task thread only.
class HARMONET_ENGINE_API ResourceDatabase : public Allocated
{
public:
    ResourceDatabase();
    ResourceDatabase(const ResourceDatabase&) = delete;
    ResourceDatabase& operator=(const ResourceDatabase&) = delete;

    /// Returns the resource of that name, a file name below one of the folders, with an added reference,
    /// which the caller releases with Resource::ReleaseReference(). The same name returns the same object. It
    /// is not loaded yet; Resource::Lock() does that.
    ///
    /// The folders are searched in the order in which they were added. The type is the registered one with
    /// the longest matching extension, the first registered among equals. Returns null if there is no such
    /// file or no type for it. \p mode is ignored. Accesses the disk only for a name that is not known yet.
    virtual const Resource* Lookup(const PString& name, int mode) const;

    virtual ~ResourceDatabase();

    /// Adds a folder, a native path, and makes it the root of \p owner for File. It replaces a folder that
    /// the owner already has here. Returns false and changes nothing if there is no such folder.
    bool AddFolder(const PString& owner, const char* folder);

    /// The same with a custom source instead of a folder (FileSource.h). Returns false only for null.
    bool AddFolder(const PString& owner, std::shared_ptr<FileSource> source);

    /// Adds the names of all resources whose files are in that folder, or below it, in any folder that was
    /// added here; "" means all. Each name is added once and can be passed to Lookup(); no resource is
    /// created. Returns false and writes a message if none has that folder, or one cannot be listed, since a
    /// custom source need not support it (FileSource::List()). The names from the others are still added.
    /// Blocks on the disk.
    bool List(const char* folder, EngineVector<PString>& names) const;

    /// Checks the files of all resources. A changed one is unloaded, at once or after the last Unlock() if it
    /// is locked, and loaded again at the next Lock(). A resource whose file no longer exists keeps its
    /// content while it is held. Blocks on the disk.
    void ReloadChanged();

    /// Drops the resources that are not referenced and have not been used since the last call.
    void DropUnused();

    /// Number of resources currently cached.
    std::size_t GetCount() const { return resources.size(); }

private:
    friend class Resource;

    using Resources = std::unordered_map<PString, Resource*, std::hash<PString>, std::equal_to<PString>,
        EngineAllocator<std::pair<const PString, Resource*>>>;

    bool AddOwner(const PString& owner);
    static void Delete(Resource* resource);
    /// Returns the type for that file name, or null.
    static const ResourceTypeBase* FindType(const PString& name);
    /// Finds the owner of the first folder that contains the file; returns false if none does.
    bool FindOwner(const PString& name, PString& owner) const;

    std::list<PString, EngineAllocator<PString>> owners;
    mutable Resources resources;
};

} // namespace Quon
