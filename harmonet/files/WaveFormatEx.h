#pragma once

#include <cstdint>

namespace Quon
{

/// The format record of a wave file, laid out like the content of its "fmt " chunk, little-endian, without
/// the extension that some formats append. Game code fills one in for a sound in memory.
#pragma pack(push, 1)
struct WaveFormatEx
{
    std::uint16_t formatTag; ///< One of the wave tags below.
    std::uint16_t channels; ///< Channels of the signal.
    std::uint32_t samplesPerSecond; ///< Sample frames per second.
    std::uint32_t averageBytesPerSecond; ///< Not read.
    std::uint16_t blockAlign; ///< Bytes of an ADPCM block; otherwise not read.
    std::uint16_t bitsPerSample; ///< Divided by 8 this gives the bytes of one sample of one channel.
    std::uint16_t extraSize; ///< Bytes after this record; not read for PCM and ADPCM.
};
#pragma pack(pop)

static_assert(sizeof(WaveFormatEx) == 18);

/// The wave tags: PCM, Microsoft ADPCM and MPEG Layer III.
inline constexpr std::uint16_t waveTagPcm = 1;
inline constexpr std::uint16_t waveTagAdpcm = 2;
inline constexpr std::uint16_t waveTagMpegLayer3 = 85;

} // namespace Quon
