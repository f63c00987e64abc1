#include "drivers/common/QueueReader.h"

#include "drivers/common/DriverChannel.h"
#include "harmonet/files/SndFile.h"

#include <algorithm>

namespace Quon
{

namespace
{

constexpr int maxEmptyPasses = 2;

// A stream can change its format in the middle of a read, but only to at most two channels of 16 bits: its
// reader writes the new format at once, and the buffer must have room for it.
int GetBufferFrames(const SoundFormat& format, int bytes)
{
    return bytes / (std::max(format.GetChannels(), 2) * std::max(format.GetBytesPerSample(), 2));
}

} // namespace

void QueueReader::Start(bool isLooping)
{
    looping = isLooping;
    fileOver = false;
    passGaveData = false;
    emptyPasses = 0;
}

QueueReader::Result QueueReader::Read(
    SndChannel& channel, unsigned char* buffer, int bytes, int wanted, int& sampleFrames)
{
    sampleFrames = 0;
    SndFile* const file = channel.GetSndFile();
    if (!file) {
        return Result::End;
    }
    while (true) {
        const int left = GetFramesLeft(channel);
        if (left > 0) {
            const int asked = std::min({wanted, left, GetBufferFrames(*file, bytes)});
            if (asked <= 0) {
                return Result::Data;
            }
            const int given = std::clamp(file->ReadSamples(buffer, asked), 0, asked);
            // Not at the first short read: a stream that changes its format ends a read at the change.
            fileOver = given == 0;
            if (given > 0) {
                passGaveData = true;
                sampleFrames = given;
                return Result::Data;
            }
        }
        const Result result = MoveOn(channel, *file);
        if (result != Result::Data) {
            return result;
        }
    }
}

// Data means that the loop has begun a new pass.
QueueReader::Result QueueReader::MoveOn(SndChannel& channel, SndFile& file)
{
    if (looping) {
        emptyPasses = passGaveData ? 0 : std::min(emptyPasses + 1, maxEmptyPasses);
        if (emptyPasses == maxEmptyPasses) {
            return Result::End;
        }
        file.RewindLoop();
    }
    else {
        SndFile* const next = file.GetNext();
        if (!next) {
            return Result::End;
        }
        channel.SetSndFile(next);
    }
    fileOver = false;
    passGaveData = false;
    return looping ? Result::Data : Result::Stepped;
}

int QueueReader::GetFramesLeft(const SndChannel& channel) const
{
    const SndFile* const file = channel.GetSndFile();
    if (!file || fileOver || !IsPlayable(*file)) {
        return 0;
    }
    const int end = looping ? file->GetPassEnd() : file->GetSoundSamples();
    return std::max(end - file->GetCurrentSample(), 0);
}

bool QueueReader::IsAtEnd(const SndChannel& channel) const
{
    const SndFile* const file = channel.GetSndFile();
    if (!file) {
        return true;
    }
    if (looping) {
        return emptyPasses == maxEmptyPasses;
    }
    return GetFramesLeft(channel) == 0 && !file->GetNext();
}

} // namespace Quon
