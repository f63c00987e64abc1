#include "drivers/openal/WavSink.h"

#include "harmonet/engine/HostFile.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace Quon
{

namespace
{

constexpr std::uint32_t headBytes = 44;
constexpr std::uint32_t channels = 2;
constexpr std::uint32_t bytesPerSample = 2;
constexpr std::uint64_t maxDataBytes = 0xFFFFFFFFU - headBytes - 3;
constexpr std::size_t piece = 1024;

/// Appends little-endian numbers and texts.
class HeadWriter
{
public:
    void Text(const char (&text)[5]) { at = std::copy_n(text, 4, at); }
    void Number(std::uint32_t value, int bytes)
    {
        for (; bytes > 0; --bytes, value >>= 8) {
            *at++ = static_cast<unsigned char>(value);
        }
    }
    const std::array<unsigned char, headBytes>& GetHead() const { return head; }

private:
    std::array<unsigned char, headBytes> head{};
    unsigned char* at = head.data();
};

} // namespace

std::int16_t ToSigned16(float sample)
{
    if (std::isnan(sample)) {
        return 0;
    }
    return static_cast<std::int16_t>(std::lrint(std::clamp(sample * 32768.0F, -32768.0F, 32767.0F)));
}

bool WavSink::Open(const char* path, int rateHz)
{
    file.reset(OpenHostFile(path, "wb"));
    rate = static_cast<std::uint32_t>(rateHz);
    dataBytes = 0;
    if (!file || !WriteHead()) {
        file.reset();
    }
    return file != nullptr;
}

bool WavSink::WriteHead()
{
    const auto size = static_cast<std::uint32_t>(dataBytes);
    HeadWriter head;
    head.Text("RIFF");
    head.Number(headBytes - 8 + size, 4);
    head.Text("WAVE");
    head.Text("fmt ");
    head.Number(16, 4);
    head.Number(1, 2); // PCM
    head.Number(channels, 2);
    head.Number(rate, 4);
    head.Number(rate * channels * bytesPerSample, 4);
    head.Number(channels * bytesPerSample, 2);
    head.Number(8 * bytesPerSample, 2);
    head.Text("data");
    head.Number(size, 4);
    return std::fseek(file.get(), 0, SEEK_SET) == 0 &&
        std::fwrite(head.GetHead().data(), headBytes, 1, file.get()) == 1 && std::fflush(file.get()) == 0 &&
        std::fseek(file.get(), 0, SEEK_END) == 0;
}

void WavSink::Write(std::span<const float> stereo)
{
    std::array<unsigned char, piece * bytesPerSample> bytes;
    while (file && !stereo.empty()) {
        const std::span<const float> part = stereo.first(std::min(stereo.size(), piece));
        stereo = stereo.subspan(part.size());
        unsigned char* at = bytes.data();
        for (const float sample : part) {
            const auto value = static_cast<std::uint16_t>(ToSigned16(sample));
            *at++ = static_cast<unsigned char>(value);
            *at++ = static_cast<unsigned char>(value >> 8);
        }
        const std::size_t size = part.size() * bytesPerSample;
        if (dataBytes + size > maxDataBytes || std::fwrite(bytes.data(), size, 1, file.get()) != 1) {
            file.reset();
            return;
        }
        dataBytes += size;
    }
}

void WavSink::Commit()
{
    if (file && (std::fflush(file.get()) != 0 || !WriteHead())) {
        file.reset();
    }
}

} // namespace Quon
