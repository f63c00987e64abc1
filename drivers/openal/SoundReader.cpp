#include "drivers/openal/SoundReader.h"

#include "drivers/openal/PcmConverter.h"
#include "harmonet/files/SndFile.h"
#include "harmonet/output/SndChannel.h"

#include <algorithm>

namespace Quon
{

namespace
{
constexpr std::size_t readBytes = 16384;
static_assert(readBytes >= QueueReader::minBufferBytes);
constexpr std::int64_t maxSampleFramesAtOnce = 8192;
} // namespace

void SoundReader::Start(int outChannels, bool looping, const SndFile& file, const SndFXList& effectList)
{
    isLooping = looping;
    reader.Start(looping);
    steps.Clear();
    rateHz = file.GetSampleFrequency();
    effects.Build(effectList, {rateHz, outChannels});
    fifo.Start(effects.IsEmpty() && file.GetChannels() == 1 ? 1 : outChannels);
    hasBegun = beganInside = false;
    wraps = 0;
    passEnd = 0;
    filePosition = file.GetCurrentSample();
    tailFrames = 0;
    isTailOver = false;
    bytes.resize(readBytes);
}

bool SoundReader::ReadTo(SndChannel& channel, std::int64_t end)
{
    while (fifo.GetEnd() < end) {
        const std::int64_t wanted = std::min(end - fifo.GetEnd(), maxSampleFramesAtOnce);
        if (!ReadPiece(channel, static_cast<int>(wanted))) {
            return false;
        }
    }
    return true;
}

// Returns false when the queue is exhausted.
bool SoundReader::ReadPiece(SndChannel& channel, int wanted)
{
    SndFile* const before = channel.GetSndFile();
    int given = 0;
    switch (reader.Read(channel, bytes.data(), static_cast<int>(bytes.size()), wanted, given)) {
    case QueueReader::Result::End:
        return false;
    case QueueReader::Result::Stepped:
        steps.Add({before, channel.GetSndFile(), fifo.GetEnd(), GetFileEnd()});
        filePosition = channel.GetSndFile()->GetCurrentSample();
        return true;
    case QueueReader::Result::Data:
        break;
    }
    NoticeData(*before, given);
    const std::span<float> place = fifo.Extend(given);
    if (fifo.GetWidth() == 1) {
        ConvertToMono(bytes, *before, place);
    }
    else {
        ConvertToStereo(bytes, *before, place);
    }
    if (!effects.IsEmpty()) {
        effects.Process(place);
    }
    tailFrames = 0;
    isTailOver = false;
    return true;
}

void SoundReader::NoticeData(const SndFile& file, int justRead)
{
    const int begin = file.GetCurrentSample() - justRead;
    if (!hasBegun) {
        hasBegun = true;
        beganInside = begin != 0;
        // The start samples may have been skipped after the channel was created.
        filePosition = begin;
        // The rate of a stream is certain only after a read.
        rateHz = std::max(file.GetSampleFrequency(), 1);
        effects.SetRate(rateHz);
    }
    if (isLooping && begin != filePosition) {
        passEnd = filePosition;
        ++wraps;
    }
    filePosition = begin + justRead;
}

bool SoundReader::ReadTailTo(std::int64_t end)
{
    if (effects.IsEmpty() || !hasBegun) {
        return false;
    }
    while (fifo.GetEnd() < end && !isTailOver) {
        const auto wanted = static_cast<int>(std::min(end - fifo.GetEnd(), maxSampleFramesAtOnce));
        const auto given = static_cast<int>(effects.ProcessTail(fifo.Extend(wanted)));
        fifo.Shrink(wanted - given);
        isTailOver = given < wanted;
        tailFrames += given;
    }
    return fifo.GetEnd() >= end;
}

SndFile* SoundReader::PutBack(const FileSteps& unreported, SndFile* current, std::int64_t heard) const
{
    std::int64_t begin = unreported.GetReportedPosition();
    for (const FileStep& step : unreported) {
        step.oldFile->StepBack(
            static_cast<int>(std::max<std::int64_t>(step.oldEnd - std::max(heard, begin), 0)));
        begin = step.position;
    }
    const std::int64_t unheard = GetFileEnd() - std::max(heard, begin);
    if (current && unheard > 0) {
        if (isLooping) {
            PutBackLoop(*current, unheard);
        }
        else {
            current->StepBack(static_cast<int>(unheard));
        }
    }
    return unreported.GetOldestFile(current);
}

void SoundReader::PutBackLoop(SndFile& file, std::int64_t unheard) const
{
    const int start = file.GetLoopStart();
    const std::int64_t readInPass = filePosition - start;
    if (unheard <= readInPass || wraps == 0) {
        file.StepBack(static_cast<int>(unheard));
        return;
    }
    // Whole passes are skipped, except the first one, which is longer if it began before the region.
    const std::int64_t passLength = std::max(passEnd - start, 1);
    std::int64_t before = unheard - readInPass;
    before -= std::min((before - 1) / passLength, wraps - 1) * passLength;
    file.SeekTo(static_cast<int>(std::max<std::int64_t>(passEnd - before, 0)));
}

} // namespace Quon
