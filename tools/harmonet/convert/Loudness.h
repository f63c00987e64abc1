#pragma once

#include "tools/harmonet/convert/SampleStage.h"

namespace Tool
{

struct Loudness
{
    double lufs; ///< Integrated, as defined by EBU R 128; minus infinity for silence.
    double truePeakDecibels; ///< Of the loudest channel.
};

/// Reads and measures the whole sound. A sound shorter than 400 ms, for which the measure is not defined, is
/// measured as if it were repeated without gaps.
Loudness MeasureLoudness(SampleStage& sound);

} // namespace Tool
