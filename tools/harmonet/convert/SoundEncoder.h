#pragma once

#include "tools/harmonet/OutputFile.h"
#include "tools/harmonet/convert/SampleStage.h"

#include <cstdint>

namespace Tool
{

enum class WaveCoding
{
    Pcm16,
    MsAdpcm,
};

struct EncodedSound
{
    std::int64_t frames = 0;
    std::int64_t clipped = 0; ///< Samples that exceeded full scale and were clamped to it.
};

/// Writes the whole sound to a wave file of 16-bit PCM or Microsoft ADPCM. Each sample is multiplied by
/// `gain` and rounded to the nearest 16-bit value. With a gain of 1, 16-bit input is written to PCM bit for
/// bit. Throws a ToolError if writing fails, or if the format does not support the number of channels; ADPCM
/// has at most two.
EncodedSound EncodeSound(SampleStage& sound, WaveCoding coding, double gain, const OutputFile& output);

} // namespace Tool
