#include "harmonet/output/SoundFormat.h"

namespace Quon
{

void SoundFormat::SetFormat(
    int newBytesPerSample, int newSampleFrequency, int newSoundSamples, int newChannels)
{
    bytesPerSample = newBytesPerSample;
    sampleFrequency = newSampleFrequency;
    soundSamples = newSoundSamples;
    channels = newChannels;
}

} // namespace Quon
