#include "tools/harmonet/convert/Conversion.h"

#include "tools/harmonet/Format.h"
#include "tools/harmonet/PathText.h"
#include "tools/harmonet/ToolError.h"
#include "tools/harmonet/convert/ChannelMixer.h"
#include "tools/harmonet/convert/Loudness.h"
#include "tools/harmonet/convert/Resampler.h"
#include "tools/harmonet/convert/SoundReader.h"
#include "tools/harmonet/convert/TagRemoval.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <filesystem>

namespace Tool
{

namespace
{

/// The processing stages after the reader that the settings require.
class Chain
{
public:
    Chain(SoundReader& reader, const ConversionSettings& settings)
        : last(&reader)
    {
        // Mix before resampling, which then has fewer channels to process.
        if (settings.channels != 0 && settings.channels != last->GetChannels()) {
            Add<ChannelMixer>(reader.GetChannelMap(), settings.channels);
        }
        if (settings.rateHz != 0 && settings.rateHz != last->GetRateHz()) {
            Add<Resampler>(settings.rateHz);
        }
    }

    SampleStage& GetLast() { return *last; }

private:
    template<typename Stage, typename... Arguments>
    void Add(const Arguments&... arguments)
    {
        stages.push_back(std::make_unique<Stage>(*last, arguments...));
        last = stages.back().get();
    }

    std::vector<std::unique_ptr<SampleStage>> stages;
    SampleStage* last;
};

/// Returns the gain that brings the sound to the requested loudness with a true peak of at most -1 dB, as EBU
/// R 128 recommends.
double FindGainDecibels(
    const InputFile& input, const ConversionSettings& settings, std::vector<std::string>& warnings)
{
    constexpr double highestPeak = -1.0;
    const auto reader = SoundReader::Open(input);
    Chain chain(*reader, settings);
    const Loudness loudness = MeasureLoudness(chain.GetLast());
    if (!std::isfinite(loudness.lufs)) {
        warnings.push_back("'" + input.GetShown() + "' is silent and left unchanged");
        return 0.0;
    }
    const double wanted = *settings.loudnessLufs - loudness.lufs;
    const double possible = highestPeak - loudness.truePeakDecibels;
    if (wanted > possible) {
        warnings.push_back("'" + input.GetShown() + "': gain limited to " +
            FormatNumber(std::round(possible * 10.0) / 10.0) + " dB instead of " +
            FormatNumber(std::round(wanted * 10.0) / 10.0) + ", to keep its peaks below full scale");
    }
    return std::min(wanted, possible);
}

} // namespace

std::string ConversionSettings::ToText() const
{
    return std::to_string(coding ? static_cast<int>(*coding) : -1) + ' ' + std::to_string(rateHz) + ' ' +
        std::to_string(channels) + ' ' + (loudnessLufs ? FormatNumber(*loudnessLufs) : "-");
}

bool StaysMpeg(const std::string& inputName, const ConversionSettings& settings)
{
    std::string ending = ToText(ToPath(inputName).extension());
    std::transform(ending.begin(), ending.end(), ending.begin(),
        [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return ending == ".mp3" && !settings.ChangesSound();
}

Conversion Convert(
    const InputFile& input, const ConversionSettings& settings, bool staysMpeg, const OutputFile& output)
{
    Conversion done;
    const auto reader = SoundReader::Open(input);
    done.isSound = reader != nullptr;
    if (!done.isSound) {
        return done;
    }
    done.rateHz = done.inputRateHz = reader->GetRateHz();
    done.channels = done.inputChannels = reader->GetChannels();
    done.isCopy = staysMpeg && reader->IsMpegLayer3();
    if (done.isCopy) {
        CopyWithoutTags(input, output);
        return done;
    }
    if (staysMpeg) {
        throw ToolError("'" + input.GetShown() + "' is " + reader->Describe() +
                "; only MPEG Layer III can become an .mp3; write a .wav instead",
            ExitCode::BadInput);
    }

    Chain chain(*reader, settings);
    if (settings.loudnessLufs) {
        done.gainDecibels = FindGainDecibels(input, settings, done.warnings);
    }
    const EncodedSound encoded = EncodeSound(chain.GetLast(), settings.coding.value_or(WaveCoding::Pcm16),
        std::pow(10.0, done.gainDecibels / 20.0), output);
    done.rateHz = chain.GetLast().GetRateHz();
    done.channels = chain.GetLast().GetChannels();
    if (const std::string missing = reader->DescribeMissing(); !missing.empty()) {
        done.warnings.push_back(missing);
    }
    if (encoded.clipped > 0) {
        done.warnings.push_back("'" + input.GetShown() + "' exceeds full scale: " +
            std::to_string(encoded.clipped) + " samples were clipped; --loudness can lower the level");
    }
    return done;
}

} // namespace Tool
