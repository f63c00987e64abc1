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

/// Finds resources by name in the folders that the host has given, and keeps them. The host owns it and
/// outlives with it the sounds that use it; a resource that somebody still holds when it goes lives on until
/// it is released. Task thread only.
class HARMONET_ENGINE_API ResourceDatabase : public Allocated
{
public:
    ResourceDatabase();
    ResourceDatabase(const ResourceDatabase&) = delete;
    ResourceDatabase& operator=(const ResourceDatabase&) = delete;

    /// Gives the resource of that name, a file name below one of the folders, with a reference taken on it,
    /// which the caller gives back with Resource::ReleaseReference(). The same name gives the same object. It
    /// is not loaded yet; Resource::Lock() does that.
    ///
    /// The folders are looked through in the order in which they were added. The type is the registered one
    /// with the longest ending that fits, the first registered among equals. Null if there is no such file or
    /// no type for it. All values of \p mode mean the same here. Asks the disk only for a name that is not
    /// known yet.
    virtual const Resource* Lookup(const PString& name, int mode) const;

    virtual ~ResourceDatabase();

    /// Adds a folder, a path of the operating system, and makes it the root of \p owner for File. An owner
    /// that has a folder here already gets the new one in its place. False, and no change, if there is no
    /// such folder.
    bool AddFolder(const PString& owner, const char* folder);

    /// The same with a source of the host's own instead of a folder (FileSource.h). False only for null.
    bool AddFolder(const PString& owner, std::shared_ptr<FileSource> source);

    /// Adds the names of all resources whose files lie in that folder, or below it, of any folder that was
    /// added here; "" for all there are. Each stands there once, and Lookup() finds it; none is made. False,
    /// with a message, if none has that folder, or one cannot be listed: a source of the host's own need not
    /// tell what it holds (FileSource::List()). The names from the others are there all the same. Blocks on
    /// the disk.
    bool List(const char* folder, EngineVector<PString>& names) const;

    /// Looks at the files of all resources. One that has changed is loaded again at the next Lock(), or after
    /// the last Unlock() if it is locked now. A resource whose file is gone keeps its content while it is
    /// held. Blocks on the disk.
    void ReloadChanged();

    /// Drops the resources that nobody holds and that have not been used since the last call.
    void DropUnused();

    /// How many resources are kept at this moment.
    std::size_t GetCount() const { return resources.size(); }

private:
    friend class Resource;

    using Resources = std::unordered_map<PString, Resource*, std::hash<PString>, std::equal_to<PString>,
        EngineAllocator<std::pair<const PString, Resource*>>>;

    bool AddOwner(const PString& owner);
    static void Delete(Resource* resource);
    /// The type for that file name, or null.
    static const ResourceTypeBase* FindType(const PString& name);
    /// The owner of the first folder that has the file; false if none has.
    bool FindOwner(const PString& name, PString& owner) const;

    std::list<PString, EngineAllocator<PString>> owners;
    mutable Resources resources;
};

} // namespace Quon
