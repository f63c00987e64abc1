#pragma once

namespace Quon
{

class SndChannel;
class SndFile;

/// Reads PCM from a channel's file and continues along the file's queue, or around a loop.
///
/// Owned by the channel that it reads for. All operations need the channel's lock, on any thread, and access
/// only the channel's `sndFile` and the files after it. Nothing here allocates.
///
/// A file is at its end when it has delivered its sound samples, or when a read has returned nothing. A short
/// read is not the end: a stream that changes its format ends a read at the change. A pass of a loop also
/// ends at the end of the file's loop region, and the next one begins at its start. A loop ends when two
/// consecutive passes have returned nothing.
class QueueReader
{
public:
    /// What a read has given.
    enum class Result
    {
        Data, ///< Sample frames of one file are in the buffer, in the file's current format.
        Stepped, ///< The channel has advanced to the next file; nothing was read. Read again.
        End ///< There is nothing to read: the queue is exhausted for now.
    };

    /// Starts with the channel's file at its current position.
    void Start(bool isLooping);

    /// Reads up to `wanted` sample frames into `buffer`, as many as fit into `bytes`, all from one file.
    /// Stores their number in `sampleFrames`, 0 unless the result is Data. With `wanted` 0 it only advances
    /// from a file that is at its end. A buffer of minBufferBytes or more always makes progress.
    Result Read(SndChannel& channel, unsigned char* buffer, int bytes, int wanted, int& sampleFrames);

    /// Sample frames left in the channel's file, or in the current pass of its loop.
    int GetFramesLeft(const SndChannel& channel) const;

    /// Whether Read() would return End. Appending a file to the queue ends this state.
    bool IsAtEnd(const SndChannel& channel) const;

    /// One sample frame of the largest format that IsPlayable() accepts.
    static constexpr int minBufferBytes = 64 * 4;

private:
    Result MoveOn(SndChannel& channel, SndFile& file);

    bool looping = false;
    bool fileOver = false; ///< A read of the channel's file has returned nothing.
    bool passGaveData = false;
    int emptyPasses = 0; ///< Consecutive passes of the loop that have returned nothing.
};

} // namespace Quon
