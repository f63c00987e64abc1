#pragma once

namespace Quon
{

class PString;
class ResourceDatabase;
class SoundResource;

/// The modes that are passed to ResourceDatabase::Lookup().
enum LookupMode
{
    MusicLookup = 0,
    SoundLookup = 2
};

/// A sound's resource that has been looked up and locked. The destructor unlocks it and releases the
/// reference. Task thread only.
class TakenResource
{
public:
    TakenResource(const PString& name, const ResourceDatabase& database, LookupMode mode);
    ~TakenResource();
    TakenResource(const TakenResource&) = delete;
    TakenResource& operator=(const TakenResource&) = delete;

    /// False if there is no such resource, it is not a sound, or it could not be loaded.
    explicit operator bool() const { return isLocked; }
    const SoundResource* operator->() const { return sound; }
    const SoundResource& operator*() const { return *sound; }

    /// Unlocks early; the reference is kept.
    void Unlock();

private:
    TakenResource() = default;

    const SoundResource* sound = nullptr;
    bool isLocked = false;
};

} // namespace Quon
