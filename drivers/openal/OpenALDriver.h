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
/// names a file (a native path), to that file as 16-bit stereo WAV.
///
/// *Live.* A thread of the driver reads the sounds' files ahead of playback, by a fifth of the option
/// "StreamLength", clamped to 80..200 ms. Fades follow the machine's clock.
///
/// *No device.* With the option "OpenALFallback" at 0, the default, a machine without a device cannot be
/// opened, so that the next driver of the host's list is tried. At 1 it opens and runs in silence. In silence
/// everything else works as usual: time advances, and sounds play through their files and end on time. If the
/// device is lost while sounds play, the driver also continues in silence, whatever the option is. In silence
/// the driver looks for a device about once a second, after half a minute every 5 s, on its own thread; with
/// the first one found the sounds become audible at their current position. OpenAL selects its backend when
/// it is first used, and only devices of that backend can be found.
///
/// *Rendered.* No thread: BeginUpdate() renders exactly the given time, at the rate of the output format, and
/// everything follows that time.
///
/// *For headphones.* The option "OpenALHRTF" selects binaural rendering (HRTF) of positional sounds: 1 on, 0
/// off, -1, the default, as configured by the device and the user's OpenAL configuration; for a rendered file
/// that is off. It is a request: a configuration can override it, and HRTF stays off if it is not available.
/// For a rendered file this is the case at rates other than 44100 and 48000 Hz in the usual installation.
/// Non-positional sounds are never affected.
///
/// BeginUpdate() then reports, first all changes of file and then all ends, in the order of the channels.
/// Settings made between BeginUpdate() and EndUpdate() take effect together. If data are appended to an
/// exhausted sound before its end is reported, it continues.
///
/// Channels: as many as SetMaxChannels() requests, up to 512 and the number of OpenAL's sources; none before
/// that call. The insert effects of a sound are applied to its PCM before it is queued; rooms are OpenAL
/// reverbs. The capability 0x0400 is set if OpenAL has effects and a source can be sent to one. Coordinates
/// are those of OpenAL: right-handed, the listener looks along negative Z with Y up. Task thread only. The
/// host may use OpenAL itself: the current contexts of the process and of the calling thread are not changed.
class OpenALDriver final : public SndDriver
{
public:
    /// `source` must outlive the driver.
    explicit OpenALDriver(DeviceSource& source = DeviceSource::GetMachine());
    /// For a live output, waits up to 150 ms for sounds that have just been stopped to fade out.
    ~OpenALDriver() override;

    /// Returns false if no device can be opened, unless "OpenALFallback" is 1; if the file cannot be written;
    /// if `format` is not stereo; or if OpenAL refuses the rate. Does not wait for a device to appear.
    bool Open(OS* os, const SoundFormat* format, int streamLength, bool driverFlag) override;
    void SetCallback(SndDriverCallback newCallback, void* newUser) override;
    /// Only the first call has an effect.
    void SetMaxChannels(int count) override;
    /// Times of 2^32 ms and more are clamped to the largest value below.
    void BeginUpdate(unsigned long elapsedMs) override;
    void EndUpdate() override;
    bool GetCaps(SoundCaps& caps) override;
    /// Clamped to 0.0..1.0. Here and below, NaN is ignored.
    void SetMainGain(float gain) override;
    float GetMainGain() override { return mainGain; }
    void SetListenerPosition(const Vector3& position) override;
    void SetListenerOrientation(const Vector3& front, const Vector3& top) override;
    void Spare1() override {}
    /// Negative factors are clamped to 0.
    void SetRolloffFactor(float factor) override;
    float GetRolloffFactor() override { return listener.rolloffFactor; }
    /// Sets the listener's room, each field clamped to its range, for all positional sounds that do not
    /// refuse it. Returns false and changes nothing if OpenAL has no effects. The other two arguments are
    /// ignored.
    bool SetFXEnvReverb(const FXEnvReverb* room, long, unsigned int) override
    {
        return acoustics.SetRoom(room);
    }
    void ResetFXEnvReverb(unsigned int) override { acoustics.ResetRoom(); }
    /// Returns null if no channel is free, or the file's format is not playable.
    SndChannel* CreateChannel(unsigned int flags, SndFile* file, SndFXList fx) override;
    /// Whether the rendered file has ended before the output.
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
    std::unique_ptr<OfflineRenderer> renderer; ///< One of these two is set once open.
    std::unique_ptr<Feeder> feeder; ///< Destroyed before the channels.
};

} // namespace Quon
