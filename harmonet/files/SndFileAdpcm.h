#pragma once

#include "harmonet/files/AdpcmChannel.h"
#include "harmonet/files/SndFile.h"

namespace Quon
{

class RiffWalk;

inline constexpr unsigned int maxAdpcmCoefs = 7;

/// The decoder data that a cache node stores with the bytes of an ADPCM file.
struct AdpcmNodeInfo
{
    unsigned int blockAlign; ///< Bytes of a block.
    unsigned int numCoef; ///< Valid entries of `coefs`.
    AdpcmCoefPair coefs[maxAdpcmCoefs];
};

/// The reader of Microsoft ADPCM in wave files, mono or stereo, four bits per sample. It decodes to 16 bits
/// while reading, one block at a time. Ownership and threads as for every SndFile.
///
/// A block has a header with the state of each channel, including its first two samples, and then a four-bit
/// code for each further sample. A block can therefore be decoded without those before it, and a skip reads
/// and decodes one block at most.
///
/// Other numbers of channels, a rate of 0 or of 2^31 Hz and more, blocks too small for a sample frame after
/// the header, and more than seven coefficient pairs are refused. A block that uses a pair missing in the
/// file is the end of the data: after a read or a skip has reached it, all reads return nothing until a
/// rewind. The number of sample frames is clamped to the maximum of an int.
class HARMONET_API SndFileAdpcm : public SndFile
{
public:
    SndFileAdpcm() = default;
    SndFileAdpcm(const SndFileAdpcm&) = delete;
    SndFileAdpcm& operator=(const SndFileAdpcm&) = delete;
    ~SndFileAdpcm() override;

    /// Returns false: ADPCM in the caller's memory is not supported.
    bool OpenMemory(void* newData, unsigned long newSize, WaveFormatEx* format) override;
    bool Open(SndNode* newNode) override;
    bool OpenHandle(SndFileHandle* newHandle) override;
    /// Returns an AdpcmNodeInfo.
    void* CreateNodeInfo() override;
    void CloseFile(unsigned int soundID, Sound* owner) override;
    /// If requested, also delivers samples of the last block beyond the sound samples.
    int ReadSamples(unsigned char* buffer, int samples) override;
    /// Takes no time: the next read performs the skip.
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
    /// Decodes the next `count` sample frames of the current block, which must have as many left.
    template<class Sink>
    void DecodeSteps(Sink& sink, int count);
    template<class Sink>
    void DecodeMono(Sink& sink, int count);
    template<class Sink>
    void DecodeStereo(Sink& sink, int count);

    bool IsMono() const { return channels == 1; }
    int BlockHeadBytes() const { return IsMono() ? 7 : 14; }
    /// Sample frames in a block of `bytes` bytes, including the two in the header.
    int FramesInBlock(int bytes) const { return IsMono() ? 2 * bytes - 12 : bytes - 12; }
    /// Whether only the first sample frame of the current block has been delivered.
    bool IsAtBlockStart() const { return blockRemaining == FramesInBlock(blockBytes) - 1; }

    static constexpr unsigned int maxBlockBytes = 0xFFFF;

    std::uint64_t readPosition = 0; ///< Of the next block, from the first byte of sound data.
    int pendingSkip = 0; ///< Sample frames still to be skipped; `currentSample` includes them.
    AdpcmChannelState channelStates[2] = {}; ///< Left and right; mono uses the first only.
    int blockBytes = 0; ///< Bytes read of the current block.
    int blockRemaining = 0; ///< Sample frames left in the current block; 0 means that a new one is needed.
    bool isDamaged = false; ///< A block with missing coefficients has been reached.
    unsigned char* blockBuffer = nullptr; ///< One block. Owned.
    unsigned int blockAlign = 0; ///< Bytes of a whole block.
    unsigned int numCoef = 0; ///< Valid entries of `coefs`.
    AdpcmCoefPair coefs[maxAdpcmCoefs] = {};
};

} // namespace Quon
