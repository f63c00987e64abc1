#pragma once

#include <array>
#include <cstddef>
#include <span>

namespace Quon
{

/// Takes the high frequencies out of PCM before it is queued, by a gain that can change at any time: each
/// change is a ramp of 50 ms. Owned by a channel's feed; one thread at a time.
///
/// Low frequencies keep their level, and those far above 1 kHz get the gain. With the angular frequency w as
/// a multiple of 1 kHz the gain g makes
///
///     |H(w)|^2 = (1 + g^2 w^4) / (1 + w^4)
///
/// which is a Butterworth low-pass of second order for 0 and nothing at all for 1: 5 kHz has the gain to
/// within 1 dB down to -20 dB. The poles stay, and a change moves only the shares of the three outputs of a
/// state variable filter. So no change leaves a transient, however fast it is. The filter is the one of
/// V. Zavalishin, "The Art of VA Filter Design", integrated by the trapezoidal rule.
class LowPass
{
public:
    /// Begins a new sound, without a filter.
    void Start() { *this = LowPass(); }

    /// The linear gain of high frequencies from the next sample frame on; before the first one without a
    /// ramp.
    void SetGain(float newGain);

    /// Filters the next sample frames, of `channels` samples each, 1 or 2, that are to be heard at `rateHz`.
    void Apply(std::span<float> pcm, int channels, double rateHz);

private:
    /// The two integrators of one channel.
    struct Memory
    {
        double band = 0.0;
        double low = 0.0;
    };

    std::array<Memory, 2> memories;
    double root = 1.0; ///< Of the gain: what the ramp moves in a straight line.
    double target = 1.0;
    double step = 0.0; ///< Of the ramp, for each sample frame; 0 until its rate is known.
    double settled = 0.0; ///< Seconds for which the filter has been running.
    bool hasBegun = false;
};

} // namespace Quon
