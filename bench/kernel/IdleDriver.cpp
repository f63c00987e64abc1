// A driver that accepts every call and does nothing, so that a benchmark measures only the sound system. The
// number of channels is unlimited; they never read, never end and never report.

#include "drivers/common/DriverChannel.h"
#include "drivers/common/DriverExport.h"
#include "harmonet/definitions/SndFXList.h"
#include "harmonet/output/SndDriver.h"

#include <memory>
#include <vector>

namespace
{

using namespace Quon;

class IdleChannel final : public DriverChannel
{
public:
    explicit IdleChannel(std::vector<IdleChannel*>& newFreeChannels)
        : freeChannels(newFreeChannels)
    {
    }

    void Play() override {}
    void Stop() override { freeChannels.push_back(this); }
    void FadeIn(int) override {}
    void FadeOut(int) override {}
    unsigned long GetRemainLength() override { return 1000; }
    void SetGain(float) override {}
    void SetPosition(const Vector3&) override {}
    void SetMinMaxDistance(float, float, bool) override {}
    void SetCone(float, float, float) override {}
    void SetDirection(const Vector3&) override {}
    bool SetFrequency(unsigned long) override { return true; }
    unsigned long GetFrequency() override { return 8000; }

private:
    std::vector<IdleChannel*>& freeChannels;
};

class IdleDriver final : public SndDriver
{
public:
    bool Open(OS*, const SoundFormat*, int, bool) override { return true; }
    void SetCallback(SndDriverCallback, void*) override {}
    void SetMaxChannels(int) override {}
    void BeginUpdate(unsigned long) override {}
    void EndUpdate() override {}
    bool GetCaps(SoundCaps&) override { return true; }
    void SetMainGain(float) override {}
    float GetMainGain() override { return 1.0F; }
    void SetListenerPosition(const Vector3&) override {}
    void SetListenerOrientation(const Vector3&, const Vector3&) override {}
    void Spare1() override {}
    void SetRolloffFactor(float) override {}
    float GetRolloffFactor() override { return 1.0F; }
    bool SetFXEnvReverb(const FXEnvReverb*, long, unsigned int) override { return false; }
    void ResetFXEnvReverb(unsigned int) override {}
    SndChannel* CreateChannel(unsigned int, SndFile* file, SndFXList) override
    {
        if (freeChannels.empty()) {
            channels.push_back(std::make_unique<IdleChannel>(freeChannels));
            freeChannels.push_back(channels.back().get());
        }
        IdleChannel* channel = freeChannels.back();
        freeChannels.pop_back();
        channel->SetSndFile(file);
        return channel;
    }

private:
    std::vector<std::unique_ptr<IdleChannel>> channels;
    std::vector<IdleChannel*> freeChannels;
};

} // namespace

HARMONET_DRIVER_EXPORT Quon::SndDriver* CreateSoundDriver()
{
    return new IdleDriver;
}
