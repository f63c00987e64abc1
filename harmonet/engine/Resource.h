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

/// Something that was read from a file and is shared by name. A ResourceDatabase owns it; users hold a
/// reference and, while they read its content, a lock. Derived classes fill themselves in Load() or
/// LoadTxt(). Since users see resources as const, so are all operations, and content is mutable. Task thread
/// only.
class HARMONET_ENGINE_API Resource : public Allocated
{
public:
    /// The codes of Lock() and the load operations; a derived class may give others of its own.
    enum LoadCode
    {
        Loaded = 0,
        /// The file could not be opened or read.
        LoadFailed = 1,
        /// The content cannot be loaded by this entry; another one may do.
        OtherEntry = 6,
    };

    /// \p database, which may be null, tells where the file is; the resource does not keep the pointer.
    Resource(const PString& newName, const ResourceDatabase* database);

    /// A resource has an identity and is not copied: a derived class that is copied gets a fresh one of the
    /// same name and place, which nobody holds and which is not loaded.
    Resource(const Resource& other);
    Resource& operator=(const Resource&) = delete;

    /// Makes sure that the content is loaded and holds it until Unlock(). Locks are counted.
    ///
    /// With a code other than 0 nothing is locked: it is the one that the load gave, and the next call tries
    /// again. Blocks on the disk when it has to load. The flags are for derived classes; this one ignores
    /// them.
    virtual Result Lock(const ResourceDatabase* database, unsigned long flags) const;
    /// The same without flags.
    virtual Result Lock(const ResourceDatabase* database) const;

    /// Gives one lock back; more than were taken are ignored. After the last, content whose file has changed
    /// in the meantime is given up, and the next Lock() loads it again.
    virtual void Unlock() const;

    /// How much the content is worth keeping; kept for whoever asks.
    virtual void SetPriority(float newPriority) const;

    /// Observers are told in the order in which they came, one added twice is told twice. They may be added
    /// and removed while they are told.
    virtual void AddObserver(const ResourceObserver* observer) const;
    virtual void RemoveObserver(const ResourceObserver* observer) const;

    virtual ~Resource();

    /// For a resource of which there can be several with the same content; this one has none and gives null.
    virtual Resource* CreateInstance(const PString& name) const;

    /// Fills the resource from an open file. This one answers OtherEntry; the engine does not call it by
    /// itself.
    virtual Result Load(File& file, bool isBinary) const;

    /// Fills the resource from the file of that name below GetOwnerName(). These answer OtherEntry.
    ///
    /// Load() is called first and LoadTxt() if it answers OtherEntry; a type that says that its files are
    /// text goes to LoadTxt() at once. A class that overrides one overload of Load() says `using
    /// Resource::Load;`.
    virtual Result Load(const ResourceDatabase* database, char* path) const;
    virtual Result LoadTxt(const ResourceDatabase* database, char* path) const;

    /// The content is given up, before it is loaded again or the resource dropped by its database.
    virtual void Unload() const;
    /// The content has been loaded.
    virtual void OnLoad() const;

    /// Entries for file formats made of sections and keys, and for resources made of others. This engine has
    /// neither and calls none of them; they do nothing, or answer OtherEntry.
    virtual Result LoadSectionBegin(int section, const char* sectionName) const;
    virtual Result LoadSectionEnd(int section, const char* sectionName) const;
    virtual Result LoadKey(const ResourceDatabase* database, int key, char* text) const;
    virtual void ReleaseChildren() const;
    virtual void CaptureChildren() const;

    /// Bytes of the object, and of what it holds beside itself. This one answers 0.
    virtual unsigned long CalculateSize() const;
    virtual unsigned long CalculateDataSize() const;

    /// The resource that stands for this one; null, as here, if it stands for itself.
    virtual const Resource* GetRedirection() const;

    /// The name by which the database knows it.
    const PString& GetName() const { return resourceName; }

    /// The owner, in the sense of File, of the folder in which the file was found; empty if it was not found.
    const PString& GetOwnerName() const { return ownerName; }

    /// Marks the resource as used just now, so that its database keeps it for a while.
    void Touch() const { touched = true; }

    /// Takes a reference. While one is held the database keeps the resource.
    void AddReference() const { ++references; }

    /// Gives one reference back; after the last the resource is touched. True if it was the last. A resource
    /// that its database has left behind, because somebody still held it, is deleted with the last.
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
    /// The file is another one by now.
    void NoteChange() const;
    void SetType(const ResourceTypeBase* newType);
    template<class Notice>
    void TellObservers(Notice notice) const;

    PString resourceName;
    PString ownerName;
    /// Null if no database found a type for the name. Held by a reference.
    const ResourceTypeBase* type = nullptr;

    mutable EngineVector<const ResourceObserver*> observers;
    mutable int notifications = 0;
    mutable FileStamp loadedStamp;
    mutable int references = 0;
    mutable int locks = 0;
    mutable float priority = 0.0F;
    mutable bool loaded = false;
    /// The file has changed while the content was locked.
    mutable bool outdated = false;
    mutable bool touched = false;
    /// The database is gone, and the last reference deletes the object.
    mutable bool leftBehind = false;
};

} // namespace Quon
