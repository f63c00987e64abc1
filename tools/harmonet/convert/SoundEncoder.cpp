#include "tools/harmonet/convert/SoundEncoder.h"

#include "tools/harmonet/ToolError.h"

#include <sndfile.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <string>

namespace Tool
{

namespace
{

class WaveFile
{
public:
    WaveFile(const OutputFile& newOutput, WaveCoding coding, const SampleStage& sound)
        : output(newOutput)
    {
        SF_INFO info{};
        info.samplerate = sound.GetRateHz();
        info.channels = sound.GetChannels();
        info.format = SF_FORMAT_WAV | (coding == WaveCoding::Pcm16 ? SF_FORMAT_PCM_16 : SF_FORMAT_MS_ADPCM);
        if (sf_format_check(&info) == SF_FALSE) {
            throw ToolError("a sound of " + std::to_string(info.channels) + " channels and " +
                    std::to_string(info.samplerate) +
                    " Hz cannot be written in this format; use --channels or --rate",
                ExitCode::BadInput);
        }
        file = sf_open(output.GetPath().c_str(), SFM_WRITE, &info);
        if (!file) {
            Fail(sf_strerror(nullptr));
        }
    }
    WaveFile(const WaveFile&) = delete;
    WaveFile& operator=(const WaveFile&) = delete;
    ~WaveFile()
    {
        if (file) {
            sf_close(file);
        }
    }

    void Write(const std::vector<short>& samples, std::size_t count)
    {
        const auto wanted = static_cast<sf_count_t>(count);
        if (sf_write_short(file, samples.data(), wanted) != wanted) {
            Fail(sf_strerror(file));
        }
    }

    void Finish()
    {
        const int error = sf_close(file);
        file = nullptr;
        if (error != SF_ERR_NO_ERROR) {
            Fail(sf_error_number(error));
        }
    }

private:
    [[noreturn]] void Fail(const std::string& reason) const
    {
        throw ToolError("cannot write to " + output.GetShown() + ": " + reason, ExitCode::NoOutput);
    }

    const OutputFile& output;
    SNDFILE* file = nullptr;
};

/// Returns the nearest 16-bit value, and whether it was clipped.
std::pair<short, bool> Round(double sample)
{
    constexpr double fullScale = 32768.0;
    constexpr double minimum = std::numeric_limits<short>::min();
    constexpr double maximum = std::numeric_limits<short>::max();
    // NaN becomes silence.
    const double value = std::isnan(sample) ? 0.0 : std::nearbyint(sample * fullScale);
    const double clamped = std::clamp(value, minimum, maximum);
    // Full scale is one step above the maximum. That difference is inaudible and does not count as clipping.
    return {static_cast<short>(clamped), value < minimum || value > maximum + 1.0};
}

} // namespace

EncodedSound EncodeSound(SampleStage& sound, WaveCoding coding, double gain, const OutputFile& output)
{
    WaveFile file(output, coding, sound);
    const auto channels = static_cast<std::size_t>(sound.GetChannels());
    std::vector<float> buffer = MakeBuffer(sound);
    std::vector<short> samples(buffer.size());
    EncodedSound encoded;
    while (const std::size_t got = sound.Read(buffer.data(), stageFrames)) {
        for (std::size_t i = 0; i < got * channels; ++i) {
            const auto [sample, isClipped] = Round(buffer[i] * gain);
            samples[i] = sample;
            encoded.clipped += isClipped;
        }
        file.Write(samples, got * channels);
        encoded.frames += static_cast<std::int64_t>(got);
    }
    file.Finish();
    return encoded;
}

} // namespace Tool
