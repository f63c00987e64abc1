#pragma once

#include <cstddef>
#include <vector>

namespace Accuracy
{

/// Measures of one side of what was rendered; where they have a begin and an end, of sample frames
/// [begin, end).

/// The amplitude of a tone, by a window that leaves others out by more than 100 dB.
double GetAmplitude(const std::vector<double>& heard, double hz, int rateHz);
/// What is beside a tone, in dB of the tone.
double GetDistortion(const std::vector<double>& heard, double hz, int rateHz);
double GetLevel(const std::vector<double>& heard, std::size_t begin, std::size_t end);
/// The sample frame of the highest peak, to a part of a sample frame by a parabola.
double FindPeak(const std::vector<double>& heard, std::size_t begin, std::size_t end);
/// The part of a sound in the octave around a frequency, by a band-pass filter of two poles.
std::vector<double> FilterOctave(std::vector<double> heard, double hz, int rateHz);
double ToDecibels(double factor);

} // namespace Accuracy
