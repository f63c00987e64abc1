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

    /// A sound of that file is going to be started, and is to be called as shown.
    void ExpectSound(const Quon::PString& fileName, const std::string& shown);

    /// Whether there are sounds that have not come to their end.
    bool IsUnfinished() const { return unfinished > 0; }

    /// Brings the last line up to date. Nothing where there is no terminal.
    void ShowProgress(unsigned long playedMs);

    void OnSoundBegin(int soundID, const Quon::PString& fileName) override;
    void OnSoundEnd(int soundID, const Quon::PString& fileName) override;
    void OnSoundAbort(int soundID, const Quon::PString& fileName, int remaining) override;

private:
    void PrintEvent(const char* what, const Quon::PString& fileName, const std::string& detail = "");

    bool onTerminal;
    int unfinished = 0;
    int running = 0; ///< Those that have begun, heard or not.
    std::unordered_map<std::string, std::string> names;
};

} // namespace Tool
