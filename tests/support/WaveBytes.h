#pragma once

#include "harmonet/files/WaveFormatEx.h"

#include <functional>
#include <vector>

namespace Quon
{

/// PCM in which each sample frame encodes its number: the samples of frame n are n, in all their bits and in
/// every channel.
struct PcmForm
{
    int frames = 0;
    int rateHz = 1000; ///< So that a sample frame is a millisecond.
    int channels = 1;
    int bitsPerSample = 16;
};

std::vector<unsigned char> BuildPcm(const PcmForm& form);
/// As a RIFF/WAVE file with a "fmt " and a "data" chunk.
std::vector<unsigned char> BuildWave(const PcmForm& form);
/// The same with other samples: 16 bits, `sampleOf` of the number of the sample frame in every channel.
std::vector<unsigned char> BuildWave(const PcmForm& form, const std::function<long(int frame)>& sampleOf);

/// A block of memory as game code lends it to a sound.
struct MemoryBlock
{
    explicit MemoryBlock(const PcmForm& form);

    void* GetData() { return pcm.data(); }
    unsigned long GetSize() const { return pcm.size(); }

    std::vector<unsigned char> pcm;
    WaveFormatEx format;
};

} // namespace Quon
