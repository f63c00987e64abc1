#pragma once

#include "harmonet/instances/SoundObserver.h"

#include <string>
#include <unordered_map>

namespace Tool
{

/// Tells the user what becomes of the sounds: a line for each event, and on a terminal a last line that shows
/// how far the playing has come.
class PlayReport final : public Quon::SoundObserver
{
public:
    PlayReport();

    /// That sound is to be called as shown from its start on.
    void NameSound(int soundID, const std::string& shown) { names[soundID] = shown; }
    /// A sound has been started, and its end is waited for.
    void ExpectSound() { ++unfinished; }

    /// What that sound is called; empty for one that has no name of its own here, such as a source of a line.
    std::string FindName(int soundID) const;
    /// The last line that ShowEvents() would print; empty if there is none.
    std::string GetLastEvent() const;

    /// Whether there are sounds that have not come to their end.
    bool IsUnfinished() const { return unfinished > 0; }

    /// Prints what has happened since the last call. The events themselves come while the library runs, which
    /// no failure to write may leave half-way.
    void ShowEvents();
    /// The same, and brings the last line of a terminal up to date.
    void ShowProgress(unsigned long playedMs);

    void OnSoundBegin(int soundID, const Quon::PString& fileName) override;
    void OnSoundEnd(int soundID, const Quon::PString& fileName) override;
    void OnSoundAbort(int soundID, const Quon::PString& fileName, int remaining) override;

private:
    void AddEvent(const char* what, int soundID, const std::string& detail = "");

    bool onTerminal;
    int unfinished = 0;
    int running = 0; ///< Those that have begun, heard or not.
    std::unordered_map<int, std::string> names;
    std::string events; ///< Lines that have not been printed.
};

} // namespace Tool
