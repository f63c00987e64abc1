#pragma once

#include "harmonet/Export.h"
#include "harmonet/engine/Alloc.h"
#include "harmonet/engine/PString.h"
#include "harmonet/files/WaveFormatEx.h"
#include "harmonet/output/SoundFormat.h"

#include <cstdint>

namespace Quon
{

class SndFileCache;
class SndFileHandle;
class Sound;
struct SndNode;

/// A reader of one piece of sound data: it delivers PCM from a position counted in sample frames, skips
/// forward, and rewinds to the start.
///
/// It hides where the data are stored (a shared open file, bytes in the data cache, memory of the caller) and
/// how they are coded. Every playing sound has its own reader; several readers can share one open file or one
/// piece of cached data, each at its own position. A reader does not loop, does not wrap around and does not
/// pad with silence. The format that it inherits from SoundFormat is that of the PCM it delivers.
///
/// *Threads.* A reader takes no lock and must be used by one thread at a time. A driver's own thread may read
/// while it holds the lock of the channel that plays the file; everything else runs on the task thread.
///
/// *Queue.* A reader can be followed by others, a chain through GetNext(). The sound owns the head of the
/// chain and through it the rest. A reader never advances along the chain itself.
class HARMONET_API SndFile : public SoundFormat, public Allocated
{
public:
    /// What kind of data a reader has open.
    enum Snd_FileType
    {
        FileNone = 0, ///< No open data.
        FileWav = 1, ///< PCM in a RIFF/WAVE file or in memory.
        FileAdpcm = 2, ///< Microsoft ADPCM in a RIFF/WAVE file.
        FileMP3 = 3 ///< MPEG audio Layer III, raw or in a RIFF/WAVE file.
    };

    /// Opens a file. The type is detected from the content; the extension is ignored. `substName` is the
    /// owner below whose folder the engine finds `fileName`. Returns a reader that the caller owns, or null.
    /// Throws FileEx if the system cannot determine the file's length.
    static SndFile* OpenFile(const PString& substName, const PString& fileName);
    /// Opens data in the cache. The cache manages the node's use count.
    static SndFile* OpenFile(SndNode* node);
    /// Opens a block of raw PCM in the caller's memory. The block is not copied and must stay valid until its
    /// owner is notified of its release (CloseFile()). Returns null for any format but PCM.
    static SndFile* OpenFile(void* data, unsigned long size, WaveFormatEx* format);

    /// Sets the kernel's list of shared open files, through which files are opened. It is null while the
    /// system is stopped; no file can be opened then.
    static void SetSndFileCache(SndFileCache* cache);
    static SndFileCache* sndFileCache;

    /// With nothing open.
    SndFile();
    /// Copies every field without counting references: do not close both a copy and its source.
    SndFile(const SndFile&) = default;
    SndFile& operator=(const SndFile&) = default;

    /// Closes the file without announcing a caller's block: see CloseFile().
    virtual ~SndFile();

    /// These are used by the opening operations above. If they return false, the reader is closed and holds
    /// nothing.
    virtual bool OpenMemory(void* newData, unsigned long newSize, WaveFormatEx* format) = 0;
    virtual bool Open(SndNode* newNode);
    /// If it returns false, the caller must release the handle.
    virtual bool OpenHandle(SndFileHandle* newHandle) = 0;
    /// Returns the data beyond the format that a reader of cached data needs, in a block from Alloc that the
    /// caller owns; null if there are none.
    virtual void* CreateNodeInfo() = 0;
    /// Releases the data. A caller's block is announced once to `owner`, if there is one, through
    /// Sound::OnBufferFree() with `soundID`. Clears the link to the next file, which must have been handled
    /// before. Closing twice is allowed.
    virtual void CloseFile(unsigned int soundID, Sound* owner);
    /// Reads all of the sound data into memory, releases the file and returns the data. If the file holds
    /// fewer bytes than it states, returns null, and the reader continues to read from the file.
    virtual unsigned char* Load();
    /// Returns a copy of all the sound data that the file contains, even if it states more, in a block from
    /// Alloc that the caller owns. Stores its size in `bytes`. Returns null if the data cannot be read or are
    /// too large for one block. For a reader on an open file, whose position it does not change.
    unsigned char* CopyData(unsigned long& bytes) const;

protected:
    /// Copies up to `bytes` bytes of sound data from `position`, counted from their first byte, and returns
    /// the number copied. The position is taken as an unsigned 32-bit value: a negative one is beyond 2 GiB.
    /// Data in memory end at Size(), data in a file at the end of the file.
    virtual int Read(unsigned char* buffer, int bytes, int position);

public:
    /// Writes up to `samples` sample frames of interleaved PCM in this reader's format to `buffer`, advances
    /// by the number written and returns it. The buffer must have room for `samples` sample frames in the
    /// format before the call; the written data have the format after the call. The two differ only where an
    /// MPEG stream changes its number of channels. 0 means the end of the data. A smaller count than
    /// requested means the same, except where such a stream changes its format. Data that end before
    /// GetSoundSamples() is reached are truncated. For an exact end, request at most the sound samples minus
    /// the current sample: beyond that a reader may continue while there are bytes. 16-bit samples are signed
    /// and little-endian, 8-bit samples are unsigned. Does not allocate.
    virtual int ReadSamples(unsigned char* buffer, int samples) = 0;
    /// Advances without delivering samples; returns the number of sample frames skipped, fewer than requested
    /// at the end of the data. Negative counts are ignored.
    virtual int SkipSamples(int samples) = 0;
    /// Returns to the first sample and clears all decoder history.
    virtual void Rewind() = 0;
    /// Milliseconds left of this file alone, truncated.
    virtual unsigned long GetRemainLength() = 0;
    /// Milliseconds up to the current sample, truncated.
    virtual unsigned long GetCurrentLength() = 0;
    /// Moves back by up to `samples` sample frames, at most to the first one. Negative counts are ignored.
    /// The position is exact afterwards. The default rewinds and skips; a reader for which that is slow
    /// overrides it for short distances. Does not allocate.
    virtual void StepBack(int samples);
    /// Moves to a sample frame, from 0 to the sound samples: the next read delivers the same data as if
    /// everything before had been read. If the data end earlier, the reader is at their end. The default
    /// rewinds if necessary and skips; a reader for which a skip is not sufficient overrides it. Does not
    /// allocate.
    virtual void SeekTo(int sample);

    /// What kind of data is open.
    Snd_FileType FileType() const { return fileType; }
    /// Bytes of sound data; for an MPEG stream, of the whole file.
    unsigned long Size() const { return size; }
    /// Milliseconds of the whole file.
    unsigned long GetSoundLength() const { return soundLength; }
    /// The sample frame that a read delivers next.
    int GetCurrentSample() const { return currentSample; }
    /// Whether the data are in the cache.
    bool IsCached() const { return node != nullptr; }
    /// Called by the cache after it has taken ownership of the data that Load() read.
    void SetCached(SndNode* newNode) { node = newNode; }
    /// The name under which the file was opened; empty for a block of memory.
    PString GetFileName() const;

    /// The next file of the chain, or null.
    SndFile* GetNext() const { return next; }
    /// Appends `file` to the end of the chain, whose owner takes ownership of it. `file` must not be part of
    /// this or another chain.
    void Add(SndFile* file);
    /// Number of files after this one.
    int GetQueueLength();
    /// Cuts the chain after this file without deleting anything.
    void ClearQueue() { next = nullptr; }
    /// Closes and deletes every file after this one, the last one first, each with CloseFile(soundID, owner).
    void DeleteQueue(unsigned int soundID, Sound* owner);

    // The loop region, which a looping sound does not leave any more: it plays up to the region's end and
    // continues at its start. The default is the whole file. A reader itself does not loop; this is
    // information for code that reads it in a loop. All positions are in sample frames.

    /// Sets the region, from `start` up to but not including `end`; an end of 0, or beyond the sound samples,
    /// means their end. If the region is empty, returns false and selects the whole file. Must not be called
    /// during playback.
    bool SetLoopRegion(int start, int end);
    bool HasLoopRegion() const { return loopStart > 0 || loopEnd > 0; }
    int GetLoopStart() const { return loopStart; }
    int GetLoopEnd() const { return loopEnd > 0 ? loopEnd : soundSamples; }
    /// The end of the current pass of a loop: that of the region, or of the data if the position is after the
    /// region.
    int GetPassEnd() const { return currentSample <= GetLoopEnd() ? GetLoopEnd() : soundSamples; }
    /// Begins the next pass of a loop.
    void RewindLoop();
    /// Maps a position that is counted beyond the end of the loop to its position in the file.
    int WrapToLoop(std::int64_t position) const;

protected:
    /// The maximum size or position in sound data, which have 32 bits.
    static constexpr std::uint32_t maxDataBytes = 0xFFFFFFFF;
    /// The length of data that last longer than 32 bits of milliseconds.
    static constexpr std::uint32_t unknownLengthMs = 0xFFFFFFFF;

    /// Closes the open data and takes a file in their place; `size` is that of the whole file. Returns false
    /// and takes nothing if the file is not open. Throws FileEx, and takes nothing, if the system cannot
    /// determine the length.
    bool TakeHandle(SndFileHandle* newHandle);
    /// Drops the data without releasing or announcing them: for a failed open, after which the caller keeps
    /// everything it passed in. `userMemory` is not changed.
    void Abandon();
    /// Converts a count of sample frames to int; larger counts are clamped.
    static int ClampSamples(std::uint64_t samples);
    /// Duration of `samples` sample frames at this reader's rate in milliseconds, truncated; 0 without a
    /// rate.
    std::uint32_t CalcLength(int samples) const;
    /// The results of GetRemainLength() and GetCurrentLength() while a file of `type` is open; 0 otherwise.
    unsigned long CalcRemainLength(Snd_FileType type) const;
    unsigned long CalcCurrentLength(Snd_FileType type) const;

    // The fields that are read to advance a virtual sound come first, right after the format. Sizes, offsets
    // and lengths have 32 bits: files end below 2 GiB.
    /// The fields of a reader; see the getters above. `data` and `dataOffset` are where the sound data begin,
    /// in memory and in the file.
    Snd_FileType fileType = FileNone;
    int currentSample = 0;
    std::uint32_t size = 0;
    std::uint32_t soundLength = 0;
    SndFile* next = nullptr;
    unsigned char* data = nullptr;
    SndFileHandle* handle = nullptr;
    SndNode* node = nullptr;
    std::uint32_t dataOffset = 0;
    int loopStart = 0;
    int loopEnd = 0; ///< 0: the end of the sound samples.
    bool userMemory = false;
};

} // namespace Quon
