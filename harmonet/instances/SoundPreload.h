#pragma once

#include "harmonet/Export.h"
#include "harmonet/engine/Alloc.h"
#include "harmonet/engine/PString.h"

#include <cstddef>
#include <cstdint>

namespace Quon
{

class Resource;
class ResourceDatabase;
struct SndNode;

/// A set of sounds that a game loads in advance, for example for a level, and keeps in memory until it
/// releases them. Starting such a sound does not read a file, whether it is a sound effect or music, from a
/// definition or a plain file.
///
/// Definitions are parsed and kept, with all their variants. The data are in the data cache as stored in the
/// file, so compressed sounds stay compressed. They do not count towards the option "SoundCacheSize", which
/// limits only data that are not preloaded: a game can preload more than that without reducing the size of
/// the cache. Data held by several sets are in memory once.
///
/// Task thread only; the calls block on the disk. A set belongs to the running sound system: when that stops,
/// its data are freed and the set is empty. It may outlive the system and the database.
class HARMONET_API SoundPreload : public Allocated
{
public:
    /// The progress of an operation; its references are valid during the call.
    struct Progress
    {
        const PString& name; ///< The last name processed, whether loaded or not.
        std::size_t done; ///< Number of names processed, including that one.
        std::size_t count; ///< Total number of names.
        std::uint64_t bytes; ///< GetBytes().
    };
    /// Called after each name. Returning false cancels the operation; sounds already loaded stay. It must
    /// neither use the set nor start or stop the sound system.
    using ProgressCallback = bool (*)(const Progress& progress, void* user);

    SoundPreload() = default;
    SoundPreload(const SoundPreload&) = delete;
    SoundPreload& operator=(const SoundPreload&) = delete;
    /// Same as Release().
    ~SoundPreload();

    /// Sets the function that is notified of progress; null for none.
    void SetProgress(ProgressCallback newCallback, void* newUser);

    /// Loads the sound of that name with all files it can play: the name of a resource if there is a `db`,
    /// otherwise that of a file. Returns false if something could not be loaded, or the operation was
    /// cancelled; a message gives the reason, and everything else is loaded. Loading a sound again changes
    /// nothing.
    bool Add(const PString& name, const ResourceDatabase* db);
    /// Loads all sounds of a folder and its subfolders; "" means everything. With a `db`, these are its
    /// resources in all folders added to it (ResourceDatabase::List()); without, the files with the
    /// extensions .wav and .mp3 in the root for plain file names. Returns false as above, or if the folder
    /// cannot be listed; true if it has no sounds.
    bool AddFolder(const char* folder, const ResourceDatabase* db);

    /// Releases everything. Data that fit into the free part of "SoundCacheSize" stay cached and can be
    /// evicted like any others; the rest is freed. Playing sounds continue.
    void Release();

    /// Bytes of sound data in memory through this set.
    std::uint64_t GetBytes() const;
    /// Number of these sound files.
    std::size_t GetFileCount() const;

private:
    bool AddAll(const EngineVector<PString>& names, const ResourceDatabase* db);
    bool AddOne(const PString& name, const ResourceDatabase* db);
    bool AddResource(const PString& name, const ResourceDatabase& db);
    bool AddFile(const PString& owner, const PString& fileName);
    bool IsCurrent() const;

    ProgressCallback callback = nullptr;
    void* user = nullptr;
    std::uint32_t cacheSerial = 0; ///< Serial of the cache that holds the data.
    std::uint64_t bytes = 0;
    EngineVector<SndNode*> nodes; ///< Each held once.
    EngineVector<const Resource*> resources; ///< With a reference on each.
};

} // namespace Quon
