#pragma once

#include "harmonet/engine/Particle.h"
#include "harmonet/instances/SoundObserver.h"

#include <map>
#include <string>
#include <vector>

namespace Scene
{

/// What became of each sound, and when, as far as a game can see it.
///
/// Begin and end are what the observer is told. Whether a sound that runs is heard at a moment the library
/// does not tell by itself; but positional sounds hang in the scene graph, and a sound that is heard has a
/// channel.
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
        bool isWatched = false; ///< It was seen in the scene graph.
        long leftMs = 0; ///< Of a sound that was cut off; below 0 for one that has no end.
        int mostPlaces = 0; ///< Of a sound along a line: from how many places it was heard at once.
    };

    /// The state in words.
    static const char* GetName(State state);

    /// The time from here on.
    void SetTime(long newNowMs) { nowMs = newNowMs; }

    /// The game has started a sound. Its own name is better known than the one that the observer is told.
    void AddStart(int id, const std::string& file);

    /// Looks at all sounds that hang below the node; after each update.
    void LookAt(const Quon::Particle& world);

    /// A sound along a line is heard from so many places now.
    void SetPlaces(int id, int count);

    /// By id.
    const std::map<int, Entry>& GetEntries() const { return entries; }

    /// The most that ran, and the most that were heard, at one of the looks.
    int GetMostRunning() const { return mostRunning; }
    int GetMostHeard() const { return mostHeard; }

    void OnSoundEnd(int soundID, const Quon::PString& fileName) override;
    void OnSoundAbort(int soundID, const Quon::PString& fileName, int remaining) override;

private:
    void SetState(Entry& entry, State state);
    void Finish(int soundID, State state, long leftMs);

    long nowMs = 0;
    std::map<int, Entry> entries;
    int mostRunning = 0;
    int mostHeard = 0;
};

} // namespace Scene
