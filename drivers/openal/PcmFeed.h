#pragma once

#include "drivers/common/FileSteps.h"
#include "drivers/common/QueueReader.h"
#include "drivers/openal/Fades.h"
#include "drivers/openal/effects/EffectChain.h"

#include <span>

namespace Quon
{

class SndChannel;
class SndFile;
class SoundFormat;

/// Makes the blocks of PCM that a channel queues: read along the channel's files, turned to float for one or
/// two channels, sent through the sound's insert effects, and with the rises worked in. Owned by a channel;
/// everything under the channel's lock.
///
/// All of a sound is queued at the rate that its first file tells once it has been read from; the effects
/// work at that rate. When there is nothing more to read the effects' tail follows. A file that is appended
/// meanwhile goes on through the effects as they are; until then nothing of the tail belongs to a file.
///
/// A sound that begins in the middle of its file, one that comes back, rises over a few milliseconds, since
/// it would click; one that begins at its first sample is left as it is.
class PcmFeed
{
public:
    /// The most sample frames of one block.
    static constexpr int maxBlockFrames = 8192;

    /// Begins a new sound, with the insert effects among `effectList`, which is copied. `outChannels` is 1 or
    /// 2. Allocates for the effects, and when a channel is used for the first time.
    void Start(int newOutChannels, bool looping, const SoundFormat& format, const SndFXList& effectList);

    /// The sound is over: frees the effects.
    void Finish() { effects.Clear(); }

    /// The sound rises over so many milliseconds from the next block on.
    void FadeIn(int ms) { fadeIn.Start(ms); }

    /// The next block rises as that of a sound that comes back.
    void SoftenNext();

    /// Makes the next block, of `wanted` sample frames to be heard at `heardHz`, at most maxBlockFrames, and
    /// returns how many it has. Fewer than wanted means that the queue has run out, and so has the tail.
    /// Allocates only for effects, once, at a first file that told a wrong rate before it was read.
    int Fill(SndChannel& channel, int wanted, double heardHz);

    /// The block that Fill() made, interleaved.
    std::span<const float> GetBlock() const { return {block.data(), block.size()}; }
    int GetOutChannels() const { return outChannels; }

    /// The steps to further files that the block goes over, their positions counted from its start. The
    /// channel takes them over.
    FileSteps& GetSteps() { return steps; }

    const QueueReader& GetReader() const { return reader; }

    /// The rate of all that Fill() makes; before that, what the file tells.
    int GetRateHz() const { return rateHz; }

    const EffectChain& GetEffects() const { return effects; }

    /// The sample frames of tail that stand at the end of all that has been made; 0 if a file's stand there.
    std::int64_t GetTailFrames() const { return tailFrames; }

private:
    bool FillPiece(SndChannel& channel, int wanted, int& filled);
    int FillTail(int wanted, int filled);
    std::span<float> GetPlace(int begin, int sampleFrames);
    void NoticeStart(const SndFile& file, int justRead);

    QueueReader reader;
    FileSteps steps;
    Rise fadeIn;
    Rise softening;
    EffectChain effects;
    int outChannels = 1;
    int rateHz = 1;
    bool hasBegun = false; ///< Something has been read.
    std::int64_t tailFrames = 0;
    bool isTailOver = false;
    EngineVector<unsigned char> bytes;
    EngineVector<float> block;
};

} // namespace Quon
