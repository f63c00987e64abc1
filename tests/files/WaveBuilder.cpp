#include "tests/files/WaveBuilder.h"

const std::vector<std::pair<int, int>> usualPairs = {
    {256, 0}, {512, -256}, {0, 0}, {192, 64}, {240, 0}, {460, -208}, {392, -232}};

Bytes operator+(Bytes front, const Bytes& back)
{
    front.insert(front.end(), back.begin(), back.end());
    return front;
}

Bytes Little16(long long number)
{
    return {static_cast<unsigned char>(number), static_cast<unsigned char>(number >> 8)};
}

Bytes Little32(long long number)
{
    return Little16(number) + Little16(number >> 16);
}

Bytes FormatBytes(int tag, int channels, std::uint32_t rateHz, int blockAlign, int bits)
{
    return Little16(tag) + Little16(channels) + Little32(rateHz) + Little32(0) + Little16(blockAlign) +
        Little16(bits);
}

Bytes PcmFormat(int channels, std::uint32_t rateHz, int bits)
{
    return FormatBytes(1, channels, rateHz, channels * bits / 8, bits);
}

Bytes AdpcmFormat(
    int channels, std::uint32_t rateHz, int blockAlign, const std::vector<std::pair<int, int>>& pairs)
{
    const int pairCount = static_cast<int>(pairs.size());
    const int samplesPerBlock = channels == 1 ? 2 * blockAlign - 12 : blockAlign - 12;
    Bytes format = FormatBytes(2, channels, rateHz, blockAlign, 4) + Little16(4 + 4 * pairCount) +
        Little16(samplesPerBlock) + Little16(pairCount);
    for (const auto& [coef1, coef2] : pairs) {
        format = format + Little16(coef1) + Little16(coef2);
    }
    return format;
}

Bytes Chunk(const std::string& id, const Bytes& content, std::optional<std::uint32_t> statedSize)
{
    const auto size = static_cast<std::uint32_t>(content.size());
    return Bytes(id.begin(), id.end()) + Little32(statedSize.value_or(size)) + content + Bytes(size % 2);
}

Bytes Wave(const Bytes& chunks)
{
    return Chunk("RIFF", Bytes{'W', 'A', 'V', 'E'} + chunks);
}

Bytes PcmWave(int channels, std::uint32_t rateHz, int bits, const Bytes& samples,
    std::optional<std::uint32_t> statedSize)
{
    return Wave(Chunk("fmt ", PcmFormat(channels, rateHz, bits)) + Chunk("data", samples, statedSize));
}

Bytes Counting(std::size_t count)
{
    constexpr std::size_t period = 251;
    Bytes bytes(count);
    for (std::size_t i = 0; i < count; ++i) {
        bytes[i] = static_cast<unsigned char>(i % period + 1);
    }
    return bytes;
}
