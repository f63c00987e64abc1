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
    std::optional<WaveCoding> coding; ///< Not set: PCM, and an MPEG stream stays one where that can be.
    int rateHz = 0; ///< 0 for that of the input.
    int channels = 0; ///< 1 or 2; 0 for those of the input.
    std::optional<double> loudnessLufs;

    /// Whether the samples are asked to be other than they are.
    bool ChangesSound() const { return coding || rateHz != 0 || channels != 0 || loudnessLufs; }
    /// Two settings with the same text make the same files.
    std::string ToText() const;
};

struct Conversion
{
    bool isSound = true; ///< If not, nothing was written.
    bool isCopy = false; ///< An MPEG stream without its tags. The numbers below are then of the input.
    int inputRateHz = 0;
    int inputChannels = 0;
    int rateHz = 0;
    int channels = 0;
    double gainDecibels = 0.0;
    std::vector<std::string> warnings;
};

/// Whether the file becomes an MPEG stream without its tags, by its name and that of the output.
bool StaysMpeg(const std::string& inputName, const ConversionSettings& settings);

/// Converts one file; `staysMpeg` is the answer of StaysMpeg(). Throws a ToolError when it is not there,
/// damaged, or the output cannot be written.
Conversion Convert(
    const InputFile& input, const ConversionSettings& settings, bool staysMpeg, const OutputFile& output);

} // namespace Tool
