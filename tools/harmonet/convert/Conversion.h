#pragma once

#include "tools/harmonet/InputFile.h"
#include "tools/harmonet/convert/SoundEncoder.h"

#include <optional>
#include <string>
#include <vector>

namespace Tool
{

struct ConversionSettings
{
    std::optional<WaveCoding> coding; ///< Not set: PCM, or MPEG Layer III is kept where possible.
    int rateHz = 0; ///< 0 for the rate of the input.
    int channels = 0; ///< 1 or 2; 0 for the number of the input.
    std::optional<double> loudnessLufs;

    /// Returns whether the settings require new samples, so that the file cannot just be copied.
    bool ChangesSound() const { return coding || rateHz != 0 || channels != 0 || loudnessLufs; }
    /// Settings with the same text produce the same files.
    std::string ToText() const;
};

struct Conversion
{
    bool isSound = true; ///< If false, nothing was written.
    bool isCopy =
        false; ///< An MPEG stream was copied without its tags. The values below are then those of the input.
    int inputRateHz = 0;
    int inputChannels = 0;
    int rateHz = 0;
    int channels = 0;
    double gainDecibels = 0.0;
    std::vector<std::string> warnings;
};

/// Returns whether the file is to be copied as an MPEG stream without its tags, judged by its name and the
/// settings.
bool StaysMpeg(const std::string& inputName, const ConversionSettings& settings);

/// Converts one file; `staysMpeg` is the result of StaysMpeg(). Throws a ToolError if the file does not exist
/// or is damaged, or if the output cannot be written.
Conversion Convert(
    const InputFile& input, const ConversionSettings& settings, bool staysMpeg, const OutputFile& output);

} // namespace Tool
