#pragma once

#include <cstdint>
#include <vector>

namespace EffectsExample
{

/// 16 bits, one channel.
using Pcm = std::vector<std::int16_t>;

constexpr int rateHz = 44100;

/// Returns an input for effects: a plucked string, a drum, then silence. Two seconds; the same in every call.
Pcm MakeDrySound();

/// Returns a click of one millisecond.
Pcm MakeClick();

/// Returns one second of a steady tone of 440 Hz. A tenth of a second holds a whole number of periods.
Pcm MakeTone(double amplitude);

} // namespace EffectsExample
