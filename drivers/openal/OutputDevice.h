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

/// The OpenAL device and its context: either the machine's default device or a loopback device that renders
/// on request. Owned by the driver. A thread that calls OpenAL, through this class or a Voice, must first
/// make the context current for itself with a ContextScope, the driver's own thread with a FeederScope: the
/// process-wide current context remains the host's. No scope may exist when the object is destroyed.
///
/// A live output can be without a device and can change it. All operations still work then: settings are
/// stored and applied to the next device. Only the driver's own thread changes the device, with the mutex
/// locked. A ContextScope locks the mutex too, so the device does not change within a scope.
class OutputDevice
{
public:
    explicit OutputDevice(DeviceSource& deviceSource);
    OutputDevice(const OutputDevice&) = delete;
    OutputDevice& operator=(const OutputDevice&) = delete;

    /// Opens the default device and requests the given rate; the actual rate may differ. Returns false at
    /// once if the OpenAL implementation lacks a function that the driver needs, or if `needsDevice` is true
    /// and there is no device.
    bool OpenLive(int rateHz, Hrtf newHrtf, bool needsDevice);

    /// Opens a loopback device of exactly this rate: stereo, float, without a limiter and bit-exact. HRTF is
    /// off unless requested. Returns false if no such device can be opened.
    bool OpenLoopback(int rateHz, Hrtf newHrtf);

    /// The rate of the output: the device's, or the requested one if there is no device.
    int GetRateHz() const { return session && session->GetRateHz() > 0 ? session->GetRateHz() : rate; }

    /// Whether there is a device.
    bool HasSession() const { return session != nullptr; }

    /// Whether positional sounds are rendered with HRTF. All others must bypass it.
    bool IsHrtfOn() const { return session && session->IsHrtfOn(); }

    /// Which OpenAL Soft mixes for it.
    SoftVersion GetSoftVersion() const
    {
        return session ? session->GetExtensions().version : SoftVersion::New;
    }

    /// Renders the next `sampleFrames` of a loopback device to `stereo`. After a short block an old OpenAL
    /// Soft can itself be up to three sample frames ahead. Task thread.
    void Render(float* stereo, int sampleFrames);

    /// The clock for fades: the sample frames that the loopback device has rendered, or the machine's time,
    /// in ticks of GetTicksPerSecond(). For a loopback device, task thread only.
    std::int64_t GetTime() const;
    std::int64_t GetTicksPerSecond() const;

    /// A clock that advances as the device mixes. A setting has taken full effect when the clock has advanced
    /// by GetSettleTime() since it was made. Needs a device.
    std::int64_t GetMixClock() const;
    std::int64_t GetSettleTime() const { return loopback ? 1 : session->GetSettleTime(); }

    /// Whether that is based on the device's mixing; otherwise it is the machine's clock.
    bool HasMixClock() const { return loopback || session->HasMixClock(); }

    /// The fraction of a sample frame by which the time of a loopback device is ahead of its output.
    double GetRenderedFraction() const { return renderedFraction; }
    void SetRenderedFraction(double fraction) { renderedFraction = fraction; }

    /// The lag of the device's clock against continuous mixing, in nanoseconds, at a time of the machine,
    /// which can be in the future. 0 for a loopback device and without a device.
    std::int64_t GetMixLag(std::int64_t time) const;
    /// Samples the clock, and returns the time of the machine at which to do so again, besides regular calls.
    std::int64_t ObserveMixClock() const;

    /// Settings of sources and listener made between these two calls take effect together.
    void DeferUpdates();
    void ProcessUpdates();

    void SetMainGain(float gain);
    void SetListenerPosition(const Vector3& position);
    void SetListenerOrientation(const Vector3& front, const Vector3& top);

    // For the thread of a live output.

    /// Whether the device is still connected. Needs a device.
    bool IsConnected() const;

    /// Opens another device as OpenLive() does; null on failure. Can take a while and locks nothing.
    std::unique_ptr<AlSession> MakeLiveSession() const;

    /// Locked while the device is changed. Acquired after the locks of channels and before all others of the
    /// driver.
    std::recursive_mutex& GetMutex() const { return mutex; }

    /// Replaces the device; null means none. Returns the previous one. Needs the mutex.
    std::unique_ptr<AlSession> Exchange(std::unique_ptr<AlSession> newSession);

    /// Applies the listener's settings to a new device, whose context must be current.
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
    AlExtensions extensions; ///< Without the functions of a device.
    bool loopback = false;
    int rate = 0;
    Hrtf hrtf = Hrtf::DeviceDefault;
    std::int64_t renderedFrames = 0;
    double renderedFraction = 0.0;
    std::array<float, 6> surplus{}; ///< For a loopback device: up to three rendered sample frames left.
    int surplusFrames = 0;
    ListenerSettings listener;
    mutable std::recursive_mutex mutex; ///< Recursive, since scopes can be nested.
    std::unique_ptr<AlSession> session; ///< Changed under the mutex.
    mutable std::mutex timelineMutex;
    mutable MixTimeline timeline; ///< Guarded by its mutex.
};

/// Makes the device's context current for the calling thread, and restores the previous one at its end. For
/// the pumping thread, which alone changes the device; other threads use a ContextScope. Does nothing without
/// a device.
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

/// The same for any thread; the device does not change meanwhile. Acquired after the lock of a channel.
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
