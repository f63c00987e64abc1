#pragma once

#include "harmonet/engine/Particle.h"
#include "harmonet/instances/SoundObserver.h"

#include <map>
#include <string>
#include <vector>

namespace Scene
{

/// Records what happens to each sound and when, as far as a game can observe it.
///
/// The observer is notified of begin and end. Whether a running sound is heard is read from the scene graph:
/// positional sounds are nodes of it, and a sound that is heard has a channel.
class SoundHistory final : public Quon::SoundObserver
{
public:
    enum class State
    {
        Started,
        Heard,
        HeardAgain,
        Emulated,
        Ended,
        CutOff
    };

    struct Change
    {
        long atMs;
        State state;
    };

    struct Entry
    {
        std::string file;
        std::vector<Change> changes;
        bool isRunning = false;
        bool isWatched = false; ///< Whether it was found in the scene graph.
        long leftMs = 0; ///< For a sound that was cut off: the time left; negative for a loop.
        int maxPlaces = 0; ///< For a sound along a line: the maximum number of simultaneous sources.
    };

    /// Returns the state in words.
    static const char* GetName(State state);

    /// Sets the time of the changes that follow.
    void SetTime(long newNowMs) { nowMs = newNowMs; }

    /// Records that the game has started a sound, under the name that the game uses.
    void AddStart(int id, const std::string& file);

    /// Records the state of all sounds below the node. Call after each update.
    void RecordStates(const Quon::Particle& world);

    /// Records the number of sources from which a sound along a line is heard now.
    void SetPlaces(int id, int count);

    /// By id.
    const std::map<int, Entry>& GetEntries() const { return entries; }

    /// The maximum number of sounds that ran, and that were heard, at any call of RecordStates().
    int GetMaxRunning() const { return maxRunning; }
    int GetMaxHeard() const { return maxHeard; }

    void OnSoundEnd(int soundID, const Quon::PString& fileName) override;
    void OnSoundAbort(int soundID, const Quon::PString& fileName, int remaining) override;

private:
    void SetState(Entry& entry, State state);
    void Finish(int soundID, State state, long leftMs);

    long nowMs = 0;
    std::map<int, Entry> entries;
    int maxRunning = 0;
    int maxHeard = 0;
};

} // namespace Scene
