#pragma once

#include "harmonet/definitions/FXRecords.h"
#include "harmonet/output/SndChannel.h"
#include "tests/support/RecordingState.h"

#include <cstring>

namespace Quon
{

/// Records its calls and whether they break the contract. Its record in the state exists as long as the
/// library may use it.
class RecordingChannel final : public SndChannel
{
public:
    RecordingChannel(int newNumber, unsigned int flags, SndFile* file);

    void Play() override;
    void Spare1() override { recording.Require(false, "Spare1 of a channel"); }
    void Stop() override;
    void FadeIn(int ms) override;
    void FadeOut(int ms) override;
    void SkipFade(int ms) override { Called("SkipFade " + std::to_string(ms)); }
    unsigned long GetRemainLength() override;
    void Spare2() override { recording.Require(false, "Spare2 of a channel"); }
    void SetGain(float gain) override;
    void SetPosition(const Vector3& position) override;
    void SetMinMaxDistance(float minDistance, float maxDistance, bool cutout) override;
    void Spare3() override { recording.Require(false, "Spare3 of a channel"); }
    void SetCone(float innerAngle, float outerAngle, float outerGain) override;
    void SetDirection(const Vector3& direction) override;
    bool SetFrequency(unsigned long hz) override;
    unsigned long GetFrequency() override;
    void SetLowPass(float gainHF) override;
    void SetPitch(float factor) override;
    /// Not logged.
    void SetStartTime(std::int64_t gameMicroseconds, std::int64_t agoMicroseconds) override;
    bool SetFXEnvReverbSourceProperties(const FXEnvReverbSourceProperties* properties) override;
    bool GetFXEnvReverbSourceProperties(FXEnvReverbSourceProperties* record) override { return Fill(record); }
    bool GetFXEnvReverbListenerProperties(FXEnvReverb* record) override { return Fill(record); }
    bool GetFXChorus(FXChorus* record) override { return Fill(record); }
    bool GetFXFlanger(FXFlanger* record) override { return Fill(record); }
    bool GetFXEcho(FXEcho* record) override { return Fill(record); }
    bool GetFXDistortion(FXDistortion* record) override { return Fill(record); }
    bool GetFXCompressor(FXCompressor* record) override { return Fill(record); }
    bool GetFXParamEq(FXParamEq* record) override { return Fill(record); }
    bool GetFXGargle(FXGargle* record) override { return Fill(record); }
    bool GetFXWavesReverb(FXWavesReverb* record) override { return Fill(record); }

private:
    /// Null once the channel is the driver's again; that is a violation of its own.
    ChannelRecord* Find(const std::string& call) const;
    /// Logs the call.
    ChannelRecord* Called(const std::string& call) const;

    template<class Record>
    bool Fill(Record* record) const
    {
        if (!Find("getter of an effect") || !recording.hasLiveFX) {
            return false;
        }
        std::memset(record, Recording::liveFXByte, sizeof *record);
        return true;
    }

    const std::string name;
    const int number;
};

} // namespace Quon
