#pragma once

#include <span>

namespace Quon
{

class SoundFormat;

/// Convert interleaved PCM of a playable format (IsPlayable()) to floats from -1 to 1 for one or two
/// channels. One byte per sample is unsigned, two to four are signed and little-endian. The minimum value of
/// a format is exactly -1, so that 16-bit samples survive a round trip unchanged.
///
/// For one channel all channels of the source are averaged. For two, mono is copied to both sides and stereo
/// is passed through. Of more channels, the first two are left and right and the others are mixed into both
/// sides at half level, scaled so that full scale on every channel stays full scale. The size of `out`
/// determines the number of sample frames; `bytes` must hold as many. Pure functions; they do not allocate.
void ConvertToMono(std::span<const unsigned char> bytes, const SoundFormat& format, std::span<float> out);
void ConvertToStereo(std::span<const unsigned char> bytes, const SoundFormat& format, std::span<float> out);

} // namespace Quon
