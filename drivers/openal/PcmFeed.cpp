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

void PcmFeed::Start(int newOutChannels, bool looping)
{
    reader.Start(looping);
    steps.Clear();
    fadeIn.Cancel();
    softening.Cancel();
    outChannels = newOutChannels;
    hasBegun = false;
    bytes.resize(readBytes);
    block.reserve(2 * maxBlockFrames);
}

void PcmFeed::SoftenNext()
{
    softening.Start(softeningMs);
}

int PcmFeed::Fill(SndChannel& channel, int wanted, double rateHz)
{
    wanted = std::min(wanted, maxBlockFrames);
    block.resize(static_cast<std::size_t>(wanted) * static_cast<std::size_t>(outChannels));
    int filled = 0;
    while (filled < wanted && FillPiece(channel, wanted, filled)) {
    }
    block.resize(static_cast<std::size_t>(filled) * static_cast<std::size_t>(outChannels));
    softening.Apply(block, outChannels, rateHz);
    fadeIn.Apply(block, outChannels, rateHz);
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
        steps.Add({before, channel.GetSndFile(), filled});
        return true;
    case QueueReader::Result::Data:
        break;
    }
    NoticeStart(channel, given);
    const auto width = static_cast<std::size_t>(outChannels);
    const std::span<float> place = std::span(block).subspan(
        static_cast<std::size_t>(filled) * width, static_cast<std::size_t>(given) * width);
    if (outChannels == 1) {
        ConvertToMono(bytes, *before, place);
    }
    else {
        ConvertToStereo(bytes, *before, place);
    }
    filled += given;
    return true;
}

void PcmFeed::NoticeStart(const SndChannel& channel, int justRead)
{
    if (!hasBegun && channel.GetSndFile()->GetCurrentSample() != justRead) {
        SoftenNext();
    }
    hasBegun = true;
}

} // namespace Quon
