#pragma once

#include "drivers/openal/Acoustics.h"
#include "drivers/openal/DeviceSource.h"
#include "drivers/openal/Feeder.h"
#include "drivers/openal/OfflineRenderer.h"
#include "drivers/openal/OpenALChannel.h"
#include "drivers/openal/OutputDevice.h"
#include "drivers/openal/VoicePool.h"

namespace Quon
{

/// Output through OpenAL Soft: to the machine's default device, or, if the engine's option "OpenALRender"
/// names a file (a path of the operating system), into that WAV file of 16 bits and two channels.
///
/// *Live.* A thread of the driver reads the sounds' files ahead of what is heard, by a fifth of the option
/// "StreamLength", held to 80 to 200 ms. Fades go by the time of the machine.
///
/// *No device.* With the option "OpenALFallback" at 0, the default, a machine without a device cannot be
/// opened, so that the next driver that the host names has its turn. At 1 it opens and goes on in silence. In
/// silence all is as if it were heard: time goes on, sounds run through their files and end when they should.
/// A device that goes away while sounds play leaves silence, too, whatever the option says. In silence the
/// driver looks for a device about once a second, after half a minute every 5 s, from its own thread, and
/// with the first that it finds the sounds are heard from where they have got to. OpenAL settles when it is
/// first used what kind of output it plays to, and only a device of that kind can be found.
///
/// *Rendered.* No thread: BeginUpdate() renders exactly the time it is given, at the rate of the output
/// format, and everything goes by that time.
///
/// *For headphones.* The option "OpenALHRTF" has positional sounds worked out for two ears: 1 on, 0 off, -1,
/// the default, as the device and the user's configuration of OpenAL have it; for a rendered file that is
/// off. It is a wish: a configuration can overrule it, and where it cannot be had it stays off. Rendered,
/// that is at rates other than 44100 and 48000 Hz in the usual installation. Sounds without a place never
/// take part.
///
/// BeginUpdate() then reports, first all changes of file and then all ends, in the order of the channels.
/// What is set between BeginUpdate() and EndUpdate() takes hold together. A sound whose data have run out and
/// are appended to before its end is reported goes on.
///
/// Channels: as many as SetMaxChannels() asks for, up to 512, or as OpenAL has sources; none before that
/// call.
/// The insert effects of a sound work on its PCM before it is queued; rooms are reverbs of OpenAL. The
/// capability 0x0400 is there where OpenAL has effects and a source can be sent to one. Coordinates are those
/// of OpenAL: right-handed, the listener looks along negative Z with Y up. All operations on the task thread.
/// The host may use OpenAL for itself: the process's context and that of the calling thread are left as they
/// are.
class OpenALDriver final : public SndDriver
{
public:
    /// `source` has to outlive the driver.
    explicit OpenALDriver(DeviceSource& source = DeviceSource::GetMachine());
    /// Live, waits up to 150 ms for sounds that have just been stopped to fall silent.
    ~OpenALDriver() override;

    /// False without a device that can be opened, unless "OpenALFallback" is 1; without a file that can be
    /// written; if `format` is not stereo; and for a rate that OpenAL refuses. Nothing here waits for a
    /// device to appear.
    bool Open(OS* os, const SoundFormat* format, int streamLength, bool driverFlag) override;
    void SetCallback(SndDriverCallback newCallback, void* newUser) override;
    /// Only the first call counts.
    void SetMaxChannels(int count) override;
    /// Times of 2^32 ms and more count as the largest below.
    void BeginUpdate(unsigned long elapsedMs) override;
    void EndUpdate() override;
    bool GetCaps(SoundCaps& caps) override;
    /// Held to 0.0 to 1.0. Here and below, what is no number is ignored.
    void SetMainGain(float gain) override;
    float GetMainGain() override { return mainGain; }
    void SetListenerPosition(const Vector3& position) override;
    void SetListenerOrientation(const Vector3& front, const Vector3& top) override;
    void Spare1() override {}
    /// Negative factors become 0.
    void SetRolloffFactor(float factor) override;
    float GetRolloffFactor() override { return listener.rolloffFactor; }
    /// The listener's room, each field held to its range, for all positional sounds that do not refuse it.
    /// False, and nothing changes, where OpenAL has no effects. The other two arguments mean nothing here.
    bool SetFXEnvReverb(const FXEnvReverb* room, long, unsigned int) override
    {
        return acoustics.SetRoom(room);
    }
    void ResetFXEnvReverb(unsigned int) override { acoustics.ResetRoom(); }
    /// Null when no channel is free, and for a file of no playable format.
    SndChannel* CreateChannel(unsigned int flags, SndFile* file, SndFXList fx) override;
    /// Whether the rendered file ended before the sound.
    bool HasLostOutput() const override { return renderer && renderer->HasLostOutput(); }

private:
    bool OpenRendered(int rateHz);
    bool OpenLive(int rateHz, int streamLength);
    void ReportEvents();
    void Report(int event, void* data);

    SndDriverCallback callback = nullptr;
    void* user = nullptr;
    DriverOptions options;
    float mainGain = 1.0F;
    Listener listener;
    bool isDeferring = false;
    StartTimes startTimes;
    OutputDevice device;
    VoicePool voices{device};
    Acoustics acoustics{device};
    EngineVector<std::unique_ptr<OpenALChannel>> channels;
    std::unique_ptr<OfflineRenderer> renderer; ///< Either this
    std::unique_ptr<Feeder> feeder; ///< or that, once open. Goes before the channels.
};

} // namespace Quon
