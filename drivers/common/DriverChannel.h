#pragma once

#include "harmonet/output/SndChannel.h"

#include <cstdint>

namespace Quon
{

class SoundFormat;

/// The part of a channel that is the same in every driver: the spare operations, and getters that report no
/// live values of effects. A driver that applies an effect overrides its getter. Task thread only.
class DriverChannel : public SndChannel
{
public:
    void Spare1() override {}
    void Spare2() override {}
    void Spare3() override {}

    bool SetFXEnvReverbSourceProperties(const FXEnvReverbSourceProperties*) override { return false; }
    bool GetFXEnvReverbSourceProperties(FXEnvReverbSourceProperties*) override { return false; }
    bool GetFXEnvReverbListenerProperties(FXEnvReverb*) override { return false; }
    bool GetFXChorus(FXChorus*) override { return false; }
    bool GetFXFlanger(FXFlanger*) override { return false; }
    bool GetFXEcho(FXEcho*) override { return false; }
    bool GetFXDistortion(FXDistortion*) override { return false; }
    bool GetFXCompressor(FXCompressor*) override { return false; }
    bool GetFXParamEq(FXParamEq*) override { return false; }
    bool GetFXGargle(FXGargle*) override { return false; }
    bool GetFXWavesReverb(FXWavesReverb*) override { return false; }
};

/// Whether a driver plays sound data of this format: 1 to 4 bytes per sample, 1 to 64 channels, a rate of 1
/// to 768 000 Hz. Anything else comes from a broken or hostile file and gets no channel.
bool IsPlayable(const SoundFormat& format);

/// Writes the message for sound data that are not playable; null, which means no data, writes none. Task
/// thread.
void ReportUnplayable(const SoundFormat* format);

/// The duration of `sampleFrames` at `rateHz`, in milliseconds, truncated; 0 without a rate or sample frames.
unsigned long ToMilliseconds(std::int64_t sampleFrames, int rateHz);

} // namespace Quon
