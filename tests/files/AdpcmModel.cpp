#include "tests/files/AdpcmModel.h"

#include <algorithm>
#include <span>

namespace
{

using Block = std::span<const unsigned char>;

constexpr long long factors[16] = {
    230, 230, 230, 230, 307, 409, 512, 614, 768, 614, 512, 409, 307, 230, 230, 230};

long long FloorDivide256(long long number)
{
    return number >= 0 ? number / 256 : -((255 - number) / 256);
}

long long Signed16(Block block, std::size_t offset)
{
    const int number = block[offset] + 256 * block[offset + 1];
    return number < 32768 ? number : number - 65536;
}

/// All samples of one channel of a block, whose codes are given one by one.
std::vector<long long> DecodeChannel(
    const AdpcmLayout& layout, Block block, std::size_t channel, const std::vector<int>& codes)
{
    const auto channels = static_cast<std::size_t>(layout.channels);
    const auto [coef1, coef2] = layout.pairs[block[channel]];
    const auto field = [&](std::size_t index) {
        return Signed16(block, channels + (index * channels + channel) * 2);
    };
    long long delta = field(0);
    std::vector<long long> samples = {field(2), field(1)};
    for (const int code : codes) {
        const long long last = samples[samples.size() - 1];
        const long long before = samples[samples.size() - 2];
        const long long predicted = FloorDivide256(last * coef1 + before * coef2);
        const long long step = code < 8 ? code : code - 16;
        samples.push_back(std::clamp(predicted + delta * step, -32768ll, 32767ll));
        delta = std::clamp(FloorDivide256(delta * factors[code]), 16ll, 4194304ll);
    }
    return samples;
}

void DecodeBlock(const AdpcmLayout& layout, Block block, Bytes& pcm)
{
    const auto channels = static_cast<std::size_t>(layout.channels);
    std::vector<std::vector<int>> codes(channels);
    std::size_t turn = 0;
    for (const unsigned char byte : block.subspan(7 * channels)) {
        for (const int code : {byte / 16, byte % 16})
            codes[turn++ % channels].push_back(code);
    }
    std::vector<std::vector<long long>> samples;
    for (std::size_t channel = 0; channel < channels; ++channel)
        samples.push_back(DecodeChannel(layout, block, channel, codes[channel]));
    for (std::size_t frame = 0; frame < samples[0].size(); ++frame) {
        for (const auto& channel : samples)
            pcm = std::move(pcm) + Little16(static_cast<std::uint32_t>(channel[frame]));
    }
}

} // namespace

Bytes DecodeAdpcm(const AdpcmLayout& layout, const Bytes& data)
{
    const auto channels = static_cast<std::size_t>(layout.channels);
    const auto blockAlign = static_cast<std::size_t>(layout.blockAlign);
    Bytes pcm;
    for (std::size_t at = 0; at < data.size(); at += blockAlign) {
        const Block block(data.data() + at, std::min(blockAlign, data.size() - at));
        if (block.size() < 7 * channels)
            break;
        if (std::any_of(block.begin(), block.begin() + layout.channels,
                [&](unsigned char index) { return index >= layout.pairs.size(); }))
            break;
        DecodeBlock(layout, block, pcm);
    }
    return pcm;
}
