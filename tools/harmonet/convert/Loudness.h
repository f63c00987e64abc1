#pragma once

#include "tools/harmonet/convert/SampleStage.h"

namespace Tool
{

struct Loudness
{
    double lufs; ///< Integrated, by EBU R 128; minus infinity for silence.
    double truePeakDecibels; ///< Of the loudest channel.
};

/// Reads all of the sound. One of less than 400 ms, for which the measure is not defined, counts as if it
/// were repeated without a gap.
Loudness MeasureLoudness(SampleStage& sound);

} // namespace Tool
