#include "tests/support/RecordingState.h"

#include "drivers/common/DriverExport.h"
#include "harmonet/files/SndFile.h"
#include "tests/support/RecordingDriver.h"

#include <algorithm>

namespace Quon
{

RecordingState recording;

int RecordingState::Read(int channel, int sampleFrames)
{
    const ChannelRecord& record = channels.at(channel);
    const bool isLooping = record.flags & ChanLooping;
    record.channel->Lock();
    SndFile* const file = record.channel->GetSndFile();
    std::vector<unsigned char> pcm(static_cast<std::size_t>(sampleFrames) *
        static_cast<std::size_t>(file->GetBytesPerSample() * file->GetChannels()));
    int read = 0;
    while (read < sampleFrames) {
        const int end = isLooping ? file->GetPassEnd() : file->GetSoundSamples();
        const int left = std::max(end - file->GetCurrentSample(), 0);
        const int got = file->ReadSamples(pcm.data(), std::min(sampleFrames - read, left));
        read += got;
        if (got == 0 && (!isLooping || file->GetCurrentSample() == 0)) {
            break;
        }
        if (got == 0) {
            file->RewindLoop();
        }
    }
    record.channel->Unlock();
    return read;
}

void RecordingState::StepFile(int channel)
{
    SndChannel* const stepping = channels.at(channel).channel;
    stepping->Lock();
    SndFile* const oldFile = stepping->GetSndFile();
    SndFile* const newFile = oldFile->GetNext();
    stepping->SetSndFile(newFile);
    stepping->Unlock();
    SndFileChange change{stepping, newFile, oldFile};
    driver->Send(SndFileChanged, &change);
}

void RecordingState::End(int channel)
{
    SndChannel* const ended = channels.at(channel).channel;
    // It must not be called from here on.
    channels.erase(channel);
    driver->Send(SndChannelEnded, ended);
}

void RecordingState::Reset()
{
    lines.clear();
    violations.clear();
    giveNoDriver = refuseOpen = refuseFrequency = reportsFrequency = refuseFX = hasLiveFX = false;
    channelLimit = std::numeric_limits<int>::max();
    caps = 0;
    atBegin.clear();
    atEnd.clear();
    maxChannels = 0;
}

void RecordingState::Require(bool holds, const std::string& otherwise)
{
    if (!holds) {
        violations.push_back(otherwise);
    }
}

} // namespace Quon

HARMONET_DRIVER_EXPORT Quon::SndDriver* CreateSoundDriver()
{
    return Quon::recording.giveNoDriver ? nullptr : new Quon::RecordingDriver;
}

HARMONET_DRIVER_EXPORT Quon::Recording* GetRecording()
{
    return &Quon::recording;
}
