#pragma once

namespace Quon
{

class PString;
class ResourceDatabase;
class SoundResource;

/// A sound's resource that has been looked up and locked. Unlocks it and gives the reference back at the end
/// of its life. Task thread only.
class TakenResource
{
public:
    /// `mode` goes to ResourceDatabase::Lookup().
    TakenResource(const PString& name, const ResourceDatabase& database, int mode);
    ~TakenResource();
    TakenResource(const TakenResource&) = delete;
    TakenResource& operator=(const TakenResource&) = delete;

    /// False when there is no such resource, it is no sound, or it could not be loaded.
    explicit operator bool() const { return isLocked; }
    const SoundResource* operator->() const { return sound; }
    const SoundResource& operator*() const { return *sound; }

    /// Unlocks ahead of time; the reference stays.
    void Unlock();

private:
    TakenResource() = default;

    const SoundResource* sound = nullptr;
    bool isLocked = false;
};

} // namespace Quon
