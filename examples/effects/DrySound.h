#pragma once

#include <cstdint>
#include <vector>

namespace EffectsExample
{

/// 16 bits, one channel.
using Pcm = std::vector<std::int16_t>;

constexpr int rateHz = 44100;

/// Something for effects to work on: a string is plucked, a drum struck, and then it is quiet. Two seconds;
/// the same at every call.
Pcm MakeDrySound();

/// A click of a thousandth of a second.
Pcm MakeClick();

/// One second of a steady tone of 440 Hz, of which whole periods fit into a tenth of a second.
Pcm MakeTone(double amplitude);

} // namespace EffectsExample
