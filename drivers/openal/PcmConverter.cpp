#include "drivers/openal/PcmConverter.h"

#include "harmonet/output/SoundFormat.h"

#include <cstdint>

namespace Quon
{

namespace
{

struct Unsigned8
{
    static constexpr std::size_t size = 1;
    static float Read(const unsigned char* at) { return (static_cast<float>(at[0]) - 128.0F) / 128.0F; }
};

struct Signed16
{
    static constexpr std::size_t size = 2;
    static float Read(const unsigned char* at)
    {
        return static_cast<float>(static_cast<std::int16_t>(at[0] | at[1] << 8)) / 32768.0F;
    }
};

struct Signed24
{
    static constexpr std::size_t size = 3;
    static float Read(const unsigned char* at)
    {
        // In the upper three bytes, so that the sign bit is in its place.
        const std::uint32_t bits =
            std::uint32_t{at[0]} << 8 | std::uint32_t{at[1]} << 16 | std::uint32_t{at[2]} << 24;
        return static_cast<float>(static_cast<std::int32_t>(bits)) / 2147483648.0F;
    }
};

struct Signed32
{
    static constexpr std::size_t size = 4;
    static float Read(const unsigned char* at)
    {
        const std::uint32_t bits = std::uint32_t{at[0]} | std::uint32_t{at[1]} << 8 |
            std::uint32_t{at[2]} << 16 | std::uint32_t{at[3]} << 24;
        return static_cast<float>(static_cast<std::int32_t>(bits)) / 2147483648.0F;
    }
};

template<class Sample>
void CopyAll(const unsigned char* at, std::span<float> out)
{
    for (float& sample : out) {
        sample = Sample::Read(at);
        at += Sample::size;
    }
}

template<class Sample>
void MixToMono(const unsigned char* at, int channels, std::span<float> out)
{
    const auto scale = 1.0F / static_cast<float>(channels);
    for (float& mono : out) {
        float sum = 0.0F;
        for (int channel = 0; channel < channels; ++channel) {
            sum += Sample::Read(at);
            at += Sample::size;
        }
        mono = sum * scale;
    }
}

template<class Sample>
void SpreadToStereo(const unsigned char* at, std::span<float> out)
{
    for (std::size_t i = 0; i + 1 < out.size(); i += 2, at += Sample::size) {
        out[i] = out[i + 1] = Sample::Read(at);
    }
}

template<class Sample>
void MixToStereo(const unsigned char* at, int channels, std::span<float> out)
{
    constexpr float restLevel = 0.5F;
    const float scale = 1.0F / (1.0F + restLevel * static_cast<float>(channels - 2));
    for (std::size_t i = 0; i + 1 < out.size(); i += 2) {
        const float left = Sample::Read(at);
        const float right = Sample::Read(at + Sample::size);
        at += 2 * Sample::size;
        float rest = 0.0F;
        for (int channel = 2; channel < channels; ++channel) {
            rest += Sample::Read(at);
            at += Sample::size;
        }
        out[i] = (left + restLevel * rest) * scale;
        out[i + 1] = (right + restLevel * rest) * scale;
    }
}

template<class Sample>
void ToStereo(const unsigned char* at, int channels, std::span<float> out)
{
    switch (channels) {
    case 1:
        SpreadToStereo<Sample>(at, out);
        break;
    case 2:
        CopyAll<Sample>(at, out);
        break;
    default:
        MixToStereo<Sample>(at, channels, out);
    }
}

template<class Sample>
void ToMono(const unsigned char* at, int channels, std::span<float> out)
{
    if (channels == 1) {
        CopyAll<Sample>(at, out);
    }
    else {
        MixToMono<Sample>(at, channels, out);
    }
}

} // namespace

void ConvertToMono(std::span<const unsigned char> bytes, const SoundFormat& format, std::span<float> out)
{
    const int channels = format.GetChannels();
    switch (format.GetBytesPerSample()) {
    case 1:
        ToMono<Unsigned8>(bytes.data(), channels, out);
        break;
    case 2:
        ToMono<Signed16>(bytes.data(), channels, out);
        break;
    case 3:
        ToMono<Signed24>(bytes.data(), channels, out);
        break;
    default:
        ToMono<Signed32>(bytes.data(), channels, out);
    }
}

void ConvertToStereo(std::span<const unsigned char> bytes, const SoundFormat& format, std::span<float> out)
{
    const int channels = format.GetChannels();
    switch (format.GetBytesPerSample()) {
    case 1:
        ToStereo<Unsigned8>(bytes.data(), channels, out);
        break;
    case 2:
        ToStereo<Signed16>(bytes.data(), channels, out);
        break;
    case 3:
        ToStereo<Signed24>(bytes.data(), channels, out);
        break;
    default:
        ToStereo<Signed32>(bytes.data(), channels, out);
    }
}

} // namespace Quon
