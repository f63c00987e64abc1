#include "drivers/openal/PcmFeed.h"

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
constexpr double softeningMs = 5.0;
} // namespace

void PcmFeed::Start(int newOutChannels, bool looping, const SoundFormat& format, const SndFXList& effectList)
{
    reader.Start(looping);
    steps.Clear();
    fadeIn.Cancel();
    softening.Cancel();
    outChannels = newOutChannels;
    rateHz = format.GetSampleFrequency();
    effects.Build(effectList, {rateHz, outChannels});
    hasBegun = false;
    tailFrames = 0;
    isTailOver = false;
    bytes.resize(readBytes);
    block.reserve(2 * maxBlockFrames);
}

void PcmFeed::SoftenNext()
{
    softening.Start(softeningMs);
}

int PcmFeed::Fill(SndChannel& channel, int wanted, double heardHz)
{
    wanted = std::min(wanted, maxBlockFrames);
    block.resize(static_cast<std::size_t>(wanted) * static_cast<std::size_t>(outChannels));
    int filled = 0;
    while (filled < wanted && FillPiece(channel, wanted, filled)) {
    }
    if (filled < wanted) {
        filled += FillTail(wanted, filled);
    }
    block.resize(static_cast<std::size_t>(filled) * static_cast<std::size_t>(outChannels));
    softening.Apply(block, outChannels, heardHz);
    fadeIn.Apply(block, outChannels, heardHz);
    return filled;
}

// False when the queue has run out.
bool PcmFeed::FillPiece(SndChannel& channel, int wanted, int& filled)
{
    SndFile* const before = channel.GetSndFile();
    int given = 0;
    switch (reader.Read(channel, bytes.data(), static_cast<int>(bytes.size()), wanted - filled, given)) {
    case QueueReader::Result::End:
        return false;
    case QueueReader::Result::Stepped:
        steps.Add({before, channel.GetSndFile(), filled, filled - tailFrames});
        return true;
    case QueueReader::Result::Data:
        break;
    }
    NoticeStart(*before, given);
    const std::span<float> place = GetPlace(filled, given);
    if (outChannels == 1) {
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
    filled += given;
    return true;
}

int PcmFeed::FillTail(int wanted, int filled)
{
    if (effects.IsEmpty() || !hasBegun || isTailOver) {
        return 0;
    }
    const auto given = static_cast<int>(effects.ProcessTail(GetPlace(filled, wanted - filled)));
    isTailOver = given < wanted - filled;
    tailFrames += given;
    return given;
}

std::span<float> PcmFeed::GetPlace(int begin, int sampleFrames)
{
    const auto width = static_cast<std::size_t>(outChannels);
    return std::span(block).subspan(
        static_cast<std::size_t>(begin) * width, static_cast<std::size_t>(sampleFrames) * width);
}

void PcmFeed::NoticeStart(const SndFile& file, int justRead)
{
    if (hasBegun) {
        return;
    }
    hasBegun = true;
    if (file.GetCurrentSample() != justRead) {
        SoftenNext();
    }
    // A stream tells its rate for certain only once it has been read from.
    rateHz = std::max(file.GetSampleFrequency(), 1);
    effects.SetRate(rateHz);
}

} // namespace Quon
