#pragma once

#include <cstdint>
#include <span>

namespace Quon
{

/// A linear fade-in from silence to full level, applied to PCM before it is queued. One thread at a time.
class FadeInRamp
{
public:
    /// Starts a fade-in of `newDurationMs`; 0 or less means none.
    void Start(double newDurationMs);
    void Cancel() { durationMs = 0.0; }
    /// Skips the first `ms` milliseconds of the fade-in.
    void Skip(double ms) { elapsedMs = ms; }

    /// Scales the next sample frames, of `channels` samples each, that will be played at `rateHz`.
    void Apply(std::span<float> pcm, int channels, double rateHz);

private:
    double durationMs = 0.0; ///< 0: no fade-in.
    double elapsedMs = 0.0;
};

/// A linear fade-out from full level to silence as a function of time, in ticks of any length. A plain value.
class FadeOutRamp
{
public:
    /// Starts a fade-out at `now`. With a length of 0 or less it is complete at once.
    void Start(std::int64_t now, std::int64_t newLength);
    void Cancel() { isRunning = false; }
    /// Skips the first `ticks` of the fade-out.
    void Skip(std::int64_t ticks) { begin -= ticks; }

    /// Whether there is a fade-out, including a completed one.
    bool IsRunning() const { return isRunning; }

    /// Whether there is a completed fade-out.
    bool IsOver(std::int64_t now) const { return isRunning && now >= begin + length; }

    /// The gain factor at a time; 1 without a fade-out.
    float GetLevel(std::int64_t time) const;

private:
    bool isRunning = false;
    std::int64_t begin = 0;
    std::int64_t length = 0;
};

} // namespace Quon
