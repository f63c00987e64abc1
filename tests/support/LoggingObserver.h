#pragma once

#include "harmonet/instances/SoundObserver.h"
#include "tests/support/Recording.h"

namespace Quon
{

/// What a test calls its sounds and its blocks of memory in the log: "#1" is the first sound that is made
/// after this object.
class SoundNames
{
public:
    /// Needs a running sound system.
    SoundNames();

    int GetLastIDBefore() const { return lastIDBefore; }
    std::string GetName(int id) const { return '#' + std::to_string(id - lastIDBefore); }
    std::string GetName(void* block) const;
    void SetName(void* block, const std::string& name) { blocks[block] = name; }

private:
    int lastIDBefore;
    std::map<void*, std::string> blocks;
};

/// A notification.
struct Note
{
    enum Kind
    {
        Begin,
        End,
        Abort,
        Free,
        ShutDown
    };

    Kind kind;
    int id = 0;
};

/// Records its notifications in the recording driver's log, so that calls and notifications are in one order,
/// and then does what the test requests.
class LoggingObserver : public SoundObserver
{
public:
    /// `newPrefix` begins its lines. `newNames` must outlive it.
    explicit LoggingObserver(const SoundNames& newNames, std::string newPrefix = "");

    std::function<void(const Note&)> react;

    void OnSoundBegin(int soundID, const PString& fileName) override;
    void OnSoundAbort(int soundID, const PString& fileName, int remaining) override;
    void OnSoundEnd(int soundID, const PString& fileName) override;
    void OnBufferFree(int soundID, void* buffer) override;
    void OnShutDown() override;

private:
    void Record(const std::string& line, const Note& note);
    std::string Describe(int soundID, const PString& fileName) const;

    const SoundNames& names;
    const std::string prefix;
};

} // namespace Quon
