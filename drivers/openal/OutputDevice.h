#pragma once

#include "drivers/openal/AlSession.h"
#include "drivers/openal/MixTimeline.h"
#include "harmonet/engine/Vector.h"

#include <array>
#include <cstdint>
#include <memory>
#include <mutex>

namespace Quon
{

class DeviceSource;

/// The OpenAL device and its context: either the default device of the machine or a loopback device that is
/// rendered by call. Owned by the driver. A thread that calls OpenAL, through this class or a Voice, first
/// makes the context its own with a ContextScope, the driver's own thread with a FeederScope: the context
/// that is current for the whole process stays the host's. At its end no scope may be left.
///
/// A live output can be without a device, and change it. All operations work then too: settings are kept and
/// given to the next device. The driver's own thread alone changes it, with the mutex locked, and a
/// ContextScope locks it too. So the device stays the same within a scope.
class OutputDevice
{
public:
    explicit OutputDevice(DeviceSource& deviceSource);
    OutputDevice(const OutputDevice&) = delete;
    OutputDevice& operator=(const OutputDevice&) = delete;

    /// Opens the default device, asking for the given rate; it may get another one. False, without waiting,
    /// when the OpenAL implementation lacks what the driver needs; and, if it `needsDevice`, when there is no
    /// device.
    bool OpenLive(int rateHz, Hrtf newHrtf, bool needsDevice);

    /// Opens a loopback device of exactly this rate: stereo, in float and without a limiter, which hands out
    /// what was put in bit by bit. HRTF is off unless it is asked for. False if it cannot be had.
    bool OpenLoopback(int rateHz, Hrtf newHrtf);

    /// The rate of the output: the device's, or without one that which was asked for.
    int GetRateHz() const { return session && session->GetRateHz() > 0 ? session->GetRateHz() : rate; }

    /// Whether there is a device.
    bool HasSession() const { return session != nullptr; }

    /// Whether positional sounds are worked out for two ears. All others are to be kept out of that.
    bool IsHrtfOn() const { return session && session->IsHrtfOn(); }

    /// Which OpenAL Soft mixes for it.
    SoftVersion GetSoftVersion() const
    {
        return session ? session->GetExtensions().version : SoftVersion::New;
    }

    /// Mixes the next `sampleFrames` of a loopback device into `stereo`. After a short block the device
    /// itself can be up to three sample frames ahead. Task thread.
    void Render(float* stereo, int sampleFrames);

    /// The time by which fades go, in ticks of its own: the sample frames that the loopback device has
    /// rendered, or the time of the machine. Of a loopback device, task thread only.
    std::int64_t GetTime() const;
    std::int64_t GetTicksPerSecond() const;

    /// Grows as the device mixes. A setting made at one value has been heard in full when the value has grown
    /// by GetSettleTime(). Needs a device.
    std::int64_t GetMixClock() const;
    std::int64_t GetSettleTime() const { return loopback ? 1 : session->GetSettleTime(); }

    /// Whether that goes by what the device mixes; otherwise by the time of the machine.
    bool HasMixClock() const { return loopback || session->HasMixClock(); }

    /// The part of a sample frame by which the time of a loopback device is ahead of what it has rendered.
    double GetRenderedFraction() const { return renderedFraction; }
    void SetRenderedFraction(double fraction) { renderedFraction = fraction; }

    /// How far the device's clock lags behind what it would be if it mixed without steps, at a time of the
    /// machine, which can lie in the future: in nanoseconds. 0 of a loopback device and without one.
    std::int64_t GetMixLag(std::int64_t time) const;
    /// Looks at the clock. To be called every now and then.
    void ObserveMixClock() const { GetMixLag(0); }

    /// Settings of sources and listener made between these two take hold together.
    void DeferUpdates();
    void ProcessUpdates();

    void SetMainGain(float gain);
    void SetListenerPosition(const Vector3& position);
    void SetListenerOrientation(const Vector3& front, const Vector3& top);

    // For the thread of a live output.

    /// Whether the device is still there. Needs one.
    bool IsConnected() const;

    /// Another device as OpenLive() opens it, or null. Can take a while and locks nothing.
    std::unique_ptr<AlSession> MakeLiveSession() const;

    /// Locked while the device is changed. Behind the locks of channels, before all others of the driver.
    std::recursive_mutex& GetMutex() const { return mutex; }

    /// Puts another device in the place of the present one; null is none. Needs the mutex. Returns the one
    /// that was there.
    std::unique_ptr<AlSession> Exchange(std::unique_ptr<AlSession> newSession);

    /// Gives the listener's settings to a new device, whose context has to be current.
    void ApplyListener();

private:
    friend class FeederScope;

    struct ListenerSettings
    {
        float gain = 1.0F;
        Vector3 position;
        Vector3 front{0.0F, 0.0F, -1.0F};
        Vector3 top{0.0F, 1.0F, 0.0F};
    };

    DeviceSource& source;
    AlExtensions extensions; ///< Without those of a device.
    bool loopback = false;
    int rate = 0;
    Hrtf hrtf = Hrtf::DeviceDefault;
    std::int64_t renderedFrames = 0;
    double renderedFraction = 0.0;
    std::array<float, 6> surplus{}; ///< Of a loopback device: up to three sample frames not yet given out.
    int surplusFrames = 0;
    ListenerSettings listener;
    mutable std::recursive_mutex mutex; ///< Recursive, since scopes can be nested.
    std::unique_ptr<AlSession> session; ///< Changed under the mutex.
    mutable std::mutex timelineMutex;
    mutable MixTimeline timeline; ///< Under its mutex.
};

/// Makes the device's context the calling thread's own, and gives the thread back what it had. This one is
/// for the thread that pumps, which alone changes the device; others take a ContextScope. Does nothing
/// without a device.
class FeederScope
{
public:
    explicit FeederScope(const OutputDevice& device);
    ~FeederScope();
    FeederScope(const FeederScope&) = delete;
    FeederScope& operator=(const FeederScope&) = delete;

private:
    const AlExtensions& extensions;
    ALCcontext* const previous;
    ALCcontext* const mine; ///< `previous` if there is no device.
};

/// The same for any thread; the device does not change meanwhile. Taken behind the lock of a channel.
class ContextScope
{
public:
    explicit ContextScope(const OutputDevice& device)
        : lock(device.GetMutex())
        , scope(device)
    {
    }

private:
    std::scoped_lock<std::recursive_mutex> lock;
    FeederScope scope;
};

} // namespace Quon
