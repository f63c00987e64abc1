#pragma once

#include "harmonet/instances/SoundObserver.h"

#include <string>
#include <unordered_map>

namespace Tool
{

/// Prints a line for each event of a sound and, on a terminal, a status line with the time played.
class PlayReport final : public Quon::SoundObserver
{
public:
    PlayReport();

    /// Sets the name under which the sound is reported. Call before it starts.
    void NameSound(int soundID, const std::string& shown) { names[soundID] = shown; }
    /// Counts a started sound, whose end is then awaited.
    void ExpectSound() { ++unfinished; }

    /// Returns the name of the sound; empty if none was set, as for a source of a line.
    std::string FindName(int soundID) const;
    /// Returns the last line that ShowEvents() would print; empty if there is none.
    std::string GetLastEvent() const;

    /// Returns whether sounds are left that have not ended.
    bool IsUnfinished() const { return unfinished > 0; }

    /// Prints the events since the last call. They are collected first, because a failed write throws, and an
    /// exception must not pass through the library.
    void ShowEvents();
    /// Like ShowEvents(), and also updates the status line on a terminal.
    void ShowProgress(unsigned long playedMs);

    void OnSoundBegin(int soundID, const Quon::PString& fileName) override;
    void OnSoundEnd(int soundID, const Quon::PString& fileName) override;
    void OnSoundAbort(int soundID, const Quon::PString& fileName, int remaining) override;

private:
    void AddEvent(const char* what, int soundID, const std::string& detail = "");

    bool onTerminal;
    int unfinished = 0;
    int running = 0; ///< Sounds that have begun, heard or not.
    std::unordered_map<int, std::string> names;
    std::string events; ///< Lines that have not been printed yet.
};

} // namespace Tool
