#pragma once

#include "drivers/common/FileSteps.h"
#include "drivers/common/QueueReader.h"
#include "drivers/openal/PcmFifo.h"
#include "drivers/openal/effects/EffectChain.h"

namespace Quon
{

class SndChannel;
class SndFile;
class SoundFormat;

/// Reads one sound: along the channel's files, as floats of one or two channels, through the sound's insert
/// effects. Keeps what has been read until it is converted and queued. Owned by a channel's feed; everything
/// under the channel's lock, from whatever thread.
///
/// All of a sound is one stream of sample frames, at the rate that its first file tells once it has been read
/// from; the effects work at that rate. When there is nothing more to read the effects' tail follows. A file
/// that is appended meanwhile goes on through the effects as they are; until then nothing of the tail belongs
/// to a file.
class SoundReader
{
public:
    /// Begins a new sound, with the insert effects among `effectList`, which is copied. `outChannels` is 1 or
    /// 2; a sound of one channel without effects stays at one. Allocates for the effects, and when a channel
    /// is used for the first time.
    void Start(int outChannels, bool looping, const SndFile& file, const SndFXList& effectList);

    /// The sound is over: frees the effects.
    void Finish() { effects.Clear(); }

    /// Reads until the stream's sample frame before number `end` is held. False when the queue has run out
    /// before that. Allocates only to hold more than ever before, and for effects, once, at a first file that
    /// told a wrong rate before it was read.
    bool ReadTo(SndChannel& channel, std::int64_t end);

    /// The same for the tail of the effects, once ReadTo() has given false. False when that is over too.
    bool ReadTailTo(std::int64_t end);

    /// Forgets what is before a sample frame of the stream.
    void DropBefore(std::int64_t begin) { fifo.DropBefore(begin); }

    /// Whether something has been read; the rate is certain from then on.
    bool HasBegun() const { return hasBegun; }
    /// Whether that began in the middle of its file, as a sound does that comes back.
    bool BeganInside() const { return beganInside; }

    const PcmFifo& GetStream() const { return fifo; }
    int GetRateHz() const { return rateHz; }
    int GetWidth() const { return fifo.GetWidth(); }
    const QueueReader& GetReader() const { return reader; }
    const EffectChain& GetEffects() const { return effects; }

    /// The steps to further files, in sample frames of the stream. The channel takes them over.
    FileSteps& GetSteps() { return steps; }

    /// The sample frames of tail at the end of all that has been read; 0 if a file's stand there.
    std::int64_t GetTailFrames() const { return tailFrames; }
    /// How often a loop has begun anew.
    std::int64_t GetWraps() const { return wraps; }
    /// Where the file's own sample frames end in the stream.
    std::int64_t GetFileEnd() const { return fifo.GetEnd() - tailFrames; }

    /// Puts the files back to where sample frame `heard` of the stream is the next: `steps` are those of the
    /// stream that have not been reported. Returns the file that the channel is to stand at.
    SndFile* PutBack(const FileSteps& unreported, SndFile* current, std::int64_t heard) const;

private:
    bool ReadPiece(SndChannel& channel, int wanted);
    void NoticeData(const SndFile& file, int justRead);
    void PutBackLoop(SndFile& file, std::int64_t unheard) const;

    QueueReader reader;
    FileSteps steps;
    EffectChain effects;
    PcmFifo fifo;
    bool isLooping = false;
    int rateHz = 1;
    bool hasBegun = false;
    bool beganInside = false;
    std::int64_t wraps = 0;
    int passEnd = 0; ///< Where the pass of a loop before this one ended in the file.
    int filePosition = 0; ///< Behind what has been read last.
    std::int64_t tailFrames = 0;
    bool isTailOver = false;
    EngineVector<unsigned char> bytes;
};

} // namespace Quon
