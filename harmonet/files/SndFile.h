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

/// The reader of one piece of sound data: it hands out PCM from a position that is counted in sample frames,
/// skips forward, and goes back to the start.
///
/// It hides where the data lie (a shared open file, bytes in the data cache, memory of the caller) and how
/// they are coded. Every sound that plays owns a reader of its own; several readers can share one open file
/// or one piece of cached data, each at its own position. A reader does not loop, does not wrap around and
/// does not pad with silence. The format that it inherits from SoundFormat is that of the PCM it hands out.
///
/// *Threads.* One reader is used by one thread at a time and takes no lock: a driver's own thread may read
/// under the lock of the channel that plays the file; everything else runs on the task thread.
///
/// *Queue.* A reader can be continued by further ones, a chain through GetNext(). The sound owns the head of
/// the chain and through it the rest. A reader never moves along the chain by itself.
class HARMONET_API SndFile : public SoundFormat, public Allocated
{
public:
    /// What kind of data a reader has open.
    enum Snd_FileType
    {
        FileNone = 0, ///< No data open.
        FileWav = 1, ///< PCM in a RIFF/WAVE file or in memory.
        FileAdpcm = 2, ///< Microsoft ADPCM in a RIFF/WAVE file.
        FileMP3 = 3 ///< MPEG audio Layer III, bare or in a RIFF/WAVE file.
    };

    /// Opens a file by its content, whatever its name ends in. `substName` is the owner below whose folder
    /// the engine finds `fileName`. Returns a reader that the caller owns, or null. FileEx passes through
    /// when the system cannot tell the file's length.
    static SndFile* OpenFile(const PString& substName, const PString& fileName);
    /// Opens data that lie in the cache. The node's use count is the cache's affair.
    static SndFile* OpenFile(SndNode* node);
    /// Opens a block of bare PCM in the caller's memory, which is not copied and must stay valid until the
    /// owner hears of its release (CloseFile()). Anything but PCM gives null and leaves the block alone.
    static SndFile* OpenFile(void* data, unsigned long size, WaveFormatEx* format);

    /// Where files are opened: the kernel's list of shared open files, or null while the system is stopped,
    /// and no file can then be opened.
    static void SetSndFileCache(SndFileCache* cache);
    static SndFileCache* sndFileCache;

    /// With nothing open.
    SndFile();
    /// Copies every field as it stands, without counting references: a copy must not be closed as well as
    /// its source.
    SndFile(const SndFile&) = default;
    SndFile& operator=(const SndFile&) = default;

    /// Closes the file, telling nobody of a caller's block: see CloseFile().
    virtual ~SndFile();

    /// These are for the opening operations above. On false the reader is closed and holds nothing.
    virtual bool OpenMemory(void* newData, unsigned long newSize, WaveFormatEx* format) = 0;
    virtual bool Open(SndNode* newNode);
    /// On false the handle stays the caller's to release.
    virtual bool OpenHandle(SndFileHandle* newHandle) = 0;
    /// What a reader of cached data needs beyond the format, in a block from Alloc that the caller owns; null
    /// if there is nothing.
    virtual void* CreateNodeInfo() = 0;
    /// Lets go of the data. A caller's block is announced to `owner`, if there is one, through
    /// Sound::OnBufferFree() with `soundID`; a block goes back once. Clears the link to the next file, which
    /// must have been dealt with before. Closing twice is harmless.
    virtual void CloseFile(unsigned int soundID, Sound* owner);
    /// Reads all of the sound data into memory and gives the file back; returns the data. Null, and the
    /// reader goes on reading from the file, when the file does not hold as many bytes as it states.
    virtual unsigned char* Load();
    /// A copy of all the sound data that the file holds, also where it states more, in a block from Alloc
    /// that the caller owns; `bytes` is how many there are. Null if they cannot be read or are too large for
    /// one block. For a reader on an open file, whose place it leaves alone.
    unsigned char* CopyData(unsigned long& bytes) const;

protected:
    /// Copies up to `bytes` bytes of sound data, `position` counting from their first byte, and returns how
    /// many there were. The position has 32 bits without a sign: a negative one lies beyond 2 GiB. Data in
    /// memory end with Size(), data in a file with the file.
    virtual int Read(unsigned char* buffer, int bytes, int position);

public:
    /// Writes up to `samples` sample frames of interleaved PCM in this reader's format to `buffer`, moves on
    /// by as many as were written and returns their number. The buffer must have room for `samples` sample
    /// frames in the format before the call; what was written has the format after the call. The two differ
    /// only where an MPEG stream changes its number of channels. 0 means that the data have ended. Fewer than
    /// asked for mean the same, except where such a stream has come to a change. Data that end before
    /// GetSoundSamples() is reached have been cut off. A caller that wants an exact end asks for no more than
    /// the sound samples less the current sample: beyond that a reader may go on as long as there are bytes.
    /// 16-bit samples are signed and little-endian, 8-bit samples are unsigned. Allocates nothing.
    virtual int ReadSamples(unsigned char* buffer, int samples) = 0;
    /// Moves forward without delivering anything; returns the sample frames skipped, fewer than asked for at
    /// the end of the data. Negative counts skip nothing.
    virtual int SkipSamples(int samples) = 0;
    /// Back to the first sample, with all decoder history cleared.
    virtual void Rewind() = 0;
    /// Milliseconds left of this file alone, truncated.
    virtual unsigned long GetRemainLength() = 0;
    /// Milliseconds up to the current sample, truncated.
    virtual unsigned long GetCurrentLength() = 0;
    /// Moves back by up to `samples` sample frames, at most to the first one. Negative counts do nothing. The
    /// position is exact afterwards. This one rewinds and skips; a reader for which that takes long overrides
    /// it for short ways. Allocates nothing.
    virtual void StepBack(int samples);
    /// Goes to a sample frame, from 0 to the sound samples: the next read delivers what it would deliver
    /// there had all before it been read. Data that end earlier are then at their end. This one rewinds if it
    /// has to, and skips; a reader whose skip is not enough for that overrides it. Allocates nothing.
    virtual void SeekTo(int sample);

    /// What kind of data is open.
    Snd_FileType FileType() const { return fileType; }
    /// Bytes of sound data; of an MPEG stream the whole file.
    unsigned long Size() const { return size; }
    /// Milliseconds of the whole file.
    unsigned long GetSoundLength() const { return soundLength; }
    /// The sample frame that a read delivers next.
    int GetCurrentSample() const { return currentSample; }
    /// Whether the data lie in the cache.
    bool IsCached() const { return node != nullptr; }
    /// For the cache, when it has taken over the data that Load() read.
    void SetCached(SndNode* newNode) { node = newNode; }
    /// The name under which the file was opened; empty for a block of memory.
    PString GetFileName() const;

    /// The file that continues this one, or null.
    SndFile* GetNext() const { return next; }
    /// Appends `file` at the end of the chain; the owner of the chain owns it from here on. Not part of a
    /// chain of its own, and not yet in this one.
    void Add(SndFile* file);
    /// How many files stand behind this one.
    int GetQueueLength();
    /// Cuts the chain behind this file; deletes nothing.
    void ClearQueue() { next = nullptr; }
    /// Closes and deletes every file behind this one, the last one first, each with CloseFile(soundID,
    /// owner).
    void DeleteQueue(unsigned int soundID, Sound* owner);

    // The loop region, from which a sound that loops does not get out any more: it plays up to the region's
    // end and goes on from its start. Without one it is the whole file. A reader does not loop; these tell
    // whoever reads from it in a loop. All positions are in sample frames.

    /// Sets the region, from `start` up to but not including `end`; an end of 0, or beyond the sound samples,
    /// is theirs. False, and it is the whole file, if nothing is left of that. Not while it is being played.
    bool SetLoopRegion(int start, int end);
    bool HasLoopRegion() const { return loopStart > 0 || loopEnd > 0; }
    int GetLoopStart() const { return loopStart; }
    int GetLoopEnd() const { return loopEnd > 0 ? loopEnd : soundSamples; }
    /// Where the present pass of a loop ends: with the region, or with the data for a position after it.
    int GetPassEnd() const { return currentSample <= GetLoopEnd() ? GetLoopEnd() : soundSamples; }
    /// Begins the next pass of a loop.
    void RewindLoop();
    /// The place of a position that counts on where the loop goes back.
    int WrapToLoop(std::int64_t position) const;

protected:
    /// What a size or a position in sound data can be at most: they have 32 bits.
    static constexpr unsigned long maxDataBytes = 0xFFFFFFFF;
    /// The length of what lasts longer than 32 bits of milliseconds.
    static constexpr unsigned long unknownLengthMs = 0xFFFFFFFF;

    /// Closes what was open and takes a file in its place; `size` is that of the whole file. False, with
    /// nothing taken, if it is not open. Lets FileEx through, with nothing taken, when the system cannot tell
    /// the length.
    bool TakeHandle(SndFileHandle* newHandle);
    /// Lets go of the data without giving anything back or telling anybody: for an open that fails, where all
    /// that was handed in stays the caller's. `userMemory` stays as it is.
    void Abandon();
    /// A count of sample frames as an int; more than an int can hold are cut.
    static int ClampSamples(std::uint64_t samples);
    /// Milliseconds that `samples` sample frames last at this reader's rate, truncated; 0 without a rate.
    unsigned long CalcLength(int samples) const;
    /// What the two readings of time give while a file of `type` is open; 0 otherwise.
    unsigned long CalcRemainLength(Snd_FileType type) const;
    unsigned long CalcCurrentLength(Snd_FileType type) const;

    // What moving a virtual sound on reads comes first, together, right after the format.
    /// The fields of a reader, each as its getter above says; `data` and `dataOffset` are where the sound
    /// data begin, in memory and in the file.
    Snd_FileType fileType = FileNone;
    int currentSample = 0;
    unsigned long size = 0;
    SndFile* next = nullptr;
    unsigned char* data = nullptr;
    SndFileHandle* handle = nullptr;
    unsigned long dataOffset = 0;
    SndNode* node = nullptr;
    unsigned long soundLength = 0;
    bool userMemory = false;
    int loopStart = 0;
    int loopEnd = 0; ///< 0: with the sound samples.
};

} // namespace Quon
