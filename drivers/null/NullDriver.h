#pragma once

#include "drivers/null/NullChannel.h"
#include "harmonet/output/SndDriver.h"

#include <array>
#include <memory>

namespace Quon
{

/// An output without sound and without a clock: time is what BeginUpdate() is given. For servers without
/// sound and for tests: the same files, calls and times always produce the same reads and events. It needs no
/// thread and no device. Task thread only.
///
/// BeginUpdate() advances all channels; EndUpdate() reports first all changes of file and then all ends, each
/// in the order of the channels, of which a new sound takes the first free one. If data are appended to an
/// exhausted sound in between, it continues instead of ending.
///
/// Channels are created when first needed, up to the number of SetMaxChannels(), and kept. Before that call
/// there are none. The driver has no effects and no capabilities.
class NullDriver final : public SndDriver
{
public:
    bool Open(OS* os, const SoundFormat* format, int streamLength, bool driverFlag) override;
    void SetCallback(SndDriverCallback newCallback, void* newUser) override;
    void SetMaxChannels(int count) override;
    /// Times of 2^32 ms and more are clamped to the largest value below.
    void BeginUpdate(unsigned long elapsedMs) override;
    void EndUpdate() override;
    bool GetCaps(SoundCaps& caps) override;
    void SetMainGain(float gain) override;
    float GetMainGain() override { return mainGain; }
    void SetListenerPosition(const Vector3&) override {}
    void SetListenerOrientation(const Vector3&, const Vector3&) override {}
    void Spare1() override {}
    void SetRolloffFactor(float factor) override;
    float GetRolloffFactor() override { return rolloffFactor; }
    bool SetFXEnvReverb(const FXEnvReverb*, long, unsigned int) override { return false; }
    void ResetFXEnvReverb(unsigned int) override {}
    /// Returns null if all channels are in use, or the file's format is not playable.
    SndChannel* CreateChannel(unsigned int flags, SndFile* file, SndFXList fx) override;

private:
    NullChannel* FindFree();
    void Report(int event, void* data);

    SndDriverCallback callback = nullptr;
    void* user = nullptr;
    std::size_t maxChannels = 0;
    EngineVector<std::unique_ptr<NullChannel>> channels;
    float mainGain = 1.0F;
    float rolloffFactor = 1.0F;
    std::array<unsigned char, 16384> scratch;
};

} // namespace Quon
