#include "tests/support/WaveBytes.h"

#include "harmonet/files/WaveHeader.h"

#include <algorithm>

namespace Quon
{

std::vector<unsigned char> BuildPcm(const PcmForm& form)
{
    std::vector<unsigned char> bytes;
    for (int frame = 0; frame < form.frames; ++frame) {
        for (int channel = 0; channel < form.channels; ++channel) {
            for (int bit = 0; bit < form.bitsPerSample; bit += 8) {
                bytes.push_back(static_cast<unsigned char>(bit < 32 ? frame >> bit : 0));
            }
        }
    }
    return bytes;
}

std::vector<unsigned char> BuildWave(const PcmForm& form)
{
    SoundFormat format;
    format.SetFormat(form.bitsPerSample / 8, form.rateHz, form.frames, form.channels);
    const std::vector<unsigned char> pcm = BuildPcm(form);
    const auto header = MakeWaveHeader(format, pcm.size());
    std::vector<unsigned char> bytes(header.size() + pcm.size());
    std::copy(pcm.begin(), pcm.end(), std::copy(header.begin(), header.end(), bytes.begin()));
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
