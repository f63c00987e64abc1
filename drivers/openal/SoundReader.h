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

/// Reads one sound along the channel's files as floats of one or two channels and applies the sound's insert
/// effects. Keeps the data until they are converted and queued. Owned by a channel's feed; guarded by the
/// channel's lock, on any thread.
///
/// A sound is one stream of sample frames, at the rate of its first file after a read; the effects run at
/// that rate. After the end of the data the effects' tail follows. A file appended meanwhile continues
/// through the effects in their current state; until then the tail does not belong to any file.
class SoundReader
{
public:
    /// Starts a new sound, with the insert effects of `effectList`, which is copied. `outChannels` is 1 or 2;
    /// a mono sound without effects stays mono. Allocates for the effects, and when a channel is used for the
    /// first time.
    void Start(int outChannels, bool looping, const SndFile& file, const SndFXList& effectList);

    /// Ends the sound and frees the effects.
    void Finish() { effects.Clear(); }

    /// Reads until the stream's sample frames before number `end` are in the buffer. Returns false if the
    /// queue is exhausted before that. Allocates only to hold more than ever before, and once for effects if
    /// the first file reported a wrong rate before it was read.
    bool ReadTo(SndChannel& channel, std::int64_t end);

    /// The same for the tail of the effects, after ReadTo() has returned false. Returns false when the tail
    /// has ended too.
    bool ReadTailTo(std::int64_t end);

    /// Drops the data before a sample frame of the stream.
    void DropBefore(std::int64_t begin) { fifo.DropBefore(begin); }

    /// Whether data have been read; the rate is certain from then on.
    bool HasBegun() const { return hasBegun; }
    /// Whether reading began in the middle of the file, as for a sound that resumes.
    bool BeganInside() const { return beganInside; }

    const PcmFifo& GetStream() const { return fifo; }
    int GetRateHz() const { return rateHz; }
    int GetWidth() const { return fifo.GetWidth(); }
    const QueueReader& GetReader() const { return reader; }
    const EffectChain& GetEffects() const { return effects; }

    /// The steps to further files, in sample frames of the stream. The channel takes them from here.
    FileSteps& GetSteps() { return steps; }

    /// The sample frames of tail at the end of the data read; 0 if they end with a file's data.
    std::int64_t GetTailFrames() const { return tailFrames; }
    /// Number of times that a loop has restarted.
    std::int64_t GetWraps() const { return wraps; }
    /// The position in the stream at which the file's own sample frames end.
    std::int64_t GetFileEnd() const { return fifo.GetEnd() - tailFrames; }

    /// Resets the files so that sample frame `heard` of the stream is the next one. `unreported` are the
    /// stream's unreported steps. Returns the file that the channel must be set to.
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
    int passEnd = 0; ///< End of the previous pass of a loop in the file.
    int filePosition = 0; ///< After the last data read.
    std::int64_t tailFrames = 0;
    bool isTailOver = false;
    EngineVector<unsigned char> bytes;
};

} // namespace Quon
