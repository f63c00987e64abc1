#pragma once

#include <span>

namespace Quon
{

class SoundFormat;

/// Turns interleaved PCM of the form `format`, which IsPlayable(), into floats from -1 to 1 for one or two
/// channels. One byte per sample is unsigned, two to four are signed and little-endian. The least negative
/// value of a form is exactly -1, so that 16 bits come back bit by bit.
///
/// For one channel all channels of the source are averaged. For two, one channel goes to both sides and two
/// go through; of more, the first two are left and right and the rest goes to both sides at half level, all
/// scaled so that a full signal on every channel stays full. `out` decides how many sample frames are turned,
/// and `bytes` must hold as many. Pure functions; they allocate nothing.
void ConvertToMono(std::span<const unsigned char> bytes, const SoundFormat& format, std::span<float> out);
void ConvertToStereo(std::span<const unsigned char> bytes, const SoundFormat& format, std::span<float> out);

} // namespace Quon
