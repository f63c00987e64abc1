#pragma once

#include "drivers/common/FileSteps.h"
#include "drivers/common/QueueReader.h"
#include "drivers/openal/Fades.h"

#include <span>

namespace Quon
{

class SndChannel;

/// Makes the blocks of PCM that a channel queues: read along the channel's files, turned to float for one or
/// two channels, and with the rises worked in. Owned by a channel; everything under the channel's lock.
///
/// A sound that begins in the middle of its file, one that comes back, rises over a few milliseconds, since
/// it would click; one that begins at its first sample is left as it is.
class PcmFeed
{
public:
    /// The most sample frames of one block.
    static constexpr int maxBlockFrames = 8192;

    /// Begins a new sound. `outChannels` is 1 or 2. Allocates when a channel is used for the first time.
    void Start(int newOutChannels, bool looping);

    /// The sound rises over so many milliseconds from the next block on.
    void FadeIn(int ms) { fadeIn.Start(ms); }

    /// The next block rises as that of a sound that comes back.
    void SoftenNext();

    /// Makes the next block, of `wanted` sample frames to be heard at `rateHz`, at most maxBlockFrames, and
    /// returns how many it has. Fewer than wanted means that the queue has run out.
    int Fill(SndChannel& channel, int wanted, double rateHz);

    /// The block that Fill() made, interleaved.
    std::span<const float> GetBlock() const { return {block.data(), block.size()}; }
    int GetOutChannels() const { return outChannels; }

    /// The steps to further files that the block goes over, their positions counted from its start. The
    /// channel takes them over.
    FileSteps& GetSteps() { return steps; }

    const QueueReader& GetReader() const { return reader; }

private:
    bool FillPiece(SndChannel& channel, int wanted, int& filled);
    void NoticeStart(const SndChannel& channel, int justRead);

    QueueReader reader;
    FileSteps steps;
    Rise fadeIn;
    Rise softening;
    int outChannels = 1;
    bool hasBegun = false;
    EngineVector<unsigned char> bytes;
    EngineVector<float> block;
};

} // namespace Quon
