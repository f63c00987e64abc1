#pragma once

#include "harmonet/engine/Alloc.h"
#include "harmonet/engine/File.h"
#include "harmonet/engine/PString.h"
#include "harmonet/engine/Result.h"

namespace Quon
{

class ResourceDatabase;
class ResourceObserver;
class ResourceTypeBase;

/// An object that is read from a file and shared by name. A ResourceDatabase owns it; users hold a reference
/// and, while they read its content, a lock. Derived classes read their content in Load() or LoadTxt(). Users
/// access resources as const, so all operations are const and the content is mutable. Task thread only.
class HARMONET_ENGINE_API Resource : public Allocated
{
public:
    /// The results of Lock() and the load operations; a derived class may add its own.
    enum LoadCode
    {
        Loaded = 0,
        /// The file could not be opened or read.
        LoadFailed = 1,
        /// This load operation does not support the content; another one may.
        OtherEntry = 6,
    };

    /// \p database, which may be null, is used to find the file; the resource does not store the pointer.
    Resource(const PString& newName, const ResourceDatabase* database);

    /// A resource has an identity that is not copied: copying a derived class constructs a new resource of
    /// the same name and location that has no references and is not loaded.
    Resource(const Resource& other);
    Resource& operator=(const Resource&) = delete;

    /// Loads the content if necessary and keeps it until Unlock(). Locks are counted.
    ///
    /// A result other than 0 is that of the load; nothing is locked then, and the next call tries again.
    /// Blocks on the disk if it has to load. The flags are for derived classes; the default ignores them.
    virtual Result Lock(const ResourceDatabase* database, unsigned long flags) const;
    /// Same as above without flags.
    virtual Result Lock(const ResourceDatabase* database) const;

    /// Releases one lock; excess calls are ignored. After the last, content whose file has changed is
    /// unloaded, and the next Lock() loads it again.
    virtual void Unlock() const;

    /// How important it is to keep the content. Only stored, for users that query it.
    virtual void SetPriority(float newPriority) const;

    /// Observers are notified in the order in which they were added; one added twice is notified twice. They
    /// may be added and removed during a notification.
    virtual void AddObserver(const ResourceObserver* observer) const;
    virtual void RemoveObserver(const ResourceObserver* observer) const;

    virtual ~Resource();

    /// For resources that can have several instances with the same content. The default returns null.
    virtual Resource* CreateInstance(const PString& name) const;

    /// Loads the resource from an open file. The default returns OtherEntry; the engine itself does not call
    /// it.
    virtual Result Load(File& file, bool isBinary) const;

    /// Loads the resource from the file of that name below GetOwnerName(). The defaults return OtherEntry.
    ///
    /// Load() is called first, and LoadTxt() if it returns OtherEntry; for a type whose files are text,
    /// LoadTxt() is called directly. A class that overrides one overload of Load() needs `using
    /// Resource::Load;`.
    virtual Result Load(const ResourceDatabase* database, char* path) const;
    virtual Result LoadTxt(const ResourceDatabase* database, char* path) const;

    /// Unloads the content, before it is loaded again or the resource is dropped by its database.
    virtual void Unload() const;
    /// Called after the content has been loaded.
    virtual void OnLoad() const;

    /// Entry points for file formats made of sections and keys, and for resources composed of others. This
    /// engine has neither and does not call them; they do nothing or return OtherEntry.
    virtual Result LoadSectionBegin(int section, const char* sectionName) const;
    virtual Result LoadSectionEnd(int section, const char* sectionName) const;
    virtual Result LoadKey(const ResourceDatabase* database, int key, char* text) const;
    virtual void ReleaseChildren() const;
    virtual void CaptureChildren() const;

    /// Bytes of the object and of the memory it owns. The default returns 0.
    virtual unsigned long CalculateSize() const;
    virtual unsigned long CalculateDataSize() const;

    /// The resource that replaces this one; null, the default, if there is none.
    virtual const Resource* GetRedirection() const;

    /// The name by which the database knows it.
    const PString& GetName() const { return resourceName; }

    /// The owner (see File) of the folder in which the file was found; empty if it was not found.
    const PString& GetOwnerName() const { return ownerName; }

    /// Marks the resource as recently used, so that its database keeps it for a while.
    void Touch() const { touched = true; }

    /// Takes a reference. While one is held the database keeps the resource.
    void AddReference() const { ++references; }

    /// Releases one reference; after the last the resource is touched. Returns true if it was the last. A
    /// resource that was still referenced when its database was destroyed is deleted with the last.
    bool ReleaseReference() const;

    /// The references and locks that are held now, and whether the content is loaded.
    int GetReferenceCount() const { return references; }
    int GetLockCount() const { return locks; }
    bool IsLoaded() const { return loaded; }
    /// As set by SetPriority().
    float GetPriority() const { return priority; }

private:
    friend class ResourceDatabase;

    Result LoadContent(const ResourceDatabase* database) const;
    void GiveUpContent() const;
    /// Called when the file has changed.
    void NoteChange() const;
    void SetType(const ResourceTypeBase* newType);
    template<class Notice>
    void NotifyObservers(Notice notice) const;

    PString resourceName;
    PString ownerName;
    /// Null if no database found a type for the name. Holds a reference.
    const ResourceTypeBase* type = nullptr;

    mutable EngineVector<const ResourceObserver*> observers;
    mutable int notifications = 0;
    mutable FileStamp loadedStamp;
    mutable int references = 0;
    mutable int locks = 0;
    mutable float priority = 0.0F;
    mutable bool loaded = false;
    /// Whether the file has changed while the content was locked.
    mutable bool outdated = false;
    mutable bool touched = false;
    /// Whether the database has been destroyed, so that the last reference deletes the object.
    mutable bool leftBehind = false;
};

} // namespace Quon
