#include "tests/support/LoggingObserver.h"

#include "harmonet/instances/Sound.h"
#include "tests/support/HostTest.h"

namespace Quon
{

SoundNames::SoundNames()
{
    Sound group;
    lastIDBefore = group.New2DSound(PString("none"), nullptr);
    EXPECT_GT(lastIDBefore, 0);
    group.DeleteSound(lastIDBefore);
}

std::string SoundNames::GetName(void* block) const
{
    const auto found = blocks.find(block);
    return found != blocks.end() ? found->second : "unknown block";
}

LoggingObserver::LoggingObserver(const SoundNames& newNames, std::string newPrefix)
    : names(newNames)
    , prefix(std::move(newPrefix))
{
}

// The reaction may destroy this object: it is not used after it.
void LoggingObserver::Record(const std::string& line, const Note& note)
{
    GetRecording().lines.push_back(prefix + line);
    if (const std::function<void(const Note&)> reaction = react) {
        reaction(note);
    }
}

std::string LoggingObserver::Describe(int soundID, const PString& fileName) const
{
    return names.GetName(soundID) + ' ' + std::string(fileName.GetView());
}

void LoggingObserver::OnSoundBegin(int soundID, const PString& fileName)
{
    Record("begin " + Describe(soundID, fileName), {Note::Begin, soundID});
}

void LoggingObserver::OnSoundAbort(int soundID, const PString& fileName, int remaining)
{
    Record("abort " + Describe(soundID, fileName) + ' ' + std::to_string(remaining), {Note::Abort, soundID});
}

void LoggingObserver::OnSoundEnd(int soundID, const PString& fileName)
{
    Record("end " + Describe(soundID, fileName), {Note::End, soundID});
}

void LoggingObserver::OnBufferFree(int soundID, void* buffer)
{
    Record("free " + names.GetName(soundID) + ' ' + names.GetName(buffer), {Note::Free, soundID});
}

void LoggingObserver::OnShutDown()
{
    Record("shutdown", {Note::ShutDown});
}

} // namespace Quon
