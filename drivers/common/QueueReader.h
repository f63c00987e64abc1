#pragma once

namespace Quon
{

class SndChannel;
class SndFile;

/// Reads PCM from a channel's file and goes on along the file's queue, or around a loop.
///
/// Owned by the channel that it reads for. All operations need the channel's lock, from whatever thread, and
/// touch nothing but the channel's `sndFile` and the files behind it. Nothing here allocates.
///
/// A file is at its end when it has given its sound samples, or when a read has given nothing. A short read
/// is no end yet: a stream that changes its form ends one at the change. A pass of a loop ends with the
/// file's loop region, too, and the next begins there. A loop ends when two passes in a row have given
/// nothing.
class QueueReader
{
public:
    /// What a read has given.
    enum class Result
    {
        Data, ///< Sample frames of one file stand in the buffer, in the format that the file has now.
        Stepped, ///< The channel has moved on to the next file; nothing was read. Read again.
        End ///< There is nothing to read: the queue has run out, for now.
    };

    /// Begins with the channel's file, wherever it stands.
    void Start(bool isLooping);

    /// Reads up to `wanted` sample frames into `buffer`, as many as fit into `bytes`, all from one file;
    /// their number goes to `sampleFrames`, 0 unless the result is Data. With `wanted` 0 it only moves on
    /// from a file that is at its end. A buffer of minBufferBytes or more always makes progress.
    Result Read(SndChannel& channel, unsigned char* buffer, int bytes, int wanted, int& sampleFrames);

    /// Sample frames that the channel's file, or the present pass of its loop, is still going to give.
    int GetFramesLeft(const SndChannel& channel) const;

    /// Whether Read() would give End. A file that is appended to the queue ends this state.
    bool IsAtEnd(const SndChannel& channel) const;

    /// One sample frame of the largest format that IsPlayable() lets through.
    static constexpr int minBufferBytes = 64 * 4;

private:
    Result MoveOn(SndChannel& channel, SndFile& file);

    bool looping = false;
    bool fileOver = false; ///< A read of the channel's file has given nothing.
    bool passGaveData = false;
    int emptyPasses = 0; ///< Passes of the loop that have given nothing, in a row.
};

} // namespace Quon
