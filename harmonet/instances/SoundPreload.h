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

/// Sounds that a game loads when it chooses, as for a level, and keeps in memory until it releases them. No
/// start of such a sound reads a file, be it a sound effect or music, from a definition or a plain file.
///
/// Definitions are parsed and kept, with all their variants. The data lie in the data cache as they stand in
/// the file, so compressed sounds stay compressed. They are kept beside the option "SoundCacheSize", which
/// bounds what is cached without being preloaded: a game can preload more than that, and the cache keeps its
/// size. What several sets hold is in memory once.
///
/// Everything happens on the calling thread, which is the task thread, and blocks on the disk. A set belongs
/// to the sound system that runs: when that stops, its data go, and the set is empty. It may outlive the
/// system and the database.
class HARMONET_API SoundPreload : public Allocated
{
public:
    /// How far an operation has got; what it refers to is valid during the call.
    struct Progress
    {
        const PString& name; ///< What was dealt with last, loaded or not.
        std::size_t done; ///< How many names, that one included.
        std::size_t count; ///< Of so many.
        std::uint64_t bytes; ///< GetBytes().
    };
    /// Called after each name. False cancels the operation; what has been loaded stays. It must neither use
    /// the set nor start or stop the sound system.
    using ProgressCallback = bool (*)(const Progress& progress, void* user);

    SoundPreload() = default;
    SoundPreload(const SoundPreload&) = delete;
    SoundPreload& operator=(const SoundPreload&) = delete;
    /// As Release().
    ~SoundPreload();

    /// Sets the function that is notified of progress; null for none.
    void SetProgress(ProgressCallback newCallback, void* newUser);

    /// Loads the sound of that name, with all the files it can play: the name of a resource if there is a
    /// `db`, else that of a file. False if something could not be loaded, or the progress was cancelled; a
    /// message tells what, and the rest is loaded. Loading what is loaded already changes nothing.
    bool Add(const PString& name, const ResourceDatabase* db);
    /// Loads all sounds of a folder and of those below it; "" is everything there is. With a `db`, its
    /// resources in all folders that were added to it (ResourceDatabase::List()); without, the files of the
    /// root for plain file names that end with .wav or .mp3. False as above, or if the folder cannot be
    /// listed. True for one without sounds.
    bool AddFolder(const char* folder, const ResourceDatabase* db);

    /// Releases everything. Data that fit into the free part of "SoundCacheSize" stay cached and can be
    /// evicted like any; the rest is freed. Sounds that play go on.
    void Release();

    /// Bytes of sound data in memory through this set.
    std::uint64_t GetBytes() const;
    /// How many sound files these are.
    std::size_t GetFileCount() const;

private:
    bool AddAll(const EngineVector<PString>& names, const ResourceDatabase* db);
    bool AddOne(const PString& name, const ResourceDatabase* db);
    bool AddResource(const PString& name, const ResourceDatabase& db);
    bool AddFile(const PString& owner, const PString& fileName);
    bool IsCurrent() const;

    ProgressCallback callback = nullptr;
    void* user = nullptr;
    std::uint32_t cacheSerial = 0; ///< Of the cache that has the data; another one knows nothing of them.
    std::uint64_t bytes = 0;
    EngineVector<SndNode*> nodes; ///< Each held once.
    EngineVector<const Resource*> resources; ///< With a reference on each.
};

} // namespace Quon
