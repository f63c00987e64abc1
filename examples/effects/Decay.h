#pragma once

#include <span>
#include <vector>

namespace EffectsExample
{

/// Returns the part of a sound in the octave around a frequency.
std::vector<double> FilterOctave(std::span<const double> sound, int rateHz, double centreHz);

/// Returns the time in seconds in which the sound decays by 60 dB in the octave around `centreHz`, after its
/// loudest moment. Uses Schroeder's backward integration: the remaining energy, in dB, decays linearly. The
/// slope is measured from 10 to 40 dB below the start, because the early reflections before that have a level
/// of their own. Returns 0 if the sound does not decay that far.
double MeasureDecay(std::span<const double> sound, int rateHz, double centreHz);

} // namespace EffectsExample
