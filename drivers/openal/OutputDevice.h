#pragma once

#include "drivers/openal/AlSession.h"
#include "harmonet/engine/Vector.h"

#include <cstdint>
#include <memory>

namespace Quon
{

/// The OpenAL device and its context: either the default device of the machine or a loopback device that is
/// rendered by call. Owned by the driver. A thread that calls OpenAL, through this class or a Voice, first
/// makes the context its own with a ContextScope: the context that is current for the whole process stays the
/// host's. At its end no ContextScope may be left.
class OutputDevice
{
public:
    OutputDevice() = default;
    OutputDevice(const OutputDevice&) = delete;
    OutputDevice& operator=(const OutputDevice&) = delete;

    /// Opens the default device, asking for the given rate; it may get another one. False, without waiting,
    /// when there is no device or the OpenAL implementation lacks what the driver needs.
    bool OpenLive(int rateHz, Hrtf hrtf);

    /// Opens a loopback device of exactly this rate: stereo, in float and without a limiter, which hands out
    /// what was put in bit by bit. HRTF is off unless it is asked for. False if it cannot be had.
    bool OpenLoopback(int rateHz, Hrtf hrtf);

    /// Whether positional sounds are worked out for two ears. All others are to be kept out of that.
    bool IsHrtfOn() const { return hrtfOn; }

    /// Mixes the next `sampleFrames` of a loopback device into `stereo`. Task thread.
    void Render(float* stereo, int sampleFrames);

    /// The time by which fades go, in ticks of its own: the sample frames that the loopback device has
    /// rendered, or the time of the machine. Of a loopback device, task thread only.
    std::int64_t GetTime() const;
    std::int64_t GetTicksPerSecond() const;

    /// Grows as the device mixes. A setting made at one value has been heard in full when the value has grown
    /// by GetSettleTime().
    std::int64_t GetMixClock() const;
    std::int64_t GetSettleTime() const { return settleTime; }

    /// Settings of sources and listener made between these two take hold together.
    void DeferUpdates() { session->GetExtensions().deferUpdates(); }
    void ProcessUpdates() { session->GetExtensions().processUpdates(); }

    void SetMainGain(float gain);
    void SetListenerPosition(const Vector3& position);
    void SetListenerOrientation(const Vector3& front, const Vector3& top);

private:
    friend class ContextScope;

    bool OpenSession(ALCdevice* device, std::span<const ALCint> attributes, Hrtf hrtf);

    AlExtensions extensions; ///< Without those of a device.
    std::unique_ptr<AlSession> session;
    bool hrtfOn = false;
    bool loopback = false;
    int rate = 0;
    std::int64_t renderedFrames = 0;
    std::int64_t settleTime = 0;
};

/// Makes a device's context the calling thread's own, and gives the thread back what it had.
class ContextScope
{
public:
    explicit ContextScope(const OutputDevice& device);
    ~ContextScope();
    ContextScope(const ContextScope&) = delete;
    ContextScope& operator=(const ContextScope&) = delete;

private:
    const AlExtensions& extensions;
    ALCcontext* const mine;
    ALCcontext* const previous;
};

} // namespace Quon
