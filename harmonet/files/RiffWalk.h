#pragma once

#include "harmonet/files/WaveFormatEx.h"

#include <cstdint>
#include <vector>

namespace Quon
{

class SndFileHandle;

/// An iteration over the chunks of a RIFF/WAVE file, from the front; every reader and probe of wave files
/// creates its own. It reads through SndFileHandle::ReadAt() only, so that others may read the same file
/// meanwhile. Task thread. The handle must outlive it.
///
/// Offsets have 64 bits: a chunk that claims to extend beyond the file ends the iteration, whatever its size
/// field says, and each step advances by at least 8 bytes. The constructor and Next() throw FileEx if the
/// file's length cannot be determined.
class RiffWalk
{
public:
    /// The size range of "fmt " chunks for PCM and ADPCM: from the plain record to the record with an
    /// extension of 32 bytes.
    static constexpr std::uint32_t minFormatBytes = 16;
    static constexpr std::uint32_t maxFormatBytes = 50;

    explicit RiffWalk(SndFileHandle& newHandle);

    /// Whether the file begins with a RIFF/WAVE header. If not, Next() finds nothing.
    bool IsWave() const { return isWave; }
    /// Advances to the next relevant chunk ("fmt ", "fact" or "data"), initially the first one; returns false
    /// at the end of the file. All other chunks are skipped.
    bool Next();

    /// Whether the chunk has this identifier of four characters; case-sensitive.
    bool Is(const char (&id)[5]) const;
    /// The chunk's size field, unchecked: the file may hold less.
    std::uint32_t GetSize() const { return chunkSize; }
    /// The offset in the file of the first byte after the chunk's header.
    std::uint64_t GetContentOffset() const { return chunkOffset + chunkHeadBytes; }
    /// Reads the first bytes of the chunk's content, `maxContentBytes` at most; bytes missing in the file
    /// become 0. The caller must not read beyond the chunk.
    void ReadContent(unsigned char* buffer, int bytes);
    static constexpr int maxContentBytes = 1024;
    /// The content of a "fmt " chunk; `extraSize` is 0 if the chunk is too short to have one.
    WaveFormatEx ReadFormat();
    /// The first four bytes of the content as a number.
    std::uint32_t ReadNumber();

private:
    static constexpr int riffHeadBytes = 12;
    static constexpr int chunkHeadBytes = 8;

    /// Skips irrelevant chunks whose headers are in the window.
    void SkipIrrelevant();
    bool Fetch(unsigned char* buffer, int bytes, std::uint64_t offset);

    SndFileHandle& handle;
    std::uint64_t fileBytes;
    /// The data read last, so that one read covers the small chunks at the front of a file. It grows while
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

/// The location of a wave file's sound data, from the chunks other than "fmt ".
struct WaveData
{
    bool hasFormat = false; ///< A "fmt " chunk precedes the data and was accepted.
    std::uint64_t offset = 0; ///< Offset in the file of the first byte; 0 if there are no data.
    std::uint32_t bytes = 0; ///< The size field, unchecked.
    std::uint32_t factCount = 0; ///< Sample frames stated by "fact"; 0 or noFactCount if unknown.

    static constexpr std::uint32_t noFactCount = 0xFFFFFFFF;

    /// Whether data were found after an accepted format.
    bool IsWhole() const { return hasFormat && offset != 0; }
    /// The minimum of the count derived from the sizes and the count stated by the file, if any.
    std::uint64_t LimitSamples(std::uint64_t samples) const
    {
        return factCount >= 1 && factCount < samples ? factCount : samples;
    }
};

/// Reads a wave file up to its "data" chunk. Each "fmt " chunk on the way is passed to `takeFormat`, which
/// receives the RiffWalk and returns whether the format can be played; if not, reading ends. Of several
/// "fact" chunks the last one is used.
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
