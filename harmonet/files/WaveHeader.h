#pragma once

#include "harmonet/files/WaveFormatEx.h"
#include "harmonet/output/SoundFormat.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace Quon
{

/// Bytes before the samples of a RIFF/WAVE file of PCM.
inline constexpr std::size_t waveHeaderBytes = 44;

/// The maximum number of bytes of samples that a header can state: its sizes have 32 bits, and one of them
/// includes the rest of the header and the padding.
inline constexpr std::uint64_t maxWaveDataBytes = 0xFFFFFFFFU - waveHeaderBytes;

/// Makes the header of a RIFF/WAVE file of PCM: `format` without its length, followed by `dataBytes` of
/// samples, at most `maxWaveDataBytes`. An odd number must be padded with a byte of 0.
///
/// A pure function, for code that writes such files: recordings, rendered output, generated sounds.
inline std::array<unsigned char, waveHeaderBytes> MakeWaveHeader(
    const SoundFormat& format, std::uint64_t dataBytes)
{
    std::array<unsigned char, waveHeaderBytes> header{};
    std::size_t used = 0;
    const auto addText = [&](std::string_view text) {
        for (const char letter : text) {
            header[used++] = static_cast<unsigned char>(letter);
        }
    };
    const auto addNumber = [&](std::uint64_t value, int bytes) {
        for (int i = 0; i < bytes; ++i) {
            header[used++] = static_cast<unsigned char>(value >> (8 * i));
        }
    };
    constexpr int fmtBytes = 16;
    const auto channels = static_cast<std::uint64_t>(format.GetChannels());
    const auto sampleBytes = static_cast<std::uint64_t>(format.GetBytesPerSample());
    const auto rateHz = static_cast<std::uint64_t>(format.GetSampleFrequency());
    addText("RIFF");
    addNumber(waveHeaderBytes - 8 + dataBytes + dataBytes % 2, 4);
    addText("WAVEfmt ");
    addNumber(fmtBytes, 4);
    addNumber(waveTagPcm, 2);
    addNumber(channels, 2);
    addNumber(rateHz, 4);
    addNumber(rateHz * channels * sampleBytes, 4);
    addNumber(channels * sampleBytes, 2);
    addNumber(8 * sampleBytes, 2);
    addText("data");
    addNumber(dataBytes, 4);
    return header;
}

} // namespace Quon
