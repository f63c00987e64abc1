#include "drivers/openal/WavSink.h"

#include "harmonet/engine/HostFile.h"
#include "harmonet/files/WaveHeader.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace Quon
{

namespace
{

constexpr int channels = 2;
constexpr int bytesPerSample = 2;
constexpr std::size_t piece = 1024;

} // namespace

std::int16_t ToSigned16(float sample)
{
    if (std::isnan(sample)) {
        return 0;
    }
    return static_cast<std::int16_t>(std::lrint(std::clamp(sample * 32768.0F, -32768.0F, 32767.0F)));
}

bool WavSink::Open(const char* path, int newRateHz)
{
    file.reset(OpenHostFile(path, "wb"));
    rateHz = newRateHz;
    dataBytes = 0;
    if (!file || !WriteHeader()) {
        file.reset();
    }
    return file != nullptr;
}

bool WavSink::WriteHeader()
{
    SoundFormat format;
    format.SetFormat(bytesPerSample, rateHz, 0, channels);
    const auto header = MakeWaveHeader(format, dataBytes);
    return std::fseek(file.get(), 0, SEEK_SET) == 0 &&
        std::fwrite(header.data(), header.size(), 1, file.get()) == 1 && std::fflush(file.get()) == 0;
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
        if (dataBytes + size > maxWaveDataBytes || std::fwrite(bytes.data(), size, 1, file.get()) != 1) {
            file.reset();
            return;
        }
        dataBytes += size;
    }
}

void WavSink::Commit()
{
    // An offset of `long` ends at 2 GiB on some platforms; a position of the C library does not.
    std::fpos_t end{};
    if (file &&
        (std::fflush(file.get()) != 0 || std::fgetpos(file.get(), &end) != 0 || !WriteHeader() ||
            std::fsetpos(file.get(), &end) != 0)) {
        file.reset();
    }
}

} // namespace Quon
