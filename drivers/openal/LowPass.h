#pragma once

#include <array>
#include <cstddef>
#include <span>

namespace Quon
{

/// Attenuates the high frequencies of PCM before it is queued, by a gain that can change at any time: each
/// change is a ramp of 50 ms. Owned by a channel's feed; one thread at a time.
///
/// Low frequencies keep their level, and the gain applies far above 1 kHz. With the frequency w as a multiple
/// of 1 kHz and the gain g the response is
///
///     |H(w)|^2 = (1 + g^2 w^4) / (1 + w^4)
///
/// which is a second-order Butterworth low-pass for 0 and the identity for 1: at 5 kHz it matches the gain to
/// within 1 dB down to -20 dB. The poles are constant, and a change only affects the weights of the three
/// outputs of a state variable filter, so no change causes a transient, however fast it is. The filter is
/// that of V. Zavalishin, "The Art of VA Filter Design", integrated by the trapezoidal rule.
class LowPass
{
public:
    /// Starts a new sound without a filter.
    void Start() { *this = LowPass(); }

    /// Sets the linear gain of high frequencies from the next sample frame on; before the first one without a
    /// ramp.
    void SetGain(float newGain);

    /// Filters the next sample frames, of `channels` samples each, 1 or 2, that will be played at `rateHz`.
    void Apply(std::span<float> pcm, int channels, double rateHz);

private:
    /// The two integrators of one channel.
    struct Memory
    {
        double band = 0.0;
        double low = 0.0;
    };

    std::array<Memory, 2> memories;
    double root = 1.0; ///< Root of the gain, which the ramp changes linearly.
    double target = 1.0;
    double step = 0.0; ///< Step of the ramp per sample frame; 0 until the rate is known.
    double settled = 0.0; ///< Seconds for which the filter has been running.
    bool hasBegun = false;
};

} // namespace Quon
