#pragma once

#include "tests/support/RecordingChannel.h"

#include <memory>

namespace Quon
{

/// Records its calls and whether they break the contract.
class RecordingDriver final : public SndDriver
{
public:
    RecordingDriver();
    ~RecordingDriver() override;

    bool Open(OS* os, const SoundFormat* format, int streamLength, bool driverFlag) override;
    void SetCallback(SndDriverCallback newCallback, void* newUser) override;
    void SetMaxChannels(int count) override;
    void BeginUpdate(unsigned long elapsedMs) override;
    void EndUpdate() override;
    bool GetCaps(SoundCaps& caps) override;
    void SetMainGain(float gain) override;
    float GetMainGain() override { return mainGain; }
    void SetListenerPosition(const Vector3& position) override;
    void SetListenerOrientation(const Vector3& front, const Vector3& top) override;
    void Spare1() override { recording.Require(false, "Spare1 of the driver"); }
    void SetRolloffFactor(float factor) override;
    float GetRolloffFactor() override { return rolloffFactor; }
    bool SetFXEnvReverb(const FXEnvReverb* record, long quality, unsigned int argument) override;
    void ResetFXEnvReverb(unsigned int argument) override;
    SndChannel* CreateChannel(unsigned int flags, SndFile* file, SndFXList fx) override;

    void Send(int event, void* data);

private:
    void DropUnused();

    /// Those in use, and those that have ended since the last update.
    std::vector<std::unique_ptr<RecordingChannel>> channels;
    SndDriverCallback callback = nullptr;
    void* user = nullptr;
    int lastNumber = 0;
    bool isOpen = false;
    bool isUpdating = false;
    float mainGain = 1.0F;
    float rolloffFactor = 1.0F;
};

} // namespace Quon
