#pragma once

#include "harmonet/Export.h"

namespace Quon
{

/// The format of PCM sound: of the data an output plays or a reader of sound data delivers.
///
/// A plain record that is copied by assignment. It does not describe how the data are coded in a file.
class HARMONET_API SoundFormat
{
public:
    SoundFormat() = default;

    /// Sets all four values. Note the order of the arguments: the length comes before the channels.
    void SetFormat(int newBytesPerSample, int newSampleFrequency, int newSoundSamples, int newChannels);

    /// Bytes of one sample of one channel: 1 is unsigned, 2 and more are signed, all little-endian.
    int GetBytesPerSample() const { return bytesPerSample; }
    /// Sample frames per second.
    int GetSampleFrequency() const { return sampleFrequency; }
    /// Channels of the signal, interleaved sample by sample.
    int GetChannels() const { return channels; }
    /// Length in sample frames, where one sample frame covers all channels. 0 in the format of an output.
    int GetSoundSamples() const { return soundSamples; }

protected:
    /// See the getters.
    int bytesPerSample = 0;
    int sampleFrequency = 0;
    int channels = 0;
    int soundSamples = 0;
};

} // namespace Quon
