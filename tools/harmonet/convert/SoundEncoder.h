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
    std::int64_t clipped = 0; ///< Samples beyond full scale, which became full scale.
};

/// Writes all of the sound to a wave file of 16-bit PCM or Microsoft ADPCM, with each sample multiplied by
/// `gain` and rounded to the nearest of the 65536 values. 16-bit input without a gain comes out bit by bit.
/// Throws a ToolError for what cannot be written, or has more than two channels for ADPCM.
EncodedSound EncodeSound(SampleStage& sound, WaveCoding coding, double gain, const OutputFile& output);

} // namespace Tool
