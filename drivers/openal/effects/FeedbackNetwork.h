#pragma once

#include "harmonet/engine/Alloc.h"
#include "harmonet/engine/Lanes.h"

#include <array>
#include <cstddef>
#include <span>

namespace Quon
{

/// The echoes of a room: eight delay lines of different lengths, each of which feeds all of them (a feedback
/// delay network). Owned by a reverb.
///
/// The output of a line is attenuated by the loss that the room's decay time implies for its length, and high
/// frequencies by their own loss. The mixing of the lines preserves power, so the decay is that of the lines
/// and the network is stable.
class FeedbackNetwork
{
public:
    static constexpr std::size_t lineCount = 8;
    using Four = FourFloats;

    struct Room
    {
        double decayMs; ///< The time in which the room decays by 60 dB.
        double highRatio; ///< Decay time of high frequencies relative to it, above 0 and up to 1.
        double size; ///< Scales the lengths of the lines; 1 is a hall, with 26 to 48 ms.
    };

    FeedbackNetwork(const Room& room, int rateHz);

    /// Replace the input, mono or interleaved stereo, by the sound of the room. The even lines receive the
    /// left side and the odd ones the right; the sides of the room are sums of all lines with different
    /// signs. For equal input on both sides, each output side has the power of one input side, except for the
    /// frequencies that decay faster; mono yields what the left side would be then.
    void ProcessMono(std::span<float> pcm);
    void ProcessStereo(std::span<float> pcm);

    void Clear();

    /// The longest line in sample frames.
    int GetLongest() const;

private:
    using Lanes = std::array<Four, 2>;

    Lanes Step(float left, float right);
    Four ReadHalf(std::size_t half) const;

    // The lines are interleaved: one row per sample frame, with one lane per line.
    EngineVector<Lanes> rows;
    std::size_t mask; ///< For indices into `rows`, which is a ring.
    std::size_t row = 0; ///< The next to write.
    std::array<std::size_t, lineCount> delays;
    float level; ///< Input gain, so that the room is as loud as the input.
    Lanes decay; ///< Gain of each line.

    // The shelf at the end of each line, as a second-order filter.
    Lanes b0, b1, b2, a1, a2;
    Lanes near{}, far{};
};

} // namespace Quon
