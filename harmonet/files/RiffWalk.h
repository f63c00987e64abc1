#pragma once

#include "harmonet/files/WaveFormatEx.h"

#include <cstdint>
#include <vector>

namespace Quon
{

class SndFileHandle;

/// One walk over the chunks of a RIFF/WAVE file, from the front; every reader and probe of wave files makes
/// its own. It reads through SndFileHandle::ReadAt() only, so that others may read the same file meanwhile.
/// Task thread. The walk has to end before the handle goes.
///
/// Offsets have 64 bits: a chunk that claims to reach beyond the file ends the walk, whatever its size field
/// says, and each step leads forward by 8 bytes at least. The constructor and Next() let FileEx through, when
/// the system cannot tell the file's length.
class RiffWalk
{
public:
    /// The range of "fmt " chunks that hold PCM or ADPCM: from the plain record to the record with an
    /// extension of 32 bytes.
    static constexpr std::uint32_t minFormatBytes = 16;
    static constexpr std::uint32_t maxFormatBytes = 50;

    explicit RiffWalk(SndFileHandle& newHandle);

    /// The file begins as a RIFF/WAVE file does. If it does not, Next() finds nothing.
    bool IsWave() const { return isWave; }
    /// Goes to the next chunk that means something here ("fmt ", "fact" or "data"), the first one to begin
    /// with; false at the end of the file. All other chunks are passed over.
    bool Next();

    /// The chunk has this identifier of four characters; upper and lower case differ.
    bool Is(const char (&id)[5]) const;
    /// The chunk's size field as it stands: the file may hold less.
    std::uint32_t GetSize() const { return chunkSize; }
    /// The offset in the file of the first byte behind the chunk's head.
    std::uint64_t GetContentOffset() const { return chunkOffset + chunkHeadBytes; }
    /// Reads the first bytes of the chunk's content, `maxContentBytes` at most; what the file does not hold
    /// becomes 0. It is up to the caller not to read beyond the chunk.
    void ReadContent(unsigned char* buffer, int bytes);
    static constexpr int maxContentBytes = 1024;
    /// The content of a "fmt " chunk; `extraSize` is 0 if the chunk is too short to have one.
    WaveFormatEx ReadFormat();
    /// The first four bytes of the content as a number.
    std::uint32_t ReadNumber();

private:
    static constexpr int riffHeadBytes = 12;
    static constexpr int chunkHeadBytes = 8;

    /// Passes over chunks without a meaning whose heads lie in the window.
    void PassOver();
    bool Fetch(unsigned char* buffer, int bytes, std::uint64_t offset);

    SndFileHandle& handle;
    std::uint64_t fileBytes;
    /// What was read last, so that the small chunks at the front of a file come with one read. It grows while
    /// small chunks follow each other: a file can hold millions.
    std::vector<unsigned char> window;
    std::uint64_t windowOffset = 0;
    std::uint64_t windowBytes = 0;
    std::uint64_t chunkOffset = 0;
    std::uint64_t nextOffset = 0;
    std::uint32_t chunkSize = 0;
    unsigned char chunkId[4] = {};
    bool isWave = false;
};

/// The tag of the first "fmt " chunk, if that has a size from `minFormatBytes` to `maxFormatBytes`; otherwise
/// 0.
int FindFormatTag(SndFileHandle& handle);

/// Where a wave file's sound data lie, as the chunks other than "fmt " tell it.
struct WaveData
{
    bool hasFormat = false; ///< A "fmt " chunk stands in front of the data and was taken.
    std::uint64_t offset = 0; ///< Offset in the file of the first byte; 0 if there are no data.
    std::uint32_t bytes = 0; ///< The size field as it stands.
    std::uint32_t factCount = 0; ///< Sample frames as "fact" has it, 0 or noFactCount if nothing is known.

    static constexpr std::uint32_t noFactCount = 0xFFFFFFFF;

    /// There are data, and how to read them is known.
    bool IsWhole() const { return hasFormat && offset != 0; }
    /// The lesser of the count that the sizes give and of the count that the file states, if it does.
    std::uint64_t LimitSamples(std::uint64_t samples) const
    {
        return factCount >= 1 && factCount < samples ? factCount : samples;
    }
};

/// Walks a wave file up to its "data" chunk. Each "fmt " chunk on the way is handed to `takeFormat`, which
/// gets the walk and says whether it can be played; one that cannot ends the walk. Of several "fact" chunks
/// the last one counts.
template<class TakeFormat>
WaveData FindWaveData(SndFileHandle& handle, TakeFormat takeFormat)
{
    WaveData found;
    RiffWalk walk(handle);
    while (walk.Next()) {
        if (walk.Is("fmt ")) {
            found.hasFormat = takeFormat(walk);
            if (!found.hasFormat) {
                break;
            }
        }
        else if (walk.Is("fact")) {
            found.factCount = walk.ReadNumber();
        }
        else if (walk.Is("data")) {
            found.offset = walk.GetContentOffset();
            found.bytes = walk.GetSize();
            break;
        }
    }
    return found;
}

} // namespace Quon
