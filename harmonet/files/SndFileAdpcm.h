#pragma once

#include "harmonet/files/AdpcmChannel.h"
#include "harmonet/files/SndFile.h"

namespace Quon
{

class RiffWalk;

inline constexpr unsigned int maxAdpcmCoefs = 7;

/// What a node of the cache keeps beside the bytes of an ADPCM file.
struct AdpcmNodeInfo
{
    unsigned int blockAlign; ///< Bytes of a block.
    unsigned int numCoef; ///< Valid entries of `coefs`.
    AdpcmCoefPair coefs[maxAdpcmCoefs];
};

/// The reader of Microsoft ADPCM in wave files, mono or stereo, four bits a sample. It decodes to 16 bits
/// while it is read, one block at a time. Ownership and threads as for every SndFile.
///
/// A block has a header with the state of each channel, its first two sample frames among it, and then a code
/// of four bits for each further sample. So a block can be decoded without those before it, and a skip reads
/// and decodes one block at most.
///
/// Refused are other numbers of channels, a rate of 0 or of 2^31 Hz and more, blocks too small to hold a
/// sample frame behind the header, and more than seven pairs of coefficients. A block that asks for a pair
/// which the file has not got is the end of the data: once a read or a skip has met it, all reads give
/// nothing until a rewind. More sample frames than an int can count are cut to that number.
class HARMONET_API SndFileAdpcm : public SndFile
{
public:
    SndFileAdpcm() = default;
    SndFileAdpcm(const SndFileAdpcm&) = delete;
    SndFileAdpcm& operator=(const SndFileAdpcm&) = delete;
    ~SndFileAdpcm() override;

    /// False: there is no ADPCM in the caller's memory.
    bool OpenMemory(void* newData, unsigned long newSize, WaveFormatEx* format) override;
    bool Open(SndNode* newNode) override;
    bool OpenHandle(SndFileHandle* newHandle) override;
    /// An AdpcmNodeInfo.
    void* CreateNodeInfo() override;
    void CloseFile(unsigned int soundID, Sound* owner) override;
    /// Also delivers what the last block holds beyond the sound samples, if it is asked to.
    int ReadSamples(unsigned char* buffer, int samples) override;
    /// Costs nothing: the next read carries it out.
    int SkipSamples(int samples) override;
    void Rewind() override;
    unsigned long GetRemainLength() override;
    unsigned long GetCurrentLength() override;

private:
    bool ParseWaveAdpcm();
    bool TakeFormat(RiffWalk& walk);
    bool IsPlayable() const;
    std::uint64_t CountSamples(std::uint64_t bytes) const;
    void StartDecoder();
    int DecodeSkip(int samples);
    int SkipBlocks(int count);

    bool ReadBlock();
    void TakeBlockHead();
    /// Decodes the next `count` sample frames of the current block, which has as many left.
    template<class Sink>
    void DecodeSteps(Sink& sink, int count);
    template<class Sink>
    void DecodeMono(Sink& sink, int count);
    template<class Sink>
    void DecodeStereo(Sink& sink, int count);

    bool IsMono() const { return channels == 1; }
    int BlockHeadBytes() const { return IsMono() ? 7 : 14; }
    /// Sample frames of a block of so many bytes, the two in the header among them.
    int FramesInBlock(int bytes) const { return IsMono() ? 2 * bytes - 12 : bytes - 12; }
    /// Of the current block only the first sample frame has been taken.
    bool IsAtBlockStart() const { return blockRemaining == FramesInBlock(blockBytes) - 1; }

    static constexpr unsigned int maxBlockBytes = 0xFFFF;

    std::uint64_t readPosition = 0; ///< Of the next block, from the first byte of sound data.
    int pendingSkip = 0; ///< Sample frames that are promised and not yet skipped; `currentSample` has them.
    AdpcmChannelState channelStates[2] = {}; ///< Left and right; of mono only the first.
    int blockBytes = 0; ///< Bytes that were read into the current block.
    int blockRemaining = 0; ///< Sample frames left in the current block; 0 asks for a new one.
    bool isDamaged = false; ///< A block was met that asks for coefficients which there are not.
    unsigned char* blockBuffer = nullptr; ///< One block. Owned.
    unsigned int blockAlign = 0; ///< Bytes of a whole block.
    unsigned int numCoef = 0; ///< Valid entries of `coefs`.
    AdpcmCoefPair coefs[maxAdpcmCoefs] = {};
};

} // namespace Quon
