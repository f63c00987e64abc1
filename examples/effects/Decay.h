#pragma once

#include <span>
#include <vector>

namespace EffectsExample
{

/// The part of a sound that lies in the octave around a frequency.
std::vector<double> FilterOctave(std::span<const double> sound, int rateHz, double centreHz);

/// The time in seconds in which the sound falls by 60 dB in the octave around `centreHz` after its loudest
/// moment. By Schroeder's method: what is still to come of the power, at each moment, falls in a straight
/// line. Its slope is taken from 10 to 40 dB below the beginning: what comes before are the first
/// reflections, which have a level of their own. 0 if it does not fall that far.
double MeasureDecay(std::span<const double> sound, int rateHz, double centreHz);

} // namespace EffectsExample
