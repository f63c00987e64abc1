#include "tests/support/WaveBytes.h"

#include <cstdint>
#include <string_view>

namespace Quon
{

namespace
{

void Put(std::vector<unsigned char>& bytes, std::string_view text)
{
    for (const char character : text) {
        bytes.push_back(static_cast<unsigned char>(character));
    }
}

void Put(std::vector<unsigned char>& bytes, std::uint32_t value, int count)
{
    for (int i = 0; i < count; ++i) {
        bytes.push_back(static_cast<unsigned char>(value >> (8 * i)));
    }
}

} // namespace

std::vector<unsigned char> BuildPcm(const PcmForm& form)
{
    std::vector<unsigned char> bytes;
    for (int frame = 0; frame < form.frames; ++frame) {
        for (int channel = 0; channel < form.channels; ++channel) {
            Put(bytes, static_cast<std::uint32_t>(frame), form.bitsPerSample / 8);
        }
    }
    return bytes;
}

std::vector<unsigned char> BuildWave(const PcmForm& form)
{
    const std::vector<unsigned char> pcm = BuildPcm(form);
    const auto frameBytes = static_cast<std::uint32_t>(form.channels * form.bitsPerSample / 8);
    std::vector<unsigned char> bytes;
    Put(bytes, "RIFF");
    Put(bytes, static_cast<std::uint32_t>(36 + pcm.size()), 4);
    Put(bytes, "WAVEfmt ");
    Put(bytes, 16, 4);
    Put(bytes, waveTagPcm, 2);
    Put(bytes, static_cast<std::uint32_t>(form.channels), 2);
    Put(bytes, static_cast<std::uint32_t>(form.rateHz), 4);
    Put(bytes, static_cast<std::uint32_t>(form.rateHz) * frameBytes, 4);
    Put(bytes, frameBytes, 2);
    Put(bytes, static_cast<std::uint32_t>(form.bitsPerSample), 2);
    Put(bytes, "data");
    Put(bytes, static_cast<std::uint32_t>(pcm.size()), 4);
    bytes.insert(bytes.end(), pcm.begin(), pcm.end());
    return bytes;
}

std::vector<unsigned char> BuildWave(const PcmForm& form, const std::function<long(int frame)>& sampleOf)
{
    std::vector<unsigned char> wave = BuildWave(form);
    std::size_t at = wave.size() - static_cast<std::size_t>(form.frames) * form.channels * 2;
    for (int frame = 0; frame < form.frames; ++frame) {
        const long sample = sampleOf(frame);
        for (int channel = 0; channel < form.channels; ++channel) {
            wave[at++] = static_cast<unsigned char>(sample & 0xFF);
            wave[at++] = static_cast<unsigned char>(sample >> 8 & 0xFF);
        }
    }
    return wave;
}

MemoryBlock::MemoryBlock(const PcmForm& form)
    : pcm(BuildPcm(form))
    , format{waveTagPcm, static_cast<std::uint16_t>(form.channels), static_cast<std::uint32_t>(form.rateHz),
          0, 0, static_cast<std::uint16_t>(form.bitsPerSample), 0}
{
}

} // namespace Quon
